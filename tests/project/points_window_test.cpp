// The Points window played through its model, on a real project file: rows
// pasted from a spreadsheet, edited by the number rules, sorted, filtered
// and found; renumbering refusing collisions; every edit (and a tool's
// store of many points) undone and done again as one step; an import and
// a project of an older Tervalo brought up to date beside its copy.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "project/frm_points.h"
#include "project/project_session.h"
#include "support/bench.h"
#include "support/test_server.h"

namespace tervalo {
namespace {

// The window on a project in a GeoPackage, or in a database of the tests' server.
struct PointsBench : testing::Bench {
  frmPoints& form = program.form<frmPoints>("frmPoints");
  std::string file;

  explicit PointsBench(bool shared = false)
      : file(shared ? testing::databaseProject(testing::freshDatabase("farm")) : (dir.path() / "farm.gpkg").string()) {
    ProjectSettings settings;
    program.project = std::make_unique<ProjectSession>(createProject(file, settings));
    form.setOpen(true);
  }
  std::vector<std::string> column(int c) {
    std::vector<std::string> out;
    for (long long r = 0; r < form.rowCount(); ++r) out.push_back(form.cell(r, c));
    return out;
  }
  std::string lastBox() const { return shell.boxes.empty() ? "" : shell.boxes.back().text; }
};

const char* const kSheet =
    "Number\tNorthing\tEasting\tElevation\tDescription\tFeature\tEvidence\n"
    "10\t5000.12345678\t2000.5\t101.25\tIP FOUND\tIP\tFD 1/2 IP\n"
    "2\t5100\t2100\t\tFENCE COR\tFC\t\n"
    "1\t4900\t1900\t99\tCP 1\tCP\t\n"
    "ab7\t5050\t2050\t\tSTONE\tST\tFD STONE\n";

class PointsWindow : public ::testing::TestWithParam<bool> {};

TEST_P(PointsWindow, PastedRowsAreEditedSortedFilteredAndFound) {
  PointsBench b(GetParam());
  b.shell.setClipboardText(kSheet);
  b.form.click("btnPaste");
  ASSERT_EQ(b.form.rowCount(), 4);
  EXPECT_EQ(b.column(0), (std::vector<std::string>{"10", "2", "1", "AB7"}));  // numbers in capitals, as the section form looks them up
  EXPECT_EQ(b.form.cell(1, 3), "");                                          // no elevation is none, never 0
  EXPECT_EQ(b.form.cell(0, 7), "Points window paste");
  EXPECT_EQ(b.form.lblProject.caption, "Project: " + b.program.project->name() + " (local coordinates, feet), 4 points");

  // Numbers sort by value, letters after; any column either way.
  b.form.sortBy(0, false);
  EXPECT_EQ(b.column(0), (std::vector<std::string>{"1", "2", "10", "AB7"}));
  b.form.sortBy(1, true);
  EXPECT_EQ(b.column(0), (std::vector<std::string>{"2", "AB7", "10", "1"}));
  b.form.sortBy(-1, false);

  // Filters: a range of whole numbers, a description, a feature, an evidence.
  struct Filter {
    const char *from, *to, *description, *feature, *evidence;
    std::vector<std::string> shown;
  };
  for (const Filter& f : {Filter{"2", "10", "", "", "", {"10", "2"}}, Filter{"", "", "cor", "", "", {"2"}},
                          Filter{"", "", "", "st", "", {"AB7"}}, Filter{"", "", "", "", "fd 1/2 ip", {"10"}},
                          Filter{"", "", "%", "", "", {}}}) {
    b.form.txtFrom.text = f.from;
    b.form.txtTo.text = f.to;
    b.form.txtDescription.text = f.description;
    b.form.cmbFeature.text = f.feature;
    b.form.cmbEvidence.text = f.evidence;
    b.form.click("btnShow");
    EXPECT_EQ(b.column(0), f.shown) << f.from << f.description << f.feature << f.evidence;
  }
  b.form.txtFind.text = "1";
  b.form.click("btnFind");
  EXPECT_NE(b.lastBox().find("the filter hides it"), std::string::npos);
  b.form.click("btnShowAll");
  b.form.click("btnFind");
  EXPECT_EQ(b.form.currentRow, 2);

  // Edits in place by the rules; a refused one changes nothing.
  struct Edit {
    int column;
    const char* text;
    const char* box;  // "" where the edit stands
  };
  for (const Edit& e : {Edit{0, "1 A", "a blank"}, Edit{0, "10", "holds a point 10 already"}, Edit{1, "abc", "must be a number"},
                        Edit{3, "", ""}, Edit{0, "c1", ""}, Edit{4, "CP 1 RESET", ""}}) {
    const std::size_t boxes = b.shell.boxes.size();
    b.form.setCell(2, e.column, e.text);
    if (*e.box) {
      EXPECT_NE(b.lastBox().find(e.box), std::string::npos) << b.lastBox();
    } else {
      EXPECT_EQ(b.shell.boxes.size(), boxes) << b.lastBox();
    }
  }
  const auto c1 = b.program.project->file().find("C1");
  ASSERT_TRUE(c1);
  EXPECT_FALSE(c1->elevation);
  EXPECT_EQ(c1->description, "CP 1 RESET");
  EXPECT_FALSE(b.program.project->file().find("1"));

  // Each edit is one step back.
  b.form.click("btnUndo");
  b.form.click("btnUndo");
  EXPECT_TRUE(b.program.project->file().find("1"));
  b.form.click("btnRedo");
  EXPECT_EQ(b.program.project->file().find("C1")->description, "CP 1");
}

TEST_P(PointsWindow, RenumberDeleteAndAStoreOfManyPointsUndoAsOneStep) {
  PointsBench b(GetParam());
  b.shell.setClipboardText(kSheet);
  b.form.click("btnPaste");
  ProjectFile& project = b.program.project->file();
  const std::string modified = project.find("2")->modified;

  // 1 and 2 by +8 would take 10, which is not renumbered with them.
  b.form.sortBy(0, false);
  b.form.select({0, 1});
  b.form.txtOffset.text = "8";
  b.form.click("btnRenumber");
  EXPECT_NE(b.lastBox().find("holds 10 already"), std::string::npos) << b.lastBox();
  b.form.select({0, 1, 2});  // 1, 2 and 10 by +1: 2 and 10 move out of the way together
  b.form.txtOffset.text = "1";
  b.form.click("btnRenumber");
  EXPECT_EQ(b.column(0), (std::vector<std::string>{"2", "3", "11", "AB7"}));
  b.form.select({3});
  b.form.click("btnRenumber");
  EXPECT_NE(b.lastBox().find("no whole number"), std::string::npos);

  b.form.select({0, 1});
  b.form.click("btnDelete");  // answered Yes
  EXPECT_EQ(b.column(0), (std::vector<std::string>{"11", "AB7"}));
  b.form.click("btnUndo");
  b.form.click("btnUndo");
  EXPECT_EQ(b.column(0), (std::vector<std::string>{"1", "2", "10", "AB7"}));
  EXPECT_EQ(project.find("2")->modified, modified);  // a point put back is the point as it was

  // A tool's run of many points, renumbering where numbers are held, goes back in one step.
  std::vector<ProjectPoint> run;
  for (int i = 1; i <= 300; ++i) run.push_back({0, std::to_string(i), 1000.0 + i, 2000.0, std::nullopt, "STA", "", "", "", ""});
  const StoreCounts counts = b.program.project->store(run, OnDuplicate::Renumber, "traverse loop", "Store the traverse");
  EXPECT_EQ(counts.renumbered, 3);
  EXPECT_EQ(b.form.rowCount(), 304);
  EXPECT_EQ(b.program.project->undoText(), "Store the traverse");
  b.form.click("btnUndo");
  EXPECT_EQ(b.form.rowCount(), 4);
  b.form.click("btnRedo");
  EXPECT_EQ(b.form.rowCount(), 304);

  // The map draws what is shown, the selection marked over it.
  b.form.select({0});
  const Picture map = b.form.map();
  EXPECT_EQ(map.marks.size(), 305u);
  EXPECT_EQ(map.marks.back().ink, Ink::Accent);
  EXPECT_EQ(map.mapUnits, "ft");
  b.form.mapClicked({2000.0, 1005.0}, 0.5);
  EXPECT_EQ(b.form.cell(b.form.currentRow, 1), "1005.0000");
}

TEST_P(PointsWindow, CopiedRowsPasteBackExactlyAndImportsSayWhatTheyDid) {
  PointsBench b(GetParam());
  b.shell.setClipboardText(kSheet);
  b.form.click("btnPaste");
  b.form.select({0, 3});
  b.form.click("btnCopy");
  const std::string copied = b.shell.clipboardText();
  EXPECT_NE(copied.find("10\t5000.12345678\t2000.5\t101.25\tIP FOUND\tIP\tFD 1/2 IP\n"), std::string::npos) << copied;

  // Pasting numbers the project holds asks first; No pastes nothing.
  b.shell.answers.push_back(Answer::No);
  b.form.click("btnPaste");
  EXPECT_NE(b.lastBox().find("have numbers the project holds"), std::string::npos);
  EXPECT_EQ(b.form.rowCount(), 4);
  for (const char* bad : {"5\tnorth\t1\n", "5\t1\t1\n5\t2\t2\n", "5 5\t1\t1\n"}) {
    b.shell.setClipboardText(bad);
    b.form.click("btnPaste");
    EXPECT_NE(b.lastBox().find("Nothing is pasted: line"), std::string::npos) << bad;
  }

  // A headerless file read by the order the user gives; held numbers renumbered.
  const auto csv = b.dir.write("shots.csv", "2,1000,2000,10,A\n500,1001,2001,,B\n");
  b.form.txtColumns.text = "PNEZD";
  b.form.cmbDuplicate.text = b.form.cmbDuplicate.items[2];
  b.shell.chosenFiles.push_back(csv.string());
  b.form.click("btnImport");
  EXPECT_EQ(b.form.lblResult.caption, "Read 2 points from shots.csv: 2 stored (0 replacing a point, 1 renumbered), 0 skipped as the project holds their numbers.");
  EXPECT_EQ(b.program.project->file().find("501")->description, "A");
  // A header names its order, which the window proposes.
  b.dir.write("shots.csv", "Point,Easting,Northing\n600,1,2\n");
  b.shell.chosenFiles.push_back(csv.string());
  b.form.click("btnImport");
  EXPECT_EQ(b.form.txtColumns.text, "PEN");
  EXPECT_EQ(b.program.project->file().find("600")->northing, 2);
}

INSTANTIATE_TEST_SUITE_P(BothHomes, PointsWindow, ::testing::Values(false, true), [](const auto& home) { return home.param ? "postgis" : "gpkg"; });

TEST(Project, AnOlderProjectIsBroughtUpToDateAfterACopyIsKept) {
  testing::TempDir dir;
  const auto file = dir.path() / "old.gpkg";
  {
    ProjectSettings settings;
    createProject(file, settings)->store({{0, "1", 10, 20, std::nullopt, "", "", "", "", ""}}, OnDuplicate::Skip, "test");
  }
  // As the first version left it: no indexes for the filters, version 1.
  const std::string ogr = "ogrinfo -q " + file.string() + " -sql ";
  ASSERT_EQ(std::system((ogr + "\"DROP INDEX points_feature\" >/dev/null").c_str()), 0);
  ASSERT_EQ(std::system((ogr + "\"DROP INDEX points_evidence\" >/dev/null").c_str()), 0);
  ASSERT_EQ(std::system((ogr + "\"UPDATE tervalo_project SET value = '1' WHERE key = 'schema'\" >/dev/null").c_str()), 0);
  const auto project = openProject(file);
  EXPECT_TRUE(std::filesystem::exists(dir.path() / "old.v1.gpkg"));
  EXPECT_EQ(project->find("1")->easting, 20);
  EXPECT_EQ(project->values("feature", 10).size(), 0u);
  const std::string indexes = "ogrinfo -ro -q " + file.string() + " -sql \"SELECT name FROM sqlite_master WHERE name = 'points_feature'\"";
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(indexes.c_str(), "r"), ::pclose);
  std::string out;
  char buffer[256];
  while (pipe && std::fgets(buffer, sizeof buffer, pipe.get())) out += buffer;
  EXPECT_NE(out.find("points_feature"), std::string::npos) << out;
}

}  // namespace
}  // namespace tervalo
