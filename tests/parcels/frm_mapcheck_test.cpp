// The Mapcheck window played through its model: deed calls pasted as a
// COGO MAPCHECK block and as a spreadsheet's cells, checked course by course
// with the published closure; a bad call refused by its row with nothing
// checked; the figure stored in a project as one step of Undo, exported as
// LandXML and drawn as a plat; what was typed kept for the next opening;
// the Surveyor window keeps who signs in the project.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "export/landxml.h"
#include "parcels/frm_mapcheck.h"
#include "parcels/frm_surveyor.h"
#include "project/project_session.h"
#include "support/bench.h"

namespace tervalo {
namespace {

struct MapcheckBench : testing::Bench {
  frmMapcheck& form = program.form<frmMapcheck>("frmMapcheck");
  MapcheckBench() { form.setOpen(true); }
  // The report's lines, a wrapped description read as one.
  std::string report() const {
    std::string all;
    for (const std::string& l : form.lstReport.items) all += l + " ";
    return all;
  }
};

TEST(MapcheckWindow, PastedCallsCheckAndTheFigureGoesToTheProjectLandXmlAndPlat) {
  MapcheckBench b;
  b.program.project = std::make_unique<ProjectSession>(createProject(b.dir.path() / "deed.gpkg", {}));
  b.form.opened();
  b.shell.setClipboardText("MAPCHECK\nLINE N 26-10 E 285.10\nLINE S75-25E 610.45\nLINE S 15-30-00 W 720.48\nN1-42W\t203.00\nN 53-06 W 647.02\nEND\n");
  b.form.click("btnPasteCalls");
  ASSERT_EQ(b.form.rows.size(), 5u);
  EXPECT_EQ(b.form.cell(3, 0), "N1-42W");
  EXPECT_EQ(b.form.cell(3, 1), "203.00");
  b.form.click("btnCheck");
  EXPECT_EQ(b.form.courses().size(), 5u);
  EXPECT_NE(b.form.lblResult.caption.find("precision 1:2,7"), std::string::npos) << b.form.lblResult.caption;
  EXPECT_NE(b.report().find("  Misclosure 0.88"), std::string::npos) << b.report();
  EXPECT_NE(b.report().find("Beginning at a point at N 5000.00, E 5000.00; thence N 26°10'00\" E, a distance"), std::string::npos)
      << b.report();
  EXPECT_FALSE(b.form.sketch().empty());

  // Stored: the point of beginning, the four corners after it and the end that misses it.
  b.form.typeText("txtFirst", "101");
  b.form.click("btnStore");
  EXPECT_TRUE(b.program.project->file().find("101"));
  EXPECT_TRUE(b.program.project->file().find("106"));
  EXPECT_FALSE(b.program.project->file().find("107"));
  b.program.project->undo();
  EXPECT_FALSE(b.program.project->file().find("101"));

  b.shell.chosenFiles.push_back((b.dir.path() / "deed.xml").string());
  b.form.click("btnExport");
  std::ifstream xml(b.dir.path() / "deed.xml");
  std::stringstream text;
  text << xml.rdbuf();
  const auto parcels = landXmlParcels(text.str());
  ASSERT_EQ(parcels.size(), 1u);
  EXPECT_EQ(parcels[0].courses.size(), 5u);
  EXPECT_GT(parcels[0].closure, 0.88);

  b.shell.chosenFiles.push_back((b.dir.path() / "deed.dxf").string());
  b.form.click("btnPlat");
  EXPECT_TRUE(std::filesystem::exists(b.dir.path() / "deed.dxf")) << b.form.lblResult.caption;
}

TEST(MapcheckWindow, ABadCallIsRefusedByItsRowAndWhatWasTypedIsKept) {
  MapcheckBench b;
  struct Case {
    std::vector<std::array<std::string, 9>> rows;
    std::string said;
  };
  const std::vector<Case> cases{
      {{{"N0E", "", "", "", "", "", "", "", ""}}, "call 1 has no distance"},
      {{{"N0E", "100"}, {"", "", "R", "50", "", "120", "", "", ""}, {"S0E", "100"}},
       "call 2: a chord of 120.0000 is longer than the diameter of a radius of 50.0000 (100.0000)"},
      {{{"N0E", "100"}, {"S0E", "100"}}, "a parcel needs three courses at least; this figure has 2"},
      {{{"N45E", "141.4214"}, {"S0E", "100"}, {"N45W", "141.4214"}, {"S0E", "100"}}, "the figure crosses itself: call 1 crosses call 3"},
      {{{"N0E", "100"}, {"", "", "X", "50", "10", "", "", "", ""}, {"S0E", "100"}}, "call 2 is a curve: its turn is L or R, not \"X\""},
  };
  for (const Case& c : cases) {
    b.form.rows.clear();
    for (const auto& cells : c.rows) b.form.rows.push_back({cells});
    b.shell.boxes.clear();
    b.form.click("btnCheck");
    EXPECT_EQ(b.form.lblResult.caption, "Not checked: " + c.said + ".");
    EXPECT_TRUE(b.form.courses().empty());
    EXPECT_FALSE(b.shell.boxes.empty());
    EXPECT_FALSE(b.form.btnPlat.enabled);
  }
  b.shell.setClipboardText("LINE N45E\n");
  b.form.click("btnPasteCalls");
  EXPECT_EQ(b.shell.boxes.back().text, "The calls cannot be pasted: line 1: a LINE wants a bearing and a distance.");

  // What was typed comes back at the next opening, faults and all.
  b.form.typeText("txtName", "Deed of 1998");
  b.form.keepInputs();
  frmMapcheck next(b.program);
  next.opened();
  EXPECT_EQ(next.txtName.text, "Deed of 1998");
  ASSERT_EQ(next.rows.size(), b.form.rows.size());
  EXPECT_EQ(next.cell(1, 2), "X");
}

TEST(SurveyorWindow, WhoSignsIsKeptInTheProject) {
  testing::Bench b;
  const auto file = b.dir.path() / "signed.gpkg";
  b.program.project = std::make_unique<ProjectSession>(createProject(file, {}));
  auto& form = b.program.form<frmSurveyor>("frmSurveyor");
  form.setOpen(true);
  form.opened();
  EXPECT_EQ(form.txtSurveyor.text, "");
  form.typeText("txtSurveyor", "A. Surveyor");
  form.typeText("txtLicense", "12345");
  form.typeText("txtFirm", "Survey Firm");
  form.click("btnOK");
  b.program.project.reset();
  const ProjectSettings kept = openProject(file)->settings();
  EXPECT_EQ(kept.surveyor, "A. Surveyor");
  EXPECT_EQ(kept.license, "12345");
  EXPECT_EQ(kept.firm, "Survey Firm");
}

}  // namespace
}  // namespace tervalo
