#pragma once
// Every window of the program. Each builds its controls in code and leaves
// all behaviour to its model.

#include <QMainWindow>

class QLineEdit;

namespace tervalo {

class FormModel;
class QtShell;
class Binder;
class frmMain;
class Program;

QDialog* makeAboutView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeHistoryView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeHeaderView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeSetOptionsView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeOutputView(FormModel& model, QtShell& shell, QWidget* parent);

// The calculators' windows, each built in its folder's one *_view.cpp: the
// section (its slots laid out as the section, the chains beside their lines,
// the drawing), the curves and the vertical curve's results, proportion,
// grading, the township table, corner restoration, the coordinate system and
// the traverse.
QDialog* makeSecSubView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeHorzCurveView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeVertCurveView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeVCResultsView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makePropView(FormModel& model, QtShell& shell, QWidget* parent);
// The project's points: the table beside the map.
QDialog* makePointsView(FormModel& model, QtShell& shell, QWidget* parent);
// COGO on the project's points: the command line, its forms, the log and the map.
QDialog* makeMapcheckView(FormModel& m, QtShell& s, QWidget* p);
QDialog* makeNetworkView(FormModel& m, QtShell& s, QWidget* p);
QDialog* makeAlignmentView(FormModel& m, QtShell& s, QWidget* p);
QDialog* makeSurveyorView(FormModel& m, QtShell& s, QWidget* p);
QDialog* makeSharedProjectView(FormModel& m, QtShell& s, QWidget* p);
QDialog* makeCogoView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeGradeView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeTownshipView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeRestoreView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeCrsView(FormModel& model, QtShell& shell, QWidget* parent);
QDialog* makeTraverseView(FormModel& model, QtShell& shell, QWidget* parent);

// Every window view of the program, by form name.
void registerViews(QtShell& shell);

class MainWindow : public QMainWindow {
 public:
  MainWindow(Program& program, QtShell& shell);
  ~MainWindow() override;
  Binder& binder() { return *binder_; }
  // Where and how large the user left the main window; nothing on a first start.
  void restoreLayout();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  frmMain& model_;
  Binder* binder_ = nullptr;
};

}  // namespace tervalo
