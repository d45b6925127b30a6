#include "township/township.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "support/bench.h"
#include "township/frm_township.h"
#include "township/township_map.h"

namespace tervalo {
namespace {

using testing::TempDir;

const std::string kExamples = std::string(TERVALO_SOURCE_DIR) + "/examples/";

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const auto end = text.find("\r\n", at);
    lines.push_back(text.substr(at, end - at));
    at = end == std::string::npos ? text.size() : end + 2;
  }
  return lines;
}

class Township : public ::testing::Test {
 protected:
  TempDir dir;
  TownshipPlan plan = readPlanFile(kExamples + "township.plan.json");
  TownshipOutcome run() { return runTownship(plan, RunOptions{dir.folder(), Date{2026, 11, 21}}, allForms()); }
};

// Four adjoining sections with irregular chains on their shared lines: each
// section's files are a single run's; the plan's corners and lines once.
TEST_F(Township, FourSectionsEachAsASingleRunSharedCornersOnce) {
  const TownshipOutcome out = run();
  EXPECT_EQ(out.exitCode, 0);
  for (const SectionPlan& section : plan.sections) {
    TempDir single;
    const RunOutcome alone = runJob(sectionJob(plan, section, single.folder()), RunOptions{single.folder(), Date{2026, 11, 21}}, allForms());
    for (const char* ending : {".inp", ".rpt"}) {
      const std::string name = "SecSub-" + section.section + ending;
      EXPECT_EQ(TempDir::read(dir.path() / name), TempDir::read(single.path() / name)) << name;
    }
  }
  // A 9 by 9 grid of corners; the shared middle lines hold 17 of them and 16 lines.
  EXPECT_EQ(out.map.points.size(), 81u);
  EXPECT_EQ(out.sharedCorners, 17u);
  EXPECT_EQ(out.map.lines.size(), 4u * 40u - 16u);
  EXPECT_TRUE(out.disagreements.empty());
  const auto csv = linesOf(TempDir::read(dir.path() / "Township.csv"));
  std::set<std::string> names;
  for (const std::string& line : std::vector<std::string>(csv.begin() + 1, csv.end()))  // after the header
    if (!line.empty()) {
      EXPECT_TRUE(names.insert(line.substr(0, line.find(','))).second) << line;
    }
  EXPECT_EQ(names.size(), 81u);
  const std::string inp = TempDir::read(dir.path() / "Township.inp");
  std::set<std::string> lineNames;
  for (const std::string& line : linesOf(inp))
    if (line.rfind("STO LIN ", 0) == 0) {
      EXPECT_TRUE(lineNames.insert(line.substr(8, line.find(' ', 8) - 8)).second) << line;
    }
  EXPECT_EQ(lineNames.size(), 144u);
  EXPECT_NE(TempDir::read(dir.path() / "Township.txt").find("Disagreements over 0.01 ft: 0\r\n"), std::string::npos);
}

