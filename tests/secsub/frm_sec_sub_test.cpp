// The section form's events and its run, through the model.

#include <gtest/gtest.h>

#include <algorithm>

#include "app/frm_main.h"
#include "app/program.h"
#include "secsub/frm_sec_sub.h"
#include "support/recording_shell.h"
#include "support/temp_dir.h"
#include "text/errors.h"

namespace tervalo {
namespace {

using testing::RecordingShell;
using testing::TempDir;

// The example section's eight PLS corners, as a comma-delimited source file.
const char* const kCorners =
    "1001,512313.489,289841.989,CM,NW COR\n1002,514953.421,289851.665,IP,N1/4\n1003,517601.786,289872.136,CM,NE COR\n"
    "1004,512325.918,287204.468,IR,W1/4\n1005,517610.069,287235.739,IP,E1/4\n1006,512340.218,284561.407,CM,SW COR\n"
    "1007,514981.489,284577.542,IR,S1/4\n1008,517620.225,284590.898,CM,SE COR\nlow,1,2,X,LOWER CASE\n1002,9,9,DUP,SECOND\n";

class SectionForm : public ::testing::Test {
 protected:
  TempDir dir;
  RecordingShell shell;
  Program program{shell, dir.folder()};
  frmMain& main = program.form<frmMain>("frmMain");
  frmSecSub& form = program.form<frmSecSub>("frmSecSub");

