// The horizontal curve window through its widgets.

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include "app/frm_main.h"
#include "app/program.h"
#include "app/qt/views.h"
#include "qt/scripted_shell.h"
#include "support/temp_dir.h"

namespace tervalo {
namespace {

using testing::ScriptedShell;
using testing::TempDir;

class CurveWindow : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void typeTwoElementsAndCalculate() {
    TempDir dir;
    ScriptedShell shell;
    registerViews(shell);
    Program program(shell, dir.folder());
    shell.setProgram(program);
    QString radius, pc, output;
    shell.inDialog = [&](QDialog& d) {
      QVERIFY(QTest::qWaitForWindowExposed(&d));
      QCOMPARE(d.windowTitle(), QString("Horizontal Curve Solution"));
      d.findChild<QRadioButton*>("optDec")->click();
      QTest::keyClicks(d.findChild<QLineEdit*>("txtDelta"), "30");
      QTest::keyClicks(d.findChild<QLineEdit*>("txtRadius"), "1000");
      QTest::keyClicks(d.findChild<QLineEdit*>("txtCurvePt"), "10+00");
      QTest::mouseClick(d.findChild<QPushButton*>("btnCalculate"), Qt::LeftButton);
      radius = d.findChild<QLabel*>("lblTan")->text();
      pc = d.findChild<QLabel*>("lblPC")->text();
      output = d.findChild<QLineEdit*>("txtOut")->text();
      QVERIFY(QFontInfo(d.findChild<QLabel*>("lblTan")->font()).fixedPitch());
      QTest::mouseClick(d.findChild<QPushButton*>("btnReturn"), Qt::LeftButton);
    };
    program.form<frmMain>("frmMain").click("mnuChorz");
    QCOMPARE(radius, QString("267.9492"));
    QCOMPARE(pc, QString("7+32.0508"));
    QCOMPARE(output.toStdString(), dir.folder() + "outHfile.txt");
    QVERIFY(shell.boxes.empty());
  }
};

}  // namespace
}  // namespace tervalo

#include "curve_window_test.moc"

int runCurveWindowTests(int argc, char** argv) {
  tervalo::CurveWindow tests;
  return QTest::qExec(&tests, argc, argv);
}
