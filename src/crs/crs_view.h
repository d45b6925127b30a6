#pragma once
// The Coordinate System window.

class QDialog;
class QWidget;

namespace tervalo {

class FormModel;
class QtShell;

QDialog* makeCrsView(FormModel& model, QtShell& shell, QWidget* parent);

}  // namespace tervalo
