#pragma once

class QDialog;
class QWidget;

namespace tervalo {

class FormModel;
class QtShell;

// The section subdivision window: section data, numbering, the 25 corner
// slots laid out as the section, the record chains beside their lines, and
// the drawing of the last run.
QDialog* makeSecSubView(FormModel& model, QtShell& shell, QWidget* parent);

}  // namespace tervalo
