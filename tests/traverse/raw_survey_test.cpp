// Raw files as they come from the field, reduced as recorded: a radial job
// of two setups and a re-occupation, checked against an independent
// computation here and a published side-shot example; sets straddling 0;
// broken records named while the rest is reduced.

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "traverse/raw_survey.h"
#include "traverse/rw5.h"
#include "traverse/traverse.h"
#include "traverse/traverse_file.h"

namespace tervalo {
namespace {

constexpr double kRad = 3.14159265358979323846 / 180;

double dms(int d, int m, double s) { return d + m / 60.0 + s / 3600.0; }

const RawPoint& point(const RawSurvey& s, const std::string& name) {
  for (const RawPoint& p : s.points)
    if (p.name == name) return p;
  throw std::runtime_error("no point " + name);
}

// Lines ended by CR CR LF, as some data collectors write them; a note in
// Latin-1; an empty BS (the azimuth from the two points); a broken shot
// amid good ones; a set whose readings straddle 0; a record kind the
// program does not know, twice; the first setup occupied again with a
// check shot to its backsight.
std::string radialJob() {
  const char* lines[] = {
      "JB,NMRADIAL",
      "MO,AD0,UN2,SF1.00000000,EC0,EO0.0,AU0",
      "SP,PN100,N 5000.000,E 3000.000,EL100.000,--CONTROL",
      "SP,PN101,N 5500.000,E 3500.000,EL102.000",
      "OC,OP100,N 5000.000,E 3000.000,EL100.000",
      "BK,OP100,BP101,BS,BC0.0000",
      "LS,HI5.000,HR6.000",
      "SS,OP100,FP1,AR45.0000,ZE90.0000,SD100.000,--FENCE \xB0 CORNER, NW",
      "SS,OP100,FP2,AR90.3015,ZE89.3000,SD200.000",
      "SS,OP100,FP3,AR,ZE89.3000,SD200.000,--BROKEN",
      "XX,whatever",
      "BD,OP100,FP101,AR0.0000,ZE90.0000,SD707.107",
      "FD,OP100,FP4,AR359.5959,ZE91.0000,SD300.000",
      "FR,OP100,FP4,AR180.0003,ZE269.0000,SD300.002",
      "BR,OP100,FP101,AR180.0000,ZE270.0000,SD707.107",
      "OC,OP1",
      "BK,OP1,BP100,BS,BC0.0000",
      "LS,HI5.000,HR5.000",
      "SS,OP1,FP5,AR90.0000,ZE80.0000,SD50.000",
      "SS,OP1,FP6,AR0.0000,HD10.000",
      "XX,again",
      "OC,OP100,N 5000.000,E 3000.000,EL100.000",
      "BK,OP100,BP101,BS,BC10.0000",
      "SS,OP100,FP101,AR10.0030,ZE90.0000,SD707.117",
  };
  std::string text;
  for (const char* l : lines) text += std::string(l) + "\r\r\n";
  return text;
}

TEST(RawSurvey, ARadialJobGivesEveryShotWithItsElevationAsAnIndependentReductionDoes) {
  const RawRecords records = readRawRecords(radialJob());
  EXPECT_FALSE(recordsATraverse(records));
  const RawSurvey s = reduceRadial(records, {10, {}, "radial.rw5"});
  // Each shot from its setup: azimuth = backsight azimuth + angle right, HD = SD sin z,
  // Z = setup Z + HI + SD cos z - HR.
  const double back = 45;  // 100 to 101
  struct Expected {
    const char* name;
    double fromX, fromY, fromZ, azimuth, sd, zenith, hi, hr;
  };
  const double x1 = 3100, y1 = 5000, z1 = 100 + 5 - 6;  // point 1, due east of 100
  const Expected cases[] = {
      {"1", 3000, 5000, 100, back + 45, 100, 90, 5, 6},
      {"2", 3000, 5000, 100, back + dms(90, 30, 15), 200, dms(89, 30, 0), 5, 6},
      // the set: -1" and +3" from the backsight, averaged across 0 to +1"
      {"4", 3000, 5000, 100, back + dms(0, 0, 1), 300.001, 90 + 1, 5, 6},
      // from the point shot first, oriented on 100 due west of it
      {"5", x1, y1, z1, 270 + 90, 50, 80, 5, 5}};
  for (const Expected& e : cases) {
    const RawPoint& p = point(s, e.name);
    const double hd = e.sd * std::sin(e.zenith * kRad);
    EXPECT_NEAR(p.at.x, e.fromX + hd * std::sin(e.azimuth * kRad), 1e-6) << e.name;
    EXPECT_NEAR(p.at.y, e.fromY + hd * std::cos(e.azimuth * kRad), 1e-6) << e.name;
    ASSERT_TRUE(p.z) << e.name;
    EXPECT_NEAR(*p.z, e.fromZ + e.hi + e.sd * std::cos(e.zenith * kRad) - e.hr, 1e-6) << e.name;
  }
  EXPECT_EQ(point(s, "1").description, "FENCE \u00B0 CORNER, NW");  // Latin-1, the comma kept
  EXPECT_EQ(point(s, "100").description, "CONTROL");
  // The broken shot is named with its line; every other point is there; the unknown kind summarised once.
  ASSERT_EQ(s.refused.size(), 1u);
  EXPECT_EQ(s.refused[0].rfind("line 10: the AR field of the SS record is not an angle", 0), 0u) << s.refused[0];
  EXPECT_EQ(s.points.size(), 7u);  // 100, 101 stored; 1, 2, 4, 5, 6 shot; 101 shot again is a check
  EXPECT_NE(std::find(s.report.begin(), s.report.end(), "  Not used: a XX record, 2 of them, the first on line 11"), s.report.end());
  // The re-occupation's shot to its backsight checks it: 30" off the stored azimuth, beyond 10".
  ASSERT_EQ(s.flagged.size(), 1u);
  EXPECT_NE(s.flagged[0].find("check shot to 101: angle 30.0\", distance 0.010"), std::string::npos) << s.flagged[0];
  // An elevation is absent where it is unknown (a horizontal distance alone), never 0.
  EXPECT_FALSE(point(s, "6").z);
  EXPECT_EQ(s.json["points"][6]["name"], "6");
  EXPECT_FALSE(s.json["points"][6].contains("z"));
  EXPECT_EQ(s.json["points"][2]["z"], 99.0);
}

// A set whose backsight reads 0 00 00, 179 59 59 and 359 59 58 and whose
// foresight turned 348 46 41: averaged as turned, not 180 degrees away.
TEST(RawSurvey, SetsStraddlingZeroAverageAsTurnedAndASpreadBeyondToleranceIsFlagged) {
  struct Case {
    const char* readings;  // BD, FD, FR, BR, BD, FD
    double angle;          // seconds of the mean past 348 46 40
    double spread;
  };
  const Case cases[] = {
      {"BD,OP1,FP2,AR0.0000\nFD,OP1,FP3,AR348.4641,SD100\nFR,OP1,FP3,AR168.4640,SD100\nBR,OP1,FP2,AR179.5959\nBD,OP1,FP2,AR359.5958\nFD,OP1,FP3,AR348.4638,SD100\n",
       2.0 / 3, 1.0},
      {"BD,OP1,FP2,AR0.0000\nFD,OP1,FP3,AR348.4641,SD100\nFR,OP1,FP3,AR168.4700,SD100\nBR,OP1,FP2,AR180.0000\n", 10.5, 19.0}};
  for (const Case& c : cases) {
    const std::string text = std::string("SP,PN1,N 0,E 0\nSP,PN2,N 100,E 0\nOC,OP1,N 0,E 0\nBK,OP1,BP2,BC0.0000\n") + c.readings;
    const RawRecords records = readRawRecords(text + "SS,OP1,FP9,AR0,HD1\n");
    const SetMean m = meanOfSet(records.setups[0], records.setups[0].shots[0]);
    ASSERT_EQ(m.fault, "");
    EXPECT_NEAR((m.angleRight - dms(348, 46, 40)) * 3600, c.angle, 1e-6) << c.readings;
    EXPECT_NEAR(m.spread, c.spread, 1e-6) << c.readings;
    std::vector<std::string> flagged;
    setChecks(records, 10, flagged);
    EXPECT_EQ(flagged.size(), c.spread > 10 ? 1u : 0u) << c.readings;
  }
}

// A published side-shot example (elevations to 0.01 ft): an instrument
// 5.73 ft over the SW corner, whose elevation the hydrant's top nut
// (827.43) gives through a 5.00 ft reflector; the corners NW and NE by
// 6.25 ft reflectors are 844.15 and 851.91.
TEST(RawSurvey, ElevationsAgreeWithAPublishedSideShotExample) {
  const double instrument = 827.43 + 5.00 - 84.39 * std::cos(dms(95, 30, 45) * kRad);
  char oc[96];
  std::snprintf(oc, sizeof oc, "OC,OPSW,N 1000,E 1000,EL%.6f\n", instrument - 5.73);
  const std::string text = std::string("SP,PNFH,N 1084,E 1000\n") + oc +
                           "BK,OPSW,BPFH,BC0.0000\nLS,HI5.73,HR6.25\n"
                           "SS,OPSW,FPNW,AR44.5155,ZE87.0535,SD194.48\nSS,OPSW,FPNE,AR80.5630,ZE85.4805,SD240.68\n";
  const RawSurvey s = reduceRadial(readRawRecords(text), {});
  EXPECT_NEAR(*point(s, "NW").z, 844.15, 0.005);
  EXPECT_NEAR(*point(s, "NE").z, 851.91, 0.005);
}

TEST(RawSurvey, ATraverseIsTheOneATraverseFileRecordsNotARadialJob) {
  const std::string chain = "SP,PN1,N 0,E 0\nOC,OP1,N 0,E 0\nBK,OP1,BS0.0000,BC0\nTR,OP1,FP2,AR90,HD100\nOC,OP2\nBK,OP2,BP1,BC0\n"
                            "TR,OP2,FP1,AR0,HD100\n";
  EXPECT_TRUE(recordsATraverse(readRawRecords(chain)));
  // The same setups by side shots: a radial job whose second setup stands on a point shot first.
  std::string radial = chain;
  for (std::size_t at = radial.find("TR,"); at != std::string::npos; at = radial.find("TR,")) radial.replace(at, 2, "SS");
  EXPECT_FALSE(recordsATraverse(readRawRecords(radial)));
  // Opened as a traverse (the Traverse window), a radial job says what it is.
  try {
    parseRaw(radialJob());
    ADD_FAILURE() << "a radial job read as a traverse";
  } catch (const TraverseFileError& e) {
    EXPECT_NE(std::string(e.what()).find("the raw file records no traverse: its 3 setups"), std::string::npos) << e.what();
  }
}

}  // namespace
}  // namespace tervalo
