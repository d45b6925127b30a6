// The Alignment window through its model: the example opened with its
// elements, key points and pictures; a station's point and a point's
// station answered; a station in the equation's gap refused in a box; the
// alignment exported as LandXML and its plan as DXF; what was typed kept.

#include <gtest/gtest.h>

#include <cstdio>

#include "alignment/frm_alignment.h"
#include "crs/project_store.h"
#include "project/project_session.h"
#include "support/bench.h"
#include "text/input_file.h"

namespace tervalo {
namespace {

const std::string kExample = std::string(TERVALO_SOURCE_DIR) + "/examples/highway.alignment.json";

TEST(AlignmentWindow, TheExampleIsOpenedAskedExportedAndKept) {
  testing::Bench b;
  auto& form = b.program.form<frmAlignment>("frmAlignment");
  form.setOpen(true);
  EXPECT_FALSE(form.plan().hint.empty());
  b.shell.chosenFiles.push_back(kExample);
  form.click("btnBrowse");
  EXPECT_EQ(form.lblSummary.caption, "highway: 2654.830 ft, 10+00.00 to 37+54.83, 5 elements, a profile of 3 VPIs");
  EXPECT_EQ(form.lstElements.items[2], "Spiral in PI 2        16+03.16        200.000    1000.000 R");
  EXPECT_FALSE(form.plan().empty());
  EXPECT_NE(form.profile().caption.find("vertical scale"), std::string::npos);

  form.typeText("txtStation", "20+00");
  form.typeText("txtOffset", "12");
  form.click("btnPoint");
  EXPECT_EQ(form.lblAnswer.caption, "20+00.00, 12.000 right: N 5861.9411  E 5494.5583  elevation 109.222  grade 0.222 %");
  form.typeText("txtNorthing", "5861.9411");
  form.typeText("txtEasting", "5494.5583");
  form.click("btnStation");
  EXPECT_EQ(form.lblAnswer.caption, "20+00.00, 12.000 right (curve at PI 2)");

  form.typeText("txtStation", "25+50");
  form.click("btnPoint");
  ASSERT_EQ(b.shell.boxes.size(), 1u);
  EXPECT_EQ(b.shell.boxes[0].text,
            "Station 25+50.00 is in the gap of station equation 1 (back 25+00.00, ahead 26+00.00): no point of the alignment has it.");

  for (const char* name : {"road.xml", "road.dxf"}) b.shell.chosenFiles.push_back((b.dir.path() / name).string());
  form.click("btnLandXml");
  form.click("btnDxf");
  EXPECT_NE(readInputFile(b.dir.path() / "road.xml").find("<Spiral length=\"200.0\""), std::string::npos);
  EXPECT_NE(readInputFile(b.dir.path() / "road.dxf").find("ALIGN"), std::string::npos);

  form.keepInputs();
  Program again{b.shell, b.dir.folder()};
  auto& back = again.form<frmAlignment>("frmAlignment");
  back.setOpen(true);
  EXPECT_EQ(back.txtFile.text, kExample);
  EXPECT_EQ(back.txtStation.text, "25+50");
}

// Kept in the project: one alignment of a name, replaced when kept again,
// opened from there as from its file, and drawn by GDAL's own reader.
TEST(AlignmentWindow, AnAlignmentIsKeptInTheProjectAndOpenedFromIt) {
  testing::Bench b;
  const auto file = b.dir.path() / "road.gpkg";
  b.program.project = std::make_unique<ProjectSession>(createProject(file, {}));
  auto& form = b.program.form<frmAlignment>("frmAlignment");
  form.setOpen(true);
  EXPECT_FALSE(form.btnOpenKept.enabled);
  ASSERT_TRUE(form.openFile(kExample));
  EXPECT_TRUE(form.btnStore.enabled);
  form.click("btnStore");
  form.click("btnStore");  // again: in the place of the one before
  EXPECT_EQ(form.lblAnswer.caption, "The alignment highway is kept in the project.");
  const std::vector<StoredAlignment> kept = b.program.project->file().alignments();
  ASSERT_EQ(kept.size(), 1u);
  EXPECT_EQ(kept[0].format, "alignment");
  EXPECT_NEAR(kept[0].centreline.front().first, 5000, 1e-9);
  EXPECT_NEAR(kept[0].centreline.back().second, 7000, 1e-6);
  EXPECT_EQ(form.cmbKept.items, std::vector<std::string>{"highway"});

  auto& other = b.program.form<frmAlignment>("frmAlignment");
  ASSERT_TRUE(other.openKept("highway"));
  EXPECT_EQ(other.lblSummary.caption, "highway: 2654.830 ft, 10+00.00 to 37+54.83, 5 elements, a profile of 3 VPIs");

  b.program.project.reset();
  std::string read;
  if (FILE* pipe = popen(("ogrinfo -ro -so " + file.string() + " alignments 2>&1").c_str(), "r")) {
    char buffer[512];
    while (fgets(buffer, sizeof buffer, pipe)) read += buffer;
    pclose(pipe);
  }
  EXPECT_NE(read.find("Geometry: Line String"), std::string::npos) << read;
  EXPECT_NE(read.find("Feature Count: 1"), std::string::npos) << read;
}

}  // namespace
}  // namespace tervalo
