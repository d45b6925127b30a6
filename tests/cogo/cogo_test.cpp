// COGO commands against published worked examples, to their published
// precision: a forward computation, two direction-direction intersections
// and the inverse between them (J. Mahun, open-access COGO course, problem
// set 3, problem 1), an area by coordinates (the same course, chapter H);
// the other commands on figures whose answers are exact; every refusal
// names what is wrong; ground distances against PROJ's geodesic.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <sstream>

#include "cogo/cogo.h"
#include "crs/crs.h"
#include "support/program_output.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

// An engine over points held in a map, the way a project holds them.
struct Cogo {
  std::map<std::string, ProjectPoint> held;
  CogoEngine engine{[this](const std::string& n) -> std::optional<ProjectPoint> {
                      const auto it = held.find(n);
                      return it == held.end() ? std::nullopt : std::optional<ProjectPoint>(it->second);
                    },
                    CogoOptions{}};
  int line = 0;
  Json run(const std::string& text) {
    std::optional<Json> out;
    std::istringstream lines(text);
    for (std::string l; std::getline(lines, l);)
      if (auto r = engine.run(l, ++line)) out = r;
    return out.value_or(Json());
  }
  ProjectPoint made(const std::string& number) {
    for (const ProjectPoint& p : engine.made())
      if (p.number == number) return p;
    ADD_FAILURE() << number << " was not made";
    return {};
  }
};

TEST(Cogo, ThePublishedIntersectionsAndInverseToTheThousandth) {
  Cogo c;
  c.run("POINT 1 1000 2000\nLOCATE 2 FROM 1 AZIMUTH 200-00-00 DISTANCE 552.36");
  EXPECT_NEAR(c.made("2").northing, 480.951, 5e-4);
  EXPECT_NEAR(c.made("2").easting, 1811.082, 5e-4);
  c.run("INTERSECT LR BEARING 1 S73-26-15W BEARING 2 N 45-26-34 W");
  EXPECT_NEAR(c.made("LR").northing, 836.445, 5e-4);
  EXPECT_NEAR(c.made("LR").easting, 1450.051, 5e-4);
  c.run("INTERSECT FP BEARING 1 S39°05'35\"E BEARING 2 S88.2552E  # packed degrees.minutes-seconds");
  EXPECT_NEAR(c.made("FP").northing, 463.846, 5e-4);
  EXPECT_NEAR(c.made("FP").easting, 2435.613, 5e-4);
  const Json inverse = c.run("INVERSE 1 LR FP");
  ASSERT_EQ(inverse["legs"].size(), 2u);
  // Published to the thousandth from the solution's rounded partial results.
  EXPECT_NEAR(inverse["legs"][0]["distance"].get<double>(), 573.754, 1e-3);
  EXPECT_NEAR(inverse["legs"][1]["distance"].get<double>(), 1053.642, 1e-3);
  EXPECT_EQ(inverse["legs"][0]["bearing"], "S 73°26'15\" W");
  EXPECT_EQ(inverse["command"], "INVERSE");
  EXPECT_EQ(inverse["line"], 5);
}

TEST(Cogo, ThePublishedAreaByCoordinates) {
  Cogo c;
  c.run("POINT C 406.31 1259.97\nPOINT D 235.12 1489.47\nPOINT E 65.81 1126.40\nPOINT A 317.89 942.04\nPOINT B 675.32 1282.54");
  const Json area = c.run("AREA C D E A B");
  // Published: 140,494 sq ft from cross-products rounded to the square foot each.
  EXPECT_NEAR(area["area"].get<double>(), 140494, 2);
  EXPECT_NEAR(area["acres"].get<double>(), 3.225, 5e-4);
}

