// The traverse file and the raw data collector file: faults refused with
// their place, a file read back as written, a raw file's sets averaged and
// its unused records listed, and the adjusted points a source file the
// main window reads.

#include <gtest/gtest.h>

#include <cmath>

#include "app/output_file.h"
#include "points/readers.h"
#include "support/temp_dir.h"
#include "text/angle.h"
#include "traverse/rw5.h"
#include "traverse/traverse_file.h"
#include "traverse/traverse_report.h"

namespace tervalo {
namespace {

using testing::TempDir;

const std::string kExamples = std::string(TERVALO_SOURCE_DIR) + "/examples/";

template <class Parse>
void expectRefused(const Parse& parse, const std::vector<std::pair<std::string, std::string>>& cases) {
  for (const auto& [text, where] : cases) {
    try {
      parse(text);
      ADD_FAILURE() << text;
    } catch (const TraverseFileError& e) {
      EXPECT_NE(std::string(e.what()).find(where), std::string::npos) << e.what() << "\n  wanted: " << where;
    }
  }
}

TEST(TraverseFile, FaultsAreRefusedWithTheirPlaceAndAFileReadsBackAsWritten) {
  const std::string head = R"({"start":{"point":"1","x":0,"y":0},"close":{"point":"1"},)";
  expectRefused(parseTraverse, {
      {"[]", "a traverse file is a JSON object"},
      {head + R"("courses":[]})", "\"courses\" must list at least one course"},
      {head + R"("courses":[{"to":"2","azimuth":"0-00-00","bearing":"N 1-00-00 E","distance":5}]})", "course 1 (to 2): give exactly one direction"},
      {head + R"("courses":[{"to":"2","angle_right":"ninety","distance":5}]})", "course 1 (to 2): \"angle_right\" must be an angle"},
      {head + R"("courses":[{"to":"2","deflection":"12-30-00","distance":5}]})", "\"deflection\" must be an angle with R or L"},
      {head + R"("courses":[{"to":"2","azimuth":1,"slope":5}]})", "a slope distance needs both \"slope\" and \"zenith\""},
      {head + R"("courses":[{"to":"2","azimuth":1}]})", "course 1 (to 2): give its \"distance\""},
      {head + R"("adjust":"bowditch","courses":[{"to":"2","azimuth":1,"distance":5}]})", "\"adjust\" is none, compass"},
      {head + R"("ppm":-3,"courses":[{"to":"2","azimuth":1,"distance":5}]})", "\"ppm\" must not be negative"},
      {head + R"("ground":true,"courses":[{"to":"2","azimuth":1,"distance":5}]})", "does not give"},
      {R"({"version":2})", "newer Tervalo"}});
  const TraverseInput loop = readTraverseFile(kExamples + "loop.traverse.json");
  ASSERT_EQ(loop.courses.size(), 4u);
  EXPECT_EQ(loop.courses[2].turn, Turn::Bearing);
  EXPECT_EQ(loop.courses[3].angle, -12.5);
  EXPECT_EQ(traverseText(parseTraverse(traverseText(loop))), traverseText(loop));
  TraverseInput ground = loop;
  ground.crs = {3419, "", 1250.0};
  ground.ground = true;
  EXPECT_TRUE(parseTraverse(traverseText(ground)).ground);
  EXPECT_EQ(angleText(45 + 30.0 / 60 + 15.25 / 3600), "45-30-15.25");
}

TEST(RawFile, ASetIsAveragedTheClosingAngleTakenAndUnusedRecordsListed) {
  const TraverseInput raw = readRawFile(kExamples + "section14.rw5");
  ASSERT_EQ(raw.courses.size(), 8u);
  EXPECT_EQ(raw.start.point, "1001");
  ASSERT_TRUE(raw.backsightPoint && raw.backsightPoint->at);  // 1004, stored by an SP record
  // The set at 1005: 179-57-37 direct and 179-57-39 reverse.
  EXPECT_NEAR(raw.courses[3].angle, *angleFromText("179-57-38"), 1e-9);
  EXPECT_TRUE(raw.close.point == "1001" && raw.closeAngle && !raw.closeAzimuth);  // a loop closing on its first course
  EXPECT_EQ(raw.sideShots.size(), 2u);
  EXPECT_EQ(raw.sideShots[0].note, "FENCE CORNER");
  EXPECT_EQ(raw.notes, (std::vector<std::string>{"job SECTION 14 TRAVERSE", "line 6: a GPS record: a GNSS point, not part of the traverse"}));
  EXPECT_EQ(packedAngle("90.3333"), 90 + 33.0 / 60 + 33.0 / 3600);
  EXPECT_FALSE(packedAngle("90.6000"));

  const std::string ok = "SP,PN1,N 0,E 0\nOC,OP1\nBK,OP1,BS0.0000\n";
  expectRefused(parseRaw, {
      {ok + "TR,OP1,FP2,AR9x.0000,HD100\n", "line 4: the AR field of the TR record is not an angle"},
      {ok + "TR,OP1,FP2,AR90.0000\n", "line 4: a TR record gives its distance with HD"},
      {ok + "TR,OP1,FP2,AR90.0000,HD100\nOC,OP2\nBK,OP2,BP9\n", "line 5: the backsight at 2 is 9"},
      {"BK,OP1,BS0.0000\n", "line 1: a BK record before any occupied point"},
      {ok + "TR,OP1,FP2,AR90.0000,HD100\n", "the traverse does not close"},
      {"JB,NMX\n", "no OC record"}});
}

// From the raw file to adjusted points, a source file the main window reads.
TEST(RawFile, TheAdjustedPointsAreASourceFile) {
  TempDir dir;
  const TraverseRun run = runTraverse(readRawFile(kExamples + "section14.rw5"), "11/24/2026");
  ASSERT_TRUE(run.result.closure.precision);
  EXPECT_GT(*run.result.closure.precision, 100000);  // a careful traverse
  const auto file = dir.path() / "adjusted.txt";
  writeTextFile(file, run.points);
  const PointList points = readWholeFile(file);
  EXPECT_EQ(points.records[0].name, "1001");
  EXPECT_EQ(points.records[9].name, "102");  // the side shots after the stations
  EXPECT_NE(std::find(run.report.begin(), run.report.end(), "  Raw file: line 6: a GPS record: a GNSS point, not part of the traverse"), run.report.end());
  // Elevations by trigonometric levelling from the start's 1250.000: 1002 by its course, the
  // side shot 101 from 1002, and 1004 as its stored point gives it.
  const double rad = 3.14159265358979323846 / 180;
  const double z1002 = 1250 + 5.25 + 2639.964 * std::cos((90 + 9 / 60.0 + 11 / 3600.0) * rad) - 5.5;
  EXPECT_NEAR(run.json["points"][1]["z"].get<double>(), z1002, 1e-9);
  EXPECT_NEAR(run.json["points"][8]["z"].get<double>(), z1002 + 5.25 + 35.420 * std::cos((90 + 6 / 60.0) * rad) - 5.5, 1e-9);
  EXPECT_EQ(run.json["points"][7]["z"], 1251.0);
  // Corrections that round to nothing carry no sign.
  for (const std::string& line : run.report) EXPECT_EQ(line.find("-0.000 "), std::string::npos) << line;
  EXPECT_NE(std::find(run.report.begin(), run.report.end(),
                      "  1001  1002       +0.000     +0.002      +9.714   +2639.939    2639.957   89\u00B047'21.02\""),
            run.report.end());
}

}  // namespace
}  // namespace tervalo
