// The Network Adjustment window through its model: the example network read
// with its defaults, adjusted with its verdict, report and ellipses, its
// moved points stored in a project as one step of Undo; a blunder said in a
// critical box and drawn to be looked at twice; a standard deviation of 0
// refused; what was typed kept for the next opening.

#include <gtest/gtest.h>

#include <fstream>

#include <nlohmann/json.hpp>

#include "adjust/frm_network.h"
#include "project/project_session.h"
#include "support/bench.h"
#include "text/input_file.h"

namespace tervalo {
namespace {

const std::string kExample = std::string(TERVALO_SOURCE_DIR) + "/examples/braced.network.json";

TEST(NetworkWindow, TheExampleIsAdjustedReportedDrawnAndStored) {
  testing::Bench b;
  b.program.project = std::make_unique<ProjectSession>(createProject(b.dir.path() / "net.gpkg", {}));
  auto& form = b.program.form<frmNetwork>("frmNetwork");
  form.setOpen(true);
  EXPECT_FALSE(form.picture().hint.empty());
  b.shell.chosenFiles.push_back(kExample);
  form.click("btnBrowse");
  EXPECT_EQ(form.txtFile.text, kExample);
  EXPECT_EQ(form.txtAngle.text, "2");  // the file's defaults
  form.click("btnAdjust");
  EXPECT_TRUE(b.shell.boxes.empty());
  EXPECT_EQ(form.lblResult.caption.rfind("Global test passed (chi-square 3.95 within 2.70 to 19.02); no observation flagged", 0), 0u)
      << form.lblResult.caption;
  EXPECT_EQ(form.lstReport.items.back(), "  The network passed its tests.");
  const Picture p = form.picture();
  const auto ellipses = std::count_if(p.lines.begin(), p.lines.end(), [](const PictureLine& l) { return l.ink == Ink::Accent; });
  EXPECT_EQ(ellipses, 4);  // B weighted, C, D, E free; A held
  EXPECT_NE(p.caption.find("95 % error ellipses enlarged "), std::string::npos);
  EXPECT_TRUE(form.btnPrint.enabled && form.btnSaveReport.enabled && form.btnStore.enabled);

  form.click("btnStore");
  ASSERT_TRUE(b.program.project->file().find("C"));
  EXPECT_FALSE(b.program.project->file().find("A"));  // held: the project's own stands
  b.program.project->undo();
  EXPECT_FALSE(b.program.project->file().find("C"));

  // A report saved whole.
  b.shell.chosenFiles.push_back((b.dir.path() / "net.rpt").string());
  form.click("btnSaveReport");
  EXPECT_NE(readInputFile(b.dir.path() / "net.rpt").find("RELATIVE PRECISION"), std::string::npos);
  // As a PDF: the report and the picture, painted by the desktop program.
  b.shell.chosenFiles.push_back((b.dir.path() / "net.PDF").string());
  form.click("btnSaveReport");
  ASSERT_EQ(b.shell.pdfs.size(), 1u);
  EXPECT_EQ(b.shell.pdfs[0].first.lines, form.lstReport.items);
  EXPECT_TRUE(b.shell.pdfs[0].first.picture && !b.shell.pdfs[0].first.picture->empty());
}

TEST(NetworkWindow, ABlunderIsSaidLoudlyAndABadFieldRefused) {
  testing::Bench b;
  auto& form = b.program.form<frmNetwork>("frmNetwork");
  form.setOpen(true);
  nlohmann::json net = nlohmann::json::parse(readInputFile(kExample));
  net["observations"][9]["value"] = "306-53-10";  // a minute off
  const auto file = b.dir.path() / "blunder.network.json";
  std::ofstream(file) << net.dump();
  ASSERT_TRUE(form.openPath(file.string()));
  form.click("btnAdjust");
  ASSERT_EQ(b.shell.boxes.size(), 1u);
  EXPECT_EQ(b.shell.boxes[0].icon, Icon::Critical);
  EXPECT_NE(b.shell.boxes[0].text.find("(observation 10) is flagged as the likely blunder"), std::string::npos) << b.shell.boxes[0].text;
  const Picture p = form.picture();
  EXPECT_EQ(std::count_if(p.lines.begin(), p.lines.end(), [](const PictureLine& l) { return l.ink == Ink::Alert; }), 2);  // the angle's two sights

  // A file typed, not browsed for, brings its own defaults on Adjust: the example passes at its 2".
  form.typeText("txtFile", kExample);
  form.click("btnAdjust");
  EXPECT_EQ(form.txtAngle.text, "2");
  EXPECT_EQ(b.shell.boxes.size(), 1u);
  EXPECT_NE(form.lblResult.caption.find("Global test passed"), std::string::npos) << form.lblResult.caption;
  form.typeText("txtFile", file.string());
  form.click("btnAdjust");
  ASSERT_EQ(b.shell.boxes.size(), 2u);

  form.typeText("txtAngle", "0");
  EXPECT_FALSE(form.btnPrint.enabled);  // a change voids the result
  form.click("btnAdjust");
  ASSERT_EQ(b.shell.boxes.size(), 3u);
  EXPECT_EQ(b.shell.boxes[2].text, "The network cannot be adjusted. The angle's standard deviation must be more than 0.");

  form.keepInputs();
  Program again{b.shell, b.dir.folder()};
  auto& back = again.form<frmNetwork>("frmNetwork");
  back.setOpen(true);
  EXPECT_EQ(back.txtFile.text, file.string());
  EXPECT_EQ(back.txtAngle.text, "0");
}

}  // namespace
}  // namespace tervalo
