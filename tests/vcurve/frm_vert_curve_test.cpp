// The vertical curve forms: readInput's messages and their consequences,
// the results labels, the end station's effect.

#include <gtest/gtest.h>

#include "support/bench.h"
#include "text/errors.h"
#include "vcurve/frm_vert_curve.h"

namespace tervalo {
namespace {

using testing::TempDir;

class VerticalForm : public ::testing::Test, protected testing::Bench {
 protected:
  frmVertCurve& form = program.form<frmVertCurve>("frmVertCurve");
  frmVCResults& results = program.form<frmVCResults>("frmVCResults");

  void SetUp() override {
    form.setOpen(true);
    for (const auto& [field, value] : {std::pair{"txtEntryGrade", "-2"}, {"txtExitGrade", "2"}, {"txtStation", "10+00"},
                                       {"txtElevation", "100"}, {"txtLength", "400"}})
      form.typeText(field, value);
  }
  std::vector<std::string> titles() const {
    std::vector<std::string> t;
    for (const auto& b : shell.boxes) t.push_back(b.title + ": " + b.text);
    return t;
  }
};

TEST_F(VerticalForm, ResultsShowTheCurvesKeyStationsAndElevations) {
  EXPECT_EQ(form.caption.rfind("Vertical Curve Input           Version ", 0), 0u);
  form.click("btnCalculate");
  EXPECT_TRUE(shell.boxes.empty());
  EXPECT_EQ(shell.modalForms, (std::vector<std::string>{"frmVCResults"}));
  EXPECT_EQ(results.lblPVCsta.caption, "8+00.000");
  EXPECT_EQ(results.lblPVCelev.caption, "104.000");
  EXPECT_EQ(results.lblEntry.caption, "-2%");
  EXPECT_EQ(results.lblCurLen.caption, "400.000");
  EXPECT_EQ(results.lblMinMaxSta.caption, "Min. Station:");
  EXPECT_EQ(results.lblSta.caption, "10+00.000");
  EXPECT_EQ(results.lblElev.caption, "102.000");
  EXPECT_EQ(results.txtOut.text, dir.folder() + "outVfile.txt");
  form.typeText("txtLength", "5");
  form.typeText("txtStation", "0+45");
  form.typeText("txtElevation", "0.5");
  form.setChecked("optPC", true);
  form.click("btnCalculate");
  EXPECT_EQ(results.lblCurLen.caption, "05.000");
  EXPECT_EQ(results.lblPVCsta.caption, "+45.000");
  EXPECT_EQ(results.lblPVCelev.caption, ".500");
}

// The classic reading is kept (" 12a34" is 12, "abc" is 0), and the window
// says what a number field reads as when its text is not a plain number.
TEST_F(VerticalForm, ANumberFieldSaysWhatItReadsAs) {
  const auto note = [this](const char* field) { return form.noteFor(*form.find(field)); };
  const std::pair<const char*, std::string> cases[] = {{"-2", ""},
                                                       {" 12a34", "Not a plain number: read as 12"},
                                                       {"abc", "Not a plain number: read as 0"},
                                                       {"1,000", "Not a plain number: read as 1"},
                                                       {"", "Empty: read as 0"}};
  for (const auto& [text, said] : cases) {
    form.editText("txtEntryGrade", text);
    EXPECT_EQ(note("txtEntryGrade"), said) << text;
  }
  EXPECT_EQ(note("txtProfile1"), "");  // an empty optional number says nothing
  EXPECT_EQ(note("txtStation"), "");   // a station is no plain number, and says nothing
}

TEST_F(VerticalForm, EqualGradesHaveNoTurningPointAndTheReportSaysSo) {
  form.typeText("txtExitGrade", "-2");
  form.click("btnCalculate");
  EXPECT_TRUE(shell.boxes.empty());
  EXPECT_FALSE(results.lblMinMaxSta.visible);
  results.txtOut.text = (dir.path() / "v.txt").string();
  results.click("btnOutput");
  const std::string report = TempDir::read(dir.path() / "v.txt");
  EXPECT_NE(report.find("Min. Station:  \r\n   Min. Elev:  \r\n"), std::string::npos);
  EXPECT_NE(report.find("    PVC Elev:  8+00.000\r\n"), std::string::npos);  // the station caption, as always
}

TEST_F(VerticalForm, MessagesThatLetTheRunGoOn) {
  form.typeText("txtLength", "");
  form.typeText("txtStartStation", "9+00");
  form.typeText("txtEndStation", "8+00");
  form.click("btnCalculate");
  EXPECT_EQ(titles(), (std::vector<std::string>{"Missing Data!: A curve length must be entered.",
                                                "Missing Data!: An increment must be specified.",
                                                "Invalid Data!: End station is not larger than start station."}));
  for (const auto& b : shell.boxes) EXPECT_EQ(b.icon, Icon::Critical);
  EXPECT_EQ(shell.modalForms.size(), 1u);  // the results are shown all the same
  // With an increment, the listing is made after the end-station box, the end station last.
  form.typeText("txtLength", "400");
  form.typeText("txtIncrement", "100");
  form.click("btnCalculate");
  EXPECT_EQ(shell.boxes.back().text, "End station is not larger than start station.");
  ASSERT_FALSE(results.lstResults.items.empty());
  EXPECT_EQ(results.lstResults.items.back().substr(0, 12), "    8+00.000");
}

TEST_F(VerticalForm, AStationOrElevationThatCannotBeReadEndsTheProgram) {
  form.typeText("txtStation", "");
  EXPECT_THROW(form.click("btnCalculate"), ProgramEnd);
  EXPECT_EQ(titles(), (std::vector<std::string>{"Missing Data!: A station must be entered.",
                                                "Syntax Error!: Station must be in the format n+nn.nnn"}));
  EXPECT_EQ(shell.boxes.back().icon, Icon::Critical);
  shell.boxes.clear();
  form.typeText("txtStation", "10+00");
  form.typeText("txtEquationIn", "1234");
  form.setChecked("chkMetric", true);
  EXPECT_THROW(form.click("btnCalculate"), ProgramEnd);
  EXPECT_EQ(titles(), (std::vector<std::string>{"Syntax Error!: Station must be in the format n+nnn.nnn"}));
  EXPECT_EQ(shell.boxes.back().icon, Icon::Exclamation);
  shell.boxes.clear();
  form.typeText("txtEquationIn", "");
  form.typeText("txtElevation", "");  // a strict number: blank is a type mismatch
  EXPECT_THROW(form.click("btnCalculate"), ProgramEnd);
  EXPECT_EQ(shell.boxes.back().title, "Run-time Error");
}

TEST_F(VerticalForm, EndStationEnablesIncrementAndExact) {
  EXPECT_FALSE(form.txtIncrement.enabled || form.chkExact.enabled);
  form.typeText("txtEndStation", "13+00");
  EXPECT_TRUE(form.txtIncrement.enabled && form.chkExact.enabled);
  form.click("btnClear");
  EXPECT_FALSE(form.txtIncrement.enabled || form.chkExact.enabled);
  EXPECT_EQ(form.txtStation.text, "");
}

TEST_F(VerticalForm, ProfilesHaveHeadingsAndAStartAloneListsOneStation) {
  form.typeText("txtProfile1", "1");
  form.typeText("txtProfile3", "2");
  form.typeText("txtStartStation", "9+00");
  form.click("btnCalculate");
  EXPECT_EQ(results.lblHeadings.caption, "     Station   C/T  Elevation  Profile   Profile ");
  ASSERT_EQ(results.lstResults.items.size(), 1u);
  EXPECT_EQ(results.lstResults.items[0], "    9+00.000  C     102.500   103.500  104.500");
}

}  // namespace
}  // namespace tervalo
