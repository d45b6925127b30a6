// The section subdivision window through its widgets.

#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>
#include <QSettings>
#include <QTest>
#include <QUrl>
#include <QLabel>
#include <cmath>
#include <fstream>
#include <map>

#include "app/frm_main.h"
#include "app/program.h"
#include "qt/binder.h"
#include "qt/recovery_offer.h"
#include "qt/views.h"
#include "app/runner.h"
#include "qt/scripted_shell.h"
#include "qt/picture_view.h"
#include "secsub/frm_sec_sub.h"
#include "support/temp_dir.h"

namespace tervalo {
namespace {

using testing::ScriptedShell;
using testing::TempDir;

const std::string kExamples = std::string(TERVALO_SOURCE_DIR) + "/examples/";

// Types into a field as a user does, then leaves it for `next`.
void type(QDialog& d, const char* field, const QString& text, QWidget* next) {
  auto* edit = d.findChild<QLineEdit*>(field);
  QVERIFY2(edit, field);
  edit->setFocus();
  edit->selectAll();
  if (text.isEmpty())
    QTest::keyClick(edit, Qt::Key_Backspace);
  else
    QTest::keyClicks(edit, text);
  next->setFocus();
}

class SecSubWindow : public QObject, testing::DesktopFixture {
  Q_OBJECT

  frmMain& openSection() {
    auto& main = program->form<frmMain>("frmMain");
    main.click("mnuSecSub");
    main.typeText("txtInFile", kExamples + "section14.sdms");
    return main;
  }

 private Q_SLOTS:
  void init() { start(); }
  void cleanup() { stop(); }

  void typingAPointNumberShowsItsCoordinates() {
    auto& main = openSection();
    shell->inDialog = [](QDialog& d) {
      QVERIFY(QTest::qWaitForWindowExposed(&d));
      auto* x = d.findChild<QLineEdit*>("txt0xc");
      type(d, "txt0pn", "1001", x);
      QCOMPARE(x->text(), QString("512313.4890"));
      QCOMPARE(d.findChild<QLineEdit*>("txt0yc")->text(), QString("289841.9890"));
      type(d, "txt0pn", "", x);  // emptied and left: X and Y go
      QCOMPARE(x->text(), QString());
      QVERIFY(d.findChild<QGroupBox*>("slot0")->styleSheet() != d.findChild<QGroupBox*>("slot1")->styleSheet());
    };
    main.click("btnContinue");
  }

  void chainFieldsFollowTheDefaultsBox() {
    auto& main = openSection();
    shell->inDialog = [](QDialog& d) {
      QVERIFY(QTest::qWaitForWindowExposed(&d));
      auto* chain = d.findChild<QLineEdit*>("txtEofSchain");
      QVERIFY(!chain->isVisible());
      d.findChild<QCheckBox*>("chkDefaults")->click();
      QVERIFY(chain->isVisible());
      QTest::mouseClick(d.findChild<QPushButton*>("btnClear"), Qt::LeftButton);
      QVERIFY(!chain->isVisible());
    };
    main.click("btnContinue");
  }

