// The horizontal curve window through its widgets.

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QApplication>
#include <QLineF>
#include <algorithm>
#include <cmath>
#include <QImage>
#include <QSvgRenderer>
#include <QTest>

#include "app/frm_main.h"
#include "hcurve/curve_sketch.h"
#include "vcurve/profile_sketch.h"
#include "app/program.h"
#include "qt/binder.h"
#include "qt/picture_files.h"
#include "qt/picture_view.h"
#include "qt/views.h"
#include "qt/scripted_shell.h"
#include "support/temp_dir.h"

namespace tervalo {
namespace {

using testing::Desktop;
using testing::ScriptedShell;
using testing::TempDir;

class CurveWindow : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  // A saved PNG is laid out as a picture on screen and drawn at twice the
  // size: its text is as large against the picture as on screen.
  void aSavedPngsTextIsAsLargeAsOnScreen() {
    TempDir dir;
    Picture p;
    p.lines.push_back({{{0, 0}, {100, 0}}, Ink::Quiet});
    p.texts.push_back({{50, 0}, "HHHH", Ink::Main, Place::Above});
    const auto file = dir.path() / "label.png";
    writePictureFile(p, file, QApplication::font());
    const QImage image(QString::fromStdString(file.string()));
    QCOMPARE(image.size(), QSize(1500, 1000));
    int top = image.height(), bottom = -1;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        if (qGray(image.pixel(x, y)) < 40) {
          top = std::min(top, y);
          bottom = std::max(bottom, y);
        }
    const int capHeight = static_cast<int>(QFontMetricsF(QApplication::font()).capHeight());
    QVERIFY2(bottom - top + 1 >= 2 * capHeight - 2, qPrintable(QString("text %1 px, capitals %2 px on screen").arg(bottom - top + 1).arg(capHeight)));
  }

  // The key points' labels stand beside their curve, never on a line or a
  // mark of the drawing, and every label stays inside the picture.
  void pictureLabelsStandBesideTheirCurves() {
    VerticalCurve sag = makeCurve(-0.02, 0.02, 400, KnownPoint::PVI, 1000, 100);
    minMaxCalc(sag);
    CurveOptions options;
    options.pi = 4 * std::atan(1.0);
    const CurveSolution solved = solveCurve({30, 0, 0, 0, 1000, 0, 0, 0}, options);
    const std::pair<Picture, std::vector<std::string>> pictures[] = {
        {profileSketch({sag, false, {0, -0.5, 0}, {}, {}}).picture, {"PVC", "PVI", "PVT", "Low"}},
        {curveSketch(solved.e, {"7+32.0508", "10+00.0000", "12+55.6496", "", ""}), {"PC", "PI", "PT", "E", "M"}}};
    for (const auto& [picture, keys] : pictures) {
      const QRectF area(0, 0, 430, 520);
      const QFontMetricsF metrics(QApplication::font());
      const PictureFrame frame = pictureFrame(picture, area, QApplication::font());
      for (const PlacedLabel& label : placeLabels(picture, frame, area, metrics)) {
        const std::string& text = picture.texts[label.index].text;
        QVERIFY2(area.contains(label.box), text.c_str());
        if (std::none_of(keys.begin(), keys.end(), [&](const std::string& k) { return text.rfind(k, 0) == 0; })) continue;
        for (const auto& line : picture.lines)
          for (std::size_t i = 1; i < line.points.size(); ++i) {
            const QLineF stroke(frame.at(line.points[i - 1]), frame.at(line.points[i]));
            const QRectF r = label.box;
            const bool crosses = r.contains(stroke.p1()) || r.contains(stroke.p2()) ||
                                 stroke.intersects({r.topLeft(), r.bottomRight()}, nullptr) == QLineF::BoundedIntersection ||
                                 stroke.intersects({r.topRight(), r.bottomLeft()}, nullptr) == QLineF::BoundedIntersection;
            QVERIFY2(!crosses, text.c_str());
          }
      }
    }
  }

