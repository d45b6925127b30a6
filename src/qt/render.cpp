#include "qt/render.h"

#include <filesystem>
#include <iostream>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QPixmap>
#include <iostream>

#include "app/forms_misc.h"
#include "crs/frm_crs.h"
#include "app/frm_main.h"
#include "app/program.h"
#include "qt/binder.h"
#include "qt/qt_shell.h"
#include "qt/views.h"
#include "hcurve/frm_horz_curve.h"
#include "grading/frm_grade.h"
#include "points/readers.h"
#include "cogo/frm_cogo.h"
#include "parcels/frm_mapcheck.h"
#include "adjust/frm_network.h"
#include "alignment/frm_alignment.h"
#include "project/frm_points.h"
#include "project/point_import.h"
#include "project/project_session.h"
#include "proportion/frm_prop.h"
#include "vcurve/frm_vert_curve.h"
#include "secsub/frm_sec_sub.h"
#include "text/errors.h"
#include "restore/frm_restore.h"
#include "township/frm_township.h"
#include "traverse/frm_traverse.h"
#include "traverse/traverse_file.h"

namespace tervalo {
namespace {

// At `size`, or at the window's own size hint.
bool save(QWidget& w, const QString& dir, const std::string& name, QSize size = {}) {
  if (size.isValid())
    w.resize(size);
  else
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
  main.dropFiles("txtInFile", {"examples/section14.sdms"});  // read at once: the notice says what it gave

  auto& header = program.form<frmHeader>("frmHeader");
  header.txtSP.text = "8821-114";
  header.txtTH.text = "52";
  header.txtDate.text = "11/21/2026";
  header.txtOperator.text = "J. SURVEYOR";
  header.txtComment.text = "SECTION 14 SUBDIVISION FOR RIGHT OF WAY";
  header.chkIncludePath.checked = true;

  // The worked curve: delta 30 degrees, radius 1000, PI at 10+00.
  auto& curve = program.form<frmHorzCurve>("frmHorzCurve");
  curve.txtOut.text = program.userAppData + "outHfile.txt";
  curve.setChecked("optDec", true);
  curve.typeText("txtDelta", "30");
  curve.typeText("txtRadius", "1000");
  curve.typeText("txtCurvePt", "10+00");
  curve.click("btnCalculate");

  // The worked sag curve with a listing; its results window is filled by Calculate.
  auto& vertical = program.form<frmVertCurve>("frmVertCurve");
  for (const auto& [field, value] : {std::pair{"txtEntryGrade", "-2"}, {"txtExitGrade", "2"}, {"txtStation", "10+00"},
                                     {"txtElevation", "100"}, {"txtLength", "400"}, {"txtStartStation", "7+30"},
                                     {"txtEndStation", "13+10"}, {"txtIncrement", "50"}, {"txtProfile1", "-0.5"}})
    vertical.typeText(field, value);
  vertical.click("btnCalculate");

  // The worked cross-section; Calculate fills its report preview.
  auto& grade = program.form<frmGrade>("frmGrade");
  for (const auto& [field, value] : {std::pair{"txtSta", "125+50"}, {"txtFinElev", "100"}, {"txtTopSoil", "0.5"},
                                     {"txtSubElev", "98"}})
    grade.typeText(field, value);
  for (const auto& [list, width, slope] : {std::tuple{"Fin", "12", "-0.02"}, {"Fin", "4", "1:4"}, {"Sub", "14", "-0.02"}}) {
    grade.typeText(std::string("txt") + list + "Width", width);
    grade.typeText(std::string("cmb") + list + "Slope", slope);
    grade.click(std::string("btn") + list + "Add");
  }
  grade.click("btnCalculate");

  // The worked proportion across an equation; Calculate fills the preview.
  auto& proportion = program.form<frmProp>("frmProp");
  proportion.setChecked("chkBetween", true);
  for (const auto& [field, value] : {std::pair{"txtBegSta", "10+00"}, {"txtBegValue", "0"}, {"txtEndSta", "21+00"},
                                     {"txtEndValue", "10"}, {"txtStaIn", "15+00"}, {"txtStaOut", "16+00"},
                                     {"txtFirst", "10+00"}, {"txtLast", "21+00"}, {"txtIncrement", "200"}})
    proportion.typeText(field, value);
  proportion.click("btnCalc");

  // The example plan of four sections, one corner typed a tenth of a foot off: a disagreement to see.
  auto& township = program.form<frmTownship>("frmTownship");
  township.plan = readPlanFile("examples/township.plan.json");
  township.txtSource.text = township.plan.source;
  ++township.tableVersion;
  township.setCell(1, 4, "517601.886 289872.136");
  township.selectRow(1);  // section 13, its chains shown
  township.click("btnRun");

  // The example restoration: the section corner 13-14-23-24 by double proportion.
  auto& restore = program.form<frmRestore>("frmRestore");
  restore.setFile(readRestorationFile("examples/section14.restore.json"));
  restore.click("btnRestore");

  // The example raw traverse round section 14, adjusted by the compass rule.
  auto& traverse = program.form<frmTraverse>("frmTraverse");
  traverse.setInput(readTraverseFile("examples/section14.rw5"));
  traverse.click("btnAdjust");

  // A State Plane zone in US survey feet, found by searching PROJ's database, at a project elevation.
  program.crs = {3419, "", 1250.0};
  auto& crs = program.form<frmCrs>("frmCrs");
  crs.setOpen(true);
  crs.typeText("txtSearch", "NAD83 North (ftUS)");
  crs.lstSystems.selected = 0;
  for (std::size_t i = 0; i < crs.lstSystems.items.size(); ++i)
    if (crs.lstSystems.items[i].rfind("3419 ", 0) == 0) crs.lstSystems.selected = static_cast<int>(i);
  crs.click("lstSystems");
}

// A dark theme as a desktop's dark colour scheme gives one.
QPalette darkPalette() {
  QPalette p;
  const QColor window(0x2d, 0x2d, 0x30), base(0x1e, 0x1e, 0x1e), text(0xe8, 0xe8, 0xe8);
  p.setColor(QPalette::Window, window);
  p.setColor(QPalette::WindowText, text);
  p.setColor(QPalette::Base, base);
  p.setColor(QPalette::AlternateBase, QColor(0x35, 0x35, 0x3a));
  p.setColor(QPalette::Text, text);
  p.setColor(QPalette::Button, window);
  p.setColor(QPalette::ButtonText, text);
  p.setColor(QPalette::Highlight, QColor(0x3d, 0x8e, 0xe0));
  p.setColor(QPalette::HighlightedText, Qt::white);
  p.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0x9a));
  p.setColor(QPalette::ToolTipBase, window);
  p.setColor(QPalette::ToolTipText, text);
  p.setColor(QPalette::Light, QColor(0x50, 0x50, 0x55));
  p.setColor(QPalette::Midlight, QColor(0x40, 0x40, 0x44));
  p.setColor(QPalette::Mid, QColor(0x25, 0x25, 0x28));
  p.setColor(QPalette::Dark, QColor(0x18, 0x18, 0x1a));
  p.setColor(QPalette::Disabled, QPalette::Text, QColor(0x80, 0x80, 0x80));
  p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x80, 0x80, 0x80));
  p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x80, 0x80, 0x80));
  return p;
}

