// The vertical curve: key points, elevations against the parabola's closed
// form, the turning point, and the listing's merge of specials.

#include <gtest/gtest.h>

#include "vcurve/listing.h"
#include "vcurve/vertical_curve.h"

namespace tervalo {
namespace {

// The parabola y = a + g1·d + (g2 - g1)·d²/(2L), d from the PVC.
double parabola(double pvcElev, double g1, double g2, double L, double d) {
  return pvcElev + g1 * d + (g2 - g1) * d * d / (2 * L);
}

TEST(VerticalCurve, WorkedSag) {
  VerticalCurve c = makeCurve(-0.02, 0.02, 400, KnownPoint::PVI, 1000, 100);
  minMaxCalc(c);
  EXPECT_DOUBLE_EQ(c.pvc, 800);
  EXPECT_DOUBLE_EQ(c.pvt, 1200);
  EXPECT_NEAR(c.pvcElev, 104, 1e-12);
  EXPECT_NEAR(c.pvtElev, 104, 1e-12);
  EXPECT_TRUE(c.hasMin && !c.hasMax);
  EXPECT_DOUBLE_EQ(c.turningStation, 1000);
  EXPECT_NEAR(c.turningElev, 102, 1e-12);
  EXPECT_EQ(calcCurveElev(c, 1000).mark, "C");
  EXPECT_EQ(calcCurveElev(c, 800).mark, "PVC");
  EXPECT_EQ(calcCurveElev(c, 1200).mark, "PVT");
  EXPECT_EQ(calcCurveElev(c, 799.999).mark, "T");
  EXPECT_EQ(calcCurveElev(c, 1200.001).mark, "T");
}

struct CurveCase {
  double g1, g2;
  KnownPoint known;
};

class CrestAndSag : public ::testing::TestWithParam<CurveCase> {};

TEST_P(CrestAndSag, ElevationsFollowTheParabolaWhicheverPointIsKnown) {
  const auto& k = GetParam();
  const double L = 600, station = 2350.5, elevation = 841.27;
  VerticalCurve c = makeCurve(k.g1, k.g2, L, k.known, station, elevation);
  minMaxCalc(c);
  const double known = k.known == KnownPoint::PVC ? c.pvc : k.known == KnownPoint::PVI ? c.pvi : c.pvt;
  const double knownElev = k.known == KnownPoint::PVC ? c.pvcElev : k.known == KnownPoint::PVI ? c.pviElev : c.pvtElev;
  EXPECT_DOUBLE_EQ(known, station);
  EXPECT_DOUBLE_EQ(knownElev, elevation);
  EXPECT_NEAR(c.pvt - c.pvc, L, 1e-9);
  EXPECT_NEAR(c.pvtElev, parabola(c.pvcElev, k.g1, k.g2, L, L), 1e-9);
  for (double d : {37.5, 150.0, 300.0, 451.25, 599.0})
    EXPECT_NEAR(calcCurveElev(c, c.pvc + d).elevation, parabola(c.pvcElev, k.g1, k.g2, L, d), 1e-9) << d;
  // Tangents beyond the curve carry the grades.
  EXPECT_NEAR(calcCurveElev(c, c.pvc - 100).elevation, c.pvcElev - 100 * k.g1, 1e-9);
  EXPECT_NEAR(calcCurveElev(c, c.pvt + 100).elevation, c.pvtElev + 100 * k.g2, 1e-9);
  // The turning point is the parabola's vertex.
  const double vertex = -k.g1 * L / (k.g2 - k.g1);
  EXPECT_NEAR(c.turningStation, c.pvc + vertex, 5e-4);
  EXPECT_NEAR(c.turningElev, parabola(c.pvcElev, k.g1, k.g2, L, vertex), 1e-9);
  EXPECT_EQ(c.hasMax, k.g1 > 0);
}

INSTANTIATE_TEST_SUITE_P(KnownPoints, CrestAndSag,
                         ::testing::Values(CurveCase{0.035, -0.015, KnownPoint::PVI}, CurveCase{0.035, -0.015, KnownPoint::PVC},
                                           CurveCase{0.035, -0.015, KnownPoint::PVT}, CurveCase{-0.04, 0.01, KnownPoint::PVI},
                                           CurveCase{-0.04, 0.01, KnownPoint::PVC}, CurveCase{-0.04, 0.01, KnownPoint::PVT}),
                         [](const auto& info) {
                           const auto& c = info.param;
                           return std::string(c.g1 > 0 ? "crest" : "sag") + "_known_" +
                                  (c.known == KnownPoint::PVI ? "PVI" : c.known == KnownPoint::PVC ? "PVC" : "PVT");
                         });

TEST(VerticalCurve, EqualGradesHaveNoTurningPoint) {
  VerticalCurve c = makeCurve(0.02, 0.02, 400, KnownPoint::PVI, 1000, 100);
  minMaxCalc(c);
  EXPECT_FALSE(c.hasMin || c.hasMax);
  VerticalCurve oneSign = makeCurve(0.01, 0.03, 400, KnownPoint::PVI, 1000, 100);
  minMaxCalc(oneSign);
  EXPECT_FALSE(oneSign.hasMin || oneSign.hasMax);
}

// The station lines of a listing as "station/mark" (equation lines left out).
std::vector<std::string> stations(const Listing& l) {
  std::vector<std::string> out;
  for (const auto& line : l.lines) {
    if (line.rfind("    ****", 0) == 0) continue;
    std::string station = line.substr(0, 12);
    station.erase(0, station.find_first_not_of(' '));
    if (station.find('+') == std::string::npos) continue;  // an equation's plain-number line
    out.push_back(station + "/" + line.substr(14, line.find(' ', 14) - 14));
  }
  return out;
}

class Listings : public ::testing::Test {
 protected:
  VerticalCurve sag = [] {
    VerticalCurve c = makeCurve(-0.02, 0.02, 400, KnownPoint::PVI, 1000, 100);
    minMaxCalc(c);
    return c;
  }();
  ListingInput range(double start, double end, double increment, bool exact = false) {
    ListingInput in;
    in.start = start;
    in.end = end;
    in.increment = increment;
    in.exact = exact;
    return in;
  }
};

TEST_F(Listings, RoundedAndExactStarts) {
  EXPECT_EQ(stations(processVincrements(sag, range(730, 900, 50))),
            (std::vector<std::string>{"7+30.000/T", "8+00.000/PVC", "8+50.000/C", "9+00.000/C"}));
  // Exact: every increment from the start; the start itself is skipped, as it always was.
  EXPECT_EQ(stations(processVincrements(sag, range(730, 900, 50, true))),
            (std::vector<std::string>{"7+80.000/T", "8+00.000/PVC", "8+30.000/C", "8+80.000/C", "9+00.000/C"}));
}

TEST_F(Listings, RangesBeforeAcrossAndAfterTheCurve) {
  EXPECT_EQ(stations(processVincrements(sag, range(100, 330, 100))),
            (std::vector<std::string>{"1+00.000/T", "2+00.000/T", "3+00.000/T", "3+30.000/T"}));
  EXPECT_EQ(stations(processVincrements(sag, range(1300, 1560, 100))),
            (std::vector<std::string>{"13+00.000/T", "14+00.000/T", "15+00.000/T", "15+60.000/T"}));
  const auto across = stations(processVincrements(sag, range(600, 1400, 200)));
  EXPECT_EQ(across, (std::vector<std::string>{"6+00.000/T", "8+00.000/PVC", "10+00.000/MIN", "12+00.000/PVT",
                                              "14+00.000/T"}));
}

TEST_F(Listings, TurningPointBetweenIncrementsGoesInOrder) {
  VerticalCurve c = makeCurve(-0.03, 0.02, 400, KnownPoint::PVC, 800, 100);
  minMaxCalc(c);  // the low point at 10+40
  EXPECT_EQ(stations(processVincrements(c, range(900, 1100, 100))),
            (std::vector<std::string>{"9+00.000/C", "10+00.000/C", "10+40.000/MIN", "11+00.000/C"}));
}

TEST_F(Listings, EquationOnTheCurveSwitchesTheStationing) {
  ListingInput in = range(800, 1800, 100);
  in.equation = std::pair{950.0, 1500.0};  // 9+50 back = 15+00 ahead
  const Listing l = processVincrements(sag, in);
  const auto s = stations(l);
  ASSERT_GE(l.lines.size(), 6u);
  EXPECT_EQ(l.lines[2], "    **** EQUATION IN  ****");
  EXPECT_EQ(l.lines[3].substr(0, 12), "     950.000");  // the equation stations as plain numbers
  EXPECT_EQ(l.lines[4].substr(0, 12), "    1500.000");
  EXPECT_EQ(l.lines[5], "    **** EQUATION OUT ****");
  // On in the OUT stationing, the low point moved with the curve (10+00 + 5+50).
  EXPECT_EQ(s, (std::vector<std::string>{"8+00.000/PVC", "9+00.000/C", "15+00.000/C", "15+50.000/MIN", "16+00.000/C",
                                         "17+00.000/C", "18+00.000/T"}));
}

TEST_F(Listings, SpecialsThatCoincide) {
  // The equation on the low point and on an increment: the MIN line first,
  // then the equation, and no plain line for the station.
  ListingInput in = range(900, 1200, 100);
  in.equation = std::pair{1000.0, 1000.0};
  const auto l = processVincrements(sag, in);
  EXPECT_NE(l.lines[1].find("MIN"), std::string::npos);
  EXPECT_EQ(l.lines[2], "    **** EQUATION IN  ****");
  EXPECT_EQ(l.lines[5], "    **** EQUATION OUT ****");
  EXPECT_EQ(l.lines[6].substr(0, 12), "   10+00.000");  // the first station at or beyond OUT
  EXPECT_EQ(l.lines.size(), 9u);
  // The equation on the PVC stands in place of the PVC line.
  ListingInput atPvc = range(700, 900, 100);
  atPvc.equation = std::pair{800.0, 800.0};
  const auto p = processVincrements(sag, atPvc);
  EXPECT_EQ(p.lines[1], "    **** EQUATION IN  ****");
  for (const auto& line : p.lines) EXPECT_NE(line.rfind("    8+00.000", 0), 0u) << line;
}

TEST_F(Listings, HugeRangesAndTinyIncrementsStillEnd) {
  ListingInput in = range(0, 2e9, 0.001);
  in.equation = std::pair{0.5, 1e9};
  const Listing l = processVincrements(sag, in);
  EXPECT_TRUE(l.cut);
  EXPECT_EQ(l.lines.size(), kMaxListedStations);
}

TEST(ListLines, LayoutMasksAndProfiles) {
  EXPECT_EQ(addItemTstr("+45.000", "T", ".500", {}), "     +45.000  T        .500  ");
  EXPECT_EQ(addItemTstr("10+00.000", "PVC", "12345.678", {}), "   10+00.000  PVC  12345.67  ");
  EXPECT_EQ(addItemTstr("10+00.000", "C", "102.000", {-0.5, 1.25, 10}),
            "   10+00.000  C     102.000   101.500  103.250  112.000");
}

}  // namespace
}  // namespace tervalo
