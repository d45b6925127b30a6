// The desktop program's shell windows through their widgets: the binder,
// the main window, the header form, the output preview, recovery.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QMessageBox>
#include <QProcess>
#include <QTest>
#include <QUrl>
#include <QVBoxLayout>

#include "adjust/frm_network.h"
#include "app/data_folder.h"
#include "app/forms_misc.h"
#include "app/identity.h"
#include "app/frm_main.h"
#include "app/program.h"
#include "qt/binder.h"
#include "qt/form_dialog.h"
#include "qt/program_icon.h"
#include "qt/recovery_offer.h"
#include "qt/views.h"
#include "app/recovery.h"
#include "qt/scripted_shell.h"
#include "support/temp_dir.h"
#include "text/errors.h"

namespace tervalo {
namespace {

using testing::ScriptedShell;
using testing::TempDir;

// One control of every kind, each event counted in lblLog.
class frmKinds : public FormModel {
 public:
  explicit frmKinds(Program& p) : FormModel(p, "frmKinds", "Kinds") {
    add("txtA", txtA).change([this] { log("change " + txtA.text); }).lostFocus([this] { log("left " + txtA.text); });
    add("lblLog", lblLog);
    add("fraF", fraF);
    add("chkB", chkB).click([this] { log(chkB.checked ? "checked" : "cleared"); txtA.enabled = !chkB.checked; });
    add("optX", optX, "g").click([this] { log("X"); });
    add("optY", optY, "g").click([this] { log("Y"); });
    add("cmbC", cmbC).change([this] { log("combo " + cmbC.text); });
    add("lstD", lstD).click([this] { log("row " + std::to_string(lstD.selected)); });
    add("btnE", btnE).click([this] { lstD.items.push_back("pressed"); lblHidden.visible = true; });
    add("lblHidden", lblHidden);
  }
  void log(const std::string& s) { lblLog.caption = s; }
  TextBox txtA;
  Label lblLog;
  Frame fraF{"Frame"};
  CheckBox chkB{false, "Bee"};
  OptionButton optX{true, "X"}, optY{false, "Y"};
  ComboBox cmbC{"-0.03", {"-0.02", "-0.03", "1:4"}};
  ListBox lstD{{"one", "two"}};
  Button btnE{"Press"};
  Label lblHidden{"now you see me", false};
};

class KindsView : public FormDialog {
 public:
  KindsView(FormModel& m, QtShell& s) : FormDialog(m, s, nullptr) {
    auto* layout = new QVBoxLayout(this);
    const QList<QWidget*> widgets{edit("txtA"),   label("lblLog"),     frame("fraF"),     check("chkB"),
                                  option("optX"), option("optY"),      combo("cmbC", true), list("lstD", true),
                                  button("btnE"), label("lblHidden")};
    for (QWidget* w : widgets) layout->addWidget(w);
    bind();
  }
  template <class W>
  W* get(const char* name) { return findChild<W*>(name); }
};

class ShellWindows : public QObject, testing::DesktopFixture {
  Q_OBJECT

  void fresh() { start(false); }

 private Q_SLOTS:
  void init() { start(); }
  void cleanup() { stop(); }

  void binderCarriesEveryKindBothWays() {
    frmKinds model(*program);
    model.setOpen(true);
    KindsView view(model, *shell);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));

    auto* a = view.get<QLineEdit>("txtA");
    a->setFocus();
    QTest::keyClicks(a, "12+00");
    QCOMPARE(model.txtA.text, std::string("12+00"));
    QCOMPARE(view.get<QLabel>("lblLog")->text(), QString("change 12+00"));
    view.get<QCheckBox>("chkB")->setFocus();  // leaving the field
    QCOMPARE(model.lblLog.caption, std::string("left 12+00"));

    view.get<QCheckBox>("chkB")->click();
    QVERIFY(model.chkB.checked);
    QCOMPARE(model.lblLog.caption, std::string("checked"));
    QVERIFY(!a->isEnabled());  // the model's change came back to the widget

