#pragma once

class QDialog;
class QWidget;

namespace tervalo {

class FormModel;
class QtShell;

QDialog* makeVertCurveView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeVCResultsView(FormModel& model, QtShell& shell, QWidget* parent);

}  // namespace tervalo