TEST(Cogo, EveryCommandOnFiguresWhoseAnswersAreExact) {
  Cogo c;
  c.run("POINT 1 0 0 100.0 \"IRON PIN\"\nPOINT 2 0 400\nPOINT 3 300 400");
  EXPECT_EQ(c.made("1").description, "IRON PIN");
  struct Case {
    const char* command;
    const char* number;
    double n, e;
  };
  for (const Case& k : {
           Case{"LOCATE 10 FROM 1 BEARING N 90-00-00 E DISTANCE 200", "10", 0, 200},
           Case{"LOCATE 11 FROM 2 BACKSIGHT 1 ANGLE 90-00-00 DISTANCE 300", "11", 300, 400},        // angle right from the backsight
           Case{"LOCATE 12 FROM 2 BACKSIGHT 1 DEFLECTION 90-00-00L DISTANCE 300", "12", 300, 400},  // left of the line prolonged
           Case{"LOCATE 13 FROM 1 AZIMUTH 90 SLOPE 500 ZENITH 90-00-00", "13", 0, 500},
           Case{"INTERSECT 14 DISTANCE 1 500 DISTANCE 2 300", "14", -300, 400},  // right of 1 to 2 first
           Case{"INTERSECT 15 DISTANCE 1 500 DISTANCE 2 300 NEAR 3", "15", 300, 400},
           Case{"INTERSECT 16 BEARING 1 N 0 E OFFSET 100 BEARING 3 N90-00-00W", "16", 300, 100},
           Case{"INTERSECT 17 BEARING 2 N 0-00-00 E DISTANCE 1 500", "17", 300, 400},  // the first met going along the bearing
           Case{"POINTAT 18 FROM 1 TO 2 STATION 100 OFFSET -50", "18", 50, 100},
       }) {
    c.run(k.command);
    EXPECT_NEAR(c.made(k.number).northing, k.n, 1e-9) << k.command;
    EXPECT_NEAR(c.made(k.number).easting, k.e, 1e-9) << k.command;
  }
  EXPECT_NEAR(*c.made("13").elevation, 100, 1e-9);  // carried by the zenith of 90°
  const Json station = c.run("STATION 3 FROM 1 TO 2");
  EXPECT_NEAR(station["station"].get<double>(), 400, 1e-9);
  EXPECT_NEAR(station["offset"].get<double>(), -300, 1e-9);  // left of 1 to 2
  const Json divided = c.run("DIVIDE 1 2 4 FIRST 20");
  ASSERT_EQ(divided["points"].size(), 3u);
  EXPECT_EQ(divided["points"][2]["number"], "22");
  EXPECT_NEAR(divided["points"][2]["easting"].get<double>(), 300, 1e-9);

  // A square with its last side a half circle bulging out: 100 x 100 + half of pi 50².
  c.run("POINT A1 0 0\nPOINT A2 100 0\nPOINT A3 100 100\nPOINT A4 0 100");
  const Json area = c.run("AREA A1 A2 A3 A4 CURVE 50 R");
  EXPECT_NEAR(area["area"].get<double>(), 10000 + std::acos(-1.0) * 1250, 1e-6);
  EXPECT_NEAR(area["perimeter"].get<double>(), 300 + std::acos(-1.0) * 50, 1e-9);
  const Json inward = c.run("AREA A1 A2 A3 A4 CURVE 50 L");
  EXPECT_NEAR(inward["area"].get<double>(), 10000 - std::acos(-1.0) * 1250, 1e-6);

  // The same figure as deed calls, closing to a hundredth.
  const Json check = c.run(
      "MAPCHECK AT A1\nLINE N 0-00-00 E 100\nLINE N90-00-00E 100\nLINE S0-00-00E 100.01\n"
      "CURVE R RADIUS 50 DELTA 180-00-00 CHORDBEARING N 90-00-00 W\nEND");
  EXPECT_EQ(check["command"], "MAPCHECK");
  EXPECT_NEAR(check["closure_distance"].get<double>(), 0.01, 1e-9);
  EXPECT_NEAR(check["latitude_error"].get<double>(), -0.01, 1e-9);
  EXPECT_EQ(check["precision"], std::llround((300.01 + std::acos(-1.0) * 50) / 0.01));
  EXPECT_NEAR(check["area"].get<double>(), 10000 + std::acos(-1.0) * 1250, 2);
}

TEST(Cogo, AnglesAndBearingsAsSurveyorsTypeThem) {
  struct Case {
    const char* text;
    std::optional<double> degrees;
  };
  for (const Case& k : {Case{"45-30-15", 45.50416666666667}, Case{"45°30'15\"", 45.50416666666667}, Case{"45.3015", 45.50416666666667},
                        Case{"45-30", 45.5}, Case{"45°", 45.0}, Case{"45.301505", 45.50418055555556}, Case{"45.6", std::nullopt},
                        Case{"45-60-00", std::nullopt}, Case{"north", std::nullopt}}) {
    const auto a = cogoAngle(k.text);
    ASSERT_EQ(a.has_value(), k.degrees.has_value()) << k.text;
    if (a) {
      EXPECT_NEAR(*a, *k.degrees, 1e-9) << k.text;
    }
  }
  EXPECT_NEAR(*cogoBearing("S 45-00-00 W"), 225, 1e-12);
  EXPECT_NEAR(*cogoBearing("n45°30'15\"w"), 314.49583333333334, 1e-9);
  EXPECT_FALSE(cogoBearing("N 95-00-00 E"));
  EXPECT_EQ(bearingWords(359.99999999, 0), "N 0°00'00\" E");
  EXPECT_EQ(bearingWords(135.5, 1), "S 44°30'00.0\" E");
}