// The example section typed into its form, as the example job does.
void typeExampleSection(Program& program, const char* section = "14") {
  // Read as Continue in the main window reads it, without showing the form modally.
  program.inputFileName = "examples/section14.sdms";
  getFileFormat(program.inputFileName, program.formats);
  readFile(program.inputFileName, program.formats, program.points);
  auto& form = program.form<frmSecSub>("frmSecSub");
  form.setOpen(true);
  form.typeText("txtSection", section);
  form.typeText("txtTwp", "115");
  form.typeText("txtRange", "22");
  const int plsSlots[] = {0, 2, 4, 10, 14, 20, 22, 24};
  for (int i = 0; i < 8; ++i) form.typeText("txt" + std::to_string(plsSlots[i]) + "pn", std::to_string(1001 + i));
  form.typeText("txtIncr", "2001");
}

bool saveView(Program& program, QtShell& shell, QWidget& main, const QString& dir, const std::string& form,
              const std::string& file, QSize size = {}) {
  QDialog* view = shell.makeView(program.form(form), &main);
  const bool ok = save(*view, dir, file, size);
  delete view;
  return ok;
}

// A project made from the example files, open for every tool: the source file's points and the adjusted traverse.
void openExampleProject(Program& program, QtShell& shell, const QString& dir) {
  const std::filesystem::path file = QDir(dir).filePath("section14.gpkg").toStdString();
  std::filesystem::remove(file);
  program.project = std::make_unique<ProjectSession>(createProject(file, ProjectSettings{}));
  program.project->store(pointsOfFile("examples/section14.sdms", "", {}), OnDuplicate::Skip, "import section14.sdms", "Import");
  program.project->store(pointsOfFile("examples/section14.rw5", "", {}), OnDuplicate::Skip, "import section14.rw5", "Import");
  program.recentProjects.add(file.string());
  program.form<frmMain>("frmMain").showProject();
  program.form<frmMain>("frmMain").showRecent();
  auto& points = program.form<frmPoints>("frmPoints");
  points.setOpen(true);
  points.sortBy(0, false);
  points.select({2, 3});
  // Two commands of the example command file, answered in the COGO window's log.
  auto& cogo = program.form<frmCogo>("frmCogo");
  cogo.setOpen(true);
  for (const char* line : {"INVERSE 1001 1002 1003", "LOCATE 3001 FROM 1001 BEARING N 89-47-00 E DISTANCE 1320.00"}) cogo.runCommand(line);
  cogo.typeText("cmbForm", "Intersect two distances");
  // A deed of five calls, checked in the Mapcheck window.
  auto& deed = program.form<frmMapcheck>("frmMapcheck");
  deed.setOpen(true);
  shell.setClipboardText("N 26-10 E\t285.10\nS 75-25 E\t610.45\nS 15-30 W\t720.48\nN 1-42 W\t203.00\nN 53-06 W\t647.02\n");
  deed.click("btnPasteCalls");
  deed.click("btnCheck");
  // The example network, adjusted with its ellipses.
  auto& net = program.form<frmNetwork>("frmNetwork");
  net.setOpen(true);
  net.openPath("examples/braced.network.json");
  net.click("btnAdjust");
  // The example alignment, a station asked for.
  auto& road = program.form<frmAlignment>("frmAlignment");
  road.setOpen(true);
  road.openFile("examples/highway.alignment.json");
  road.txtStation.text = "20+00";
  road.txtOffset.text = "12";
  road.click("btnPoint");
}

}  // namespace

