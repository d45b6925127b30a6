// Coordinate systems through PROJ: the module loaded on first use, a system
// described, positions and factors as PROJ's own programs give them.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <tuple>

#include "crs/crs.h"
#include "support/program_output.h"
#include "restore/restoration_file.h"
#include "secsub_out/grid_ground.h"
#include "traverse/traverse_report.h"

namespace tervalo {
namespace {

// What one of PROJ's own programs prints for `input`.
std::string run(const std::string& command, const std::string& input) { return testing::programOutput(command, input); }

TEST(CoordinateSystems, TheCrsKeyIsReadStrictly) {
  EXPECT_TRUE(crsFromJson(nullptr).none());
  EXPECT_EQ(crsFromJson({{"epsg", 26915}, {"foot", "us"}}), (CrsChoice{26915, "us"}));
  EXPECT_EQ(crsToJson(crsFromJson({{"epsg", 3419}, {"elevation", 1250.5}})), (nlohmann::ordered_json{{"epsg", 3419}, {"elevation", 1250.5}}));
  const std::pair<nlohmann::ordered_json, const char*> refused[] = {
      {"EPSG:3419", "must be an object"},
      {{{"epsg", "3419"}}, "\"epsg\" must be the code"},
      {{{"epsg", 3419}, {"foot", "survey"}}, "\"foot\" is \"us\" or \"international\""},
      {{{"epsg", 3419}, {"datum", "NAD83"}}, "unknown key \"datum\""},
      {{{"epsg", 3419}, {"elevation", 1e9}}, "\"elevation\" must be the mean project elevation"}};
  for (const auto& [value, why] : refused) {
    try {
      crsFromJson(value);
      ADD_FAILURE() << value;
    } catch (const CrsError& e) {
      EXPECT_NE(std::string(e.what()).find(why), std::string::npos) << e.what();
    }
  }
  EXPECT_EQ(crsToJson(CrsChoice{3419, ""}), (nlohmann::ordered_json{{"epsg", 3419}}));
}

TEST(CoordinateSystems, PositionsAndFactorsAreProjsOwn) {
  EXPECT_FALSE(geoLoaded());  // nothing loads PROJ before a system is used
  const CrsDescription zone = geo().describe(3419);
  EXPECT_TRUE(geoLoaded());
  EXPECT_EQ(zone.unit, "US survey foot");
  EXPECT_NE(zone.datum.find("1983"), std::string::npos) << zone.datum;
  for (const int refused : {4326, 999999})
    EXPECT_THROW(geo().describe(refused), CrsError) << refused;
  EXPECT_FALSE(geo().search("NAD83 ftUS", 10).empty());

  // Latitudes and longitudes as PROJ's cs2cs gives them, to 1e-9 degrees.
  const std::vector<PlanePosition> at{{1800000, 500000}, {2250000.5, 123456.75}};
  const auto positions = geo().geographic({3419, ""}, at);
  for (std::size_t i = 0; i < at.size(); ++i) {
    double lat = 0, lon = 0;
    const std::string out = run("cs2cs -f %.12f EPSG:3419 EPSG:4269", std::to_string(at[i].x) + " " + std::to_string(at[i].y));
    ASSERT_EQ(std::sscanf(out.c_str(), "%lf %lf", &lat, &lon), 2) << out;
    EXPECT_NEAR(positions[i].latitude, lat, 1e-9);
    EXPECT_NEAR(positions[i].longitude, lon, 1e-9);
  }
  // A system in metres with coordinates in US survey feet: the same place.
  const auto utm = geo().geographic({26915, ""}, {{500000, 4400000}});
  const auto utmFeet = geo().geographic({26915, "us"}, {{500000 / (1200.0 / 3937), 4400000 / (1200.0 / 3937)}});
  EXPECT_NEAR(utm[0].latitude, utmFeet[0].latitude, 1e-10);
  EXPECT_NEAR(utm[0].longitude, utmFeet[0].longitude, 1e-10);
  EXPECT_THROW(geo().geographic({3419, "international"}, at), CrsError);  // a US survey foot system's foot is fixed

  // The scale factor and convergence as PROJ's proj -V gives them (to its printed 8 decimals).
  const GridFactors f = geo().factors({3419, ""}, {at[0]})[0];
  char input[64];
  std::snprintf(input, sizeof input, "%.12f %.12f", positions[0].longitude, positions[0].latitude);
  const std::string definition = run("projinfo -q -o PROJ EPSG:3419 | sed 's/+type=crs//'", "");
  const std::string out = run("proj -V " + definition.substr(0, definition.find('\n')), input);
  double k = 0, convergence = 0;
  ASSERT_EQ(std::sscanf(out.c_str() + out.find("Parallel scale (k) :"), "Parallel scale (k) : %lf", &k), 1) << out;
  const auto bracket = out.find('[', out.find("Convergence"));
  ASSERT_EQ(std::sscanf(out.c_str() + bracket, "[ %lf ]", &convergence), 1) << out;
  EXPECT_NEAR(f.scale, k, 1e-8);
  EXPECT_NEAR(f.convergence, convergence, 1e-8);
  EXPECT_GT(f.convergence, 1);  // east of the zone's central meridian
}

// Grid to ground: the reductions as published worked examples give them (to
// their printed places), PROJ's own mean radius, and a line's ground length
// at the ellipsoid as PROJ's geod measures the geodesic between its ends.
TEST(CoordinateSystems, GridToGroundAgreesWithWorkedExamplesAndGeod) {
  EXPECT_NEAR(0.999981 * elevationFactor(20906000, 500), 0.999957, 5e-7);  // 500 ft up, R 20,906,000 ft
  const double line = lineFactor(1.000133747228, 1.000133747228, 1.000125721090);  // ends and middle, 1:4:1
  EXPECT_NEAR(line, 1.000132409, 1e-9);  // printed cut to nine places
  EXPECT_NEAR(5314.116 * line, 5314.820, 5e-4);
  double radius = 0;
  ASSERT_EQ(std::sscanf(run("proj -f %.6f +proj=eqc +ellps=GRS80 +R_lat_g=38.5", "57.29577951308232 0").c_str(), "%lf", &radius), 1);
  EXPECT_NEAR(geo().meanRadius({3419, ""}, 38.5), radius / (1200.0 / 3937), 1e-5);

  SectionRecord r;  // a mile east and a mile south, far from the central meridian
  for (const auto& [slot, x, y, name] : {std::tuple{0, 1800000.0, 500000.0, "A"}, {1, 1802640.0, 500001.0, "B"},
                                        {2, 1805280.0, 500000.0, "C"}, {5, 1800000.0, 494720.0, "D"}}) {
    CornerSlot& c = r.slots[static_cast<std::size_t>(slot)];
    c.x = x, c.y = y, c.pointNumber = name;
  }
  for (const auto elevation : {std::optional<double>(), std::optional<double>(0.0)}) {
    const GridGround g = gridAndGround(r, {3419, "", elevation});
    ASSERT_EQ(g.lines.size(), 3u);  // A-B, B-C, A-D
    for (const GroundLine& l : g.lines) {
      const auto end = [&g](int slot) { return std::find_if(g.corners.begin(), g.corners.end(), [slot](auto& c) { return c.slot == slot; })->at; };
      char ends[128];
      std::snprintf(ends, sizeof ends, "%.12f %.12f %.12f %.12f", end(l.from).latitude, end(l.from).longitude, end(l.to).latitude,
                    end(l.to).longitude);
      double a1 = 0, a2 = 0, geodesic = 0;
      ASSERT_EQ(std::sscanf(run("geod -I +ellps=GRS80 +units=us-ft -f %.9f -F %.6f", ends).c_str(), "%lf %lf %lf", &a1, &a2, &geodesic), 3);
      EXPECT_NEAR(l.ground, geodesic, 2e-4) << l.name;
      EXPECT_GT(std::abs(l.ground - l.grid), 0.01) << l.name;  // the reduction matters here
    }
  }
}

// A traverse measured on the ellipsoid (geod's geodesics between grid
// points) is reduced to the grid before it closes: on the known end to a
// thousandth, where unreduced it misses by nearly a tenth.
TEST(CoordinateSystems, AGroundTraverseIsReducedToTheGridBeforeItCloses) {
  const std::vector<PlanePosition> grid{{1800000, 500000}, {1802640, 500001}, {1805280, 496000}};
  const std::vector<GeographicPosition> at = geo().geographic({3419, ""}, grid);
  TraverseInput t;
  t.start = {"A", grid[0]};
  t.close = {"C", grid[2]};
  t.adjust = AdjustRule::None;
  t.crs = {3419, "", 0.0};
  for (std::size_t k = 0; k + 1 < grid.size(); ++k) {
    char ends[128];
    std::snprintf(ends, sizeof ends, "%.12f %.12f %.12f %.12f", at[k].latitude, at[k].longitude, at[k + 1].latitude, at[k + 1].longitude);
    double a1 = 0, a2 = 0, geodesic = 0;
    ASSERT_EQ(std::sscanf(run("geod -I +ellps=GRS80 +units=us-ft -f %.9f -F %.6f", ends).c_str(), "%lf %lf %lf", &a1, &a2, &geodesic), 3);
    CourseEntry c{k == 0 ? "B" : "C"};
    c.angle = std::atan2(grid[k + 1].x - grid[k].x, grid[k + 1].y - grid[k].y) * 180 / 3.14159265358979323846;  // grid azimuth
    c.distance = geodesic;
    t.courses.push_back(c);
  }
  EXPECT_GT(runTraverse(t, "").result.closure.length, 0.05);
  t.ground = true;
  const TraverseRun reduced = runTraverse(t, "");
  EXPECT_LT(reduced.result.closure.length, 1e-3);
  EXPECT_NE(std::find_if(reduced.report.begin(), reduced.report.end(),
                         [](const std::string& line) { return line.find("GRID AND GROUND") != std::string::npos; }),
            reduced.report.end());
  t.crs = {};
  EXPECT_THROW(runTraverse(t, ""), TraverseError);
}

// "basis": "true north" turns each corner's cardinal lines to the meridian at
// its controls: the same corner as with the basis given as minus the
// convergence there, and refused without a system to take it from.
TEST(CoordinateSystems, ARestorationBasisTrueNorthIsMinusTheConvergenceAtTheControls) {
  const std::string corners = R"("corners":[{"name":"CTR","method":"double",
      "north":{"x":2250000,"y":505280,"record":40},"south":{"x":2250010,"y":500000,"record":40},
      "east":{"x":2252640,"y":502650,"record":40},"west":{"x":2247360,"y":502630,"record":40}}]})";
  EXPECT_THROW(parseRestoration(R"({"basis":"true north",)" + corners), RestorationFileError);
  const RestorationFile trueNorth = parseRestoration(R"({"basis":"True North","crs":{"epsg":3419},)" + corners);
  const double convergence = geo().factors({3419, ""}, {{2250002.5, 502640}})[0].convergence;
  ASSERT_GT(std::abs(convergence), 0.5);  // far enough from the central meridian to matter
  RestorationFile given = trueNorth;
  given.basisTrueNorth = false;
  given.basis = -convergence;
  const RestorationRun a = runRestoration(trueNorth, "11/24/2026"), b = runRestoration(given, "11/24/2026");
  ASSERT_TRUE(a.corners[0].restored && b.corners[0].restored) << a.corners[0].refused;
  EXPECT_NEAR(a.corners[0].restored->at.x, b.corners[0].restored->at.x, 1e-9);
  EXPECT_NEAR(a.corners[0].restored->at.y, b.corners[0].restored->at.y, 1e-9);
  given.basis = 0;
  const Position grid = runRestoration(given, "").corners[0].restored->at;
  EXPECT_GT(std::hypot(grid.x - a.corners[0].restored->at.x, grid.y - a.corners[0].restored->at.y), 0.005);
  EXPECT_EQ(parseRestoration(restorationText(trueNorth)).basisTrueNorth, true);
}

}  // namespace
}  // namespace tervalo
