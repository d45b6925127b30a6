// The Alignment window through its model: the example opened with its
// elements, key points and pictures; a station's point and a point's
// station answered; a station in the equation's gap refused in a box; the
// alignment exported as LandXML and its plan as DXF; what was typed kept.

#include <gtest/gtest.h>

#include "alignment/frm_alignment.h"
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

}  // namespace
}  // namespace tervalo
