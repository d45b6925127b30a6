// The horizontal curve form: its boxes and their consequences, captions,
// Clear, and the output file.

#include <gtest/gtest.h>

#include "hcurve/frm_horz_curve.h"
#include "support/bench.h"
#include "text/errors.h"

namespace tervalo {
namespace {

using testing::TempDir;

class CurveForm : public ::testing::Test, protected testing::Bench {
 protected:
  frmHorzCurve& form = program.form<frmHorzCurve>("frmHorzCurve");

  void SetUp() override { form.setOpen(true); }
  void enter(std::initializer_list<std::pair<const char*, const char*>> fields) {
    for (const auto& [name, value] : fields) form.typeText(name, value);
  }
  void expectBox(const char* title, const char* text, Icon icon) {
    ASSERT_FALSE(shell.boxes.empty());
    EXPECT_EQ(shell.boxes.back().title, title);
    EXPECT_EQ(shell.boxes.back().text, text);
    EXPECT_EQ(shell.boxes.back().icon, icon);
  }
};

TEST_F(CurveForm, OneOrThreeElementsAreRefusedAndTheFormCloses) {
  enter({{"txtDelta", "30"}});
  form.click("btnCalculate");
  expectBox("Insufficient Data", "Must enter two elements to calculate the curve.", Icon::Exclamation);
  EXPECT_FALSE(form.isOpen());
  form.setOpen(true);
  enter({{"txtRadius", "1000"}, {"txtChord", "x5"}, {"txtTanLength", "10"}});  // "x5" reads 0: not counted
  form.click("btnCalculate");
  expectBox("Data Input Error", "Only two elements may be entered.", Icon::Exclamation);
  EXPECT_FALSE(form.isOpen());
}

TEST_F(CurveForm, ImpossiblePairsEndTheProgram) {
  enter({{"txtDelta", "180"}, {"txtRadius", "1000"}});
  EXPECT_THROW(form.click("btnCalculate"), ProgramEnd);
  expectBox("Input Error!", "Invalid delta angle.", Icon::Exclamation);
  form.click("btnClear");
  enter({{"txtExternal", "2"}, {"txtChord", "200"}});
  EXPECT_THROW(form.click("btnCalculate"), ProgramEnd);
  expectBox("Input Error!", "Invalid combination of input data.", Icon::Exclamation);
  form.click("btnClear");
  enter({{"txtMidOrd", "40"}, {"txtExternal", "35"}});
  EXPECT_THROW(form.click("btnCalculate"), ProgramEnd);
  expectBox("Bad Data", "Mid Ordinate cannot be larger than External", Icon::Critical);
}

TEST_F(CurveForm, MetricDegreeEndsTheProgram) {
  enter({{"txtDegree", "2"}, {"txtDelta", "30"}});
  form.chkMetric.checked = true;  // as an old job could leave it, with the degree field still filled
  EXPECT_THROW(form.click("btnCalculate"), ProgramEnd);
  expectBox("Error!", "Degree of Curve is not defined for Metric units.", Icon::Critical);
}

TEST_F(CurveForm, SmallChordRadiusPressesClear) {
  form.setChecked("chkChordDef", true);
  enter({{"txtRadius", "40"}, {"txtDelta", "30"}, {"txtCurvePt", "10+00"}});
  form.click("btnCalculate");
  expectBox("Input Error!", "The minimum radius for a chord-definintion curve is 50 feet.", Icon::Exclamation);
  EXPECT_EQ(form.txtRadius.text, "");
  EXPECT_EQ(form.txtCurvePt.text, "");
  EXPECT_FALSE(form.chkChordDef.checked);
  EXPECT_EQ(form.lblRad.caption, "");
}

TEST_F(CurveForm, StationsWithoutPlusEndTheProgramWithTheirUnitsIcon) {
  enter({{"txtDelta", "30"}, {"txtRadius", "1000"}, {"txtCurvePt", "1000"}});
  EXPECT_THROW(form.click("btnCalculate"), ProgramEnd);
  expectBox("Syntax Error!", "Station must be in the format n+nn.nn", Icon::Critical);
  form.setChecked("chkMetric", true);
  EXPECT_THROW(form.click("btnCalculate"), ProgramEnd);
  expectBox("Syntax Error!", "Station must be in the format n+nnn.nnn", Icon::Exclamation);
}

TEST_F(CurveForm, ResultsAndStationLabels) {
  form.setChecked("optDec", true);
  enter({{"txtDelta", "30"}, {"txtRadius", "1000"}, {"txtCurvePt", "10+00"}});
  form.click("btnCalculate");
  EXPECT_TRUE(shell.boxes.empty());
  EXPECT_EQ(form.lblDel.caption, "30\u00B000'00.00\"");
  EXPECT_EQ(form.lblDeg.caption, "05\u00B043'46.48\"");
  EXPECT_EQ(form.lblTan.caption, "267.9492");
  EXPECT_EQ(form.lblPC.caption, "7+32.0508");
  EXPECT_EQ(form.lblPT.caption, "12+55.6496");
  form.setChecked("chkMetric", true);
  form.typeText("txtCurvePt", "1+255.65");
  form.setChecked("optPC", true);
  form.click("btnCalculate");
  EXPECT_EQ(form.lblPC.caption, "1+255.6500");
  form.typeText("txtCurvePt", "");
  form.click("btnCalculate");
  EXPECT_EQ(form.lblPcTitle.caption, "");
  EXPECT_EQ(form.lblPC.caption, "1+255.6500");  // the earlier station stays
  form.typeText("txtRadius", "123456.78901");
  form.click("btnCalculate");
  EXPECT_EQ(form.lblRad.caption, "123456.7890");
}

TEST_F(CurveForm, OptionCaptionsAsTheProgramHasThem) {
  EXPECT_EQ(form.lblDeltaDeg.caption, "(ddd.mmssss)");
  form.setChecked("optDec", true);
  EXPECT_EQ(form.lblDeltaDeg.caption, "(dddd.dddddd)");
  EXPECT_EQ(form.lblCurveDeg.caption, "(ddd.ddddddd)");
  form.setChecked("optHms", true);
  EXPECT_EQ(form.lblDeltaDeg.caption, "(ddd.mmmssss");
  EXPECT_EQ(form.lblCurveDeg.caption, "(ddd.mmmssss)");
}

TEST_F(CurveForm, MetricAndChordDefinitionExcludeEachOther) {
  form.setChecked("chkChordDef", true);
  form.setChecked("chkMetric", true);
  EXPECT_FALSE(form.chkChordDef.checked);
  EXPECT_FALSE(form.txtDegree.enabled || form.lblDegree.enabled || form.chkChordDef.enabled);
  form.setChecked("chkMetric", false);
  EXPECT_TRUE(form.txtDegree.enabled && form.lblDegree.enabled && form.chkChordDef.enabled);
}

TEST_F(CurveForm, SavingBeforeCalculateWritesTheCaptionsAsTheyStand) {
  form.txtOut.text = (dir.path() / "h.txt").string();
  form.click("btnOutput");
  const std::string file = TempDir::read(dir.path() / "h.txt");
  EXPECT_EQ(file.substr(0, 48), "      HORIZONTAL CURVE\r\n   Del:   \r\n   Deg:     ");
  EXPECT_NE(file.find("   Tan:              \r\n"), std::string::npos);
  EXPECT_EQ(shell.editorFiles.size(), 1u);
  // Print prints what Save writes, line for line.
  form.click("btnPrint");
  ASSERT_EQ(shell.printed.size(), 1u);
  std::string printed;
  for (const std::string& line : shell.printed[0].lines) printed += line + "\r\n";
  EXPECT_EQ(printed, file);
}

}  // namespace
}  // namespace tervalo
