// Lost corners by proportionate measurement: the rules against worked
// examples of the restoration literature, and against what must hold of
// any restoration whatever its numbers.

#include <gtest/gtest.h>

#include <cmath>

#include "restore/proportion.h"

namespace tervalo {
namespace {

constexpr double kCh = kChainFeet;

Control at(double x, double y, double record, std::string point = "") { return {std::move(point), {x, y}, record}; }

double distance(Position a, Position b) { return std::hypot(a.x - b.x, a.y - b.y); }

// A quarter corner lost between two section corners; the record is 45 and
// 35 chains, the line retraced 84 chains: the corner is 47.25 chains from
// the first (the restoration course's first single-proportion example).
TEST(Restoration, SingleProportionGivesEachPartItsShareOfTheRetracedLine) {
  LostCorner lost{"N 1/4", RestoreMethod::Auto, 1, at(1000, 5000 + 84 * kCh, 45, "101"), at(1000, 5000, 35, "102")};
  const Restored r = restoreCorner(lost, 0, kCh);
  EXPECT_EQ(r.method, RestoreMethod::Single);
  EXPECT_NEAR(distance(r.at, lost.north->at) / kCh, 47.25, 0.005);  // the published precision
  EXPECT_NEAR(r.at.x, 1000, 1e-9);
  EXPECT_NE(r.text.find("45.00 of 80.00 chains of record"), std::string::npos) << r.text;
  // On a skew line too: on it, its parts add up to the line, in the record's ratio.
  lost.north->at = {2345.6, 9876.5};
  lost.south->at = {1234.5, 4321.0};
  const Restored skew = restoreCorner(lost, 17.5, kCh);  // a single proportion needs no basis
  const double a = distance(skew.at, lost.north->at), b = distance(skew.at, lost.south->at);
  EXPECT_NEAR(a + b, distance(lost.north->at, lost.south->at), 1e-9);
  EXPECT_NEAR(a / b, 45.0 / 35.0, 1e-12);
}

// Double proportion: the northing from the north and south controls alone,
// the easting from the east and west controls alone. On the meridional line
// the record is 40 + 40 chains and the retracement 79.94: the corner's
// northing is 39.97 chains from the north control (the course's example).
TEST(Restoration, DoubleProportionTakesEachCoordinateFromItsOwnLine) {
  const double ns = 79.94 * kCh;
  LostCorner lost{"SEC COR", RestoreMethod::Auto, 1,
                  at(10.0, ns, 40, "N"),           at(-14.0, 0, 40, "S"),
                  at(40.12 * kCh, 39.0 * kCh, 40, "E"), at(-39.88 * kCh, 41.5 * kCh, 40, "W")};
  const Restored r = restoreCorner(lost, 0, kCh);
  EXPECT_EQ(r.method, RestoreMethod::Double);
  EXPECT_NEAR((ns - r.at.y) / kCh, 39.97, 0.005);
  EXPECT_NEAR(r.at.x / kCh, 0.12, 0.005);  // halfway from E to W in easting, whatever their northings
  ASSERT_EQ(r.temporary.size(), 2u);
  EXPECT_NEAR(distance(r.temporary[0].at, lost.north->at) / distance(lost.north->at, lost.south->at), 0.5, 1e-12);
}

TEST(Restoration, ThreeTwoAndOnePointUseTheRecordAsALengthScaledByTheIndex) {
  const Control north = at(0, 2640, 40), south = at(0, -2640, 40), east = at(2650, 0, 40), west = at(-2640, 10, 40);
  struct Case {
    const char* name;
    LostCorner corner;
    Position expected;
    RestoreMethod method;
  };
  const Case cases[] = {
      {"three-point: east lone", {"c", RestoreMethod::Auto, 1.001, north, south, east, {}}, {2650 - 40 * kCh * 1.001, 0},
       RestoreMethod::ThreePoint},
      {"three-point: south lone", {"c", RestoreMethod::Auto, 1, {}, south, east, west}, {5, -2640 + 40 * kCh},
       RestoreMethod::ThreePoint},
      {"two-point", {"c", RestoreMethod::Auto, 1, north, {}, {}, west}, {-2640 + 40 * kCh, 2640 - 40 * kCh},
       RestoreMethod::TwoPoint},
      {"one-point, cardinal", {"c", RestoreMethod::Auto, 1, {}, {}, {}, west}, {-2640 + 40 * kCh, 10}, RestoreMethod::OnePoint},
      {"one-point, along the record azimuth", {"c", RestoreMethod::OnePoint, 1, {}, south, {}, {}, 45.0},
       {40 * kCh * std::sqrt(0.5), -2640 + 40 * kCh * std::sqrt(0.5)}, RestoreMethod::OnePoint}};
  for (const Case& c : cases) {
    const Restored r = restoreCorner(c.corner, 0, kCh);
    EXPECT_EQ(r.method, c.method) << c.name;
    EXPECT_NEAR(r.at.x, c.expected.x, 1e-9) << c.name;
    EXPECT_NEAR(r.at.y, c.expected.y, 1e-9) << c.name;
  }
  // Metric coordinates take the metric chain.
  const Restored m = restoreCorner({"c", RestoreMethod::Auto, 1, {}, {}, {}, at(0, 0, 10)}, 0, kChainMetres);
  EXPECT_NEAR(m.at.x, 201.168, 1e-9);
}

// Turning every coordinate about the origin and the basis with it turns the
// result alike, for every rule: the rules work to true north, not to the
// coordinates' north.
TEST(Restoration, TurningTheCoordinatesAndTheBasisTogetherTurnsTheResult) {
  const Control north = at(120, 5290, 40), south = at(-35, -10, 40.25), east = at(2660, 2610, 39.9), west = at(-2601, 2655, 40.1);
  const LostCorner corners[] = {{"single", RestoreMethod::Auto, 1, north, south},
                                {"double", RestoreMethod::Auto, 1, north, south, east, west},
                                {"three", RestoreMethod::Auto, 1.002, north, south, east, {}},
                                {"two", RestoreMethod::Auto, 1, {}, south, {}, west},
                                {"one", RestoreMethod::Auto, 1, north, {}, {}, {}, 170.0}};
  const double theta = 1.234 * 3.14159265358979323846 / 180, basis = 0.75;
  const auto turn = [theta](Position p) {
    return Position{p.x * std::cos(theta) - p.y * std::sin(theta), p.x * std::sin(theta) + p.y * std::cos(theta)};
  };
  for (const LostCorner& c : corners) {
    LostCorner turned = c;
    for (auto* k : {&turned.north, &turned.south, &turned.east, &turned.west})
      if (*k) (*k)->at = turn((*k)->at);
    const Position expected = turn(restoreCorner(c, basis, kCh).at);
    const Position got = restoreCorner(turned, basis - 1.234, kCh).at;
    EXPECT_NEAR(got.x, expected.x, 1e-7) << c.name;
    EXPECT_NEAR(got.y, expected.y, 1e-7) << c.name;
  }
}

TEST(Restoration, ControlsThatDoNotFitTheRuleAreRefusedWithWhy) {
  const Control north = at(0, 100, 40), south = at(0, 0, 40), east = at(50, 50, 40);
  const std::pair<LostCorner, const char*> refused[] = {
      {{"a", RestoreMethod::Double, 1, north, south}, "double proportion takes controls in all four directions, not the 2 given"},
      {{"b", RestoreMethod::Single, 1, north, {}, east}, "single proportion takes the two controls of one line"},
      {{"c", RestoreMethod::Auto, 1}, "no control corner is given"},
      {{"d", RestoreMethod::Auto, 1, at(0, 100, 0), south}, "the record distance to the north control must be more than 0"},
      {{"e", RestoreMethod::Auto, 1, north, at(0, 100, 40)}, "the north and south controls are one point"},
      {{"f", RestoreMethod::Auto, 0, north, south}, "the index must be a number more than 0"}};
  for (const auto& [corner, why] : refused) {
    try {
      restoreCorner(corner, 0, kCh);
      ADD_FAILURE() << corner.name;
    } catch (const RestoreError& e) {
      EXPECT_NE(std::string(e.what()).find(why), std::string::npos) << e.what();
    }
  }
}

}  // namespace
}  // namespace tervalo
