// The vertical curve: key points, elevations against the parabola's closed
// form, the turning point, and the listing's merge of specials.

#include <gtest/gtest.h>

#include <algorithm>

#include "vcurve/listing.h"
#include "text/number.h"
#include "vcurve/profile_sketch.h"
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
                         [](const auto& named) {
                           const auto& c = named.param;
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

// The sag curve: PVC 8+00, low point 10+00, PVT 12+00.
TEST_F(Listings, RoundedAndExactStartsWalkTheWholeCurve) {
  // The curve is walked to its PVT whatever the end station, which comes once, last.
  EXPECT_EQ(stations(processVincrements(sag, range(730, 900, 100))),
            (std::vector<std::string>{"7+30.000/T", "8+00.000/PVC", "9+00.000/C", "10+00.000/MIN", "11+00.000/C",
                                      "12+00.000/PVT", "9+00.000/C"}));
  // Exact: every increment from the start; the start itself is skipped, as it always was.
  EXPECT_EQ(stations(processVincrements(sag, range(730, 900, 100, true))),
            (std::vector<std::string>{"8+00.000/PVC", "8+30.000/C", "9+30.000/C", "10+00.000/MIN",
                                      "10+30.000/C", "11+30.000/C", "9+00.000/C"}));
}

TEST_F(Listings, ThePvcLineStandsWhereverThePvcLies) {
  // Start 9+00, after the PVC: the PVC line follows the start's own line.
  EXPECT_EQ(stations(processVincrements(sag, range(900, 1100, 100)))[1], "8+00.000/PVC");
  // Start on the PVC: listed as the start, and again as the PVC line.
  const auto onPvc = stations(processVincrements(sag, range(800, 900, 100)));
  EXPECT_EQ(std::vector<std::string>(onPvc.begin(), onPvc.begin() + 3),
            (std::vector<std::string>{"8+00.000/PVC", "8+00.000/PVC", "9+00.000/C"}));
}

TEST_F(Listings, TheTurningPointIsMergedOnlyOnTheCurve) {
  VerticalCurve c = makeCurve(-0.03, 0.02, 400, KnownPoint::PVC, 800, 100);
  minMaxCalc(c);  // the low point at 10+40, between increments
  EXPECT_EQ(stations(processVincrements(c, range(900, 1100, 100))),
            (std::vector<std::string>{"9+00.000/C", "8+00.000/PVC", "10+00.000/C", "10+40.000/MIN", "11+00.000/C",
                                      "12+00.000/PVT", "11+00.000/C"}));
}

TEST_F(Listings, TheLowPointIsNeverDroppedBetweenTheLastCurveStationAndThePvt) {
  // PVC 834+50, PVT 838+00 on an increment, low point 837+50, by 100 from 832+54.89.
  VerticalCurve c = makeCurve(-0.06, 0.01, 350, KnownPoint::PVC, 83450, 100);
  minMaxCalc(c);
  ASSERT_DOUBLE_EQ(c.turningStation, 83750);
  EXPECT_EQ(stations(processVincrements(c, range(83254.89, 84000, 100))),
            (std::vector<std::string>{"832+54.890/T", "834+00.000/T", "834+50.000/PVC", "835+00.000/C", "836+00.000/C",
                                      "837+00.000/C", "837+50.000/MIN", "838+00.000/PVT", "839+00.000/T",
                                      "840+00.000/T"}));
  // A PVT between increments, and a listing that starts beyond the PVT: the
  // low point at 11+80 still has its line, after the curve's last listed station.
  VerticalCurve late = makeCurve(-0.0475, 0.0025, 400, KnownPoint::PVC, 800, 100);
  minMaxCalc(late);
  ASSERT_DOUBLE_EQ(late.turningStation, 1180);
  EXPECT_EQ(stations(processVincrements(late, range(850, 1250, 100, true))),
            (std::vector<std::string>{"8+00.000/PVC", "9+50.000/C", "10+50.000/C", "11+50.000/C", "11+80.000/MIN",
                                      "12+50.000/T"}));
  EXPECT_EQ(stations(processVincrements(late, range(1250, 1300, 100, true))),
            (std::vector<std::string>{"8+00.000/PVC", "11+80.000/MIN", "13+00.000/T"}));
}

TEST_F(Listings, APvcAtZeroWithoutAnEquationIsListedOnce) {
  VerticalCurve c = makeCurve(-0.02, 0.02, 400, KnownPoint::PVC, 0, 100);
  minMaxCalc(c);
  EXPECT_EQ(stations(processVincrements(c, range(0, 500, 100))),
            (std::vector<std::string>{"+.000/PVC", "1+00.000/C", "2+00.000/MIN", "3+00.000/C", "4+00.000/PVT",
                                      "5+00.000/T"}));
}

TEST_F(Listings, AfterTheEquationTheListingGoesOnFromTheCurrentStation) {
  // Equation 8+10 = 8+30 at the PVC, increment 50 from 7+00: on 8+50, 9+00, not from the PVC.
  VerticalCurve c = makeCurve(-0.02, 0.02, 400, KnownPoint::PVC, 810, 100);
  minMaxCalc(c);
  ListingInput in = range(700, 1000, 50);
  in.equation = std::pair{810.0, 830.0};
  const Listing l = processVincrements(c, in);
  ASSERT_GE(l.lines.size(), 9u);
  EXPECT_EQ(l.lines[3], "    **** EQUATION IN  ****");  // after 7+00, 7+50, 8+00; in place of the PVC line
  EXPECT_EQ(l.lines[4].substr(0, 12), "     810.000");  // the equation stations as plain numbers
  EXPECT_EQ(l.lines[5].substr(0, 12), "     830.000");
  EXPECT_EQ(l.lines[6], "    **** EQUATION OUT ****");
  EXPECT_EQ(l.lines[7].substr(0, 12), "    8+50.000");
  EXPECT_EQ(l.lines[8].substr(0, 12), "    9+00.000");
  // The low point moved into the OUT stationing with the curve (10+10 + 20).
  const auto s = stations(l);
  EXPECT_NE(std::find(s.begin(), s.end(), "10+30.000/MIN"), s.end());
}

TEST_F(Listings, AfterThePvtBelowTheEndThenTheEndOnce) {
  EXPECT_EQ(stations(processVincrements(sag, range(1300, 1500, 100))),
            (std::vector<std::string>{"13+00.000/T", "8+00.000/PVC", "10+00.000/MIN", "14+00.000/T", "15+00.000/T"}));
  EXPECT_EQ(stations(processVincrements(sag, range(1300, 1560, 100))).back(), "15+60.000/T");
  // The PVT on the end station is listed once.
  const auto toPvt = stations(processVincrements(sag, range(900, 1200, 100)));
  EXPECT_EQ(std::vector<std::string>(toPvt.end() - 2, toPvt.end()), (std::vector<std::string>{"11+00.000/C", "12+00.000/PVT"}));
}

TEST_F(Listings, AnEquationOnTheLowPointComesAfterIt) {
  // The equation on the low point and on an increment: the MIN line first,
  // then the equation, and no plain line for the station.
  ListingInput in = range(900, 1200, 100);
  in.equation = std::pair{1000.0, 1000.0};
  const auto l = processVincrements(sag, in);
  EXPECT_NE(l.lines[2].find("MIN"), std::string::npos);
  EXPECT_EQ(l.lines[3], "    **** EQUATION IN  ****");
  EXPECT_EQ(l.lines[6], "    **** EQUATION OUT ****");
  EXPECT_EQ(l.lines[7].substr(0, 12), "   10+00.000");  // the first station at or beyond OUT
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
}

TEST(ListLines, EachProfileKeepsItsColumnWhicheverOffsetsAreUsed) {
  // Profile 1 after one space, profiles 2 and 3 after two: all seven combinations.
  const std::string head = "   10+00.000  C     102.000  ";
  const std::vector<std::pair<std::array<double, 3>, std::string>> cases = {
      {{-0.5, 0, 0}, " 101.500"},          {{0, 1.25, 0}, "  103.250"},
      {{0, 0, 10}, "  112.000"},           {{-0.5, 1.25, 0}, " 101.500  103.250"},
      {{-0.5, 0, 10}, " 101.500  112.000"}, {{0, 1.25, 10}, "  103.250  112.000"},
      {{-0.5, 1.25, 10}, " 101.500  103.250  112.000"}};
  for (const auto& [profiles, tail] : cases) EXPECT_EQ(addItemTstr("10+00.000", "C", "102.000", profiles), head + tail);
}

}  // namespace
}  // namespace tervalo