// A different chain value on one side of a shared line is found, with the difference.
TEST_F(Township, AChainThatDiffersAcrossASharedLineIsReported) {
  plan.sections[1].chains["NofW"] = "20.5";  // section 13's side of the line section 14 measures as 20.25
  const TownshipOutcome out = run();
  ASSERT_EQ(out.disagreements.size(), 1u);
  const Disagreement& d = out.disagreements[0];
  ASSERT_EQ(d.positions.size(), 2u);
  EXPECT_EQ(d.positions[0].section, "14");
  EXPECT_EQ(d.positions[0].slot, 9);
  EXPECT_EQ(d.positions[1].section, "13");
  EXPECT_EQ(d.positions[1].slot, 5);
  // 20 of 40.25 and 20 of 40.5 chains of the same quarter-mile, from the E 1/4 of 14 toward its NE corner.
  const double quarterMile = std::hypot(517601.786 - 517610.069, 289872.136 - 287235.739);
  EXPECT_NEAR(d.difference, quarterMile * (20 / 40.25 - 20 / 40.5), 1e-6);
  const std::string summary = TempDir::read(dir.path() / "Township.txt");
  EXPECT_NE(summary.find("Disagreements over 0.01 ft: 1\r\n"), std::string::npos);
  EXPECT_NE(summary.find("    Section 13 slot 5:"), std::string::npos);
  EXPECT_EQ(out.result["disagreements"][0]["positions"].size(), 2u);

  // The corner keeps the number of the first section that numbered it, and the other one it was given.
  const auto corner = std::find_if(out.map.points.begin(), out.map.points.end(), [&d](const MapPoint& p) { return p.name == d.name; });
  EXPECT_EQ(corner->number, "2007");
  EXPECT_EQ(corner->otherNumbers, std::vector<std::string>{"3003"});
  EXPECT_NE(summary.find("  XENE1411522 (2007, also 3003)  E 1/16 NE 1/4 14-115-22\r\n"), std::string::npos);

  // The map as data: an outline and a number per section, a mark per corner, the disagreeing one ringed.
  const Picture map = townshipMap(out, 1);
  EXPECT_EQ(std::count_if(map.lines.begin(), map.lines.end(), [](const PictureLine& l) { return l.tip.rfind("Section ", 0) == 0; }), 4);
  EXPECT_EQ(std::count_if(map.lines.begin(), map.lines.end(), [](const PictureLine& l) { return l.ink == Ink::Accent && l.heavy; }), 1);
  EXPECT_EQ(std::count_if(map.texts.begin(), map.texts.end(), [](const PictureText& t) { return t.place == Place::Centre; }), 4);
  const auto rings = std::count_if(map.marks.begin(), map.marks.end(), [](const PictureMark& m) { return m.ink == Ink::Alert; });
  EXPECT_EQ(rings, 1);
  EXPECT_EQ(map.marks.size() - static_cast<std::size_t>(rings), out.map.points.size());
  EXPECT_EQ(map.mapUnits, "ft");
  // A click on the ring picks the disagreement and the row of section 14, which placed it first; inside 23, its row.
  const MapPick onRing = pickOnMap(out, corner->x + 1, corner->y, 5);
  EXPECT_EQ(onRing.disagreement, std::optional<std::size_t>(0));
  EXPECT_EQ(onRing.row, std::optional<int>(0));
  EXPECT_EQ(pickOnMap(out, 513000, 280000, 5).row, std::optional<int>(2));
  EXPECT_FALSE(pickOnMap(out, 0, 0, 5).row);
}

// A section refused by the form is never passed over: listed with its box
// and its row, the run's status says so, and the next section goes on.
TEST_F(Township, ARefusedSectionIsListedWithItsBoxAndTheNextGoesOn) {
  for (int corner : {0, 1, 3, 5, 6}) plan.sections[1].corners[static_cast<std::size_t>(corner)] = {};  // only NE, E, SE
  plan.sections[2].township = "";
  const TownshipOutcome out = run();
  EXPECT_EQ(out.exitCode, 3);
  EXPECT_FALSE(out.result["sections"][1]["completed"].get<bool>());
  EXPECT_TRUE(out.result["sections"][3]["completed"].get<bool>());
  ASSERT_EQ(out.stopped.size(), 2u);
  EXPECT_EQ(out.stopped[0].row, 1);
  EXPECT_EQ(out.stopped[0].boxes.front().rfind("Missing Quarter Corner: ", 0), 0u) << out.stopped[0].boxes.front();
  const std::string summary = TempDir::read(dir.path() / "Township.txt");
  EXPECT_NE(summary.find("Sections run: 2 (14, 24)\r\nSections ended or refused: 13, 23\r\n  Row 2 (section 13): refused\r\n"
                         "    Missing Quarter Corner: "),
            std::string::npos)
      << summary;
  EXPECT_NE(summary.find("  Row 3 (section 23): refused\r\n    Missing Data: "), std::string::npos) << summary;
  EXPECT_EQ(out.stoppedLines.size(), 2u + out.stopped[0].boxes.size() + out.stopped[1].boxes.size());
}

// A section whose run showed a box but went on (exit 0) is no quieter in
// the summary than a refused one: its boxes and notices stand under it.
TEST_F(Township, ASectionsBoxesAndNoticesStandUnderItInTheSummary) {
  plan.sections[0].section = "7";  // west tier: its W line's chains are required, its N and S lines' fractional
  plan.sections[0].chains = {{"EofS", "20"}};
  const TownshipOutcome out = run();
  EXPECT_EQ(out.exitCode, 0);
  const std::string summary = TempDir::read(dir.path() / "Township.txt");
  EXPECT_NE(summary.find("Sections with boxes or notices: 1\r\n  Row 1 (section 7):\r\n"
                         "    Missing Data: Number of chains is a required field.\r\n"
                         "    \"W 1/4 mile on N line\" was left empty and taken as 20 chains"),
            std::string::npos)
      << summary;
  plan = readPlanFile(kExamples + "township.plan.json");
  run();
  EXPECT_NE(TempDir::read(dir.path() / "Township.txt").find("Sections with boxes or notices: none\r\n"), std::string::npos);
}

