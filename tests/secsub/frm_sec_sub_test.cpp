// The section form's events and its run, through the model.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <tuple>

#include "app/forms_misc.h"
#include "app/frm_main.h"
#include "restore/frm_restore.h"
#include "points/readers.h"
#include "secsub/frm_sec_sub.h"
#include "support/bench.h"
#include "support/geopak_names.h"
#include "text/errors.h"

namespace tervalo {
namespace {

using testing::TempDir;

// The example section's eight PLS corners, as a comma-delimited source file.
const char* const kCorners =
    "1001,512313.489,289841.989,CM,NW COR\n1002,514953.421,289851.665,IP,N1/4\n1003,517601.786,289872.136,CM,NE COR\n"
    "1004,512325.918,287204.468,IR,W1/4\n1005,517610.069,287235.739,IP,E1/4\n1006,512340.218,284561.407,CM,SW COR\n"
    "1007,514981.489,284577.542,IR,S1/4\n1008,517620.225,284590.898,CM,SE COR\nlow,1,2,X,LOWER CASE\n1002,9,9,DUP,SECOND\n";

class SectionForm : public ::testing::Test, protected testing::Bench {
 protected:
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

TEST_F(SectionForm, APointNumberFillsItsCoordinatesFromTheFile) {
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

TEST_F(SectionForm, APointNumberNotInTheListSaysSoInItsSlot) {
  form.typeText("txt0pn", "1099");
  EXPECT_EQ(form.slots[0].pn.note.rfind("Point 1099 is not in the point list: ", 0), 0u) << form.slots[0].pn.note;
  EXPECT_EQ(form.noteFor(*form.find("txt0xc")), "1099 not in the point list");
  form.typeText("txt0pn", "1001");  // found: nothing to say
  EXPECT_EQ(form.slots[0].pn.note, "");
  // After a run the list is empty, and the slot says why.
  location("14", "115", "22");
  corners();
  form.click("btnContinue");
  form.typeText("txt3pn", "1002");
  EXPECT_NE(form.slots[3].pn.note.find("the list is empty: read the source file again"), std::string::npos);
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
  form.setChecked("chkDefaults", false);
  EXPECT_TRUE(form.chk1.visible);
  form.setChecked("chkDefaults", true);
  EXPECT_FALSE(form.chk5.visible);
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
    const char* mend;  // where the cursor waits after the box
  } cases[] = {
      {"", "115", "22", "5", true, "Invalid Number", "Valid Section numbers are 1-36.", "txtSection"},
      {"14", "", "22", "5", true, "Missing Data", "Township number is a required field.", "txtTwp"},
      {"14", "115", "", "5", true, "Missing Data", "Range number is a required field.", "txtRange"},
      {"14", "115", "22", "6", true, "Invalid Number", "Valid Principal Meridian numbers are 4 or 5.", "txtPM"},
      {"14", "115", "22", "4.7", true, "Invalid Number", "Valid Principal Meridian numbers are 4 or 5.", "txtPM"},
      {"14", "115", "22", "5", false, "Missing Quarter Corner", "Enter all four quarter corners or hold the center.", "txt2pn"},
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
    EXPECT_EQ(form.txtPM.text, c.pm);  // read as typed: 4.7 is not cut to 4
    EXPECT_EQ(form.focusRequest, c.mend);
    form.focusRequest.clear();
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
  // The N 1/4 counts as present but is not there: the corners proportioned
  // on it land off the section, and the run says so in the surveyor's terms.
  ASSERT_FALSE(form.notices.said.empty());
  const std::string& said = form.notices.said.front();
  EXPECT_EQ(said.rfind("The N 1/4 corner is missing (its slot is empty and counts as X 0, Y 0), yet corner 1 (N 1/16, ", 0), 0u)
      << said;
  EXPECT_NE(said.find("Restore the missing corner first (Corner Restoration, or a restore entry of a township plan)"),
            std::string::npos);
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

TEST_F(SectionForm, TheDrawingFollowsTheRun) {
  EXPECT_TRUE(form.drawing().empty());
  location("14", "115", "22");
  corners({0, 20});  // the NW and SW corners missing
  regularChains();
  form.setChecked("chkLengths", true);
  form.click("btnContinue");
  const Picture d = form.drawing();
  const auto present = static_cast<std::size_t>(std::count_if(form.record.slots.begin(), form.record.slots.end(),
                                                               [](const CornerSlot& c) { return c.x != 0; }));
  EXPECT_EQ(std::count_if(d.marks.begin(), d.marks.end(), [](const PictureMark& m) { return m.filled; }), 6);
  EXPECT_EQ(d.marks.size(), present);
  // A line needs both ends: with the west corners missing, slots 1, 5, 6, 15, 16 and 21
  // are not computed either, which leaves 24 of the 42 lines (no bridges: 7 and 11 exist).
  EXPECT_EQ(d.lines.size(), 24u);
  EXPECT_EQ(std::count_if(d.lines.begin(), d.lines.end(), [](const PictureLine& l) { return l.heavy; }), 8);
  EXPECT_EQ(d.caption.rfind("Section 14, T115N, R22W", 0), 0u);
  // A label per corner, then each line's length along it: the north line's east quarter mile, level.
  ASSERT_EQ(d.texts.size(), present + 24);
  EXPECT_EQ(d.texts[0].text, "1002");
  const PictureText& north = d.texts[present];
  EXPECT_NEAR(std::stod(north.text), std::hypot(form.record.slots[3].x - form.record.slots[2].x,
                                                form.record.slots[3].y - form.record.slots[2].y), 0.005);
  EXPECT_NEAR(north.along, 0, 1);

  // Print Report: the report as written, then the drawing.
  form.click("btnPrint");
  ASSERT_EQ(shell.printed.size(), 1u);
  std::string report;
  for (const std::string& line : shell.printed[0].lines) report += line + "\r\n";
  EXPECT_EQ(report, TempDir::read(dir.path() / "SecSub.rpt"));
  ASSERT_TRUE(shell.printed[0].picture);

  form.click("btnClear");
  EXPECT_TRUE(form.drawing().empty());
  EXPECT_FALSE(form.btnPrint.enabled || form.btnSaveDrawing.enabled);
}

TEST_F(SectionForm, AnEmptyRequiredChainWarnsAndTheNoticeNamesItsCorner) {
  location("7", "115", "22");
  corners();
  form.typeText("txtNofWchain", "20");  // "S 1/4 mile on W line" left empty
  form.click("btnContinue");
  // Warned once, the run goes on, and the notice is no box of its own.
  EXPECT_EQ(titles(), (std::vector<std::string>{"Missing Data", "Program Complete"}));
  EXPECT_EQ(shell.boxes[0].text, "Number of chains is a required field.");
  ASSERT_TRUE(form.lblNotice.visible);
  EXPECT_NE(form.lblNotice.caption.find("The computed corner 15 (E 1/16 SE 1/4 12-115-23) lies on corner 20 "
                                        "(NE 13-115-23): \"S 1/4 mile on W line\" is empty."),
            std::string::npos)
      << form.lblNotice.caption;
  // ...and every corner the empty field moved, not only the one it put on another.
  EXPECT_NE(form.lblNotice.caption.find("As 0 chains, \"S 1/4 mile on W line\" moved corners 15 (E 1/16 SE 1/4 12-115-23), "
                                        "16 (CTR SW 1/4 07-115-22), 17 (E 1/16 SW 1/4 07-115-22) and 18 (CTR SE 1/4 "
                                        "07-115-22) from where 20 chains would put them."),
            std::string::npos)
      << form.lblNotice.caption;
  const Picture d = form.drawing();
  EXPECT_NE(d.caption.find("\nCoincident corners: 15 on 20"), std::string::npos);
  // The two corners share one label naming both; a ring marks the pair.
  EXPECT_EQ(std::count_if(d.texts.begin(), d.texts.end(), [&](const PictureText& t) { return t.text == form.record.slots[15].pointNumber + " = " + form.record.slots[20].pointNumber; }), 1);
  EXPECT_EQ(std::count_if(d.marks.begin(), d.marks.end(), [](const PictureMark& m) { return m.radius > 6; }), 1);
  EXPECT_EQ(form.notices.coincidences.size(), 1u);
  form.click("btnClear");
  EXPECT_FALSE(form.lblNotice.visible);
}

// No field that changes the computation is hidden with a value never seen:
// the fractional quarter-miles of the north and west tiers are shown empty.
TEST_F(SectionForm, FractionalQuarterMilesAreShownEmptyForTheUserToFill) {
  const std::pair<const char*, std::set<std::string>> cases[] = {
      {"3", {"NofW", "NofE"}},
      {"6", {"NofW", "SofW", "NofE", "WofN", "WofS"}},
      {"7", {"NofW", "SofW", "WofN", "WofS"}},
      {"31", {"NofW", "SofW", "WofN", "WofS"}},
      {"14", {}},
  };
  for (const auto& [section, shownEmpty] : cases) {
    form.click("btnClear");
    location(section, "115", "22");
    for (const auto& c : form.chains) {
      const bool fractional = shownEmpty.count(c.name) > 0;
      EXPECT_EQ(c.text.visible, fractional) << section << " " << c.name;
      EXPECT_EQ(c.text.text, fractional ? "" : "20") << section << " " << c.name;
    }
  }
}

// A shown fractional field left empty is taken as the regular 20 chains,
// and the run says so beside its boxes: on screen, in the result and on the
// report's notices page, never as another box.
TEST_F(SectionForm, AnEmptyFractionalQuarterMileIsTakenAs20ChainsAndSaid) {
  location("7", "115", "22");
  corners();
  for (const char* field : {"txtNofWchain", "txtSofWchain", "txtWofSchain"}) form.typeText(field, "20");
  form.click("btnContinue");
  EXPECT_EQ(titles(), (std::vector<std::string>{"Program Complete"}));
  const std::string said = "\"W 1/4 mile on N line\" was left empty and taken as 20 chains, the regular quarter-mile. In "
                           "section 7 it is a fractional quarter-mile (the lots lie along the west boundary of the township): "
                           "type its record length from the plat.";
  EXPECT_EQ(form.notices.said, std::vector<std::string>{said});
  EXPECT_NE(form.lblNotice.caption.find(said), std::string::npos);
  EXPECT_TRUE(form.chain("WofN").text.text.empty());  // the field stays as the user left it
  const std::string report = TempDir::read(dir.path() / "SecSub.rpt");
  EXPECT_NE(report.find("NOTICES - SECTION 7"), std::string::npos);
  EXPECT_NE(report.find("  - \"W 1/4 mile on N line\" was left empty and taken as 20 chains"), std::string::npos);
  // The sixteenth corner on the north line is the midpoint of its half-mile, as with 20 typed.
  const auto& n = form.record.slots;
  EXPECT_NEAR(n[1].x, (n[0].x + n[2].x) / 2, 1e-9);
  EXPECT_NEAR(n[1].y, (n[0].y + n[2].y) / 2, 1e-9);
}

TEST_F(SectionForm, NamesAndFeatureCodesComeFromTheBoxes) {
  location("14", "115", "22");
  corners({0});
  form.typeText("txt0xc", "512313.489");  // the NW corner by coordinates alone
  form.typeText("txt0yc", "289841.989");
  form.typeText("txt1pn", "s1");  // a number for a corner the run computes
  form.typeText("txt12pf", "MON");  // a feature for the computed center
  form.typeText("txt3pf", "IP");  // a sixteenth's feature: never written
  form.click("btnContinue");
  const std::string geopak = TempDir::read(dir.path() / "SecSub.inp");
  for (const char* line : {"\r\nSTO POI SNE1511522  X 512313.4890  Y 289841.9890  DES \"NE 15-115-22\"\r\n",
                           "\r\nSTO POI S1  X ", "\r\nSTO LIN SNA1411522 SNE1511522 TO S1\r\n",
                           "  FE:MON $\r\nSTO POI 8  X 514967.4257  Y 287220.1001  FEA MON  DES \"CENTER 14-115-22\"",
                           "\r\n$ $ Corner:03  XC:516277.6035  YC:289861.9005 $\r\nSTO POI 1  X 516277.6035  Y 289861.9005  DES"})
    EXPECT_NE(geopak.find(line), std::string::npos) << line;
  EXPECT_NE(form.lblNotice.caption.find("The corner 0 (NE 15-115-22) has no point number; the files name it SNE1511522."),
            std::string::npos);
}

TEST_F(SectionForm, NoPresentPositionIsEverWrittenWithoutAName) {
  const char* xy[8][2] = {{"512313.489", "289841.989"}, {"514953.421", "289851.665"}, {"517601.786", "289872.136"},
                          {"512325.918", "287204.468"}, {"517610.069", "287235.739"}, {"512340.218", "284561.407"},
                          {"514981.489", "284577.542"}, {"517620.225", "284590.898"}};
  const int plsSlots[] = {0, 2, 4, 10, 14, 20, 22, 24};
  std::mt19937 pick(14);
  auto chance = [&pick](int percent) { return static_cast<int>(pick() % 100) < percent; };
  for (int run = 0; run < 40; ++run) {
    form.click("btnClear");
    main.click("btnContinue");  // each run empties the point list
    location("14", "115", "22");
    for (int i = 0; i < 8; ++i) {
      const std::string n = "txt" + std::to_string(plsSlots[i]);
      const bool sectionCorner = i == 0 || i == 2 || i == 5 || i == 7;
      if (sectionCorner && chance(20)) continue;  // absent
      if (chance(30)) {
        form.typeText(n + "xc", xy[i][0]);  // by coordinates, without a number
        form.typeText(n + "yc", xy[i][1]);
      } else {
        form.typeText(n + "pn", std::to_string(1001 + i));
      }
    }
    for (int s : slot::others)
      if (chance(15)) form.typeText("txt" + std::to_string(s) + "pn", "t" + std::to_string(s));
    form.setChecked(chance(30) ? "optUnique" : "optIncr", true);
    form.typeText("txtIncr", chance(50) ? "" : "A100");
    form.click("btnContinue");
    ASSERT_EQ(shell.boxes.back().title, "Program Complete") << run;
    EXPECT_EQ(testing::unnamedGeopakLines(TempDir::read(dir.path() / "SecSub.inp")), std::vector<std::string>{}) << run;
  }
}

TEST_F(SectionForm, ReportPagesFitLongNamesAndMarkCoincidentLines) {
  location("7", "115", "22");
  corners({0});
  form.typeText("txt0pn", "NW-CORNER-OF-SECTION-7");  // 22 characters, and not in the source file
  form.typeText("txt0xc", "512313.489");
  form.typeText("txt0yc", "289841.989");
  form.typeText("txtNofWchain", "20");  // the S 1/4 mile on the W line left empty: 15 lies on 20
  form.typeText("txt1pn", "s1");
  form.click("btnContinue");
  std::string report = TempDir::read(dir.path() / "SecSub.rpt");
  report.erase(0, report.find('\f'));  // the first page cuts names to its columns without a sign
  // Cut with its sign, a blank on each side of the line to the next corner.
  EXPECT_NE(report.find("\nNW-CORNER-OF-SECTIO~ --- S1 ---"), std::string::npos);
  EXPECT_NE(report.find("   00  NW-CORNER-OF-SECTIO~ "), std::string::npos);
  EXPECT_NE(report.find("     NW-CORNER-OF-SECTIO~ - S1 "), std::string::npos);
  EXPECT_EQ(report.find("NW-CORNER-OF-SECTION"), std::string::npos);
  // Corner 15 fell on the SW corner: a line of no length and no direction.
  EXPECT_NE(report.find("     10 - 1006 "), std::string::npos);
  EXPECT_NE(report.find("0.000    coincident\r\n"), std::string::npos);
  EXPECT_EQ(report.find("60'"), std::string::npos);
}

TEST_F(SectionForm, ExportsTakeTheirKindFromTheEndingAndFaultsEndNothing) {
  EXPECT_FALSE(form.btnExport.enabled);
  location("14", "115", "22");
  corners();
  form.click("btnContinue");
  ASSERT_TRUE(form.btnExport.enabled);
  shell.boxes.clear();
  for (const char* name : {"c.csv", "c.TXT", "c.xml", "c.dxf", "c.pdf", "no/such/folder/c.csv"})
    shell.chosenFiles.push_back((dir.path() / name).string());
  for (int i = 0; i < 6; ++i) form.click("btnExport");
  for (const char* name : {"c.csv", "c.TXT", "c.xml", "c.dxf"}) {
    EXPECT_TRUE(std::filesystem::exists(dir.path() / name)) << name;
    // Said in the notice, the name a link to its folder; the refused ones are not.
    EXPECT_NE(form.lblNotice.caption.find("Written: " + (dir.path() / name).string()), std::string::npos) << name;
  }
  EXPECT_EQ(form.lblNotice.links.size(), 4u);
  ASSERT_EQ(shell.boxes.size(), 2u);
  EXPECT_EQ(shell.boxes[0].text, "Name the file with the ending of the kind you want: .csv, .txt, .xml, .dxf, .gpkg, .geojson or .kml.");
  EXPECT_EQ(shell.boxes[1].icon, Icon::Critical);  // cannot be written: said, and the program goes on
  EXPECT_EQ(shell.dialogTitles.back(), "Export the Corners");
}

// Later pages only when asked, after the report's own (which stay as they
// are): the evidence found at each corner, and latitudes and grid to ground
// (only with a system); the corner record says both, Tervalo points and
// PNEZD carry the evidence beside the designation.
TEST_F(SectionForm, LaterPagesWantACoordinateSystemAndExportsCarryEachCornersEvidence) {
  location("14", "115", "22");
  corners();
  form.setChecked("chkGround", true);
  form.setChecked("chkEvidence", true);
  form.setChecked("chkWhy", true);
  shell.boxes.clear();
  form.click("btnContinue");
  ASSERT_EQ(titles(), std::vector<std::string>{"Coordinate System"});  // no system: refused, nothing written
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "SecSub.why.txt"));

  program.crs = {3419, "", 1000.0};
  form.click("btnContinue");
  ASSERT_TRUE(form.ground);
  // Tervalo points carry each corner's evidence, latitude and longitude, and still read back; PNEZD its evidence.
  shell.chosenFiles.push_back((dir.path() / "c.txt").string());
  shell.chosenFiles.push_back((dir.path() / "c.csv").string());
  form.click("btnExport");
  form.click("btnExport");
  EXPECT_NE(TempDir::read(dir.path() / "c.csv").find("\r\n1001,289841.9890,512313.4890,,NE 15-115-22 / NW COR\r\n"), std::string::npos);
  const std::string points = TempDir::read(dir.path() / "c.txt");
  const GeographicPosition nw = form.ground->corners[0].at;
  char expected[96];
  std::snprintf(expected, sizeof expected, "1001,512313.4890,289841.9890,CM,NE 15-115-22,NW COR,%.9f,%.9f", nw.latitude, nw.longitude);
  EXPECT_EQ(points.rfind(expected, 0), 0u) << points;
  const PointList list = readWholeFile(dir.path() / "c.txt");
  EXPECT_EQ(list.records[0].description, "NE 15-115-22");
  // The next section started from those points keeps the evidence found in the field.
  main.typeText("txtInFile", (dir.path() / "c.txt").string());
  main.click("btnContinue");
  form.click("btnClear");
  location("14", "115", "22");
  corners();
  form.click("btnContinue");
  EXPECT_EQ(form.record.slots[0].evidence, "NW COR");
  EXPECT_EQ(form.record.slots[22].evidence, "S1/4");
}

// Two outputs of one run naming one file (by name, by "..", by a hard link)
// refuse the run before anything is written; the form is left as it was.
TEST_F(SectionForm, TwoOutputsOfOneRunNamingOneFileAreRefusedBeforeAnythingIsWritten) {
  location("14", "115", "22");
  corners();
  const auto linked = dir.write("kept.inp", "an earlier GEOPAK file");
  std::filesystem::create_hard_link(linked, dir.path() / "kept.rpt");
  const std::string d = dir.folder();
  const std::tuple<std::string, std::string, bool, const char*> cases[] = {
      {d + "same.txt", d + "same.txt", false, "The GEOPAK input \"" },
      {d + "sub/../same.txt", d + "same.txt", false, "The GEOPAK input \""},
      {d + "kept.inp", d + "kept.rpt", false, "The GEOPAK input \""},
      {d + "r.why.txt", d + "r.txt", true, "and the corner record \""}};
  for (const auto& [geopak, report, why, said] : cases) {
    SCOPED_TRACE(geopak);
    shell.boxes.clear();
    main.typeText("txtOutInp", geopak);
    main.typeText("txtReport", report);
    form.setChecked("chkWhy", why);
    form.click("btnContinue");
    ASSERT_EQ(titles(), std::vector<std::string>{"Output Files"});
    EXPECT_NE(shell.boxes[0].text.find(said), std::string::npos) << shell.boxes[0].text;
    EXPECT_TRUE(form.slots[12].xc.text.empty());  // nothing computed either
  }
  EXPECT_EQ(TempDir::read(linked), "an earlier GEOPAK file");
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "same.txt"));
}

// Section 14 and then section 6 in one sitting: section 14's files are kept
// in the history, named by what they held, listed under Recent, and the
// history keeps as many as the user says.
TEST_F(SectionForm, NothingARunReplacesIsLost) {
  program.keepsHistory = true;
  location("14", "115", "22");
  corners();
  form.click("btnContinue");
  EXPECT_TRUE(program.lastKept.empty());  // nothing was there to replace
  const std::string report14 = TempDir::read(dir.path() / "SecSub.rpt");
  main.click("mnuSecSub");
  main.typeText("txtInFile", (dir.path() / "pts.csv").string());
  main.click("btnContinue");
  form.click("btnClear");
  location("6", "48", "1");
  corners();
  shell.boxes.clear();
  form.click("btnContinue");
  const auto kept = program.history().files();
  ASSERT_EQ(kept.size(), 2u);
  std::set<std::string> names;
  for (const auto& k : kept) names.insert(k.filename().string());
  const std::string stamp = kept[0].filename().string().substr(std::string("SecSub 14-115-22W ").size(), 15);
  EXPECT_EQ(names, (std::set<std::string>{"SecSub 14-115-22W " + stamp + ".inp", "SecSub 14-115-22W " + stamp + ".rpt"}));
  EXPECT_EQ(TempDir::read(dir.path() / "History" / ("SecSub 14-115-22W " + stamp + ".rpt")), report14);
  EXPECT_NE(form.lblNotice.caption.find("The earlier SecSub.rpt is kept in the History folder as \"SecSub 14-115-22W "),
            std::string::npos);
  main.showRecent();
  EXPECT_TRUE(main.mnuHistoryFiles[0].visible);
  EXPECT_EQ(main.mnuHistoryFiles[0].caption.substr(0, 20), "&1  SecSub 14-115-22");
  main.click("mnuHistory1");
  EXPECT_EQ(shell.editorFiles.back(), kept[0]);
  // How many to keep: a whole number from 1, or the window says so and stays.
  auto& keep = program.form<frmHistory>("frmHistory");
  shell.onModal = [&](FormModel& f) {
    EXPECT_EQ(keep.txtKeep.text, "200");
    for (const char* refused : {"abc", "0", "2.5"}) {
      f.typeText("txtKeep", refused);
      f.click("btnOK");
      EXPECT_EQ(shell.boxes.back().text, "Give a whole number of files from 1 to 100000.");
    }
    f.typeText("txtKeep", "1");
    f.click("btnOK");
  };
  main.click("mnuHistoryKeep");
  EXPECT_EQ(program.history().files().size(), 1u);
  EXPECT_EQ(program.history().keep(), 1);
}

// A lost corner of the section restored in the Corner Restoration window:
// its position comes back into the slot and the run holds it as restored.
TEST_F(SectionForm, ALostCornerRestoredComesBackIntoItsSlotAndTheRecordSaysHow) {
  form.click("btnRestoreCorner");  // the cursor in no slot yet: said
  ASSERT_FALSE(shell.boxes.empty());
  EXPECT_EQ(shell.boxes.back().title, "Corner Restoration");
  location("14", "115", "22");
  corners({24});  // the SE corner lost
  form.lostFocus("txt24pn");
  shell.onModal = [](FormModel& window) {
    ASSERT_EQ(window.name(), "frmRestore");
    auto& restore = static_cast<frmRestore&>(window);
    EXPECT_EQ(restore.txtName.text, "SE Cor SEC 14");
    // One-point control: 40 chains south of the E 1/4 (point 1005).
    window.typeText("txtNorthPoint", "1005");
    window.typeText("txtNorthRecord", "40");
    window.click("btnRestore");
  };
  form.click("btnRestoreCorner");
  EXPECT_EQ(form.slots[24].xc.text, "517610.0690");
  EXPECT_EQ(form.slots[24].yc.text, "284595.7390");  // 287235.739 - 2640
  form.click("btnContinue");
  EXPECT_EQ(form.origins[24].kind, CornerOrigin::Kind::Restored);
  EXPECT_EQ(form.why(24).rfind("Held as restored by one-point control: 40.00 chains from the north control 1005", 0), 0u)
      << form.why(24);
}

TEST_F(SectionForm, AutomaticNumbersThatRepeatATypedNumberAreNeverExported) {
  location("14", "115", "22");
  corners();  // typed 1001 to 1008
  form.typeText("txtIncr", "1005");  // the computed corners take 1005, 1006, ... again
  form.click("btnContinue");
  shell.boxes.clear();
  for (const char* name : {"c.csv", "c.txt", "c.xml", "c.dxf"}) {
    shell.chosenFiles.push_back((dir.path() / name).string());
    form.click("btnExport");
    EXPECT_FALSE(std::filesystem::exists(dir.path() / name)) << name;
  }
  ASSERT_EQ(shell.boxes.size(), 4u);
  const std::string& text = shell.boxes[0].text;
  EXPECT_NE(text.find("1005 names corner 1 (N 1/16 NW 1/4 14-115-22) at 513633.4550, 289846.8270 and corner 14 (E 1/4 COR "
                      "14-115-22) at 517610.0690, 287235.7390."),
            std::string::npos)
      << text;
}

}  // namespace
}  // namespace tervalo
