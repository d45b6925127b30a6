// The Corner Restoration window through its model: the example file opened,
// restored, edited, saved and its report written.

#include <gtest/gtest.h>

#include "restore/frm_restore.h"
#include "support/bench.h"

namespace tervalo {
namespace {

using testing::TempDir;

const std::string kExamples = std::string(TERVALO_SOURCE_DIR) + "/examples/";

TEST(RestoreWindow, TheExampleIsRestoredEditedSavedAndReported) {
  testing::Bench bench;
  auto& [dir, shell, program] = bench;
  auto& form = program.form<frmRestore>("frmRestore");
  form.setOpen(true);
  shell.chosenFiles.push_back(kExamples + "section14.restore.json");
  form.click("btnOpenInputs");
  ASSERT_EQ(form.lstCorners.items.size(), 2u);
  EXPECT_EQ(form.controlFields[0].point.text, "1005");
  form.click("btnRestore");
  EXPECT_EQ(form.lstCorners.items[0], "SEC COR 13-14-23-24  double");
  EXPECT_EQ(form.lblResult.caption.rfind("Restored at X 517623.5350  Y 284593.4750\nBy double proportion", 0), 0u)
      << form.lblResult.caption;
  EXPECT_EQ(form.sketch().marks.size(), 4u + 2u + 1u);  // four controls, two temporary points, the restored corner
  // A control given by point number shows what the source gave it, greyed: never taken as typed.
  EXPECT_EQ(form.controlFields[3].x.text, "514981.4890");
  EXPECT_FALSE(form.controlFields[3].x.enabled);
  EXPECT_FALSE(form.file().corners[0].west->at);

  // The west control typed as X and Y, 40.5 chains of record: the result moves with it.
  form.typeText("txtWestPoint", "");
  form.typeText("txtWestX", "514981.489");
  form.typeText("txtWestY", "284577.542");
  form.typeText("txtWestRecord", "40.5");
  form.click("btnRestore");
  EXPECT_NE(form.lblResult.caption.find("the west control (40.50 ch)"), std::string::npos) << form.lblResult.caption;
  form.selectCorner(1);
  EXPECT_EQ(form.txtName.text, "S 1/4 COR 14");
  EXPECT_EQ(form.lblResult.caption.rfind("Restored at X 514980.2215", 0), 0u) << form.lblResult.caption;

  // Saved as a restoration file, it reads back as the window holds it.
  shell.chosenFiles.push_back((dir.path() / "mine.restore.json").string());
  form.click("btnSaveInputs");
  const RestorationFile saved = readRestorationFile((dir.path() / "mine.restore.json").string());
  ASSERT_TRUE(saved.corners[0].west && saved.corners[0].west->at);
  EXPECT_EQ(saved.corners[0].west->record, 40.5);
  // The report and the restored corners beside it.
  shell.chosenFiles.push_back((dir.path() / "lost.rpt").string());
  form.click("btnWriteReport");
  EXPECT_TRUE(std::filesystem::exists(dir.path() / "lost.rpt"));
  EXPECT_NE(TempDir::read(dir.path() / "lost.txt").find("S 1/4 COR 14,514980.2215,284576.1525,RES,"), std::string::npos);

  // Record chains with no control to go with them: said, nothing restored.
  form.click("btnAddCorner");
  form.typeText("txtNorthRecord", "40");
  shell.boxes.clear();
  form.click("btnRestore");
  ASSERT_EQ(shell.boxes.size(), 1u);
  EXPECT_NE(shell.boxes[0].text.find("has record chains but no point number or X and Y"), std::string::npos);

  // True north at each corner needs a system to take the convergence from.
  form.click("btnRemoveCorner");
  form.setChecked("chkTrueNorth", true);
  EXPECT_FALSE(form.txtBasis.enabled);
  shell.boxes.clear();
  form.click("btnRestore");
  ASSERT_EQ(shell.boxes.size(), 1u);
  EXPECT_NE(shell.boxes[0].text.find("needs the coordinate system"), std::string::npos);
}

}  // namespace
}  // namespace tervalo
