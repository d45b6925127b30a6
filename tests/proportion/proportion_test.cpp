// Proportion: the worked cases, station from value, the equation, and the
// form's warnings in their order.

#include <gtest/gtest.h>

#include "app/forms_misc.h"
#include "proportion/frm_prop.h"
#include "support/bench.h"
#include "text/errors.h"

namespace tervalo {
namespace {

using testing::TempDir;

class Proportion : public ::testing::Test, protected testing::Bench {
 protected:
  frmProp& form = program.form<frmProp>("frmProp");
  frmOutput& output = program.form<frmOutput>("frmOutput");

  void SetUp() override { form.setOpen(true); }
  void enter(std::initializer_list<std::pair<const char*, const char*>> fields) {
    for (const auto& [name, value] : fields) form.typeText(name, value);
  }
  // The lines after the eight title lines.
  std::vector<std::string> results() const {
    return {output.lstOutput.items.begin() + 8, output.lstOutput.items.end()};
  }
  std::vector<std::string> warnings() const {
    std::vector<std::string> t;
    for (const auto& b : shell.boxes) t.push_back(b.text);
    return t;
  }
  static std::string row(const char* station, const char* value) {
    return std::string(21, ' ') + station + std::string(9, ' ') + value;
  }
};

TEST_F(Proportion, RangeWithTheLastStationOffTheIncrement) {
  enter({{"txtBegSta", "10+00"}, {"txtBegValue", "0"}, {"txtEndSta", "20+00"}, {"txtEndValue", "10"},
         {"txtFirst", "10+00"}, {"txtLast", "12+30"}, {"txtIncrement", "100"}});
  form.click("btnCalc");
  EXPECT_TRUE(shell.boxes.empty());
  EXPECT_EQ(results(), (std::vector<std::string>{row("10+00.000", ".000"), row("11+00.000", "1.000"),
                                                 row("12+00.000", "2.000"), row("12+30.000", "2.300"),
                                                 std::string(69, '-')}));
  EXPECT_EQ(output.lstOutput.items[4], "  Beginning Station: 10+00.000  Value: .000");
  EXPECT_EQ(output.lstOutput.items[5], "     Ending Station: 20+00.000         10.000");
  EXPECT_EQ(output.txtOut.text, dir.folder() + "/Proportion.txt");  // the doubled separator, as always
  EXPECT_EQ(shell.modalForms, (std::vector<std::string>{"frmOutput"}));
}

TEST_F(Proportion, TaperRatioAndStationFromValue) {
  enter({{"txtBegSta", "10+00"}, {"txtBegValue", "-1.5"}, {"txtEndSta", "50:1"}, {"txtEndValue", "0"},
         {"txtValue", "0.5"}});
  form.click("btnCalc");
  EXPECT_EQ(output.lstOutput.items[5], "            Taper Ratio = 50:1");
  EXPECT_EQ(results(), (std::vector<std::string>{row("11+00.000", ".500"), std::string(69, '-')}));
  enter({{"txtFirst", "10+25"}});  // the other mode empties the value
  EXPECT_EQ(form.txtValue.text, "");
  form.click("btnCalc");
  EXPECT_EQ(results()[0], row("10+25.000", "-1.000"));
}

TEST_F(Proportion, EquationCarriesTheIncrementsSpacingOrRounds) {
  enter({{"txtBegSta", "10+00"}, {"txtBegValue", "0"}, {"txtEndSta", "21+00"}, {"txtEndValue", "10"},
         {"txtFirst", "10+00"}, {"txtLast", "21+00"}, {"txtIncrement", "200"}});
  form.setChecked("chkBetween", true);
  EXPECT_TRUE(form.txtStaIn.visible && form.chkRound.visible);
  enter({{"txtStaIn", "15+00"}, {"txtStaOut", "16+00"}});
  form.click("btnCalc");
  EXPECT_EQ(results(), (std::vector<std::string>{
                           row("10+00.000", ".000"), row("12+00.000", "2.000"), row("14+00.000", "4.000"),
                           "           Equation  15+00.000         5.000 = 16+00.000", row("17+00.000", "6.000"),
                           row("19+00.000", "8.000"), row("21+00.000", "10.000"), std::string(68, '-')}));

  enter({{"txtStaOut", "16+25"}, {"txtIncrement", "50"}});
  form.setChecked("chkRound", true);
  form.click("btnCalc");
  const auto r = results();
  const auto equation = std::find_if(r.begin(), r.end(), [](const std::string& l) { return l.find("Equation") != std::string::npos; });
  ASSERT_NE(equation, r.end());
  EXPECT_EQ((equation + 1)->substr(21, 9), "16+50.000");  // the first multiple of 50 at or after 16+25

  form.typeText("txtIncrement", "0.4");  // rounds to 0: no multiple to round to
  form.click("btnCalc");
  EXPECT_EQ(shell.boxes.back().title, "Input Error!");
  EXPECT_NE(shell.boxes.back().text.find("it must be more than 0.5."), std::string::npos);
}

TEST_F(Proportion, StationFromValueAcrossTheEquation) {
  enter({{"txtBegSta", "10+00"}, {"txtBegValue", "0"}, {"txtEndSta", "21+00"}, {"txtEndValue", "10"}, {"txtValue", "7"}});
  form.setChecked("chkBetween", true);
  enter({{"txtStaIn", "15+00"}, {"txtStaOut", "16+00"}});
  form.click("btnCalc");
  EXPECT_EQ(results(), (std::vector<std::string>{row("18+00.000", "7.000"), std::string(68, '-')}));
  form.typeText("txtValue", "3");
  form.click("btnCalc");
  EXPECT_EQ(results()[0], row("13+00.000", "3.000"));
}

TEST_F(Proportion, MetricMasksShiftTheValueColumn) {
  form.setChecked("chkMetric", true);
  enter({{"txtBegSta", "1+000"}, {"txtBegValue", "0.25"}, {"txtEndSta", "1+400"}, {"txtEndValue", "4.25"},
         {"txtFirst", "1+045"}});
  form.click("btnCalc");
  EXPECT_EQ(output.lstOutput.items[4], "  Beginning Station: 1+000.000  Value:  .250");
  EXPECT_EQ(output.lstOutput.items[5], "     Ending Station: 1+400.000          4.250");
  EXPECT_EQ(results()[0], row("1+045.000", ".700"));
}

TEST_F(Proportion, WarningsInTheirOrderAndTheRunGoesOn) {
  enter({{"txtBegSta", "20+00"}, {"txtEndSta", "10+00"}, {"txtFirst", "12+00"}, {"txtIncrement", "50"}});
  form.click("btnCalc");
  EXPECT_EQ(warnings(), (std::vector<std::string>{"Begining Station Value cannot be blank.",
                                                  "Ending Offset Value cannot be blank.",
                                                  "Start station is greater than end station.",
                                                  "An ending station is required for a range.",
                                                  "Increment should be blank if last station is blank."}));
  for (const auto& b : shell.boxes) EXPECT_EQ(b.icon, Icon::Exclamation);
  EXPECT_EQ(shell.modalForms.size(), 1u);  // the results are shown all the same

  shell.boxes.clear();
  form.click("btnClear");
  form.click("btnCalc");
  EXPECT_EQ(warnings().back(), "The beginning and ending stations are the same: there is no proportion between them.");
  EXPECT_EQ(warnings()[2], "Beginning station cannot be blank.");
  EXPECT_EQ(warnings()[4], "Increment cannot be blank if no station range is specified.");
}

TEST_F(Proportion, ZeroRatioInStationFromValueIsRefused) {
  enter({{"txtBegSta", "10+00"}, {"txtBegValue", "4"}, {"txtEndSta", "20+00"}, {"txtEndValue", "4"}, {"txtValue", "4"}});
  form.click("btnCalc");
  EXPECT_NE(shell.boxes.back().text.find("a ratio of 0"), std::string::npos);
  EXPECT_TRUE(shell.modalForms.empty());
}

TEST_F(Proportion, AStationWithoutPlusEndsTheProgram) {
  enter({{"txtBegSta", "1000"}, {"txtBegValue", "1"}, {"txtEndSta", "20+00"}, {"txtEndValue", "2"}, {"txtFirst", "12+00"}});
  EXPECT_THROW(form.click("btnCalc"), ProgramEnd);
  EXPECT_EQ(shell.boxes.back().title, "Run-time Error");
}

}  // namespace
}  // namespace tervalo