int renderWindows(Program& program, QtShell& shell, MainWindow& main, const QString& dir) {
  // The windows are filled from the project's examples, by names relative to its top folder.
  for (const char* example : {"examples/section14.sdms", "examples/township.plan.json", "examples/section14.restore.json",
                              "examples/section14.rw5"})
    if (!std::filesystem::is_regular_file(example)) {
      std::cerr << "tervalo: --render-windows fills the windows from the project's examples, but " << example
                << " is not in the working folder (" << std::filesystem::current_path().string()
                << "): run it from the project's top folder, as scripts/render-windows does.\n";
      return 2;
    }
  QDir().mkpath(dir);
  shell.unattended = true;
  fillExamples(program);
  try {
    openExampleProject(program, shell, dir);
  } catch (const ProjectError& e) {
    std::cerr << "tervalo: the example project cannot be made: " << e.what() << "\n";
    return 2;
  }
  main.binder().refresh();
  int failures = save(main, dir, "frmMain", main.size()) ? 0 : 1;  // as it opens
  for (const std::string& name : program.registry().formNames()) {
    if (name == "frmMain" || name == "frmSecSub" || !shell.hasView(name)) continue;
    // The township and traverse windows as they open, large enough for their maps; the others as small as they go.
    const QSize size = name == "frmTownship"                          ? QSize(1240, 720)
                       : name == "frmTraverse" || name == "frmPoints" ? QSize(1300, 720)
                       : name == "frmCogo"                          ? QSize(1240, 700)
                       : name == "frmMapcheck" || name == "frmNetwork" || name == "frmAlignment" ? QSize(1300, 700)
                                                                      : QSize();
    failures += saveView(program, shell, main, dir, name, name, size) ? 0 : 1;
  }
  if (shell.hasView("frmSecSub")) {
    typeExampleSection(program);
    // The usable part of a 1366 by 768 screen, less the window's frame.
    const QSize laptop(1346, 700);
    failures += saveView(program, shell, main, dir, "frmSecSub", "frmSecSub", laptop) ? 0 : 1;
    auto& form = program.form<frmSecSub>("frmSecSub");
    form.click("btnContinue");
    failures += saveView(program, shell, main, dir, "frmSecSub", "frmSecSub-after-run", laptop) ? 0 : 1;
    const QString drawing = QDir(dir).filePath("section-drawing.png");
    bool drawn = true;
    try {
      shell.savePicture(form.drawing(), drawing.toStdString());
    } catch (const RunTimeError&) {
      drawn = false;
    }
    std::cout << (drawn ? "rendered " : "could not render ") << drawing.toStdString() << "\n";
    failures += drawn ? 0 : 1;
    // The section's plat and the Mapcheck window's, as their Plat buttons write them.
    // The network's adjustment report as a PDF, as its Save Report button writes it.
    for (const auto& [window, file, button] : {std::tuple{"frmSecSub", "section-plat.pdf", "btnPlat"}, {"frmMapcheck", "mapcheck-plat.pdf", "btnPlat"},
                                             {"frmNetwork", "network-report.pdf", "btnSaveReport"}}) {
      const std::string path = QDir(dir).filePath(file).toStdString();
      std::filesystem::remove(path);
      shell.unattendedFiles.push_back(path);
      program.form(window).click(button);
      const bool platted = std::filesystem::exists(path);
      std::cout << (platted ? "rendered " : "could not render ") << path << "\n";
      failures += platted ? 0 : 1;
    }
    // Section 7 with its "S 1/4 mile on W line" left empty: the notice and the ringed corner.
    form.click("btnClear");
    typeExampleSection(program, "7");
    form.typeText("txtNofWchain", "20");
    form.click("btnContinue");
    failures += saveView(program, shell, main, dir, "frmSecSub", "frmSecSub-notice", laptop) ? 0 : 1;
    // The same in a dark theme, with the line lengths shown: nothing keeps a light tint of its own.
    const QPalette light = QApplication::palette();
    QApplication::setPalette(darkPalette());
    form.setChecked("chkLengths", true);
    failures += saveView(program, shell, main, dir, "frmSecSub", "frmSecSub-dark", laptop) ? 0 : 1;
    failures += saveView(program, shell, main, dir, "frmVCResults", "frmVCResults-dark") ? 0 : 1;
    QApplication::setPalette(light);
    form.setChecked("chkLengths", false);
    // Every chain field shown: the form's widest content, still within the laptop screen.
    form.setChecked("chkDefaults", false);
    failures += saveView(program, shell, main, dir, "frmSecSub", "frmSecSub-all-chains", laptop) ? 0 : 1;
    // Numbers that are not plain: each field says what it reads as.
    auto& vertical = program.form("frmVertCurve");
    vertical.typeText("txtEntryGrade", "");
    vertical.typeText("txtExitGrade", "2,5");
    failures += saveView(program, shell, main, dir, "frmVertCurve", "frmVertCurve-numbers") ? 0 : 1;
    vertical.typeText("txtEntryGrade", "-2");
    vertical.typeText("txtExitGrade", "2");
    // A 1024 by 768 screen: the form keeps its width, the drawing gives way.
    failures += saveView(program, shell, main, dir, "frmSecSub", "frmSecSub-1024", QSize(1004, 700)) ? 0 : 1;
  }
  return failures == 0 ? 0 : 1;
}

}  // namespace tervalo
