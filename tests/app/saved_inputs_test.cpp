// A calculator window's inputs kept in the user's file and opened again,
// the recent work of the main window, and the previous inputs.

#include <gtest/gtest.h>

#include <fstream>

#include "app/frm_main.h"
#include "app/recovery.h"
#include "support/bench.h"

namespace tervalo {
namespace {

using testing::RecordingShell;
using testing::TempDir;

// Every text, check and option of a window, as "name=value" lines.
std::string fields(const FormModel& form) {
  std::string all;
  for (const auto& e : form.controls()) {
    if (const auto* box = std::get_if<TextBox*>(&e.control)) all += e.name + "=" + (*box)->text + "\n";
    if (const auto* combo = std::get_if<ComboBox*>(&e.control)) all += e.name + "=" + (*combo)->text + "\n";
    if (const auto* list = std::get_if<ListBox*>(&e.control)) all += e.name + "=" + std::to_string((*list)->items.size()) + " rows\n";
    if (const auto* check = std::get_if<CheckBox*>(&e.control)) all += e.name + ((*check)->checked ? "=on\n" : "=off\n");
    if (const auto* option = std::get_if<OptionButton*>(&e.control)) all += e.name + ((*option)->checked ? "=on\n" : "=off\n");
  }
  return all;
}

struct CalculatorCase {
  const char* menu;
  const char* form;
  std::vector<std::pair<const char*, const char*>> typed;  // then pressed, if the name is a button
};

class SavedInputs : public ::testing::TestWithParam<CalculatorCase>, protected testing::Bench {};

TEST_P(SavedInputs, SaveClearAndOpenGiveEveryFieldBackAndPressNothing) {
  const CalculatorCase& c = GetParam();
  FormModel* form = nullptr;
  shell.onModal = [&](FormModel& f) {
    if (f.name() != c.form) return;
    form = &f;
    for (const auto& [name, value] : c.typed) {
      const ControlEntry* e = f.find(name);
      if (std::holds_alternative<Button*>(e->control)) f.click(name);
      else if (std::holds_alternative<OptionButton*>(e->control) || std::holds_alternative<CheckBox*>(e->control))
        f.setChecked(name, std::string(value) == "on");
      else f.typeText(name, value);
    }
    const std::string before = fields(f);
    shell.chosenFiles.push_back((dir.path() / "mine.tervalo.json").string());
    f.click("btnSaveInputs");
    f.click("btnClear");
    ASSERT_NE(fields(f), before);
    const std::size_t boxes = shell.boxes.size(), written = shell.writtenFiles.size();
    shell.chosenFiles.push_back((dir.path() / "mine.tervalo.json").string());
    f.click("btnOpenInputs");
    EXPECT_EQ(fields(f), before);
    EXPECT_EQ(shell.boxes.size(), boxes);  // nothing calculated, nothing said
    EXPECT_EQ(shell.writtenFiles.size(), written);
  };
  auto& main = program.form<frmMain>("frmMain");
  main.setOpen(true);
  main.click(c.menu);
  if (std::string(c.menu) == "mnuSecSub") {
    main.typeText("txtInFile", std::string(TERVALO_SOURCE_DIR) + "/examples/section14.sdms");
    main.click("btnContinue");
  }
  ASSERT_NE(form, nullptr);
  std::ifstream saved(dir.path() / "mine.tervalo.json");
  const auto json = nlohmann::json::parse(saved);
  EXPECT_EQ(json["version"], 1);
  EXPECT_EQ(program.recent.files().front(), (dir.path() / "mine.tervalo.json").string());
}

INSTANTIATE_TEST_SUITE_P(
    EveryCalculator, SavedInputs,
    ::testing::Values(
        CalculatorCase{"mnuSecSub", "frmSecSub",
                       {{"txtSection", "7"}, {"txtTwp", "115"}, {"txtRange", "22"}, {"txt0pn", "1001"}, {"txtNofWchain", "19.5"},
                        {"optUnique", "on"}, {"txt12xc", "514967.4257"}}},
        CalculatorCase{"mnuChorz", "frmHorzCurve", {{"txtDelta", "30"}, {"txtRadius", "1000"}, {"chkMetric", "on"}, {"optPC", "on"}}},
        CalculatorCase{"mnuCvert", "frmVertCurve",
                       {{"txtEntryGrade", "-2"}, {"txtExitGrade", "2"}, {"txtStation", "10+00"}, {"txtEndStation", "13+00"}}},
        CalculatorCase{"mnuMgrade", "frmGrade",
                       {{"txtSta", "125+50"}, {"txtFinWidth", "12"}, {"btnFinAdd", ""}, {"txtFinWidth", "4"}, {"cmbFinSlope", "1:4"},
                        {"btnFinAdd", ""}, {"txtSubWidth", "14"}, {"btnSubAdd", ""}}},
        CalculatorCase{"mnuMprop", "frmProp", {{"txtBegSta", "10+00"}, {"txtEndValue", "10"}, {"chkBetween", "on"}}}),
    [](const auto& named) { return std::string(named.param.form); });

TEST(SavedInputsRefused, DamagedNewerOrForeignFilesChangeNothing) {
  testing::Bench bench;
  auto& [dir, shell, program] = bench;
  auto& main = program.form<frmMain>("frmMain");
  main.setOpen(true);
  const std::pair<const char*, const char*> files[] = {
      {"{ not json", "not valid JSON"},
      {R"({"version":7,"calculator":"hcurve","steps":[]})", "written by a newer Tervalo (job version 7)"},
      {R"({"version":1,"calculator":"hcurve","steps":[{"set":{"txtWarp":"9"}}]})", "has no control \"txtWarp\""},
      {R"({"version":1,"calculator":"vcurve","steps":[]})", "holds the inputs of \"vcurve\", not of this window"}};
  shell.onModal = [&](FormModel& f) {
    f.typeText("txtDelta", "30");
    const std::string before = fields(f);
    for (const auto& [text, fault] : files) {
      shell.chosenFiles.push_back(dir.write("bad.tervalo.json", text).string());
      f.click("btnOpenInputs");
      ASSERT_FALSE(shell.boxes.empty());
      EXPECT_EQ(shell.boxes.back().title, "Open Inputs");
      EXPECT_NE(shell.boxes.back().text.find(dir.folder() + "bad.tervalo.json cannot be opened: "), std::string::npos);
      EXPECT_NE(shell.boxes.back().text.find(fault), std::string::npos) << shell.boxes.back().text;
      EXPECT_EQ(fields(f), before);
    }
  };
  main.click("mnuChorz");
  EXPECT_EQ(shell.boxes.size(), 4u);
}

TEST(RecentWork, TenMostRecentFirstKeptInTheDataFolder) {
  TempDir dir;
  {
    RecentWork recent(dir.folder());
    for (int i = 0; i < 12; ++i) recent.add(dir.folder() + "f" + std::to_string(i) + ".csv");
    recent.add(dir.folder() + "f5.csv");  // again: moves to the front, once
    EXPECT_EQ(recent.files().size(), 10u);
    EXPECT_EQ(recent.files()[0], dir.folder() + "f5.csv");
    EXPECT_EQ(recent.files()[1], dir.folder() + "f11.csv");
  }
  RecordingShell shell;
  Program program{shell, dir.folder()};  // the next start
  auto& main = program.form<frmMain>("frmMain");
  EXPECT_EQ(main.mnuRecentFiles[0].caption, "&1  " + dir.folder() + "f5.csv");
  EXPECT_TRUE(main.mnuRecentFiles[9].visible);

  // A recent source file that is gone says so; a recent job reopens through the shell.
  main.click("mnuRecent1");
  EXPECT_EQ(shell.boxes.back().text, "File does not exist.");
  main.click("mnuPrevious");
  EXPECT_EQ(shell.boxes.back().title, "Reopen Previous Inputs");
  std::ofstream(previousInputsFile(dir.folder())) << R"({"calculator":"hcurve","steps":[{"set":{"txtDelta":"30"}}]})";
  struct ReopeningShell : RecordingShell {
    std::vector<std::string> reopened;
    void reopen(const Job& job) override { reopened.push_back(job.calculator); }
  } reopening;
  Program again{reopening, dir.folder()};
  again.form<frmMain>("frmMain").setOpen(true);
  again.form<frmMain>("frmMain").click("mnuPrevious");
  EXPECT_EQ(reopening.reopened, std::vector<std::string>{"hcurve"});
}

}  // namespace
}  // namespace tervalo
