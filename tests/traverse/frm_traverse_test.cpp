// The Traverse window through its model: a raw file opened and adjusted,
// its report, adjusted points and export written, the inputs saved and read
// back, a course that is not what it must be named in the box, and what
// was typed kept for the next opening.

#include <gtest/gtest.h>

#include "support/bench.h"
#include "traverse/frm_traverse.h"
#include "traverse/traverse_file.h"

namespace tervalo {
namespace {

using testing::TempDir;

const std::string kExamples = std::string(TERVALO_SOURCE_DIR) + "/examples/";

TEST(TraverseWindow, ARawFileIsAdjustedReportedExportedAndSaved) {
  testing::Bench bench;
  auto& [dir, shell, program] = bench;
  auto& form = program.form<frmTraverse>("frmTraverse");
  form.setOpen(true);
  shell.chosenFiles.push_back(kExamples + "section14.rw5");
  form.click("btnOpenRaw");
  ASSERT_EQ(form.rows.size(), 8u);
  EXPECT_EQ(form.txtStart.text, "1001");
  EXPECT_EQ(form.cell(0, 1), "Angle right");
  EXPECT_NE(form.lblSideShots.caption.find("2 side shots"), std::string::npos) << form.lblSideShots.caption;
  EXPECT_FALSE(form.btnWriteReport.enabled);

  form.click("btnAdjust");
  EXPECT_EQ(form.lblResult.caption, "Misclosure 0.0161 ft, precision 1:1,313,997, angular 7.0\"; adjusted by compass rule.");
  EXPECT_TRUE(form.btnWriteReport.enabled && form.btnExport.enabled);
  EXPECT_FALSE(form.sketch().lines.empty());

  // The report as named and the adjusted points beside it, a source file with the side shots' notes.
  shell.chosenFiles.push_back((dir.path() / "sec14.rpt").string());
  form.click("btnWriteReport");
  ASSERT_EQ(shell.writtenFiles.size(), 2u);
  EXPECT_NE(TempDir::read(dir.path() / "sec14-adjusted.txt").find("101,514956.6928,289886.9721,SS,FENCE CORNER"), std::string::npos);
  shell.chosenFiles.push_back((dir.path() / "sec14.xml").string());
  form.click("btnExport");
  EXPECT_NE(TempDir::read(dir.path() / "sec14.xml").find("<Line name=\"1004-1001\">"), std::string::npos);

  // Least squares weighs by the standard errors, which only it enables; a change voids the result.
  EXPECT_FALSE(form.txtSigmaAngle.enabled);
  form.typeText("cmbAdjust", "Least squares");
  EXPECT_TRUE(form.txtSigmaAngle.enabled);
  EXPECT_EQ(form.lblResult.caption, "Changed since the last Adjust.");
  EXPECT_FALSE(form.btnExport.enabled);
  form.click("btnAdjust");
  EXPECT_NE(form.lblResult.caption.find("adjusted by least squares."), std::string::npos) << form.lblResult.caption;

  // Saved as a traverse file, it reads back with its courses, side shots and rule.
  shell.chosenFiles.push_back((dir.path() / "sec14.traverse.json").string());
  form.click("btnSaveInputs");
  const TraverseInput saved = readTraverseFile((dir.path() / "sec14.traverse.json").string());
  EXPECT_EQ(saved.courses.size(), 8u);
  EXPECT_EQ(saved.sideShots.size(), 2u);
  EXPECT_EQ(saved.adjust, AdjustRule::LeastSquares);

  // A course whose angle is not an angle, or whose slope distance is missing, is named in the box.
  shell.boxes.clear();
  form.setCell(2, 2, "ninety");
  form.click("btnAdjust");
  form.setCell(2, 2, "270-15-45");
  form.setCell(4, 4, "");
  form.click("btnAdjust");
  ASSERT_EQ(shell.boxes.size(), 2u);
  EXPECT_EQ(shell.boxes[0].text, "Course 3 (to 1005): \"ninety\" is not an angle (45-30-15 or 45.504).");
  EXPECT_EQ(shell.boxes[1].text, "Course 5 (to 1007) slope distance is empty.");

  // Kept as typed when the window closes, faults and all, and given back at its next opening.
  form.setCell(2, 2, "ninety");
  form.keepInputs();
  Program again{shell, dir.folder()};
  auto& back = again.form<frmTraverse>("frmTraverse");
  back.setOpen(true);
  ASSERT_EQ(back.rows.size(), 8u);
  EXPECT_EQ(back.cell(2, 2), "ninety");
  EXPECT_EQ(back.cell(4, 4), "");
  EXPECT_EQ(back.txtStart.text, "1001");
  EXPECT_EQ(back.cmbAdjust.text, "Least squares");
  EXPECT_TRUE(back.txtSigmaAngle.enabled);
  EXPECT_EQ(back.lblSideShots.caption, form.lblSideShots.caption);
}

// A minute's blunder in one angle is said in a critical box and on the
// window, never adjusted silently; a wider allowance the user types passes
// it, and a saved file keeps that allowance.
TEST(TraverseWindow, AClosureBeyondTheAllowableIsSaidLoudly) {
  testing::Bench bench;
  auto& [dir, shell, program] = bench;
  auto& form = program.form<frmTraverse>("frmTraverse");
  form.setOpen(true);
  ASSERT_TRUE(form.openPath(std::string(TERVALO_SOURCE_DIR) + "/tests/traverse/blunder.traverse.json"));
  form.click("btnAdjust");
  ASSERT_EQ(shell.boxes.size(), 1u);
  EXPECT_EQ(shell.boxes[0].icon, Icon::Critical);
  EXPECT_NE(shell.boxes[0].text.find("The angular misclosure of 60.0\" is more than the allowable 20.0\""), std::string::npos);
  EXPECT_NE(form.lblResult.caption.find("\nFAILING: The angular misclosure"), std::string::npos) << form.lblResult.caption;
  EXPECT_TRUE(form.btnWriteReport.enabled);  // the adjustment is shown all the same

  form.typeText("txtAllowAngular", "40");
  form.click("btnAdjust");
  EXPECT_EQ(shell.boxes.size(), 1u);
  EXPECT_EQ(form.lblResult.caption.find("FAILING"), std::string::npos);
  shell.chosenFiles.push_back((dir.path() / "wide.traverse.json").string());
  form.click("btnSaveInputs");
  EXPECT_EQ(readTraverseFile((dir.path() / "wide.traverse.json").string()).allowableAngular, 40);
}

}  // namespace
}  // namespace tervalo
