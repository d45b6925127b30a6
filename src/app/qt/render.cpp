#include "app/qt/render.h"

#include <QDialog>
#include <QDir>
#include <QPixmap>
#include <iostream>

#include "app/forms_misc.h"
#include "app/frm_main.h"
#include "app/program.h"
#include "app/qt/binder.h"
#include "app/qt/qt_shell.h"
#include "app/qt/views.h"

namespace tervalo {
namespace {

bool save(QWidget& w, const QString& dir, const std::string& name) {
  w.adjustSize();
  const QString file = QDir(dir).filePath(QString::fromStdString(name) + ".png");
  const bool ok = w.grab().save(file);
  std::cout << (ok ? "rendered " : "could not render ") << file.toStdString() << "\n";
  return ok;
}

// Example contents of the windows, as a user would have them.
void fillExamples(Program& program) {
  auto& main = program.form<frmMain>("frmMain");
  main.click("mnuSecSub");
  main.txtInFile.text = "examples/section14.sdms";

  auto& header = program.form<frmHeader>("frmHeader");
  header.txtSP.text = "8821-114";
  header.txtTH.text = "52";
  header.txtDate.text = "11/21/2026";
  header.txtOperator.text = "J. SURVEYOR";
  header.txtComment.text = "SECTION 14 SUBDIVISION FOR RIGHT OF WAY";
  header.chkIncludePath.checked = true;

  auto& output = program.form<frmOutput>("frmOutput");
  output.txtOut.text = program.userAppData + "Proportion.txt";
  output.lstOutput.items = {"", "                      PROPORTION CALCULATION", "", std::string(69, '-'),
                            "  Beginning Station:  10+00.000  Value:    .000",
                            "     Ending Station:  20+00.000         10.000", std::string(69, '-'),
                            "                      Station           Value",
                            "                     10+00.000            .000",
                            "                     11+00.000           1.000",
                            "                     12+00.000           2.000",
                            "                     12+30.000           2.300", std::string(69, '-')};
}

}  // namespace

int renderWindows(Program& program, QtShell& shell, MainWindow& main, const QString& dir) {
  QDir().mkpath(dir);
  fillExamples(program);
  main.binder().refresh();
  int failures = save(main, dir, "frmMain") ? 0 : 1;
  for (const std::string& name : program.registry().formNames()) {
    if (name == "frmMain" || !shell.hasView(name)) continue;
    FormModel& model = program.form(name);
    QDialog* view = shell.makeView(model, &main);
    failures += save(*view, dir, name) ? 0 : 1;
    delete view;
  }
  return failures;
}

}  // namespace tervalo