TEST(Cogo, EachRefusalSaysWhyAndKeepsNothingOfTheLine) {
  Cogo c;
  c.run("POINT 1 0 0\nPOINT 2 0 100\nPOINT 3 50 0");
  for (const auto& [line, said] : std::vector<std::pair<std::string, std::string>>{
           {"INTERSECT 9 BEARING 1 N90-00-00E BEARING 3 N 90-00-00 E", "are parallel (N 90°00'00\" E), 50.0000 apart"},
           {"INTERSECT 9 DISTANCE 1 10 DISTANCE 2 20", "100.0000 apart, 70.0000 more than the distances together"},
           {"INTERSECT 9 DISTANCE 1 200 DISTANCE 2 20", "lies inside the other, 80.0000 short"},
           {"INTERSECT 9 BEARING 3 N 90-00-00 E DISTANCE 1 20", "passes 50.0000 from 1, farther than the distance 20.0000 by 30.0000"},
           {"LOCATE 2 FROM 1 AZIMUTH 0 DISTANCE 5", "point 2 is in the project already"},
           {"LOCATE 9 FROM 7 AZIMUTH 0 DISTANCE 5", "point 7 is not in the project"},
           {"LOCATE 9 FROM 1 AZIMUTH 0 DISTANCE five", "\"five\" is not a number"},
           {"LOCATE 9 FROM 1 AZIMUTH 361-00-00 DISTANCE 5", ""},
           {"LOCATE p q FROM 1 AZIMUTH 0 DISTANCE 5", "wants FROM here"},
           {"POINT 9 1 2 3 \"open", "a quoted text is not closed"},
           {"DIVIDE 1 2 1 FIRST 20", "2 to 10,000 equal parts"},
           {"AREA 1 2", "three corners or more"},
           {"AREA 1 2 CURVE 10 R 3", "from 2 to 3 cannot span 111.8034 with a radius of 10.0000"},
           {"FROB 1", "there is no command \"FROB\""},
           {"END", "there is no command \"END\""},
       }) {
    try {
      c.engine.run(line, 1);
      EXPECT_EQ(said, "") << line << " was taken";
    } catch (const CogoError& e) {
      EXPECT_NE(std::string(e.what()).find(said), std::string::npos) << line << ": " << e.what();
      EXPECT_FALSE(said.empty()) << line << ": " << e.what();
    }
  }
  // A MAPCHECK left open is said at the end.
  c.engine.clearMade();
  c.run("MAPCHECK\nLINE N 0 E 10");
  EXPECT_THROW(c.engine.finish(), CogoError);
}

// What one of PROJ's own programs prints for `input`.
std::string run(const std::string& command, const std::string& input) { return testing::programOutput(command, input); }

TEST(Cogo, AGroundDistanceIsPROJsGeodesicWithinTheCombinedFactorsAccuracy) {
  // Two points a mile apart on a State Plane zone in US survey feet, on the ellipsoid (elevation 0).
  std::map<std::string, ProjectPoint> held{{"1", {0, "1", 1400000, 1300000, 0.0, "", "", "", "", ""}},
                                           {"2", {0, "2", 1403000, 1304200, 0.0, "", "", "", "", ""}}};
  CogoOptions options;
  options.crs = {3419, "", std::nullopt};
  CogoEngine engine([&held](const std::string& n) { return held.count(n) ? std::optional<ProjectPoint>(held.at(n)) : std::nullopt; }, options);
  const Json leg = (*engine.run("INVERSE 1 2", 1))["legs"][0];
  const auto places = geo().geographic(options.crs, {{1300000, 1400000}, {1304200, 1403000}});
  char input[160];
  std::snprintf(input, sizeof input, "%.12f %.12f %.12f %.12f", places[0].latitude, places[0].longitude, places[1].latitude, places[1].longitude);
  const std::string said = run("geod +ellps=GRS80 -I +units=m -F %.6f", input);
  const double geodesic = std::stod(said.substr(said.find_last_of('\t') + 1));
  const double ground = leg["ground_distance"].get<double>() * 1200 / 3937;
  EXPECT_NEAR(ground, geodesic, geodesic * 1e-7) << said;  // a tenth of a part per million
}

}  // namespace
}  // namespace tervalo