  void aRunFromTheWindowWritesWhatTheRunnerWrites() {
    // Odd settings in place (a window size, a splitter, dialog folders): they shape
    // the windows only, never what the run writes.
    QSettings settings;
    settings.setValue("windows/frmSecSub/geometry", QByteArray("not a geometry"));
    settings.setValue("windows/frmSecSub/splitter", QByteArray("\x01\x02"));
    settings.setValue("dialogs/Export the Corners", "/nowhere/at/all");
    auto& main = openSection();
    int markers = 0;
    shell->inDialog = [&](QDialog& d) {
      QVERIFY(QTest::qWaitForWindowExposed(&d));
      QWidget* go = d.findChild<QPushButton*>("btnContinue");
      type(d, "txtSection", "14", go);
      type(d, "txtTwp", "115", go);
      type(d, "txtRange", "22", go);
      const char* pls[] = {"txt0pn", "txt2pn", "txt4pn", "txt10pn", "txt14pn", "txt20pn", "txt22pn", "txt24pn"};
      for (int i = 0; i < 8; ++i) type(d, pls[i], QString::number(1001 + i), go);
      // Section 14 needs no chain field: the regular 20s stand in them, out of sight.
      QVERIFY(!d.findChild<QLineEdit*>("txtNofWchain")->isVisible());
      type(d, "txtIncr", "2001", go);
      QTest::mouseClick(d.findChild<QPushButton*>("btnContinue"), Qt::LeftButton);
      QCOMPARE(d.findChild<QLineEdit*>("txt12xc")->text(), QString("514967.4257"));
      auto* drawing = d.findChild<PictureView*>("drawing");
      markers = static_cast<int>(drawing->picture().marks.size());
      // Lengths on demand redraw the picture; Save Drawing writes it by the one painter, one PDF page.
      const auto labels = drawing->picture().texts.size();
      d.findChild<QCheckBox*>("chkLengths")->click();
      QCOMPARE(drawing->picture().texts.size(), labels + drawing->picture().lines.size());  // one length per line
      shell->chosenFiles.push_back((dir->path() / "s14.pdf").string());
      QTest::mouseClick(d.findChild<QPushButton*>("btnSaveDrawing"), Qt::LeftButton);
      const std::string pdf = TempDir::read(dir->path() / "s14.pdf");
      QVERIFY(pdf.rfind("%PDF-", 0) == 0 && pdf.find("/Count 1") != std::string::npos);
      // Print Report into a PDF: a page per form feed of the report, then the drawing's page.
      shell->chosenFiles.push_back((dir->path() / "report.pdf").string());
      QTest::mouseClick(d.findChild<QPushButton*>("btnPrint"), Qt::LeftButton);
      const auto& report = shell->printed.back().lines;
      const auto feeds = std::count(report.begin(), report.end(), "\f");
      const std::string printed = TempDir::read(dir->path() / "report.pdf");
      QVERIFY2(printed.find("/Count " + std::to_string(feeds + 1)) != std::string::npos, printed.substr(0, 400).c_str());
      QVERIFY(d.findChild<QPushButton*>("btnSaveDrawing")->isEnabled());
      shell->chosenFiles.push_back((dir->path() / "s14.dxf").string());
      QTest::mouseClick(d.findChild<QPushButton*>("btnExport"), Qt::LeftButton);
      // The notice names what was written; its link opens the folder.
      auto* notice = d.findChild<QLabel*>("lblNotice");
      QVERIFY(notice->text().contains("s14.dxf</a>"));
      Q_EMIT notice->linkActivated(QUrl::fromLocalFile(QString::fromStdString((dir->path() / "s14.dxf").string())).toString());
      QCOMPARE(shell->foldersOpened.back(), dir->path());
    };
    main.click("btnContinue");
    QCOMPARE(markers, 25);  // one per present corner
    QCOMPARE(shell->boxes.back().title, std::string("Program Complete"));
    QCOMPARE(shell->editorFiles.size(), std::size_t(2));
    QCOMPARE(shell->editorCalls, 1);  // both files in one editor call
    QVERIFY(TempDir::read(dir->path() / "s14.dxf").find("POINTS") != std::string::npos);

    TempDir runnerDir;
    const auto outcome = runJob(readJobFile(kExamples + "secsub.job.json", allForms()), RunOptions{runnerDir.folder(), localToday()}, allForms());
    QCOMPARE(outcome.exitCode, 0);
    for (const char* file : {"SecSub.rpt", "SecSub.inp"})
      QVERIFY2(TempDir::read(dir->path() / file) == TempDir::read(runnerDir.path() / file), file);
  }