// A county's control file: thousands of points, far beyond the section
// window's 151; each section is given only the points it names.
TEST_F(Township, ASourceOfAnySizeRunsAsTheSmallOneDoes) {
  const TownshipOutcome small = run();
  const std::string corners = TempDir::read(dir.path() / "Township.csv");
  std::string county;
  for (int i = 0; i < 3000; ++i) county += "C" + std::to_string(i) + "," + std::to_string(400000 + i) + ",200000,CM,CONTROL\n";
  plan.source = dir.write("county.csv", county + TempDir::read(kExamples + "township.csv")).string();
  const TownshipOutcome large = run();
  EXPECT_EQ(large.exitCode, 0) << large.summary[3];
  EXPECT_EQ(TempDir::read(dir.path() / "Township.csv"), corners);
  EXPECT_EQ(large.map.points.size(), small.map.points.size());
}

TEST_F(Township, APlanCornerNamingAMissingPointIsRefusedByRowCornerAndNumber) {
  plan.sections[1].corners[1].point = "1099";  // section 13's N 1/4
  const TownshipOutcome out = run();
  EXPECT_EQ(out.exitCode, 3);
  ASSERT_EQ(out.stopped.size(), 1u);
  EXPECT_EQ(out.stopped[0].row, 1);
  EXPECT_EQ(out.stopped[0].boxes[0].rfind("Missing Point: corner N names point 1099, which is not in the source file ", 0), 0u);
  EXPECT_TRUE(out.result["sections"][2]["completed"].get<bool>());
}

// A lost corner four sections share, restored once by double proportion
// before they run: each section holds it, and the township's files say it
// is restored and by which rule.
TEST_F(Township, ALostCornerIsRestoredOnceForEverySectionThatSharesIt) {
  plan = readPlanFile(kExamples + "township-restored.plan.json");
  const TownshipOutcome out = run();
  EXPECT_EQ(out.exitCode, 0);
  ASSERT_EQ(out.result["restored"].size(), 1u);
  EXPECT_EQ(out.result["restored"][0]["method"], "double");
  EXPECT_TRUE(out.disagreements.empty());  // four sections, one restored position
  const auto restored = std::find_if(out.map.points.begin(), out.map.points.end(), [](const MapPoint& p) { return p.status == "restored"; });
  ASSERT_NE(restored, out.map.points.end());
  EXPECT_NEAR(restored->x, 517623.535, 5e-4);
  EXPECT_EQ(restored->rule.rfind("restored by double proportion", 0), 0u);
  EXPECT_EQ(std::count_if(out.map.points.begin(), out.map.points.end(), [](const MapPoint& p) { return p.status == "restored"; }), 1);
  for (const char* report : {"SecSub-14.rpt", "SecSub-23.rpt"})
    EXPECT_NE(TempDir::read(dir.path() / report).find("517623.5350"), std::string::npos) << report;
  EXPECT_NE(TempDir::read(dir.path() / "Township.txt").find("Restored corners: 1"), std::string::npos);
  // A restoration that cannot be made refuses every section naming it.
  plan.sections[0].corners[7].restore->north->point = "9999";
  plan.sections[0].corners[7].restore->name = "ELSEWHERE";
  const TownshipOutcome refused = run();
  ASSERT_EQ(refused.stopped.size(), 1u);
  EXPECT_EQ(refused.stopped[0].boxes[0].rfind("Restore Refused: corner SE (ELSEWHERE) cannot be restored: the north control names point 9999", 0), 0u)
      << refused.stopped[0].boxes[0];
}

TEST_F(Township, ARunInWhichNoSectionCompletedLeavesTheEarlierFiles) {
  const auto earlier = dir.write("Township.csv", "the earlier run's corners\r\n");
  for (SectionPlan& s : plan.sections) s.township = "";
  const TownshipOutcome out = run();
  EXPECT_EQ(out.exitCode, 3);
  EXPECT_TRUE(out.result["files"].empty());
  EXPECT_EQ(TempDir::read(earlier), "the earlier run's corners\r\n");
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "Township.txt"));
  EXPECT_NE(out.summary.back().find("No section completed"), std::string::npos);
}

