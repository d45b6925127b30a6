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
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <QImage>
#include <QSvgRenderer>
#include <QTest>

#include "app/frm_main.h"
#include "township/township.h"
#include "township/township_map.h"
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

  // A township map as the window shows it: every section's number inside
  // its section, clear of every corner's symbol; no label over another,
  // nor over a corner the sections put apart.
  void aTownshipsNumbersStandInsideTheirSectionsClearOfCornersAndLabels() {
    for (const char* plan : {"township.plan.json", "township-restored.plan.json"}) {
      TempDir dir;
      const TownshipOutcome out = runTownship(readPlanFile(std::string(TERVALO_SOURCE_DIR) + "/examples/" + plan),
                                              RunOptions{dir.folder(), Date{2026, 11, 21}}, allForms());
      const Picture map = townshipMap(out, 1);
      for (const QRectF area : {QRectF(0, 0, 620, 320), QRectF(0, 0, 1200, 700)}) {
        const QFontMetricsF metrics(QApplication::font());
        const PictureFrame frame = pictureFrame(map, area, QApplication::font());
        const std::vector<PlacedLabel> placed = placeLabels(map, frame, area, metrics);
        int numbers = 0;
        for (const PlacedLabel& label : placed) {
          const PictureText& text = map.texts[label.index];
          for (const PlacedLabel& other : placed)
            QVERIFY2(&other == &label || !other.box.intersects(label.box), (text.text + " over " + map.texts[other.index].text).c_str());
          if (text.place != Place::Centre) continue;
          ++numbers;
          for (const PictureMark& m : map.marks) {
            const QPointF c = frame.at(m.at);
            QVERIFY2(!label.box.intersects(QRectF(c.x() - m.radius, c.y() - m.radius, 2 * m.radius, 2 * m.radius)),
                     (std::string(plan) + ": section " + text.text + " over a corner: " + m.tip).c_str());
          }
          const auto outline = std::find_if(out.outlines.begin(), out.outlines.end(), [&](const SectionOutline& o) { return o.section == text.text; });
          QPolygonF boundary;
          for (const auto& [x, y] : outline->boundary) boundary << frame.at({x, y});
          QVERIFY2(boundary.containsPoint(label.box.center(), Qt::OddEvenFill), text.text.c_str());
        }
        QCOMPARE(numbers, 4);
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

  // The grading window draws its section at Calculate and clears it with Clear.
  void theGradingSectionIsDrawnAtCalculateAndClearedByClear() {
    TempDir dir;
    Desktop desktop(dir.folder());
    auto& [shell, program] = desktop;
    bool drawn = false;
    shell.inDialog = [&](QDialog& d) {
      if (d.objectName() == "frmGradeOut") return;
      for (const auto& [name, text] : {std::pair{"txtFinElev", "100"}, {"txtTopSoil", "0.5"}, {"txtSubElev", "98"},
                                       {"txtFinWidth", "16"}, {"txtSubWidth", "14"}})
        QTest::keyClicks(d.findChild<QLineEdit*>(name), text);
      for (const char* list : {"Fin", "Sub"}) {
        d.findChild<QComboBox*>(QString("cmb%1Slope").arg(list))->setEditText("-0.02");
        QTest::mouseClick(d.findChild<QPushButton*>(QString("btn%1Add").arg(list)), Qt::LeftButton);
      }
      auto* sketch = d.findChild<PictureView*>("sketch");
      QVERIFY(sketch->picture().empty());  // nothing drawn before Calculate
      QTest::mouseClick(d.findChild<QPushButton*>("btnCalculate"), Qt::LeftButton);
      drawn = !sketch->picture().empty();
      QTest::mouseClick(d.findChild<QPushButton*>("btnClear"), Qt::LeftButton);
      QVERIFY(sketch->picture().empty());
    };
    program.form<frmMain>("frmMain").click("mnuMgrade");
    QVERIFY(drawn);
  }
};

}  // namespace
}  // namespace tervalo

#include "curve_window_test.moc"

int runCurveWindowTests(int argc, char** argv) {
  tervalo::CurveWindow tests;
  return QTest::qExec(&tests, argc, argv);
}
