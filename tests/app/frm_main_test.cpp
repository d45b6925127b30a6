// The main window's model: file fields, Continue, the menu.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "app/frm_main.h"
#include "project/frm_shared_project.h"
#include "project/project_session.h"
#include "secsub/frm_sec_sub.h"
#include "support/bench.h"
#include "support/test_server.h"
#include "text/errors.h"

namespace tervalo {
namespace {

using testing::TempDir;

class MainWindow : public ::testing::Test, protected testing::Bench {
 protected:
  frmMain& main = program.form<frmMain>("frmMain");
  std::filesystem::path csv = dir.write("pts.csv", "1001,512313.489,289841.989,CM,NW COR\n1002,1,2,IP\n");
};

TEST_F(MainWindow, TheCaptionAndMenuStandInOrder) {
  EXPECT_EQ(main.caption, " Ardel Coordinate Geometry Program  (Tervalo32)");
  std::vector<std::string> menu, project;
  for (const auto& e : main.controls())
    if (const auto* item = std::get_if<MenuItem*>(&e.control))
      ((*item)->parent.starts_with("mnuProject") ? project : menu).push_back(e.name);
  const std::vector<std::string> own{"mnuSecSub", "mnuCurve", "mnuChorz", "mnuCvert", "mnuMisc", "mnuMgrade",
                                     "mnuMprop", "mnuHelp", "mnuExit", "mnuTownship", "mnuTraverse", "mnuRestore",
                                     "mnuProject", "mnuOptions", "mnuRecent"};
  // The program's own entries in their order, the project's beside them, then the recent work.
  EXPECT_EQ(std::vector<std::string>(menu.begin(), menu.begin() + 15), own);
  // Ten recent files, a line, Reopen Previous Inputs, then the kept earlier files and the History window.
  EXPECT_EQ(menu.size(), 15u + 10u + 1u + 1u + 10u + 2u);
  EXPECT_EQ(menu[25], "mnuPrevious");
  EXPECT_TRUE(main.mnuPrevious.separatorBefore);
  EXPECT_EQ(menu.back(), "mnuHistoryKeep");
  // New, Open, Open Shared, the recent projects, Import, Export, Points, COGO, Mapcheck, Network Adjustment, Alignment, Surveyor, Close.
  ASSERT_EQ(project.size(), 4u + 10u + 9u);
  EXPECT_EQ(std::vector<std::string>(project.begin(), project.begin() + 4),
            (std::vector<std::string>{"mnuProjectNew", "mnuProjectOpen", "mnuProjectShared", "mnuProjectRecent"}));
  EXPECT_EQ(std::vector<std::string>(project.end() - 9, project.end()),
            (std::vector<std::string>{"mnuProjectImport", "mnuProjectExport", "mnuProjectPoints", "mnuProjectCogo", "mnuProjectMapcheck",
                                      "mnuProjectNetwork", "mnuProjectAlignment", "mnuProjectSurveyor", "mnuProjectClose"}));
  EXPECT_EQ(main.mnuMprop.caption, "Proportion (S:V)");
  EXPECT_EQ(main.mnuMprop.parent, "mnuMisc");
}

TEST_F(MainWindow, AProjectIsMadeShownAndOpenedAgainAtTheNextStart) {
  EXPECT_EQ(main.lblProject.caption, "No project is open.");
  EXPECT_FALSE(main.mnuProjectPoints.enabled);
  const std::string file = (dir.path() / "farm").string();
  shell.chosenFiles.push_back(file);
  shell.answers.push_back(Answer::No);  // local coordinates in metres
  main.click("mnuProjectNew");
  EXPECT_EQ(shell.modalForms, std::vector<std::string>{"frmCrs"});  // the project's system is chosen first
  EXPECT_EQ(main.lblProject.caption, "Project: farm (local coordinates, metres), 0 points");
  EXPECT_TRUE(main.mnuProjectPoints.enabled);
  EXPECT_EQ(main.mnuProjectRecentFiles[0].caption, "&1  " + file + ".gpkg");
  main.click("mnuProjectClose");
  EXPECT_FALSE(program.project);

  // The next start opens it again; a project that is not one is said and left closed.
  Program next(shell, dir.folder());
  auto& again = next.form<frmMain>("frmMain");
  again.reopenLastProject();
  ASSERT_TRUE(next.project);
  EXPECT_EQ(next.project->file().settings().unit, "m");
  const auto damaged = dir.write("damaged.gpkg", "SQLite format 3 and then nothing");
  EXPECT_FALSE(again.openProjectFile(damaged.string()));
  EXPECT_NE(shell.boxes.back().text.find("damaged.gpkg"), std::string::npos) << shell.boxes.back().text;
  EXPECT_TRUE(next.project);  // the open project stays open
}

TEST_F(MainWindow, ASharedProjectIsMadeAndOpenedByItsDatabaseAndNoPasswordIsKept) {
  const std::string database = testing::freshDatabase("office");
  const std::string words = testing::testServer() + " dbname=" + database;
  // A password among the words is refused before anything is kept.
  shell.onModal = [&](FormModel& f) {
    static_cast<frmSharedProject&>(f).txtConnection.text = words + " password=secret";
    f.click("btnNew");
  };
  main.click("mnuProjectShared");
  EXPECT_EQ(shell.modalForms, std::vector<std::string>{"frmSharedProject"});
  EXPECT_NE(shell.boxes.back().text.find("holds a password"), std::string::npos) << shell.boxes.back().text;
  EXPECT_FALSE(program.project);
  EXPECT_TRUE(program.recentProjects.files().empty());

  shell.onModal = [&](FormModel& f) {
    if (f.name() == "frmCrs") return;
    static_cast<frmSharedProject&>(f).txtConnection.text = "PG:" + words;
    f.click("btnNew");
  };
  shell.answers.push_back(Answer::Yes);  // local coordinates in feet
  main.click("mnuProjectShared");
  ASSERT_TRUE(program.project);
  EXPECT_EQ(main.lblProject.caption, "Project: " + database + " (local coordinates, feet), 0 points");
  EXPECT_EQ(program.recentProjects.files().front(), "PG:" + words);
  main.click("mnuProjectClose");

  // Opened again by its words; at the next start the window proposes the last shared project.
  Program next(shell, dir.folder());
  auto& again = next.form<frmMain>("frmMain");
  shell.onModal = [&](FormModel& f) {
    ASSERT_EQ(f.name(), "frmSharedProject");
    EXPECT_EQ(static_cast<frmSharedProject&>(f).txtConnection.text, words);
    f.click("btnOpen");
  };
  again.click("mnuProjectShared");
  ASSERT_TRUE(next.project);
  EXPECT_EQ(next.project->file().path().string(), "PG:" + words);
}

TEST_F(MainWindow, ContinueWithAMissingFileOrAPipeSaysSoAndStays) {
  ::mkfifo((dir.path() / "pipe").c_str(), 0644);
  // A pipe is never opened for reading, so nothing waits for a writer.
  const std::pair<std::string, std::string> cases[] = {
      {(dir.path() / "nope.csv").string(), "File does not exist."},
      {(dir.path() / "pipe").string(), "\"" + (dir.path() / "pipe").string() + "\" is not a regular file (a pipe, a device or a socket)."},
      {dir.path().string(), "\"" + dir.path().string() + "\" is a folder, not a file."}};
  for (const auto& [name, said] : cases) {
    shell.boxes.clear();
    main.typeText("txtInFile", name);
    main.click("btnContinue");
    ASSERT_EQ(shell.boxes.size(), 1u);
    EXPECT_EQ(shell.boxes[0].title, "Input File Error!");
    EXPECT_EQ(shell.boxes[0].text, said);
    EXPECT_EQ(shell.boxes[0].icon, Icon::Critical);
  }
  EXPECT_EQ(program.points.records[0].name, "");
}

TEST_F(MainWindow, ContinueReadsTheSourceFile) {
  main.typeText("txtInFile", csv.string());
  main.click("btnContinue");
  EXPECT_TRUE(shell.boxes.empty());
  EXPECT_EQ(program.inputFileName, csv.string());
  EXPECT_EQ(program.points.records[1].name, "1002");
  EXPECT_EQ(program.points.pointCount, 3);
}

TEST_F(MainWindow, SectionSubdivisionResetsNamesAndPointsEveryTime) {
  main.typeText("txtInFile", csv.string());
  main.click("btnContinue");
  main.click("mnuSecSub");
  EXPECT_EQ(program.points.records[0].name, "");
  EXPECT_EQ(main.txtOutInp.text, dir.folder() + "SecSub.inp");
  EXPECT_EQ(main.txtReport.text, dir.folder() + "SecSub.rpt");
  main.typeText("txtReport", "/tmp/mine.rpt");
  main.click("mnuSecSub");
  EXPECT_EQ(main.txtReport.text, dir.folder() + "SecSub.rpt");
}

TEST_F(MainWindow, ProposesTheOutputNamesFromTheStartAndNoticesCutCoordinates) {
  EXPECT_EQ(main.txtOutInp.text, dir.folder() + "SecSub.inp");
  EXPECT_EQ(main.txtReport.text, dir.folder() + "SecSub.rpt");
  EXPECT_FALSE(main.lblNotice.visible);
  const auto report = dir.write("xy.txt",
                                "Copyright: x\n    Point                 X                 Y\n"
                                "---------------   ---------------  ----------------   ------------  ------------\n"
                                "101                 2,170,582.900     1,289,841.989\n\n\n\n"
                                "102                   513,633.455       289,846.827\n");
  main.typeText("txtInFile", report.string());
  main.click("btnContinue");
  EXPECT_TRUE(shell.boxes.empty());  // a notice, not a box
  EXPECT_EQ(program.points.records[1].x, 2170);
  EXPECT_TRUE(main.lblNotice.visible);
  // What the file gave, then what was cut.
  EXPECT_EQ(main.lblNotice.caption.rfind("Read xy.txt as an X-Y coordinate report: 2 points.\nCoordinates cut: ", 0), 0u)
      << main.lblNotice.caption;
  EXPECT_NE(main.lblNotice.caption.find("point 101 hold"), std::string::npos);
  // The section form opening over the main window says what was cut too.
  EXPECT_EQ(program.form<frmSecSub>("frmSecSub").lblNotice.caption, program.sourceNotice);
  EXPECT_NE(program.sourceNotice.find("point 101 hold"), std::string::npos);
  main.click("mnuSecSub");
  EXPECT_FALSE(main.lblNotice.visible);
}

TEST_F(MainWindow, TheNoticeSaysWhatEachFormatGave) {
  const std::pair<std::string, std::string> examples[] = {
      {"section14.sdms", "Read section14.sdms as an SDMS file: 9 points."},
      {"section14.csv", "Read section14.csv as a comma-delimited file: 9 points."},
      {"section14-xy.txt", "Read section14-xy.txt as an X-Y coordinate report: 9 points."},
      {"section14-ne.txt", "Read section14-ne.txt as an N-E coordinate report: it gives no points."}};
  for (const auto& [file, said] : examples) {
    Program fresh{shell, dir.folder()};  // the format flags stay set for the life of a program
    auto& window = fresh.form<frmMain>("frmMain");
    window.click("mnuSecSub");
    window.typeText("txtInFile", std::string(TERVALO_SOURCE_DIR) + "/examples/" + file);
    window.click("btnContinue");
    EXPECT_EQ(window.lblNotice.caption.substr(0, said.size()), said);
  }
}

TEST_F(MainWindow, BrowseAndDropReadTheSourceAtOnce) {
  shell.chosenFiles.push_back(csv.string());
  main.click("btnInFile");
  EXPECT_EQ(shell.dialogTitles.back(), "Select the File For Input");
  EXPECT_EQ(main.txtInFile.text, csv.string());
  EXPECT_EQ(program.points.records[0].name, "1001");

  main.click("btnInFile");  // cancelled: nothing changes
  EXPECT_EQ(main.txtInFile.text, csv.string());

  program.points.clearRecords(0, 150);
  main.dropFiles("txtInFile", {csv.string(), "/second/ignored"});
  EXPECT_EQ(program.points.records[0].name, "1001");
  main.dropFiles("txtReport", {"/x/y.rpt"});
  EXPECT_EQ(main.txtReport.text, "/x/y.rpt");

  shell.chosenFiles.push_back("/out/a.inp");
  main.click("btnOut1");
  EXPECT_EQ(shell.dialogTitles.back(), "Select the Output File");
  EXPECT_EQ(main.txtOutInp.text, "/out/a.inp");
}

TEST_F(MainWindow, AnUnreadableDropEndsTheProgramAfterItsBox) {
  const auto bad = dir.write("bad.txt", "one line of words\n");
  EXPECT_THROW(main.dropFiles("txtInFile", {bad.string()}), ProgramEnd);
  ASSERT_EQ(shell.boxes.size(), 1u);
  EXPECT_EQ(shell.boxes[0].title, "Input File Error");
  EXPECT_EQ(shell.boxes[0].text, "Input File Format Not Recognized");
}

// From Recent or from the desktop, a file opens where it belongs: a
// traverse, raw, restoration or plan file in its window, a coordinate file
// as the source.
TEST_F(MainWindow, AFileOpensInTheWindowOfItsKind) {
  const std::string examples = std::string(TERVALO_SOURCE_DIR) + "/examples/";
  for (const auto& [file, window] : {std::pair{"section14.rw5", "frmTraverse"}, {"loop.traverse.json", "frmTraverse"},
                                     {"section14.restore.json", "frmRestore"}, {"township.plan.json", "frmTownship"}}) {
    shell.modalForms.clear();
    main.openFile(examples + file);
    EXPECT_EQ(shell.modalForms, std::vector<std::string>{window}) << file;
    EXPECT_EQ(program.recent.files().front(), examples + file);
  }
  shell.modalForms.clear();
  main.click("mnuRecent3");  // the raw file, read as a traverse again and not as coordinates
  EXPECT_EQ(shell.modalForms, std::vector<std::string>{"frmTraverse"});
  main.openFile(csv.string());
  EXPECT_EQ(main.txtInFile.text, csv.string());
}

TEST_F(MainWindow, ExitClosesTheMainWindow) {
  main.setOpen(true);
  main.click("mnuExit");
  EXPECT_FALSE(main.isOpen());
}

}  // namespace
}  // namespace tervalo
