#pragma once
// The Traverse window: the start, backsight and closing point, the course
// table, the adjustment; the report and the sketch beside them.

class QDialog;
class QWidget;

namespace tervalo {

class FormModel;
class QtShell;

QDialog* makeTraverseView(FormModel& model, QtShell& shell, QWidget* parent);

}  // namespace tervalo
