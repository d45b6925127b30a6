#pragma once
// The township window: the plan's sections as a table, Run and the summary.

class QDialog;
class QWidget;

namespace tervalo {

class FormModel;
class QtShell;

QDialog* makeTownshipView(FormModel& model, QtShell& shell, QWidget* parent);

}  // namespace tervalo