  void SetUp() override {
    main.click("mnuSecSub");
    main.typeText("txtInFile", dir.write("pts.csv", kCorners).string());
    main.click("btnContinue");  // reads the points; the modal form closes at once
    form.setOpen(true);
  }
  void location(const char* section, const char* township, const char* range) {
    form.typeText("txtSection", section);
    form.typeText("txtTwp", township);
    form.typeText("txtRange", range);
  }
  // The PLS corners by their numbers in the source file, less any left out.
  void corners(std::initializer_list<int> without = {}) {
    const int plsSlots[] = {0, 2, 4, 10, 14, 20, 22, 24};
    for (int i = 0; i < 8; ++i)
      if (std::find(without.begin(), without.end(), plsSlots[i]) == without.end())
        form.typeText("txt" + std::to_string(plsSlots[i]) + "pn", std::to_string(1001 + i));
  }
  void regularChains() {
    for (auto& c : form.chains) form.typeText(std::string("txt") + c.name + "chain", "20");
  }
  std::vector<std::string> titles() const {
    std::vector<std::string> t;
    for (const auto& b : shell.boxes) t.push_back(b.title);
    return t;
  }
};

TEST_F(SectionForm, PointNumberLookup) {
  form.editText("txt0pn", "100");
  EXPECT_FALSE(form.pointFound);
  form.editText("txt0pn", "1001");
  EXPECT_TRUE(form.pointFound);
  EXPECT_EQ(form.slots[0].xc.text, "512313.4890");
  EXPECT_EQ(form.slots[0].yc.text, "289841.9890");
  EXPECT_EQ(form.slots[0].pf.text, "CM");
  EXPECT_EQ(form.record.slots[0].pointNumber, "1001");

  form.typeText("txt2pn", "1002");  // two entries: the lower index wins
  EXPECT_EQ(form.slots[2].pf.text, "IP");

  form.typeText("txt3pn", "low");  // stored in lower case: never found
  EXPECT_EQ(form.slots[3].xc.text, "");
  EXPECT_EQ(form.slots[3].pn.text, "LOW");  // upper-cased on leaving

  form.typeText("txt4pn", "xyz");  // not found: coordinates typed earlier stay
  form.typeText("txt4xc", "5000");
  form.editText("txt4pn", "xyzz");
  EXPECT_EQ(form.slots[4].xc.text, "5000");
  form.typeText("txt4pn", "");  // emptied: X and Y go when the field is left
  EXPECT_EQ(form.slots[4].xc.text, "");
  EXPECT_EQ(form.slots[4].yc.text, "");
}

TEST_F(SectionForm, TownshipRulesFollowEachField) {
  location("36", "48", "1");
  EXPECT_EQ(form.txtPM.text, "4");
  EXPECT_TRUE(form.chk1.checked && form.chk1.visible);
  EXPECT_TRUE(form.chk5.checked && form.chk5.visible);
  form.typeText("txtRange", "2");
  EXPECT_FALSE(form.chk1.checked || form.chk5.checked);
  form.typeText("txtSection", "40");
  EXPECT_EQ(titles(), (std::vector<std::string>{"Invalid Number"}));
  EXPECT_EQ(shell.boxes[0].text, "Valid Section numbers are 1-36.");
  // The chains a section needs are shown with its location.
  form.typeText("txtSection", "6");
  EXPECT_TRUE(form.chain("NofW").text.visible && form.chain("SofW").caption.visible);
  EXPECT_FALSE(form.chain("EofS").text.visible);
  form.setChecked("chkDefaults", false);
  EXPECT_TRUE(form.chain("EofS").text.visible && form.chk1.visible);
  form.setChecked("chkDefaults", true);
  EXPECT_FALSE(form.chk5.visible);
  form.click("btnClear");
  EXPECT_FALSE(form.chain("NofW").text.visible);
  EXPECT_EQ(form.txtSection.text, "");
}

TEST_F(SectionForm, EachCheckRefusesWithItsBox) {
  struct Case {
    const char* section;
    const char* township;
    const char* range;
    const char* pm;
    bool quarters;
    const char* title;
    const char* text;
  } cases[] = {
      {"", "115", "22", "5", true, "Invalid Number", "Valid Section numbers are 1-36."},
      {"14", "", "22", "5", true, "Missing Data", "Township number is a required field."},
      {"14", "115", "", "5", true, "Missing Data", "Range number is a required field."},
      {"14", "115", "22", "6", true, "Invalid Number", "Valid Principal Meridian numbers are 4 or 5."},
      {"14", "115", "22", "5", false, "Missing Quarter Corner", "Enter all four quarter corners or hold the center."},
  };
  form.setChecked("chkDefaults", false);
  for (const Case& c : cases) {
    form.click("btnClear");
    shell.boxes.clear();
    location(c.section, c.township, c.range);
    form.typeText("txtPM", c.pm);
    if (c.quarters) corners();
    form.click("btnContinue");
    ASSERT_EQ(shell.boxes.size(), 1u) << c.title;
    EXPECT_EQ(shell.boxes[0].title, c.title);
    EXPECT_EQ(shell.boxes[0].text, c.text);
    EXPECT_EQ(shell.boxes[0].icon, Icon::Information);
    EXPECT_TRUE(shell.writtenFiles.empty());
  }
}

TEST_F(SectionForm, UnknownMeridianWithDefaultsEndsTheProgram) {
  location("14", "50", "10");
  corners();
  form.typeText("txtPM", "");
  EXPECT_THROW(form.click("btnContinue"), ProgramEnd);
  EXPECT_EQ(shell.boxes.back().title, "Invalid PM?");
  EXPECT_EQ(shell.boxes.back().text, "This location may be incorrect for Kestovia.  Continue processing?");
  EXPECT_EQ(shell.boxes.back().buttons, Buttons::YesNo);
}

TEST_F(SectionForm, ARunNumbersWritesAndResets) {
  location("14", "115", "22");
  corners();
  regularChains();
  form.typeText("txtIncr", "a100");
  form.click("btnContinue");
  EXPECT_EQ(titles(), (std::vector<std::string>{"Program Complete"}));
  EXPECT_EQ(shell.boxes[0].text, "Created Files: " + dir.folder() + "SecSub.inp and " + dir.folder() + "SecSub.rpt.");
  EXPECT_EQ(shell.writtenFiles.size(), 2u);
  EXPECT_EQ(shell.editorFiles.size(), 2u);
  EXPECT_EQ(form.txtIncr.text, "A100");
  EXPECT_EQ(form.slots[1].pn.text, "A100");
  EXPECT_EQ(form.slots[3].pn.text, "A101");
  EXPECT_EQ(form.slots[23].pn.text, "A116");
  EXPECT_EQ(form.slots[12].xc.text, "514967.4257");  // the center, written at once
  EXPECT_TRUE(form.computed[12] && !form.computed[0]);
  for (int i = 0; i <= 25; ++i) EXPECT_EQ(program.points.records[static_cast<std::size_t>(i)].name, "");

  // A second Continue sees the first run's corners as entered.
  shell.answers.push_back(Answer::No);
  EXPECT_THROW(form.click("btnContinue"), ProgramEnd);
  EXPECT_EQ(shell.boxes.back().title, "Entered 1/16 Corner Coordinates");
  EXPECT_EQ(shell.boxes.back().icon, Icon::Question);
}

TEST_F(SectionForm, NumberingStartsAndUniqueNames) {
  location("14", "115", "22");
  corners();
  regularChains();
  form.setChecked("optUnique", true);
  form.click("btnContinue");
  EXPECT_EQ(form.slots[1].pn.text, "1");  // an empty start counts from 1
  EXPECT_EQ(form.record.slots[1].pointNumber, "XNNW1411522");
  EXPECT_EQ(form.record.slots[0].pointNumber, "SNE1511522");

  form.click("btnClear");
  main.click("btnContinue");  // the run emptied the point list: read the source again
  location("14", "115", "22");
  corners();
  form.typeText("txtIncr", "7");
  form.setChecked("optIncr", true);
  form.click("btnContinue");
  EXPECT_EQ(form.slots[1].pn.text, "7");
  EXPECT_EQ(form.slots[3].pn.text, "8");
}

TEST_F(SectionForm, MissingChainsWarnOnceAndTheRunGoesOn) {
  location("6", "115", "22");
  corners();
  form.click("btnContinue");
  EXPECT_EQ(titles(), (std::vector<std::string>{"Missing Data", "Program Complete"}));
  EXPECT_EQ(shell.boxes[0].text, "Number of chains is a required field.");
}

TEST_F(SectionForm, ASixteenthOnTheSouthLineMarksTheNorthQuarter) {
  location("14", "115", "22");
  corners({2});
  form.typeText("txt12xc", "514967.4257");
  form.typeText("txt12yc", "287220.1001");
  form.typeText("txt21xc", "513660.8535");
  form.typeText("txt21yc", "284569.4745");
  form.click("btnContinue");
  EXPECT_TRUE(form.record.present.n4);
  EXPECT_EQ(shell.boxes.front().title, "Entered 1/16 Corner Coordinates");  // answered yes
}

TEST_F(SectionForm, HeaderDataFromItsOwnWindow) {
  shell.onModal = [](FormModel& f) {
    f.typeText("txtSP", "8821-114");
    f.click("btnSave");
  };
  form.setChecked("chkAddHeader", true);
  EXPECT_EQ(shell.modalForms.back(), "frmHeader");
  EXPECT_EQ(program.header.spNumber, "8821-114");
  form.setChecked("chkAddHeader", false);
  EXPECT_EQ(program.header.spNumber, "8821-114");
  EXPECT_EQ(shell.modalForms.size(), 2u);  // frmSecSub from Continue, then frmHeader once
}

TEST_F(SectionForm, AZeroHalfMileEndsTheRunWithItsFaultAndWritesNothing) {
  location("14", "115", "22");
  corners();
  regularChains();
  form.typeText("txtWofNchain", "-20");
  EXPECT_THROW(form.click("btnContinue"), ProgramEnd);
  EXPECT_EQ(shell.boxes.back().title, "Run-time Error");
  EXPECT_NE(shell.boxes.back().text.find("Division by zero"), std::string::npos);
  EXPECT_TRUE(shell.writtenFiles.empty());
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "SecSub.rpt"));
}

}  // namespace
}  // namespace tervalo