TEST_F(Township, TownshipFilesThatCannotBeWrittenStillReportEverySection) {
  std::filesystem::create_directory(dir.path() / "Township.xml");  // a folder where a file should go
  const TownshipOutcome out = run();
  EXPECT_EQ(out.exitCode, 3);
  EXPECT_EQ(out.result["sections"].size(), 4u);
  EXPECT_NE(out.result["fault"].get<std::string>().find("Township.xml"), std::string::npos) << out.result["fault"];
  EXPECT_NE(out.summary.back().find("could not all be written"), std::string::npos);
}

// The table has no room for a row's meridian and chains: the selected
// row's fields show and edit them.
TEST(TownshipWindow, TheSelectedRowShowsAndEditsItsMeridianAndChains) {
  testing::Bench bench;
  auto& [dir, shell, program] = bench;
  auto& window = program.form<frmTownship>("frmTownship");
  window.plan = readPlanFile(kExamples + "township.plan.json");
  window.selectRow(1);
  EXPECT_EQ(window.fraRow.caption, "Row 2 (section 13)");
  EXPECT_EQ(window.rowChains[0].caption.caption, "N 1/4 mile on W line");
  EXPECT_EQ(window.rowChains[0].text.text, "20.25");
  window.typeText("txtNofWchain", "20.5");
  window.typeText("txtSofWchain", "");
  window.typeText("txtPM", "5");
  EXPECT_EQ(window.plan.sections[1].chains.at("NofW"), "20.5");
  EXPECT_EQ(window.plan.sections[1].chains.count("SofW"), 0u);  // empty: the section window's own default
  EXPECT_EQ(window.plan.sections[1].meridian, "5");
  window.selectRow(0);
  EXPECT_EQ(window.rowChains[0].text.text, "");
  EXPECT_EQ(window.txtPM.text, "");
}

TEST(TownshipPlanFile, RefusedWithWhereAndReadBackAsWritten) {
  const std::pair<const char*, const char*> refused[] = {
      {R"({"sections":[]})", "at least one section"},
      {R"({"version":2,"sections":[{"section":"1"}]})", "newer Tervalo"},
      {R"({"sections":[{"section":"1","corner":{}}]})", "row 1 (section 1): unknown key \"corner\""},
      {R"({"sections":[{"section":"1","township":"2"},{"section":"1","township":"2"}]})",
       "row 2 (section 1): section 1 of T2 RW is listed twice"},
      // Sections are the same by their numbers, and plan text never becomes a path.
      {R"({"sections":[{"section":"14"},{"section":"014"}]})", "row 2 (section 014): section 14 of T R"},
      {R"({"sections":[{"section":"../14"}]})", "row 1: \"section\" must be a plain number, not \"../14\""},
      {R"({"sections":[{"section":"14","township":"115/x"}]})", "row 1 (section 14): \"township\" must be a plain number"},
      {R"({"sections":[{"section":"14","range":"2\n2"}]})", "\"range\" must be a plain number, not \"2\\n2\""},
      {R"({"sections":[{"section":"1\u0000"}]})", "must be a plain number, not \"1\\u0000\""},
      {R"({"sections":[{"section":"1","corners":{"NW":{"x":"1"}}}]})", "corner NW: typed coordinates need both x and y"},
      {R"({"sections":[{"section":"1","chains":{"NofX":"20"}}]})", "chains: unknown key \"NofX\""},
      {R"({"sections":[{"section":"1","direction":"N"}]})", "\"direction\" is \"E\" or \"W\""},
      {R"({"sections":[{"section":"1","section":"2"}]})", "not valid JSON"},
  };
  for (const auto& [text, message] : refused) {
    try {
      parsePlan(text);
      ADD_FAILURE() << text;
    } catch (const PlanError& e) {
      EXPECT_NE(std::string(e.what()).find(message), std::string::npos) << e.what();
    }
  }
  const TownshipPlan plan = readPlanFile(kExamples + "township.plan.json");
  const TownshipPlan again = parsePlan(planText(plan));
  EXPECT_EQ(planText(again), planText(plan));
  EXPECT_EQ(again.sections[1].corners[1].point, "1009");
  EXPECT_EQ(again.sections[0].chains.at("NofE"), "20.25");
}

}  // namespace
}  // namespace tervalo