    view.get<QRadioButton>("optY")->click();
    QVERIFY(model.optY.checked && !model.optX.checked);
    QVERIFY(!view.get<QRadioButton>("optX")->isChecked());

    view.get<QComboBox>("cmbC")->setCurrentIndex(2);
    QCOMPARE(model.cmbC.text, std::string("1:4"));
    QCOMPARE(model.lblLog.caption, std::string("combo 1:4"));

    view.get<QListWidget>("lstD")->setCurrentRow(1);
    QCOMPARE(model.lblLog.caption, std::string("row 1"));

    QVERIFY(!view.get<QLabel>("lblHidden")->isVisible());
    QTest::mouseClick(view.get<QPushButton>("btnE"), Qt::LeftButton);
    QCOMPARE(view.get<QListWidget>("lstD")->count(), 3);
    QVERIFY(view.get<QLabel>("lblHidden")->isVisible());
    QCOMPARE(view.windowTitle(), QString("Kinds"));
  }

  // The Network Adjustment window's report as a PDF: written whole and read
  // back by another program with the report's text and the picture's caption.
  void networkReportAsPdfReadsBack() {
    auto& network = program->form<frmNetwork>("frmNetwork");
    network.setOpen(true);
    QVERIFY(network.openPath(std::string(TERVALO_SOURCE_DIR) + "/examples/braced.network.json"));
    network.click("btnAdjust");
    const std::filesystem::path pdf = dir->path() / "network.pdf";
    shell->chosenFiles.push_back(pdf.string());
    network.click("btnSaveReport");
    QVERIFY(std::filesystem::exists(pdf));
    QProcess text;
    text.start("pdftotext", {"-layout", QString::fromStdString(pdf.string()), "-"});
    QVERIFY(text.waitForFinished(20000));
    const QString read = QString::fromUtf8(text.readAllStandardOutput());
    QVERIFY2(read.contains("LEAST-SQUARES ADJUSTMENT") && read.contains("The network passed its tests."), qPrintable(read.left(400)));
    QVERIFY(read.contains("95 % error ellipses enlarged 5,000 times"));
  }

  void continueWithAMissingFileSaysSo() {
    MainWindow window(*program, *shell);
    auto& main = program->form<frmMain>("frmMain");
    main.setOpen(true);
    shell->setMainWindow(&window, main);
    auto* field = window.findChild<QLineEdit*>("txtInFile");
    field->setText((dir->path() / "none.csv").c_str());
    Q_EMIT field->textEdited(field->text());
    QTest::mouseClick(window.findChild<QPushButton*>("btnContinue"), Qt::LeftButton);
    QCOMPARE(shell->boxes.size(), std::size_t(1));
    QCOMPARE(shell->boxes[0].title, std::string("Input File Error!"));
    QCOMPARE(shell->boxes[0].text, std::string("File does not exist."));
  }

  void mainWindowMenuAndResets() {
    MainWindow window(*program, *shell);
    auto& main = program->form<frmMain>("frmMain");
    shell->setMainWindow(&window, main);
    QCOMPARE(window.findChild<QAction*>("mnuChorz")->text(), QString("&Horizontal Curve"));  // with its mnemonic
    QVERIFY(window.findChild<QAction*>("mnuHelp")->isEnabled());
    // Section Subdivision, twice: the names typed in between are replaced.
    window.binder().run([&] { main.click("mnuSecSub"); });
    auto* report = window.findChild<QLineEdit*>("txtReport");
    QCOMPARE(report->text().toStdString(), dir->folder() + "SecSub.rpt");
    report->setText("/tmp/mine.rpt");
    Q_EMIT report->textEdited(report->text());
    window.binder().run([&] { main.click("mnuSecSub"); });
    QCOMPARE(report->text().toStdString(), dir->folder() + "SecSub.rpt");
  }

