#pragma once

class QDialog;
class QWidget;

namespace tervalo {

class FormModel;
class QtShell;

QDialog* makeGradeView(FormModel& model, QtShell& shell, QWidget* parent);

}  // namespace tervalo