  void typeTwoElementsAndCalculate() {
    TempDir dir;
    Desktop desktop(dir.folder());
    auto& [shell, program] = desktop;
    QString radius, pc, output;
    shell.inDialog = [&](QDialog& d) {
      QVERIFY(QTest::qWaitForWindowExposed(&d));
      QCOMPARE(d.windowTitle(), QString("Horizontal Curve Solution"));
      auto* sketch = d.findChild<PictureView*>("sketch");
      QVERIFY(sketch->picture().empty());  // before the first Calculate: the hint alone
      d.findChild<QRadioButton*>("optDec")->click();
      QTest::keyClicks(d.findChild<QLineEdit*>("txtDelta"), "30");
      QTest::keyClicks(d.findChild<QLineEdit*>("txtRadius"), "1000");
      QTest::keyClicks(d.findChild<QLineEdit*>("txtCurvePt"), "10+00");
      QTest::mouseClick(d.findChild<QPushButton*>("btnCalculate"), Qt::LeftButton);
      QVERIFY(!sketch->picture().empty());  // Calculate drew the curve
      // Saved from its context menu as each kind, by the one painter; an unknown ending is said.
      for (const char* name : {"curve.svg", "curve.png", "curve.pdf", "curve.bmp"}) {
        shell.chosenFiles.push_back((dir.path() / name).string());
        sketch->save(sketch->picture());
      }
      QVERIFY(QSvgRenderer(QString::fromStdString((dir.path() / "curve.svg").string())).isValid());
      QCOMPARE(QImage(QString::fromStdString((dir.path() / "curve.png").string())).size(), QSize(1500, 1000));
      const std::string pdf = TempDir::read(dir.path() / "curve.pdf");
      QVERIFY(pdf.rfind("%PDF-", 0) == 0);
      QCOMPARE(pdf.find("/Count 1"), pdf.rfind("/Count 1"));  // one page
      QVERIFY(pdf.find("/Count 1") != std::string::npos);
      QCOMPARE(shell.boxes.back().text.find("name it with .svg, .png or .pdf") != std::string::npos, true);
      QVERIFY(!std::filesystem::exists(dir.path() / "curve.bmp"));
      shell.boxes.clear();
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

  // Inputs saved and opened by the window's buttons; Return keeps them as the
  // previous inputs, which the main window reopens in the window at the next start.
  void inputsSavedOpenedAndKeptAcrossStarts() {
    TempDir dir;
    QString reopened;
    {
      Desktop desktop(dir.folder());
      ScriptedShell& shell = desktop.shell;
      Program& program = desktop.program;
      QString afterOpen;
      shell.inDialog = [&](QDialog& d) {
        QTest::keyClicks(d.findChild<QLineEdit*>("txtDelta"), "30");
        QTest::keyClicks(d.findChild<QLineEdit*>("txtRadius"), "1000");
        shell.chosenFiles.push_back((dir.path() / "curve.tervalo.json").string());
        QTest::mouseClick(d.findChild<QPushButton*>("btnSaveInputs"), Qt::LeftButton);
        QTest::mouseClick(d.findChild<QPushButton*>("btnClear"), Qt::LeftButton);
        shell.chosenFiles.push_back((dir.path() / "curve.tervalo.json").string());
        QTest::mouseClick(d.findChild<QPushButton*>("btnOpenInputs"), Qt::LeftButton);
        afterOpen = d.findChild<QLineEdit*>("txtDelta")->text() + "/" + d.findChild<QLineEdit*>("txtRadius")->text();
        QVERIFY(d.findChild<QLabel*>("lblTan")->text().isEmpty());  // nothing was calculated
        QTest::mouseClick(d.findChild<QPushButton*>("btnReturn"), Qt::LeftButton);
      };
      program.form<frmMain>("frmMain").setOpen(true);
      program.form<frmMain>("frmMain").click("mnuChorz");
      QCOMPARE(afterOpen, QString("30/1000"));
      QVERIFY(shell.boxes.empty());
    }
    Desktop desktop(dir.folder());  // the next start
    ScriptedShell& shell = desktop.shell;
    Program& program = desktop.program;
    auto& main = program.form<frmMain>("frmMain");
    main.setOpen(true);
    MainWindow window(program, shell);
    shell.setMainWindow(&window, main);
    QVERIFY(main.mnuRecentFiles[0].caption.find("curve.tervalo.json") != std::string::npos);
    shell.inDialog = [&](QDialog& d) { reopened = d.findChild<QLineEdit*>("txtRadius")->text(); };
    window.binder().run([&] { main.click("mnuPrevious"); });
    QCOMPARE(reopened, QString("1000"));
  }

  void verticalCurveFromEntryToResults() {
    TempDir dir;
    Desktop desktop(dir.folder());
    auto& [shell, program] = desktop;
    QStringList seen;
    shell.inDialog = [&](QDialog& d) {
      QVERIFY(QTest::qWaitForWindowExposed(&d));
      if (d.objectName() == "frmVCResults") {
        seen << d.findChild<QLabel*>("lblSta")->text();
        const auto* list = d.findChild<QListWidget*>("lstResults");
        seen << QString::number(list->count()) << list->item(0)->text();
        // The profile beside the list, drawn from this Calculate.
        const Picture& profile = d.findChild<PictureView*>("sketch")->picture();
        QVERIFY(std::any_of(profile.texts.begin(), profile.texts.end(),
                            [](const PictureText& t) { return t.text == "Low 10+00.000 / 102.000"; }));
        QTest::mouseClick(d.findChild<QPushButton*>("btnOutput"), Qt::LeftButton);
        return;
      }
      QVERIFY(d.windowTitle().startsWith("Vertical Curve Input"));
      QVERIFY(!d.findChild<QLineEdit*>("txtIncrement")->isEnabled());
      for (const auto& [name, text] : {std::pair{"txtEntryGrade", "-2"}, {"txtExitGrade", "2"}, {"txtStation", "10+00"},
                                       {"txtElevation", "100"}, {"txtLength", "400"}, {"txtStartStation", "8+00"},
                                       {"txtEndStation", "12+00"}})
        QTest::keyClicks(d.findChild<QLineEdit*>(name), text);
      QVERIFY(d.findChild<QLineEdit*>("txtIncrement")->isEnabled());
      QTest::keyClicks(d.findChild<QLineEdit*>("txtIncrement"), "100");
      QTest::mouseClick(d.findChild<QPushButton*>("btnCalculate"), Qt::LeftButton);
    };
    program.form<frmMain>("frmMain").click("mnuCvert");
    // The start on the PVC, the PVC line, 9+00, the low point, 11+00, the PVT on the end station.
    QCOMPARE(seen, (QStringList{"10+00.000", "6", "    8+00.000  PVC   104.000  "}));
    QVERIFY(std::filesystem::exists(dir.path() / "outVfile.txt"));
  }

  void proportionThroughTheWindowToThePreview() {
    TempDir dir;
    Desktop desktop(dir.folder());
    auto& [shell, program] = desktop;
    QStringList preview;
    shell.inDialog = [&](QDialog& d) {
      QVERIFY(QTest::qWaitForWindowExposed(&d));
      if (d.objectName() == "frmOutput") {
        const auto* list = d.findChild<QListWidget*>("lstOutput");
        for (int i = 0; i < list->count(); ++i) preview << list->item(i)->text();
        QTest::mouseClick(d.findChild<QPushButton*>("btnOutput"), Qt::LeftButton);
        return;
      }
      QCOMPARE(d.windowTitle(), QString("Proportion Function"));
      QVERIFY(!d.findChild<QLineEdit*>("txtStaIn")->isVisible());
      d.findChild<QCheckBox*>("chkBetween")->click();
      QVERIFY(d.findChild<QLineEdit*>("txtStaIn")->isVisible());
      d.findChild<QCheckBox*>("chkBetween")->click();
      for (const auto& [name, text] : {std::pair{"txtBegSta", "10+00"}, {"txtBegValue", "0"}, {"txtEndSta", "20+00"},
                                       {"txtEndValue", "10"}, {"txtFirst", "10+00"}, {"txtLast", "12+30"},
                                       {"txtIncrement", "100"}})
        QTest::keyClicks(d.findChild<QLineEdit*>(name), text);
      QTest::mouseClick(d.findChild<QPushButton*>("btnCalc"), Qt::LeftButton);
    };
    program.form<frmMain>("frmMain").click("mnuMprop");
    QCOMPARE(preview.size(), 13);
    QCOMPARE(preview[11], QString("                     12+30.000         2.300"));
    QVERIFY(std::filesystem::exists(dir.path() / "Proportion.txt"));
    QCOMPARE(shell.editorFiles.size(), std::size_t(1));
  }

  void gradingSegmentsThroughTheWindow() {
    TempDir dir;
    Desktop desktop(dir.folder());
    auto& [shell, program] = desktop;
    QString result;
    int reportLines = 0;
    shell.inDialog = [&](QDialog& d) {
      QVERIFY(QTest::qWaitForWindowExposed(&d));
      if (d.objectName() == "frmGradeOut") {
        reportLines = d.findChild<QListWidget*>("lstOutput")->count();
        return;
      }
      for (const auto& [name, text] : {std::pair{"txtFinElev", "100"}, {"txtTopSoil", "0.5"}, {"txtSubElev", "98"}})
        QTest::keyClicks(d.findChild<QLineEdit*>(name), text);
      auto add = [&d](const char* list, const char* width, const QString& slope) {
        auto* w = d.findChild<QLineEdit*>(QString("txt%1Width").arg(list));
        w->clear();
        QTest::keyClicks(w, width);
        d.findChild<QComboBox*>(QString("cmb%1Slope").arg(list))->setEditText(slope);
        QTest::mouseClick(d.findChild<QPushButton*>(QString("btn%1Add").arg(list)), Qt::LeftButton);
      };
      add("Fin", "12", "-0.02");
      add("Fin", "4", "-0.02");
      add("Sub", "14", "-0.02");
      // Pick the second finished segment and make it 1:4.
      d.findChild<QListWidget*>("lstFin")->setCurrentRow(1);
      QVERIFY(d.findChild<QPushButton*>("btnFinChange")->isEnabled());
      d.findChild<QComboBox*>("cmbFinSlope")->setCurrentText("1:4");
      QTest::mouseClick(d.findChild<QPushButton*>("btnFinChange"), Qt::LeftButton);
      QCOMPARE(d.findChild<QListWidget*>("lstFin")->item(1)->text(), QString("  2       4.000      -0.250"));
      auto* sketch = d.findChild<PictureView*>("sketch");
      QVERIFY(sketch->picture().empty());  // nothing drawn before Calculate
      QTest::mouseClick(d.findChild<QPushButton*>("btnCalculate"), Qt::LeftButton);
      result = d.findChild<QLabel*>("lblResults")->text();
      QCOMPARE(sketch->picture().texts.back().text, std::string("Slopes meet 18.522 / 97.630"));  // Calculate drew the section
      QVERIFY(d.findChild<QLabel*>("lblNotice")->isVisible());
      QTest::mouseClick(d.findChild<QPushButton*>("btnClear"), Qt::LeftButton);
      QVERIFY(sketch->picture().empty());
    };
    program.form<frmMain>("frmMain").click("mnuMgrade");
    QCOMPARE(result, QString("Computed Grading P.I.   Elev: 97.673   Offset: 18.348"));
    QVERIFY(reportLines > 15);
  }
};

}  // namespace
}  // namespace tervalo

#include "curve_window_test.moc"

int runCurveWindowTests(int argc, char** argv) {
  tervalo::CurveWindow tests;
  return QTest::qExec(&tests, argc, argv);
}
