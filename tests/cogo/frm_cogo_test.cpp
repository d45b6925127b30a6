// The COGO window played through its model on a real project: a command
// typed answers into the log and stores its point as one step of Undo, a
// refused one says why and stores nothing; the forms make the commands the
// README gives; a click on the map picks a point's number; a MAPCHECK is
// typed line by line; the log is saved.

#include <gtest/gtest.h>

#include "cogo/frm_cogo.h"
#include "project/project_session.h"
#include "support/bench.h"

namespace tervalo {
namespace {

struct CogoBench : testing::Bench {
  frmCogo& form = program.form<frmCogo>("frmCogo");
  CogoBench() {
    program.project = std::make_unique<ProjectSession>(createProject(dir.path() / "lot.gpkg", {}));
    program.project->file().store({{0, "1", 0, 0, std::nullopt, "", "", "", "", ""},
                                   {0, "2", 0, 400, std::nullopt, "", "", "", "", ""},
                                   {0, "3", 300, 400, std::nullopt, "", "", "", "", ""}},
                                  OnDuplicate::Skip, "typed");
    form.setOpen(true);
  }
  std::string log() const {
    std::string all;
    for (const std::string& l : form.lstLog.items) all += l + "\n";
    return all;
  }
};

TEST(CogoWindow, CommandsAnswerInTheLogAndStoreAsOneStepOfUndo) {
  CogoBench b;
  b.form.typeText("txtCommand", "inverse 1 3");
  b.form.click("btnRun");
  EXPECT_NE(b.log().find("inverse 1 3\n  1 to 3  N 53°07'48\" E  az 53°07'48\"  500.0000\n"), std::string::npos) << b.log();
  EXPECT_EQ(b.form.txtCommand.text, "");
  b.form.typeText("txtCommand", "LOCATE 10 FROM 1 AZIMUTH 90 DISTANCE 100");
  b.form.click("btnRun");
  EXPECT_NE(b.log().find("  stored 1 point in lot"), std::string::npos) << b.log();
  EXPECT_TRUE(b.program.project->file().find("10"));
  // A refusal: said in the log and under it, the line kept to be mended, nothing stored.
  b.form.typeText("txtCommand", "LOCATE 10 FROM 1 AZIMUTH 90 DISTANCE 200");
  b.form.click("btnRun");
  EXPECT_EQ(b.form.lblResult.caption, "point 10 is in the project already: give the new point a number of its own.");
  EXPECT_EQ(b.form.txtCommand.text, "LOCATE 10 FROM 1 AZIMUTH 90 DISTANCE 200");
  EXPECT_EQ(b.program.project->file().find("10")->easting, 100);
  b.form.click("btnUndo");
  EXPECT_FALSE(b.program.project->file().find("10"));

  // A deed's calls typed line by line answer at END.
  for (const char* line : {"MAPCHECK AT 1", "LINE N 0-00-00 E 300", "LINE S 53-07-48 E 500", "LINE N 90-00-00 W 400", "END"}) {
    b.form.typeText("txtCommand", line);
    b.form.click("btnRun");
  }
  EXPECT_NE(b.log().find("  Precision 1:"), std::string::npos) << b.log();
  EXPECT_NE(b.log().find("area 60000.06 sq ft"), std::string::npos) << b.log().substr(b.log().find("MAPCHECK"));

  b.shell.chosenFiles.push_back((b.dir.path() / "cogo.txt").string());
  b.form.click("btnSaveLog");
  EXPECT_NE(testing::TempDir::read(b.dir.path() / "cogo.txt").find("inverse 1 3\r\n"), std::string::npos);
}

TEST(CogoWindow, TheFormsMakeTheCommandsAndTheMapPicksPoints) {
  CogoBench b;
  struct Case {
    const char* form;
    std::vector<const char*> fields;
    const char* command;
  };
  for (const Case& c : {Case{"Inverse", {"1", "3"}, "INVERSE 1 3"},
                        Case{"Locate by bearing or azimuth", {"11", "1", "N 45-00-00 E", "10"}, "LOCATE 11 FROM 1 BEARING N 45-00-00 E DISTANCE 10"},
                        Case{"Locate by bearing or azimuth", {"11", "1", "45-00-00", "10"}, "LOCATE 11 FROM 1 AZIMUTH 45-00-00 DISTANCE 10"},
                        Case{"Intersect two distances", {"12", "1", "500", "2", "300", ""}, "INTERSECT 12 DISTANCE 1 500 DISTANCE 2 300"},
                        Case{"Intersect two distances", {"12", "1", "500", "2", "300", "3"}, "INTERSECT 12 DISTANCE 1 500 DISTANCE 2 300 NEAR 3"},
                        Case{"Point at a station and offset", {"13", "1", "2", "100", ""}, "POINTAT 13 FROM 1 TO 2 STATION 100"},
                        Case{"Area", {"1 2 3"}, "AREA 1 2 3"},
                        Case{"Inverse", {"1", ""}, ""}}) {
    b.form.typeText("cmbForm", c.form);
    for (std::size_t i = 0; i < frmCogo::kFields; ++i) b.form.txtFields[i].text = i < c.fields.size() ? c.fields[i] : "";
    EXPECT_EQ(b.form.formCommand(), c.command) << c.form;
    EXPECT_EQ(b.form.txtFields[c.fields.size() - 1].visible, true);
  }
  b.form.typeText("cmbForm", "Intersect two distances");
  for (std::size_t i = 0; i < 6; ++i) b.form.txtFields[i].text = std::vector<const char*>{"12", "1", "500", "2", "300", "3"}[i];
  b.form.click("btnFormRun");
  EXPECT_EQ(b.program.project->file().find("12")->northing, 300);

  // The map: a click on a point puts its number where the cursor was.
  const Picture map = b.form.map();
  EXPECT_EQ(map.mapUnits, "ft");
  b.form.pickInto = "txtCommand";
  b.form.txtCommand.text = "INVERSE";
  b.form.mapClicked({400, 0.5}, 1);
  EXPECT_EQ(b.form.txtCommand.text, "INVERSE 2");
  b.form.pickInto = "txtField2";
  b.form.mapClicked({0.5, 0}, 1);
  EXPECT_EQ(b.form.txtFields[1].text, "1");
}

}  // namespace
}  // namespace tervalo