  void theWindowsIconIsDrawnAtEverySizeTheDesktopAsksFor() {
    const QIcon icon = programIcon();
    for (const int side : {16, 22, 48, 300}) {
      const QImage drawn = icon.pixmap(side, side).toImage();
      QCOMPARE(drawn.size(), QSize(side, side));
      QVERIFY(qAlpha(drawn.pixel(drawn.width() / 2, drawn.height() / 2)) == 255);  // the sheet, not a blank
    }
  }

  void droppedSourceFileIsReadAtOnce() {
    const auto csv = dir->write("pts.csv", "1001,512313.489,289841.989,CM,NW COR\n");
    MainWindow window(*program, *shell);
    shell->setMainWindow(&window, program->form("frmMain"));
    auto* field = window.findChild<QLineEdit*>("txtInFile");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(csv.c_str()), QUrl::fromLocalFile("/ignored.csv")});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(field, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(field, &drop);
    QCOMPARE(field->text(), QString(csv.c_str()));
    QCOMPARE(program->points.records[0].name, std::string("1001"));
  }

  // A box's title is never cut by the window manager, and the box stands
  // centred on the window it speaks for.
  void boxesAreWideEnoughForTheirTitlesAndCentredOnTheirWindow() {
    QWidget window;
    window.setGeometry(200, 150, 900, 600);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (const char* title : {"Input File Error!", "Run-time Error", "Entered 1/16 Corner Coordinates"}) {
      QMessageBox box(&window);
      box.setWindowTitle(title);
      box.setText("OK.");
      fitBoxToItsTitle(box);
      box.show();
      QVERIFY(QTest::qWaitForWindowExposed(&box));
      const int titleWidth = QFontMetrics(QApplication::font("QMdiSubWindowTitleBar")).horizontalAdvance(title);
      QVERIFY2(box.width() >= titleWidth + 150, title);
      QVERIFY((box.frameGeometry().center() - window.frameGeometry().center()).manhattanLength() <= 4);
    }
  }

  // Without APPDATA the data folder is the desktop's own data location for the program.
  void dataFolderIsTheApplicationsDataLocation() {
    const QByteArray appData = qgetenv("APPDATA"), xdg = qgetenv("XDG_DATA_HOME");
    qunsetenv("APPDATA");
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString(dir->folder() + "xdg"));
    QStandardPaths::setTestModeEnabled(false);
    const QString organization = QCoreApplication::organizationName();
    QCoreApplication::setOrganizationName(kOrganization);
    const QString expected = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/KvAppsData/";
    QCoreApplication::setOrganizationName(organization);
    QStandardPaths::setTestModeEnabled(true);
    QCOMPARE(QString::fromStdString(prepareDataFolder()), expected);
    if (appData.isNull()) qunsetenv("APPDATA"); else qputenv("APPDATA", appData);
    if (xdg.isNull()) qunsetenv("XDG_DATA_HOME"); else qputenv("XDG_DATA_HOME", xdg);
  }

  void programEndKeepsTheInputsAndTheNextStartOffersThem() {
    const auto bad = dir->write("bad.txt", "words only\n");
    {
      MainWindow window(*program, *shell);
      auto& main = program->form<frmMain>("frmMain");
      shell->setMainWindow(&window, main);
      window.binder().run([&] {
        main.click("mnuSecSub");
        main.typeText("txtReport", "/tmp/kept.rpt");
        main.typeText("txtInFile", bad.string());
        main.click("btnContinue");
      });
      QCOMPARE(shell->endedWith, std::optional<int>(3));
      // The box that ends the program, then the desktop program's own word that nothing is lost.
      QCOMPARE(shell->boxes.at(shell->boxes.size() - 2).text, std::string("Input File Format Not Recognized"));
      QVERIFY(shell->boxes.back().text.find("Your entries are kept and will be offered") != std::string::npos);
      QVERIFY(std::filesystem::exists(recoveryFile(dir->folder())));
    }

    fresh();  // the next start
    MainWindow window(*program, *shell);
    auto& main = program->form<frmMain>("frmMain");
    main.setOpen(true);
    shell->setMainWindow(&window, main);
    shell->answers.push_back(Answer::Yes);
    offerRecovery(*program, *shell, window);
    QCOMPARE(shell->boxes.back().buttons, Buttons::YesNo);
    QCOMPARE(main.txtReport.text, std::string("/tmp/kept.rpt"));
    QCOMPARE(window.findChild<QLineEdit*>("txtReport")->text(), QString("/tmp/kept.rpt"));
    QVERIFY(!std::filesystem::exists(recoveryFile(dir->folder())));
    const std::size_t asked = shell->boxes.size();
    offerRecovery(*program, *shell, window);  // offered once only
    QCOMPARE(shell->boxes.size(), asked);
  }

  void aDamagedRecoveryJobIsSetAsideAndSaidOnce() {
    // A number no double holds, and values nested 75,000 deep: each once
    // ended the program before its window (the second by its stack).
    const std::pair<std::string, std::string> damaged[] = {
        {R"({"calculator":"hcurve","steps":[1e400]})", "not valid JSON: number overflow"},
        {std::string(75000, '[') + std::string(75000, ']'), "not valid JSON: values nested deeper than 64 levels"}};
    for (const auto& [text, why] : damaged) {
      start();  // a data folder of its own
      dir->write("recovery.job.json", text);
      MainWindow window(*program, *shell);
      program->form("frmMain").setOpen(true);
      shell->setMainWindow(&window, program->form("frmMain"));
      offerRecovery(*program, *shell, window);
      QCOMPARE(shell->boxes.size(), std::size_t(1));
      QVERIFY2(shell->boxes.back().text.find("cannot be read: the job file is " + why) != std::string::npos,
               shell->boxes.back().text.c_str());
      const auto aside = dir->path() / "recovery.damaged-1.job.json";
      QVERIFY(shell->boxes.back().text.find(aside.string()) != std::string::npos);
      QCOMPARE(TempDir::read(aside), text);
      QVERIFY(!std::filesystem::exists(recoveryFile(dir->folder())));
      offerRecovery(*program, *shell, window);  // said once
      QCOMPARE(shell->boxes.size(), std::size_t(1));
    }
  }

  void aCalculatorsInputsComeBackAfterAProgramEnd() {
    {
      MainWindow window(*program, *shell);
      shell->setMainWindow(&window, program->form("frmMain"));
      shell->inDialog = [](QDialog& d) {
        QTest::keyClicks(d.findChild<QLineEdit*>("txtDelta"), "180");
        QTest::keyClicks(d.findChild<QLineEdit*>("txtRadius"), "1000");
        QTest::mouseClick(d.findChild<QPushButton*>("btnCalculate"), Qt::LeftButton);
      };
      window.binder().run([&] { program->form("frmMain").click("mnuChorz"); });
      QCOMPARE(shell->boxes.at(shell->boxes.size() - 2).text, std::string("Invalid delta angle."));
      QCOMPARE(shell->endedWith, std::optional<int>(3));
    }
    fresh();
    MainWindow window(*program, *shell);
    program->form("frmMain").setOpen(true);
    shell->setMainWindow(&window, program->form("frmMain"));
    QString delta;
    shell->inDialog = [&](QDialog& d) { delta = d.findChild<QLineEdit*>("txtDelta")->text(); };
    offerRecovery(*program, *shell, window);
    QCOMPARE(shell->boxes.back().text, std::string("Tervalo ended while you were working. Reopen Horizontal Curve with the values you had typed?"));
    QCOMPARE(delta, QString("180"));
  }
};

}  // namespace
}  // namespace tervalo

#include "shell_windows_test.moc"

int runShellWindowTests(int argc, char** argv) {
  tervalo::ShellWindows tests;
  return QTest::qExec(&tests, argc, argv);
}