  void aTownshipPlanOpenedRunAndADisagreementPickedOut() {
    QString disagreements;
    int picked = 0;
    shell->inDialog = [&](QDialog& d) {
      QCOMPARE(d.windowTitle(), QString("Township"));
      shell->chosenFiles.push_back(kExamples + "township.plan.json");
      QTest::mouseClick(d.findChild<QPushButton*>("btnOpenPlan"), Qt::LeftButton);
      auto* table = d.findChild<QTableWidget*>("tblSections");
      QCOMPARE(table->rowCount(), 4);
      QCOMPARE(table->item(1, 5)->text(), QString("1009"));  // section 13's N 1/4
      // Section 13's NW corner typed a tenth of a foot east of the point section 14 holds.
      table->item(1, 4)->setText("517601.886 289872.136");
      QTest::mouseClick(d.findChild<QPushButton*>("btnRun"), Qt::LeftButton);
      auto* summary = d.findChild<QListWidget*>("lstSummary");
      for (int i = 0; i < summary->count(); ++i) {
        if (summary->item(i)->text().startsWith("Disagreements")) disagreements = summary->item(i)->text();
        if (summary->item(i)->font().bold()) ++picked;
      }
      // The map: resting on a corner says its numbers; a click in a section selects its row, on a
      // disagreement its lines in the summary; the wheel zooms about the pointer, a drag moves it.
      auto* map = d.findChild<PictureView*>("map");
      QVERIFY(map && !map->picture().empty());
      const QPointF corner = map->pointAt({517601.786, 289872.136});  // SNE1411522, the sections 0.1 ft apart
      QVERIFY2(map->tipAt(corner).find("SNE1411522  point 1003") == 0, map->tipAt(corner).c_str());
      QTest::mouseClick(map, Qt::LeftButton, {}, map->pointAt({513000, 280000}).toPoint());  // inside section 23
      QCOMPARE(table->currentRow(), 2);
      QTest::mouseClick(map, Qt::LeftButton, {}, corner.toPoint());
      QCOMPARE(table->currentRow(), 0);  // section 14 placed it first
      QVERIFY(summary->currentItem() && summary->currentItem()->text().startsWith("  SNE1411522 (1003)"));
      const PicturePoint under = map->worldAt(corner);
      map->zoomBy(4, corner);
      QVERIFY(std::hypot(map->worldAt(corner).x - under.x, map->worldAt(corner).y - under.y) < 1e-6);
      QTest::mousePress(map, Qt::LeftButton, {}, corner.toPoint());
      QTest::mouseMove(map, (corner + QPointF(40, 30)).toPoint());
      QTest::mouseRelease(map, Qt::LeftButton, {}, (corner + QPointF(40, 30)).toPoint());
      QCOMPARE(map->pointAt(under), corner + QPointF(40, 30));
      QCOMPARE(table->currentRow(), 0);  // a drag is no click
      QTest::keyClick(map, Qt::Key_Home);
      QVERIFY(map->zoom().fitted());
      // A section the form refuses (section 23 without its township) is marked in its row and the summary.
      table->item(2, 1)->setText("");
      QTest::mouseClick(d.findChild<QPushButton*>("btnRun"), Qt::LeftButton);
      QCOMPARE(table->verticalHeaderItem(2)->text(), QString("3 !"));
      QCOMPARE(table->verticalHeaderItem(1)->text(), QString("2"));
      const auto refused = summary->findItems("  Row 3 (section 23): refused", Qt::MatchExactly);
      QCOMPARE(refused.size(), 1);
      QVERIFY(refused[0]->font().bold());
    };
    program->form<frmMain>("frmMain").click("mnuTownship");
    // The corner itself, and the sixteenth both sections measure toward it.
    QCOMPARE(disagreements, QString("Disagreements over 0.01 ft: 2"));
    QCOMPARE(picked, 2 * 4);  // each: the corner, its two positions and the difference
    for (const char* file : {"Township.txt", "Township.dxf", "SecSub-13.rpt"}) QVERIFY2(std::filesystem::exists(dir->path() / file), file);
  }

  // Every text the section window holds, by field.
  std::map<std::string, std::string> sectionFields() {
    std::map<std::string, std::string> fields;
    for (const auto& entry : program->form("frmSecSub").controls())
      if (const auto* box = std::get_if<TextBox*>(&entry.control)) fields[entry.name] = (*box)->text;
    return fields;
  }

  void aLatin1SourceFileThenAProgramEndKeepsEverySectionField() {
    // Another program's report, written in the Windows code page: a degree sign is the single byte 0xB0.
    std::string latin1 = TempDir::read(kExamples + "section14.sdms");
    for (auto at = latin1.find("PD:"); at != std::string::npos; at = latin1.find("PD:", at + 1))
      latin1.insert(latin1.find('\n', at), " 45\xB0");
    const auto source = dir->write("latin1.sdms", latin1);
    std::map<std::string, std::string> typed, recovered;
    {
      MainWindow window(*program, *shell);
      auto& main = program->form<frmMain>("frmMain");
      shell->setMainWindow(&window, main);
      shell->inDialog = [&](QDialog&) {
        FormModel& form = program->form("frmSecSub");
        for (auto [field, text] : {std::pair{"txtSection", "14"}, {"txtTwp", "115"}, {"txtRange", "22"}, {"txt1xc", "1"}})
          form.typeText(field, text);
        const char* pns[] = {"txt0pn", "txt2pn", "txt4pn", "txt10pn", "txt14pn", "txt20pn", "txt22pn", "txt24pn"};
        for (int i = 0; i < 8; ++i) form.typeText(pns[i], std::to_string(1001 + i));
        typed = sectionFields();
        shell->answers.push_back(Answer::No);  // a held sixteenth, not accepted: the program ends
        form.click("btnContinue");
      };
      window.binder().run([&] {
        main.click("mnuSecSub");
        main.typeText("txtInFile", source.string());
        main.click("btnContinue");
      });
      QCOMPARE(shell->endedWith, std::optional<int>(3));
      QVERIFY(shell->boxes.back().text.find("Your entries are kept") != std::string::npos);
    }
    QCOMPARE(typed.at("txt0pd"), std::string("FD STONE NW COR SEC 14 45\u00B0"));

    start(false);  // the next start
    MainWindow window(*program, *shell);
    program->form("frmMain").setOpen(true);
    shell->setMainWindow(&window, program->form("frmMain"));
    shell->inDialog = [&](QDialog&) { recovered = sectionFields(); };
    offerRecovery(*program, *shell, window);
    QCOMPARE(recovered, typed);
  }
};

}  // namespace
}  // namespace tervalo

#include "sec_sub_window_test.moc"

int runSecSubWindowTests(int argc, char** argv) {
  tervalo::SecSubWindow tests;
  return QTest::qExec(&tests, argc, argv);
}
