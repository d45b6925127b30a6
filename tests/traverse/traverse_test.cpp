// Traverse closure and adjustment against worked examples published in
// surveying course material (to their printed places), and what holds of
// any traverse: an exact one adjusts to itself, the corrections undo the
// misclosure, Crandall's method keeps every direction, least squares agrees
// with the compass rule on a simple loop.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "text/angle.h"
#include "traverse/traverse.h"

namespace tervalo {
namespace {

struct Leg {
  const char* to;
  const char* direction;  // a bearing, or an azimuth in degrees-minutes-seconds
  double length;
};

// A traverse from `start` along `legs` (bearings or azimuths), closed on its
// start or on `end`, adjusted by `rule`.
TraverseInput traverse(PlanePosition start, std::initializer_list<Leg> legs, AdjustRule rule,
                       std::optional<PlanePosition> end = std::nullopt) {
  TraverseInput in;
  in.start = {"A", start};
  for (const Leg& leg : legs) {
    CourseEntry c;
    c.to = leg.to;
    if (const auto bearing = bearingAzimuth(leg.direction)) {
      c.turn = Turn::Bearing;
      c.angle = *bearing;
    } else {
      c.angle = *angleFromText(leg.direction);
    }
    c.distance = leg.length;
    in.courses.push_back(c);
  }
  in.close = end ? KnownStation{in.courses.back().to, end} : KnownStation{"A"};
  in.adjust = rule;
  return in;
}

TraverseResult run(const TraverseInput& in) { return computeTraverse(in, PointList::unbounded(), false); }

// The examples print each course's latitude and departure rounded: their
// sums and what follows from them are as good as so many roundings.
TEST(Traverse, LoopsAndALinkAsTheWorkedExamplesGiveThem) {
  // A bearing loop from 500 N, 2000 E: misclosure +0.083 lat, +0.075 dep; the compass rule's latitudes and departures.
  const TraverseResult bearings = run(traverse({2000, 500}, {{"B", "S 68-05-35 W", 472.68}, {"C", "N 19-46-00 W", 216.13},
                                                             {"D", "N 45-55-20 E", 276.52}, {"A", "S 54-59-15 E", 382.24}},
                                               AdjustRule::Compass));
  EXPECT_NEAR(bearings.closure.lat, 0.083, 4 * 0.0005);
  EXPECT_NEAR(bearings.closure.dep, 0.075, 4 * 0.0005);
  const double published[4][2] = {{-176.386, -438.574}, {203.382, -73.105}, {192.340, 198.635}, {-219.336, 313.044}};
  for (std::size_t k = 0; k < 4; ++k) {
    EXPECT_NEAR(bearings.courses[k].lat + bearings.courses[k].cLat, published[k][0], 0.001) << k;
    EXPECT_NEAR(bearings.courses[k].dep + bearings.courses[k].cDep, published[k][1], 0.001) << k;
  }
  // An azimuth loop: linear closure 0.157, precision 1:15,200 (to the hundred), the compass rule's.
  const TraverseResult azimuths = run(traverse({0, 0}, {{"B", "226-54-23", 639.15}, {"C", "0-00-00", 523.69},
                                                        {"D", "235-02-29", 409.54}, {"A", "79-35-02", 815.93}},
                                               AdjustRule::Compass));
  EXPECT_NEAR(azimuths.closure.length, 0.157, 4 * 0.0005);
  EXPECT_NEAR(*azimuths.closure.precision, 15200, 15200 * (4 * 0.0005) / 0.157);
  const double adjusted[4][2] = {{-436.631, -466.761}, {523.715, -0.023}, {-234.640, -335.663}, {147.556, 802.447}};
  for (std::size_t k = 0; k < 4; ++k) {
    EXPECT_NEAR(azimuths.courses[k].lat + azimuths.courses[k].cLat, adjusted[k][0], 0.001) << k;
    EXPECT_NEAR(azimuths.courses[k].dep + azimuths.courses[k].cDep, adjusted[k][1], 0.001) << k;
  }
  // A five-sided loop from 10000, 10000: misclosure 0.89 (to the hundredth), the compass rule's coordinates.
  const TraverseResult five = run(traverse({10000, 10000}, {{"B", "N 26-10-00 E", 285.10}, {"C", "S 75-25-00 E", 610.45},
                                                            {"D", "S 15-30-00 W", 720.48}, {"E", "N 1-42-00 W", 203.00},
                                                            {"A", "N 53-06-00 W", 647.02}},
                                           AdjustRule::Compass));
  EXPECT_NEAR(five.closure.length, 0.89, 5 * 0.005);
  const double coordinates[4][2] = {{10125.66, 10255.96}, {10716.31, 10102.44}, {10523.62, 9408.37}, {10517.55, 9611.34}};
  for (std::size_t s = 0; s < 4; ++s) {
    EXPECT_NEAR(five.stations[s + 1].adjusted.x, coordinates[s][0], 0.005 * static_cast<double>(s + 2)) << s;  // summed roundings
    EXPECT_NEAR(five.stations[s + 1].adjusted.y, coordinates[s][1], 0.005 * static_cast<double>(s + 2)) << s;
  }
  // The transit rule on a six-sided loop: the corrections to AB's latitude and departure, 2.86 and 0.26.
  const TraverseResult transit = run(traverse({0, 0}, {{"B", "5-30-00", 495.85}, {"C", "46-02-00", 850.62}, {"D", "112-22-00", 855.45},
                                                       {"E", "167-35-00", 1020.87}, {"F", "263-44-00", 1117.26}, {"A", "304-51-00", 660.08}},
                                              AdjustRule::Transit));
  EXPECT_NEAR(transit.courses[0].cLat, -2.86, 0.005);
  EXPECT_NEAR(transit.courses[0].cDep, -0.26, 0.005);
  // A link from Q to the known T: misclosure +0.055 lat, -0.070 dep.
  const TraverseResult link = run(traverse({1391.670, 2600.480}, {{"R", "S 56-23-38 E", 398.75}, {"S", "S 75-17-42 W", 422.89},
                                                                  {"T", "N 43-05-47 E", 604.49}},
                                           AdjustRule::Compass, PlanePosition{1727.810, 2713.780}));
  EXPECT_NEAR(link.closure.lat, 0.055, 3 * 0.0005);
  EXPECT_NEAR(link.closure.dep, -0.070, 3 * 0.0005);
  EXPECT_NEAR(link.stations.back().adjusted.x, 1727.810, 1e-9);  // the known end held
}

// Interior angles right, the first line's azimuth fixed and the angle at the
// start closing on it: their sum against (n-2) x 180, shared equally.
TEST(Traverse, AnglesCloseOnTheirSumAndAreSharedEqually) {
  TraverseInput in;
  in.start = {"A", PlanePosition{310630.892, 121311.411}};
  const std::pair<const char*, const char*> angles[] = {{"C", "106-12-58"}, {"D", "104-39-22"}, {"E", "130-01-54"}, {"A", "79-28-16"}};
  const double lengths[] = {223.011, 168.818, 182.358, 229.024, 207.930};
  in.courses.push_back({"B", Turn::Azimuth, *angleFromText("277-00-04"), lengths[0], {}, {}});
  for (std::size_t k = 0; k < 4; ++k)
    in.courses.push_back({angles[k].first, Turn::AngleRight, *angleFromText(angles[k].second), lengths[k + 1], {}, {}});
  in.close = {"A"};
  in.closeAngle = *angleFromText("119-37-10");
  in.units = "m";
  const TraverseResult r = run(in);
  ASSERT_TRUE(r.closure.angular);
  EXPECT_NEAR(std::abs(*r.closure.angular), 20, 1e-6);
  EXPECT_EQ(r.closure.angles, 5);
  EXPECT_NEAR(*r.closure.angleSum, 539 + 59.0 / 60 + 40.0 / 3600, 1e-9);
  EXPECT_EQ(*r.closure.angleSumShould, 540);
  // Shared: the balanced angle at B is 4" more than measured; the line BC bears south-west.
  EXPECT_NEAR(normalAzimuth(r.courses[1].azimuth - r.courses[1].measured) * 3600, *r.closure.angular < 0 ? 4 : 356 * 3600 - 4, 1e-6);
  EXPECT_GT(r.courses[1].azimuth, 180);
  EXPECT_LT(r.courses[1].azimuth, 270);
}

// A loop of angles right whose start sights its last station along a known
// direction closes on that direction (here its exterior angles, 6 x 180),
// and least squares holds the direction.
TEST(Traverse, ALoopOfAnglesRightClosesOnTheBacksightItSights) {
  const double azimuths[] = {30, 120, 210, 300};
  TraverseInput t;
  t.start = {"1", PlanePosition{5000, 5000}};
  t.close = {"1"};
  t.backsightPoint = KnownStation{"4"};
  t.backsightAzimuth = 120;  // from 1 toward 4
  const char* names[] = {"2", "3", "4", "1"};
  for (int k = 0; k < 4; ++k) {
    const double back = k == 0 ? *t.backsightAzimuth : azimuths[k - 1] + 180;
    t.courses.push_back({names[k], Turn::AngleRight, normalAzimuth(azimuths[k] - back), k == 0 ? 400.02 : k == 2 ? 400 : 300, {}, {}});
  }
  t.courses[1].angle += 0.0003;  // 1.08" too much at station 2
  const TraverseResult a = run(t);
  ASSERT_TRUE(a.closure.angular);
  EXPECT_EQ(a.closure.angularAgainst, "the backsight");
  EXPECT_EQ(*a.closure.angleSumShould, 1080);
  EXPECT_NEAR(*a.closure.angular, 1.08, 1e-6);
  EXPECT_NEAR(a.courses[3].azimuth, 300, 1e-9);  // balanced, the last course runs back along the backsight
  t.adjust = AdjustRule::LeastSquares;
  const TraverseResult ls = run(t);
  EXPECT_NEAR(azimuthBetween(ls.stations[0].adjusted, ls.stations[3].adjusted), 120, 1e-6);
  EXPECT_EQ(ls.leastSquares->redundancy, 3);  // a loop: two conditions of coordinates and one of angles
}

// What holds of every rule: an exact traverse adjusts to itself, and the
// corrections undo the misclosure. Crandall's method changes distances
// only; least squares comes within the misclosure of the compass rule.
TEST(Traverse, EveryRuleUndoesTheMisclosureAndLeavesAnExactTraverse) {
  const auto loop = [](AdjustRule rule, double error) {
    return traverse({5000, 5000}, {{"2", "30-00-00", 400 + error}, {"3", "120-00-00", 300}, {"4", "210-00-00", 400},
                                   {"A", "300-00-00", 300 - error / 2}},
                    rule);
  };
  const TraverseResult compass = run(loop(AdjustRule::Compass, 0.12));
  for (AdjustRule rule : {AdjustRule::Compass, AdjustRule::Transit, AdjustRule::Crandall, AdjustRule::LeastSquares}) {
    const TraverseResult exact = run(loop(rule, 0));
    for (const StationResult& s : exact.stations) {
      EXPECT_NEAR(s.adjusted.x, s.unadjusted.x, 1e-8) << ruleName(rule) << " " << s.name;
      EXPECT_NEAR(s.adjusted.y, s.unadjusted.y, 1e-8) << ruleName(rule) << " " << s.name;
    }
    const TraverseResult r = run(loop(rule, 0.12));
    double lat = 0, dep = 0;
    for (const CourseResult& c : r.courses) lat += c.cLat, dep += c.cDep;
    EXPECT_NEAR(lat, -r.closure.lat, 1e-9) << ruleName(rule);
    EXPECT_NEAR(dep, -r.closure.dep, 1e-9) << ruleName(rule);
    if (rule == AdjustRule::Crandall) {
      for (const CourseResult& c : r.courses) EXPECT_NEAR(c.adjustedAzimuth, c.azimuth, 1e-9) << c.to;
    }
    if (rule == AdjustRule::LeastSquares) {
      ASSERT_TRUE(r.leastSquares);
      EXPECT_EQ(r.leastSquares->redundancy, 2);  // 4 azimuths and 4 distances, less 3 free stations' coordinates
      for (std::size_t s = 1; s < r.stations.size(); ++s) {
        EXPECT_LT(std::hypot(r.stations[s].adjusted.x - compass.stations[s].adjusted.x, r.stations[s].adjusted.y - compass.stations[s].adjusted.y),
                  r.closure.length) << s;
        ASSERT_TRUE(r.stations[s].ellipse);
        EXPECT_GE(r.stations[s].ellipse->major, r.stations[s].ellipse->minor);
      }
      EXPECT_NEAR(run(loop(rule, 0)).leastSquares->referenceVariance, 0, 1e-12);
    }
  }
}

TEST(Traverse, FaultsAreRefusedWithTheirPlace) {
  const auto base = [] { return traverse({0, 0}, {{"2", "0-00-00", 100}, {"A", "180-00-00", 100}}, AdjustRule::Compass); };
  const std::pair<std::function<void(TraverseInput&)>, const char*> faults[] = {
      {[](TraverseInput& t) { t.courses[0].distance = 0.0; }, "course 1 (to 2): a course of zero length"},
      {[](TraverseInput& t) { t.courses[0].to = "A"; }, "course 1 (to A): returns to station A before the end"},
      {[](TraverseInput& t) { t.courses[1].turn = Turn::AngleRight; t.courses[0].turn = Turn::AngleRight; },
       "course 1 (to 2): an angle turned at the start needs the backsight"},
      {[](TraverseInput& t) { t.courses[1].to = "B", t.close = {"9"}; }, "the last course reaches B, but the traverse closes on 9"},
      {[](TraverseInput& t) { t.start = {"7"}; }, "the start names point 7, which is in no source file"},
      {[](TraverseInput& t) { t.adjust = AdjustRule::Crandall; }, "Crandall's method needs courses in more than one direction"}};
  for (const auto& [spoil, message] : faults) {
    TraverseInput t = base();
    t.courses[1].distance = 100.05;  // a misclosure to adjust
    spoil(t);
    try {
      run(t);
      ADD_FAILURE() << message;
    } catch (const TraverseError& e) {
      EXPECT_NE(std::string(e.what()).find(message), std::string::npos) << e.what() << "\n  wanted: " << message;
    }
  }
  EXPECT_EQ(bearingAzimuth("S 10-20-00 W"), 190 + 20.0 / 60);
  EXPECT_EQ(deflectionAngle("12-30-00 L"), -12.5);
  EXPECT_FALSE(bearingAzimuth("N 95-00-00 E"));
  EXPECT_EQ(bearingText(190 + 20.0 / 60), "S 10\u00B020'00.00\" W");
}

}  // namespace
}  // namespace tervalo
