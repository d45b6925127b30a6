// Least-squares networks: exact observations give back the true points from
// poor first approximations, with no residual; Gaussian errors pass the
// global test about 95 times in 100 and a planted blunder is flagged at its
// own observation; a levelling loop; every defect named.

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include <nlohmann/json.hpp>

#include "adjust/adjustment.h"

namespace tervalo {
namespace {

using Json = nlohmann::json;

struct TruePoint {
  const char* name;
  double n, e;
};
constexpr TruePoint kTrue[] = {{"A", 5000, 5000}, {"B", 5000, 6000}, {"C", 5800, 5600}, {"D", 5900, 4900}, {"E", 5400, 5300}};

double azimuthDeg(const TruePoint& a, const TruePoint& b) {
  double az = std::atan2(b.e - a.e, b.n - a.n) * 180 / std::numbers::pi;
  return az < 0 ? az + 360 : az;
}

// A braced network of five points: A fixed, B weighted, the rest free, with
// distances, angles and directions as the truth gives them, plus `noise`.
Json network(std::mt19937* random = nullptr, int blunder = 0) {
  std::normal_distribution<double> seconds(0, 2.0), feet(0, 0.01);
  const auto angleNoise = [&] { return random ? seconds(*random) : 0.0; };
  const auto lengthNoise = [&] { return random ? feet(*random) : 0.0; };
  Json net{{"version", 1}, {"units", "ft"}, {"defaults", {{"angle", 2.0}, {"distance", 0.01}}}};
  net["points"] = Json::array();
  for (const TruePoint& p : kTrue) {
    Json point{{"name", p.name}, {"northing", p.n + (p.name[0] > 'B' ? 3.7 : 0)}, {"easting", p.e - (p.name[0] > 'B' ? 2.9 : 0)}};
    if (p.name[0] == 'A') point["fixed"] = true;
    if (p.name[0] == 'B') point["sigma"] = {0.005, 0.005}, point["northing"] = p.n, point["easting"] = p.e;
    net["points"].push_back(point);
  }
  net["observations"] = Json::array();
  const auto at = [](const char* n) { return kTrue[n[0] - 'A']; };
  for (const auto& [a, b] : {std::pair{"A", "C"}, {"A", "D"}, {"A", "E"}, {"B", "C"}, {"B", "E"}, {"C", "D"}, {"D", "E"}, {"C", "E"}}) {
    const double d = std::hypot(at(b).n - at(a).n, at(b).e - at(a).e) + lengthNoise();
    net["observations"].push_back({{"type", "distance"}, {"from", a}, {"to", b}, {"value", d}});
  }
  for (const auto& [back, here, fore] : {std::tuple{"B", "A", "C"}, {"C", "A", "D"}, {"E", "B", "C"}, {"A", "E", "D"}, {"D", "C", "B"}}) {
    double angle = azimuthDeg(at(here), at(fore)) - azimuthDeg(at(here), at(back)) + angleNoise() / 3600;
    if (angle < 0) angle += 360;
    net["observations"].push_back({{"type", "angle"}, {"at", here}, {"back", back}, {"fore", fore}, {"value", angle}});
  }
  for (const char* to : {"A", "B", "C"}) {
    const double direction = azimuthDeg(at("E"), at(to)) - 17.25 + angleNoise() / 3600;
    net["observations"].push_back({{"type", "direction"}, {"at", "E"}, {"to", to}, {"set", 1}, {"value", direction < 0 ? direction + 360 : direction}});
  }
  if (blunder) {
    Json& o = net["observations"][static_cast<std::size_t>(blunder - 1)];
    o["value"] = o["value"].get<double>() + (o["type"] == "distance" ? 0.25 : 60.0 / 3600);
  }
  return net;
}

TEST(Adjustment, ExactObservationsGiveBackTheTruthWithNoResidual) {
  const Adjustment a = adjustNetwork(parseNetwork(network().dump()));
  EXPECT_EQ(a.dof, 16 + 2 - (4 * 2 + 1));
  for (std::size_t i = 0; i < std::size(kTrue); ++i) {
    EXPECT_NEAR(*a.points[i].northing, kTrue[i].n, 1e-7) << kTrue[i].name;
    EXPECT_NEAR(*a.points[i].easting, kTrue[i].e, 1e-7) << kTrue[i].name;
  }
  for (const AdjustedObservation& o : a.observations) EXPECT_NEAR(o.residual, 0, 1e-5) << o.place;
  EXPECT_FALSE(a.flagged);
  EXPECT_GT(a.points[2].ellipse95.a, a.points[2].standard.a * 2.4);
  EXPECT_NEAR(a.critical, 3.2905, 1e-4);
  // Without weighted control the redundancy numbers sum to the degrees of
  // freedom: a check on every element of the inverse the statistics take.
  Json held = network();
  held["points"][1].erase("sigma");
  held["points"][1]["fixed"] = true;
  const Adjustment h = adjustNetwork(parseNetwork(held.dump()));
  double redundancy = 0;
  for (const AdjustedObservation& o : h.observations) redundancy += o.redundancy;
  EXPECT_NEAR(redundancy, h.dof, 1e-9);
  // With no pairs named, every pair joined by an observation where one moves (A-B both held: none).
  EXPECT_EQ(h.relative.size(), 8u);
  for (const RelativeEllipse& r : h.relative) EXPECT_FALSE(r.from == 0 && r.to == 1);
}

TEST(Adjustment, GaussianErrorsPassTheGlobalTestAndABlunderIsFlaggedWhereItIs) {
  std::mt19937 random(20261125);
  int passed = 0;
  const int runs = 400;
  for (int run = 0; run < runs; ++run) passed += adjustNetwork(parseNetwork(network(&random).dump())).passed ? 1 : 0;
  EXPECT_GT(passed, runs * 0.91);
  EXPECT_LT(passed, runs * 0.99);
  for (int blunder : {2, 10, 12}) {  // a distance, an angle, another angle
    const Adjustment a = adjustNetwork(parseNetwork(network(&random, blunder).dump()));
    ASSERT_TRUE(a.flagged) << blunder;
    EXPECT_EQ(*a.flagged, blunder);
    EXPECT_FALSE(a.passed);
  }
}

TEST(Adjustment, ALevellingLoopSharesItsMisclosure) {
  const Json net{{"version", 1},
                 {"points", {{{"name", "BM1"}, {"elevation", 100.0}, {"fixed", true}}, {{"name", "P"}, {"elevation", 0.0}}, {{"name", "Q"}, {"elevation", 0.0}}}},
                 {"observations",
                  {{{"type", "dh"}, {"from", "BM1"}, {"to", "P"}, {"value", 5.0}, {"sigma", 0.01}},
                   {{"type", "dh"}, {"from", "P"}, {"to", "Q"}, {"value", 3.0}, {"sigma", 0.01}},
                   {{"type", "dh"}, {"from", "Q"}, {"to", "BM1"}, {"value", -7.97}, {"sigma", 0.01}}}}};
  const Adjustment a = adjustNetwork(parseNetwork(net.dump()));
  EXPECT_EQ(a.dof, 1);
  EXPECT_NEAR(*a.points[1].elevation, 104.99, 1e-9);  // the loop's 0.03 shared equally
  EXPECT_NEAR(*a.points[2].elevation, 107.98, 1e-9);
  for (const AdjustedObservation& o : a.observations) EXPECT_NEAR(o.redundancy, 1.0 / 3, 1e-9);
}

// A published level net (differential levels run forward and back round
// four points from one bench mark at 1000.000 m, every run 5 mm): the
// adjusted heights to 0.01 mm, their standard deviations from the a priori
// 5 mm to 0.1 mm, the a posteriori 5.42 mm and the largest normalized
// residual, 1.68 at the sixth run, as the worked example prints them.
TEST(Adjustment, APublishedLevelNetIsReproduced) {
  Json net{{"version", 1}, {"units", "m"}, {"significance", 0.05}, {"snooping", 0.05}};
  net["points"] = {{{"name", "1a"}, {"elevation", 1000.0}, {"fixed", true}},
                   {{"name", "4"}, {"elevation", 998.775}},
                   {{"name", "3"}, {"elevation", 997.927}},
                   {{"name", "2"}, {"elevation", 999.269}}};
  net["observations"] = Json::array();
  for (const auto& [from, to, dh] : {std::tuple{"1a", "4", -1.225}, {"4", "3", -0.848}, {"3", "2", 1.342}, {"2", "1a", 0.720},
                                     {"1a", "2", -0.724}, {"2", "3", -1.335}, {"3", "4", 0.842}, {"4", "1a", 1.231}})
    net["observations"].push_back({{"type", "dh"}, {"from", from}, {"to", to}, {"value", dh}, {"sigma", 0.005}});
  const Adjustment a = adjustNetwork(parseNetwork(net.dump()));
  EXPECT_EQ(a.dof, 5);
  EXPECT_NEAR(std::sqrt(a.variance) * 5.0, 5.42, 0.005);
  const double published[][2] = {{998.77513, 3.1}, {997.93325, 3.5}, {999.27487, 3.1}};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_NEAR(*a.points[i + 1].elevation, published[i][0], 0.5e-5) << a.points[i + 1].name;
    EXPECT_NEAR(*a.points[i + 1].sz / std::sqrt(a.variance) * 1000, published[i][1], 0.05) << a.points[i + 1].name;
  }
  EXPECT_NEAR(-1.335 + a.observations[5].residual, -1.34163, 0.501e-5);  // the adjusted run, rounded half up in print
  EXPECT_NEAR(std::abs(a.observations[5].standardized), 1.68, 0.005);
  for (const AdjustedObservation& o : a.observations) EXPECT_LE(std::abs(o.standardized), std::abs(a.observations[5].standardized));
  EXPECT_FALSE(a.flagged);  // 1.68 stays under 1.96
  EXPECT_TRUE(a.passed);
}

TEST(Adjustment, EveryDefectIsNamed) {
  const auto refused = [](const Json& net) {
    try {
      adjustNetwork(parseNetwork(net.dump()));
    } catch (const NetworkError& e) {
      return std::string(e.what());
    }
    return std::string("adjusted");
  };
  Json loose = network();
  // No control at all.
  loose["points"][0]["fixed"] = false;
  loose["points"][1].erase("sigma");
  EXPECT_EQ(refused(loose), "points A, B, C, D, E are not joined to any fixed or weighted point: hold one of them, or join them to the control");
  Json rotating = network();
  rotating["points"][1].erase("sigma");
  rotating["points"][1]["fixed"] = false;
  // Only distances and angles from one fixed point: the network may turn about it.
  EXPECT_NE(refused(rotating).find("the network has a datum defect: the observations do not fix"), std::string::npos) << refused(rotating);
  Json lonely = network();
  lonely["points"].push_back({{"name", "F"}, {"northing", 1.0}, {"easting", 1.0}});
  lonely["observations"].push_back({{"type", "distance"}, {"from", "A"}, {"to", "F"}, {"value", 100.0}});
  EXPECT_EQ(refused(lonely), "point F is joined by 1 observation; a free point needs 2 at least to be placed");
  Json unknown = network();
  unknown["observations"][3]["to"] = "Z";
  EXPECT_EQ(refused(unknown), "observation 4 names point Z, which the network does not hold");
  Json zero = network();
  zero["observations"][0]["sigma"] = 0.0;
  EXPECT_EQ(refused(zero), "observation 1: a standard deviation of a distance must be more than 0");
}

}  // namespace
}  // namespace tervalo
