// Grading width: the worked section, the checks that let the calculation go
// on, and the segment lists.

#include <gtest/gtest.h>

#include "app/forms_misc.h"
#include "grading/frm_grade.h"
#include "grading/grade_sketch.h"
#include "grading/grading.h"
#include "support/bench.h"

namespace tervalo {
namespace {

using testing::TempDir;

// The left side of the worked example: two finished segments, one subgrade segment.
GradingInput workedSection() {
  GradingInput in;
  in.side = "Left";
  in.clElev = 100;
  in.topSoil = 0.5;
  in.subElevGiven = true;
  in.subElev = 98;
  in.finished = {{12, -0.02}, {4, -0.25}};
  in.subgrade = {{14, -0.02}};
  return in;
}

TEST(GradingComputation, WorkedSection) {
  const GradingResult r = computeGrading(workedSection());
  EXPECT_DOUBLE_EQ(r.ptAoffset, 16);
  EXPECT_NEAR(r.ptAelev, 98.76, 1e-12);
  EXPECT_NEAR(r.ptBelev, 98.26, 1e-12);
  EXPECT_NEAR(r.ptCelev, 97.72, 1e-12);
  EXPECT_DOUBLE_EQ(r.ptCoffset, 14);
  EXPECT_NEAR(r.d, 0.54 / 0.23, 1e-12);
  EXPECT_FALSE(r.subgradeWider || r.subgradeAbove || r.inside || r.parallel);
  EXPECT_NEAR(r.grdElev, 97.673, 5e-4);
  EXPECT_NEAR(r.grdOffset, 18.348, 5e-4);
  // The subgrade ends at 14, not at the shoulder's 16: the slopes really meet elsewhere.
  EXPECT_TRUE(r.meetDiffers);
  EXPECT_NEAR(r.meetOffset, 18.522, 5e-4);
  EXPECT_NEAR(r.meetElev, 97.630, 5e-4);
  EXPECT_NEAR(r.ptBelev - 0.25 * (r.meetOffset - 16), r.ptCelev - 0.02 * (r.meetOffset - 14), 1e-12);  // on both lines
  // A subgrade ending at the shoulder's offset: the P.I. is where they meet.
  GradingInput even = workedSection();
  even.subgrade = {{16, -0.02}};
  EXPECT_FALSE(computeGrading(even).meetDiffers);
}

TEST(GradingSketch, TheWorkedSectionMarksItsPiAndDrawsTheLeftSideToTheLeft) {
  GradingInput in = workedSection();
  const GradingResult r = computeGrading(in);
  const GradeSketch s = gradingSketch(in, r);
  ASSERT_EQ(s.picture.marks.size(), 2u);  // the P.I. and, apart from it, where the slopes really meet
  EXPECT_EQ(s.picture.texts[s.picture.texts.size() - 2].text, "P.I. 18.348 / 97.673");
  EXPECT_EQ(s.picture.texts.back().text, "Slopes meet 18.522 / 97.630");
  EXPECT_EQ(s.picture.marks[1].ink, Ink::Alert);
  EXPECT_NEAR(s.picture.marks[0].at.x, -18.348, 5e-4);  // left of the centerline
  // Every line lies on the left; the finished shoulder is above the P.I., drawn exaggerated.
  for (const auto& line : s.picture.lines)
    for (const auto& p : line.points) EXPECT_LE(p.x, 0);
  EXPECT_EQ(s.exaggeration, 5);
  EXPECT_NEAR(s.picture.lines[0].points.back().y - s.picture.marks[0].at.y, (98.76 - r.grdElev) * 5, 1e-9);
  EXPECT_NE(s.picture.caption.find("Left side, vertical scale 5 times"), std::string::npos);
  in.subgrade = {{14, -0.25}};  // parallel to the finished slope: no P.I. to mark
  EXPECT_TRUE(gradingSketch(in, computeGrading(in)).picture.marks.empty());
}

TEST(GradingComputation, LevelWithTheShoulderAndParallelSlopes) {
  GradingInput in;
  in.clElev = 100;
  in.subElev = 100;
  in.finished = {{10, 0}};
  in.subgrade = {{10, 0}, {1, -0.5}};
  in.topSoil = 0.5;
  GradingResult r = computeGrading(in);
  EXPECT_EQ(r.d, 0);  // C level with B: the P.I. at the shoulder
  EXPECT_EQ(r.grdOffset, 10);
  EXPECT_EQ(r.grdElev, r.ptCelev);
  in.subgrade = {{10, 0}};
  EXPECT_TRUE(computeGrading(in).parallel);
}

TEST(GradingComputation, RatioSlopesBecomeDecimals) {
  EXPECT_EQ(slopeText("1:2", true), "-0.50");
  EXPECT_EQ(slopeText("1:3", false), "-0.33");
  EXPECT_EQ(slopeText("1:6", true), "-0.166667");
  EXPECT_EQ(slopeText("1:6", false), "-0.167");
  EXPECT_EQ(slopeText("-0.04", true), "-0.04");
}

class GradeForm : public ::testing::Test, protected testing::Bench {
 protected:
  frmGrade& form = program.form<frmGrade>("frmGrade");
  frmOutput& report = program.form<frmOutput>("frmGradeOut");