namespace tervalo {
namespace {

TEST_F(SectionForm, TheDrawingFollowsTheRunAndIsSavedAsSvg) {
  EXPECT_EQ(form.drawing(), "");
  EXPECT_FALSE(form.btnSaveDrawing.enabled);
  location("14", "115", "22");
  corners({0, 20});  // the NW and SW corners missing
  regularChains();
  form.click("btnContinue");
  const std::string svg = form.drawing();
  auto count = [&svg](const std::string& what) {
    int n = 0;
    for (auto at = svg.find(what); at != std::string::npos; at = svg.find(what, at + 1)) ++n;
    return n;
  };
  const int present = static_cast<int>(std::count_if(form.record.slots.begin(), form.record.slots.end(),
                                                      [](const CornerSlot& c) { return c.x != 0; }));
  EXPECT_EQ(count("class=\"entered\""), 6);
  EXPECT_EQ(count("class=\"computed\""), present - 6);
  // A line needs both ends: with the west corners missing, slots 1, 5, 6, 15, 16 and 21
  // are not computed either, which leaves 24 of the 42 lines (no bridges: 7 and 11 exist).
  EXPECT_EQ(count("<line "), 24);
  EXPECT_NE(svg.find(">1002<"), std::string::npos);

  shell.chosenFiles.push_back((dir.path() / "s14.svg").string());
  form.click("btnSaveDrawing");
  EXPECT_EQ(TempDir::read(dir.path() / "s14.svg").rfind("<svg ", 0), 0u);
  shell.chosenFiles.push_back((dir.path() / "s14.png").string());
  form.click("btnSaveDrawing");  // this shell cannot draw: it says so
  EXPECT_EQ(shell.boxes.back().title, "Save the Drawing");

  form.click("btnClear");
  EXPECT_EQ(form.drawing(), "");
}

}  // namespace
}  // namespace tervalo
