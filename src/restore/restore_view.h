#pragma once
// The Corner Restoration window.

class QDialog;
class QWidget;

namespace tervalo {

class FormModel;
class QtShell;

QDialog* makeRestoreView(FormModel& model, QtShell& shell, QWidget* parent);

}  // namespace tervalo