namespace tervalo {
namespace {

std::vector<std::string> labels(const Picture& p, Ink ink) {
  std::vector<std::string> out;
  for (const auto& t : p.texts)
    if (t.ink == ink) out.push_back(t.text);
  return out;
}

TEST(ProfileSketch, SagAndCrestMarkTheirKeyPointsAndTurningPoint) {
  VerticalCurve sag = makeCurve(-0.02, 0.02, 400, KnownPoint::PVI, 1000, 100);
  minMaxCalc(sag);
  const ProfileSketch s = profileSketch({sag, false, {}, {}, {}});
  EXPECT_EQ(labels(s.picture, Ink::Main),
            (std::vector<std::string>{"PVC 8+00.000 / 104.000", "PVI 10+00.000 / 100.000", "PVT 12+00.000 / 104.000"}));
  EXPECT_EQ(labels(s.picture, Ink::Accent), std::vector<std::string>{"Low 10+00.000 / 102.000"});
  // The low point's mark lies on the parabola's lowest drawn point, exaggerated as the caption says.
  const PictureMark& low = s.picture.marks.back();
  EXPECT_EQ(low.at.x, 1000);
  const auto& parabola = s.picture.lines[2].points;
  EXPECT_NEAR(std::min_element(parabola.begin(), parabola.end(), [](auto a, auto b) { return a.y < b.y; })->y, low.at.y, 1e-9);
  EXPECT_NE(s.picture.caption.find("Sag curve, vertical scale " + CStr(s.exaggeration)), std::string::npos);

  VerticalCurve crest = makeCurve(0.03, -0.01, 600, KnownPoint::PVC, 500, 50);
  minMaxCalc(crest);
  const ProfileSketch c = profileSketch({crest, false, {0, 1.5, 0}, {}, std::pair{700.0, 900.0}});
  EXPECT_EQ(labels(c.picture, Ink::Accent), std::vector<std::string>{"High 11+50.000 / 56.750"});
  // Beyond the equation at 7+00 (the high point and the PVT), stations read in the OUT stationing.
  EXPECT_EQ(labels(c.picture, Ink::Main)[2], "PVT 13+00.000 / 56.000");
  const auto quiet = labels(c.picture, Ink::Quiet);
  EXPECT_NE(std::find(quiet.begin(), quiet.end(), "Equation 7+00.000 = 9+00.000"), quiet.end());
  EXPECT_NE(std::find(quiet.begin(), quiet.end(), "Profile 2"), quiet.end());
  EXPECT_EQ(std::count_if(c.picture.lines.begin(), c.picture.lines.end(), [](const PictureLine& l) { return l.dashed; }), 3);
}

}  // namespace
}  // namespace tervalo
