// Every tool on the project: a section job looks its corner numbers up in
// the project and writes the very files it writes from the source file,
// then stores its corners; the traverse and restoration windows store
// their points, asking once before they replace any.

#include <gtest/gtest.h>

#include <fstream>
#include <tuple>
#include <sstream>

#include "app/runner.h"
#include "hcurve/frm_horz_curve.h"
#include "project/point_import.h"
#include "project/project_session.h"
#include "restore/frm_restore.h"
#include "restore/restoration_file.h"
#include "support/bench.h"
#include "township/plan.h"
#include "township/township.h"
#include "traverse/frm_traverse.h"
#include "traverse/traverse_file.h"

namespace tervalo {
namespace {

using testing::TempDir;

const std::string kSource = TERVALO_SOURCE_DIR;

TEST(ProjectTools, ASectionJobLooksItsCornersUpInTheProjectAndStoresThem) {
  TempDir dir;
  const auto file = dir.path() / "sec14.gpkg";
  createProject(file, {})->store(pointsOfFile(kSource + "/examples/section14.sdms", "", {}), OnDuplicate::Skip, "import");
  // The source file holds none of the corners: they come from the project alone.
  const auto other = dir.write("other.csv", "9999,1.0,1.0,XX,NOTHING\n");
  std::ifstream in(kSource + "/tests/golden/secsub-regular-14.job.json");
  std::stringstream text;
  text << in.rdbuf();
  std::string job = text.str();
  job.replace(job.find("@EXAMPLES@/section14.sdms"), 25, other.string());
  job.insert(job.find('{') + 1, "\"project\": \"" + file.string() + "\",");

  const RunOutcome outcome = runJob(parseJob(job, allForms()), RunOptions{dir.folder(), Date{2026, 11, 21}}, allForms());
  ASSERT_EQ(outcome.exitCode, 0) << outcome.result.dump(1);
  EXPECT_EQ(TempDir::read(dir.path() / "SecSub.inp"), TempDir::read(kSource + "/tests/golden/secsub-regular-14.inp"));
  // The eight corners found stay as the project holds them; the seventeen computed are added.
  EXPECT_EQ(outcome.result["project"]["stored"], 17);
  EXPECT_EQ(outcome.result["project"]["replaced"], 0);
  const auto project = openProject(file);
  EXPECT_EQ(project->count(), 9 + 17);
  EXPECT_EQ(project->find("1001")->source, "import section14.sdms");
  const auto centre = project->findAll({"2001"});
  ASSERT_EQ(centre.size(), 1u);
  EXPECT_EQ(centre[0].source.rfind("Section 14, T115N, R22W", 0), 0u) << centre[0].source;

  // A project that cannot be opened ends the job with its word, nothing run.
  job.replace(job.find(file.string()), file.string().size(), (dir.path() / "none.gpkg").string());
  const RunOutcome missing = runJob(parseJob(job, allForms()), RunOptions{dir.folder(), Date{2026, 11, 21}}, allForms());
  EXPECT_NE(missing.exitCode, 0);
  EXPECT_NE(missing.result["messages"][0]["text"].get<std::string>().find("none.gpkg\" does not exist"), std::string::npos);
}

TEST(ProjectTools, ATownshipPlanTakesItsPointsFromTheProjectAndStoresEveryCornerOnce) {
  TempDir dir;
  const auto file = dir.path() / "twp.gpkg";
  createProject(file, {})->store(pointsOfFile(kSource + "/examples/township.csv", "", {}), OnDuplicate::Skip, "import");
  TownshipPlan plan = readPlanFile(kSource + "/examples/township.plan.json");
  plan.source.clear();
  plan.project = file.string();
  const TownshipOutcome out = runTownship(plan, RunOptions{dir.folder(), Date{2026, 11, 21}}, allForms());
  ASSERT_EQ(out.exitCode, 0) << out.result.dump(1);
  EXPECT_LT(out.result["project"]["stored"].get<std::size_t>(), out.map.points.size());  // the found corners stay as they are
  EXPECT_EQ(out.result["project"]["replaced"], 0);
  EXPECT_NE(TempDir::read(dir.path() / "Township.txt").find("corners in the project"), std::string::npos);

  // A corner naming a point the project lacks is refused by its row, the project named.
  plan.sections[0].corners[0].point = "7777";
  const TownshipOutcome missing = runTownship(plan, RunOptions{dir.folder(), Date{2026, 11, 21}}, allForms());
  ASSERT_FALSE(missing.stopped.empty());
  EXPECT_NE(missing.stopped[0].boxes[0].find("which is not in the project " + file.string()), std::string::npos) << missing.stopped[0].boxes[0];
}

TEST(ProjectTools, TheTraverseAndRestorationWindowsStoreTheirPoints) {
  testing::Bench b;
  b.program.project = std::make_unique<ProjectSession>(createProject(b.dir.path() / "farm.gpkg", {}));
  auto& traverse = b.program.form<frmTraverse>("frmTraverse");
  traverse.setOpen(true);
  EXPECT_TRUE(traverse.btnStore.enabled);
  traverse.setInput(readTraverseFile(kSource + "/examples/section14.rw5"));
  traverse.click("btnStore");  // adjusts first
  EXPECT_NE(traverse.lblResult.caption.find("\nStored 9 points in farm."), std::string::npos) << traverse.lblResult.caption;
  const auto station = b.program.project->file().find("1002");
  ASSERT_TRUE(station);
  EXPECT_EQ(station->source, "traverse typed adjusted by compass");

  // Again: the project holds them, and No stores them under the next free numbers.
  b.shell.answers.push_back(Answer::No);
  traverse.click("btnStore");
  EXPECT_NE(b.shell.boxes.back().text.find("The project holds 1002, 1003"), std::string::npos) << b.shell.boxes.back().text;
  EXPECT_NE(traverse.lblResult.caption.find("(9 under the next free numbers)"), std::string::npos) << traverse.lblResult.caption;
  b.program.project->undo();
  EXPECT_EQ(b.program.project->file().count(), 9);

  auto& restore = b.program.form<frmRestore>("frmRestore");
  restore.setOpen(true);
  restore.setFile(readRestorationFile(kSource + "/examples/section14.restore.json"));
  restore.click("btnStore");
  const auto restored = b.program.project->file().values("feature", 10);
  EXPECT_NE(std::find(restored.begin(), restored.end(), "RES"), restored.end());
}

TEST(ProjectTools, AHorizontalCurveStoresItsPcPtAndCenterFromAPiOfTheProject) {
  testing::Bench b;
  b.program.project = std::make_unique<ProjectSession>(createProject(b.dir.path() / "road.gpkg", {}));
  b.program.project->file().store({{0, "PI1", 5000, 5000, std::nullopt, "PI", "", "", "", ""}}, OnDuplicate::Skip, "typed");
  auto& curve = b.program.form<frmHorzCurve>("frmHorzCurve");
  curve.setOpen(true);
  curve.typeText("txtDelta", "30");
  curve.typeText("txtRadius", "1000");
  curve.typeText("txtCurvePt", "10+00");
  curve.click("btnCalculate");
  // Each refusal names what is missing and stores nothing.
  for (const auto& [pi, back, first, said] : {std::tuple{"PI9", "0-00-00", "10", "Point PI9 is not in the project."},
                                              {"pi1", "north", "10", "Give the back tangent"}, {"PI1", "N 0-00-00 E", "", "Give the whole number"}}) {
    curve.txtPiPoint.text = pi;
    curve.txtBackTangent.text = back;
    curve.txtFirstNumber.text = first;
    curve.click("btnStore");
    EXPECT_EQ(b.shell.boxes.back().text.rfind(said, 0), 0u) << b.shell.boxes.back().text;
  }
  EXPECT_EQ(b.program.project->file().count(), 1);
  // Delta 30, R 1000 (T 267.9492) from a PI at 5000, 5000, the line running north, turning right.
  curve.txtFirstNumber.text = "10";
  curve.click("btnStore");
  struct Expected {
    const char* number;
    double n, e;
  };
  for (const Expected& x : {Expected{"10", 4732.0508, 5000}, Expected{"11", 5232.0508, 5133.9746}, Expected{"12", 4732.0508, 6000}}) {
    const auto p = b.program.project->file().find(x.number);
    ASSERT_TRUE(p) << x.number;
    EXPECT_NEAR(p->northing, x.n, 5e-5) << x.number;
    EXPECT_NEAR(p->easting, x.e, 5e-5) << x.number;
  }
  EXPECT_EQ(b.program.project->file().find("10")->description, "PC STA " + curve.lblPC.caption);
}

}  // namespace
}  // namespace tervalo
