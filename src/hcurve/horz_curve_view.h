#pragma once

class QDialog;
class QWidget;

namespace tervalo {

class FormModel;
class QtShell;

QDialog* makeHorzCurveView(FormModel& model, QtShell& shell, QWidget* parent);

}  // namespace tervalo