  void SetUp() override {
    form.setOpen(true);
    for (const auto& [name, value] : {std::pair{"txtSta", "125+50"}, {"txtFinElev", "100"}, {"txtTopSoil", "0.5"},
                                      {"txtSubElev", "98"}})
      form.typeText(name, value);
    segment("Fin", "12", "-0.02");
    segment("Fin", "4", "1:4");
    segment("Sub", "14", "-0.02");
  }
  void segment(const char* list, const char* width, const char* slope) {
    form.typeText(std::string("txt") + list + "Width", width);
    form.typeText(std::string("cmb") + list + "Slope", slope);
    form.click(std::string("btn") + list + "Add");
  }
  std::vector<std::string> boxes() const {
    std::vector<std::string> t;
    for (const auto& b : shell.boxes) t.push_back(b.title + ": " + b.text);
    return t;
  }
};

TEST_F(GradeForm, WorkedSectionAndItsReport) {
  form.click("btnCalculate");
  EXPECT_TRUE(shell.boxes.empty());
  EXPECT_EQ(form.lblResults.caption, "Computed Grading P.I.   Elev: 97.673   Offset: 18.348");
  ASSERT_TRUE(form.lblNotice.visible);  // a notice, no box
  EXPECT_NE(form.lblNotice.caption.find("really meet at offset 18.522, elevation 97.630."), std::string::npos);
  EXPECT_EQ(report.txtOut.text, dir.folder() + "GrWidth.txt");
  EXPECT_EQ(shell.modalForms, (std::vector<std::string>{"frmGradeOut"}));
  EXPECT_EQ(report.lstOutput.items.front(), "                GRADING WIDTH CALCULATION");
  form.click("btnCalculate");  // a second Calculate starts its sums afresh
  EXPECT_EQ(form.lblResults.caption, "Computed Grading P.I.   Elev: 97.673   Offset: 18.348");
}

TEST_F(GradeForm, DataErrorsInformAndTheCalculationGoesOn) {
  form.typeText("txtSubElev", "99");
  segment("Sub", "4", "-0.02");  // wider than the finished surface
  form.click("btnCalculate");
  EXPECT_EQ(boxes(), (std::vector<std::string>{"Data Error: Subgrade is above finished grade at the shoulder point.",
                                               "Data Error: Subgrade has a break outside the finished shoulder point.",
                                               "Data Error: Computed grading P.I. is inside the shoulder point."}));
  for (const auto& b : shell.boxes) EXPECT_EQ(b.icon, Icon::Information);
  EXPECT_FALSE(form.lblResults.caption.empty());
  EXPECT_EQ(shell.modalForms.size(), 1u);
}

TEST_F(GradeForm, MissingValuesAreRefusedWithTheirBox) {
  form.typeText("txtSubElev", "");
  form.click("btnCalculate");
  EXPECT_EQ(boxes().back(), "Insufficient Data: Either a subgrade elevation or a surface thickness is required.");
  EXPECT_EQ(shell.boxes.back().icon, Icon::Critical);
  form.typeText("cmbFinSlope", "");
  form.click("btnFinAdd");
  EXPECT_EQ(boxes().back(), "Insufficient Data: A valid slope value is required..");
  EXPECT_EQ(form.fin.segments.size(), 2u);
  EXPECT_TRUE(shell.modalForms.empty());
}

TEST_F(GradeForm, ThicknessOnlyUsesZeroOnTheFormAndTheThicknessInTheReport) {
  form.typeText("txtSubElev", "");
  form.typeText("txtSubThick", "2");
  form.click("btnCalculate");
  // The form's subgrade centerline counts 0: the subgrade lies far below.
  EXPECT_NE(form.lblResults.caption.find("Elev: -"), std::string::npos);
  const auto& lines = report.lstOutput.items;
  EXPECT_NE(std::find(lines.begin(), lines.end(),
                      "  Subgrade CL Elevation:     98.000     Surfacing Thickness:      2.000"),
            lines.end());
}

TEST_F(GradeForm, EqualLastSlopesGiveNoPI) {
  segment("Sub", "1", "1:4");  // the same outer slope as the finished surface
  form.click("btnCalculate");
  ASSERT_EQ(shell.boxes.size(), 1u);
  EXPECT_EQ(shell.boxes[0].title, "Data Error");
  EXPECT_NE(shell.boxes[0].text.find("no grading P.I."), std::string::npos);
  EXPECT_EQ(form.lblResults.caption, "");
  EXPECT_TRUE(shell.modalForms.empty());
}

TEST_F(GradeForm, EditingAndDeletingSegmentsChangeTheResult) {
  form.selectItem("lstFin", 1);
  EXPECT_EQ(form.fin.width.text, "4");
  EXPECT_EQ(form.fin.slope.text, "-0.25");
  form.typeText("cmbFinSlope", "1:2");
  form.click("btnFinChange");
  EXPECT_EQ(form.fin.segments[1].slope, -0.5);
  EXPECT_EQ(form.lastFinSlope, -0.5);
  form.click("btnCalculate");
  const std::string changed = form.lblResults.caption;
  EXPECT_NE(changed, "Computed Grading P.I.   Elev: 97.673   Offset: 18.348");
  form.selectItem("lstFin", 1);
  form.click("btnFinDelete");
  EXPECT_EQ(form.fin.list.items.size(), 1u);
  EXPECT_EQ(form.lastFinSlope, -0.02);
  form.click("btnFinClearList");
  EXPECT_TRUE(form.fin.segments.empty());
}

TEST_F(GradeForm, TheEleventhSegmentIsRefusedAndNothingIsLost) {
  for (int i = 0; i < 8; ++i) segment("Fin", "1", "-0.02");
  EXPECT_EQ(form.fin.segments.size(), 10u);
  segment("Fin", "1", "-0.02");
  EXPECT_EQ(form.fin.segments.size(), 10u);
  EXPECT_EQ(shell.boxes.back().title, "Data Error");
  EXPECT_EQ(form.fin.list.items.size(), 10u);
  EXPECT_EQ(form.fin.list.items[0], "  1      12.000      -0.020");  // width, then slope, as entered
}

TEST_F(GradeForm, ValuesBelowOneHaveNoLeadingZero) {
  form.click("btnClear");
  for (const auto& [name, value] : {std::pair{"txtFinElev", "1"}, {"txtSubElev", "0.8"}}) form.typeText(name, value);
  segment("Fin", "10", "-0.02");
  segment("Sub", "5", "0");
  form.click("btnCalculate");
  EXPECT_EQ(form.lblResults.caption, "Computed Grading P.I.   Elev: .800   Offset: 10.000");
}

}  // namespace
}  // namespace tervalo

#include "app/recovery.h"
#include "app/runner.h"

namespace tervalo {
namespace {

TEST_F(GradeForm, ARecoveryJobGivesTheSegmentsBack) {
  form.selectItem("lstSub", 0);
  const auto job = recoveryJob({&program.form("frmMain"), &form}, allForms());
  const RunOutcome outcome = runJob(parseJob(job.dump(), allForms()), RunOptions{dir.folder(), {}}, allForms());
  const auto& controls = outcome.result["forms"]["frmGrade"]["controls"];
  EXPECT_EQ(controls["lstFin"]["items"], nlohmann::ordered_json(form.fin.list.items));
  EXPECT_EQ(controls["lstSub"]["items"], nlohmann::ordered_json(form.sub.list.items));
  EXPECT_EQ(controls["txtFinElev"]["text"], "100");
  EXPECT_EQ(controls["cmbFinSlope"]["text"], form.fin.slope.text);
}

}  // namespace
}  // namespace tervalo
