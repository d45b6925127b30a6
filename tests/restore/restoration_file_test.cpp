// The restoration file and its run: faults refused with their place, every
// corner restored or refused with its reason, the report and the restored
// corners as a coordinate file the main window reads.

#include <gtest/gtest.h>

#include <algorithm>

#include "app/output_file.h"
#include "points/readers.h"
#include "restore/restoration_file.h"
#include "support/temp_dir.h"

namespace tervalo {
namespace {

using testing::TempDir;

TEST(RestorationFile, FaultsAreRefusedWithTheirPlace) {
  const std::pair<const char*, const char*> refused[] = {
      {"[]", "a restoration file is a JSON object"},
      {R"({"version":2,"corners":[{}]})", "newer Tervalo"},
      {R"({"units":"yd","corners":[{}]})", "\"units\" is \"ft\" or \"m\""},
      {R"({"corners":[]})", "at least one corner"},
      {R"({"corners":[{"name":"NE COR","method":"triple"}]})", "corner 1 (NE COR): \"method\" is auto, single"},
      {R"({"corners":[{"name":"A"},{"name":"B","north":{"record":40}}]})", "corner 2 (B) north: give a \"point\" number"},
      {R"({"corners":[{"north":{"point":"1","record":"forty"}}]})", "corner 1 north: \"record\" must be a number"},
      {R"({"corners":[{"east":{"x":1,"record":40}}]})", "corner 1 east: typed coordinates need both"},
      {R"({"corners":[{"azimuth":"north-ish"}]})", "corner 1: \"azimuth\" must be an angle"},
      {R"({"corners":[{"northh":{}}]})", "corner 1: unknown key \"northh\""},
      {R"({"basis":"1e400","corners":[{}]})", "\"basis\" must be an angle"}};
  for (const auto& [text, where] : refused) {
    try {
      parseRestoration(text);
      ADD_FAILURE() << text;
    } catch (const RestorationFileError& e) {
      EXPECT_NE(std::string(e.what()).find(where), std::string::npos) << e.what();
    }
  }
}

TEST(RestorationFile, EveryCornerRestoredOrRefusedAndTheRestoredOnesReadBackAsASource) {
  TempDir dir;
  dir.write("control.csv", "1,5000,7640,CM,N\n2,5000,2360,CM,S\n3,7640,5000,CM,E\n4,2360,5000,CM,W\n");
  const auto file = dir.write("sec.json", R"({"version":1,"units":"ft","basis":"0-00-00","source":"control.csv",
    "corners":[{"name":"CTR","north":{"point":"1","record":40},"south":{"point":"2","record":40},
                "east":{"point":"3","record":40},"west":{"x":2360,"y":5000,"record":40}},
               {"name":"GONE","method":"double","north":{"point":"1","record":40}},
               {"name":"N 1/4","north":{"point":"9","record":40}},
               {"name":"LONE","south":{"x":5000,"y":2360,"record":40}}]})");
  const RestorationFile parsed = readRestorationFile(file.string());
  EXPECT_EQ(parsed.source, (dir.path() / "control.csv").string());  // from the file's folder
  const RestorationRun run = runRestoration(parsed, "11/24/2026");
  ASSERT_EQ(run.corners.size(), 4u);
  ASSERT_TRUE(run.corners[0].restored);
  EXPECT_NEAR(run.corners[0].restored->at.x, 5000, 1e-9);
  EXPECT_NEAR(run.corners[0].restored->at.y, 5000, 1e-9);
  EXPECT_NE(run.corners[1].refused.find("double proportion takes controls in all four directions"), std::string::npos);
  EXPECT_EQ(run.corners[2].refused, "the north control names point 9, which is not in the source file");
  EXPECT_FALSE(run.allRestored());
  EXPECT_EQ(run.result["refused"].size(), 2u);
  EXPECT_EQ(run.result["corners"][0]["method"], "double");
  // One control: its rule in words once, and no measured chains or ratio, which one point cannot give.
  const auto lone = std::find(run.report.begin(), run.report.end(), "  LONE                                    one-point proportion");
  ASSERT_NE(lone, run.report.end());
  EXPECT_EQ(lone[1], "     Control  Point                X              Y   Record ch");
  EXPECT_EQ(lone[2], "     south                 5000.0000      2360.0000       40.00");
  EXPECT_EQ(lone[4], "     By one-point control: 40.00 chains from the south control at azimuth 0.0000 degrees.");
  EXPECT_NE(std::find(run.report.begin(), run.report.end(),
                      "     Control  Point                X              Y   Record ch  Measured ch    Ratio"),
            run.report.end());
  // The restored corners are a comma-delimited source for the main window.
  const auto points = dir.path() / "restored.txt";
  writeTextFile(points, run.points);
  const PointList list = readWholeFile(points);
  EXPECT_EQ(list.records[0].name, "CTR");
  EXPECT_EQ(list.records[0].x, 5000);
  // Saved again, the file reads back as it was.
  EXPECT_EQ(restorationText(parseRestoration(restorationText(parsed))), restorationText(parsed));
}

}  // namespace
}  // namespace tervalo
