// Alignments: two published spiral curves to their printed places (a
// design manual's curve data and a worked example's stations); a circular
// curve exactly as the Horizontal Curve window solves it; thousands of
// random points through station and offset and back; the faults named;
// stations across an equation; a profile's curves and their turning points.

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "alignment/alignment.h"
#include "alignment/alignment_file.h"
#include "alignment/alignment_landxml.h"
#include "alignment/profile.h"
#include "hcurve/curve.h"
#include "text/format.h"

namespace tervalo {
namespace {

constexpr double kDeg = std::numbers::pi / 180;

// Three PIs: the back tangent due north into the middle one, the ahead
// tangent turned by `delta` degrees (right positive), each leg `leg` long.
AlignmentInput threePis(double delta, double radius, double spiral, double piStation, double leg = 3000) {
  AlignmentInput in;
  in.start = piStation - leg;
  in.pis = {{-leg, 0, {}, 0, 0}, {0, 0, radius, spiral, spiral}, {leg * std::cos(delta * kDeg), leg * std::sin(delta * kDeg), {}, 0, 0}};
  return in;
}

double keyStation(const Alignment& a, const char* name) {
  for (const KeyPoint& k : a.keyPoints())
    if (k.name == name) return a.stationAt(k.along);
  ADD_FAILURE() << "no " << name;
  return 0;
}

TEST(Alignment, PublishedSpiralCurvesToTheirPrintedPlaces) {
  // A state design office's sample spiral curve data: delta 77°47'44.8" RT, Rc 300.00, Ls 200.00.
  const Alignment nh(threePis(77 + 47 / 60.0 + 44.8 / 3600, 300, 200, 2396.20, 1000));
  ASSERT_EQ(nh.curves().size(), 1u);
  const PiCurve& c = nh.curves()[0];
  const double published[][2] = {{c.in->theta, 19 + 5 / 60.0 + 54.9 / 3600}, {c.circleDelta, 39 + 35 / 60.0 + 54.9 / 3600}};
  for (const auto& [got, want] : published) EXPECT_NEAR(got, want, 0.05 / 3600);
  const std::pair<double, double> lengths[] = {{c.tangentIn, 346.15}, {c.circleLength, 207.34}, {c.in->longTangent, 134.12},
                                               {c.in->shortTangent, 67.38}, {c.in->p, 5.53},        {c.in->k, 99.63},
                                               {c.in->x, 197.79},           {c.in->y, 22.05},       {c.in->longChord, 199.01}};
  for (const auto& [got, want] : lengths) EXPECT_NEAR(got, want, 0.005) << want;
  // The external, from the PI to the circle.
  const double es = [&] {
    const Pose sc = nh.at(nh.keyPoints()[2].along);
    const double right = (sc.azimuth + 90) * kDeg;
    return std::hypot(sc.northing + 300 * std::cos(right), sc.easting + 300 * std::sin(right)) - 300;
  }();
  EXPECT_NEAR(es, 92.58, 0.005);

  // A design manual's worked example: R 3000, Ls 210, delta 15°, PI at 243+18.72.
  const Alignment mdt(threePis(15, 3000, 210, 24318.72));
  const PiCurve& m = mdt.curves()[0];
  EXPECT_NEAR(m.in->p, 0.612, 0.0005);
  EXPECT_NEAR(m.in->k, 104.996, 0.0005);
  EXPECT_NEAR(m.tangentIn, 500.03, 0.005);
  EXPECT_NEAR(m.circleLength, 575.40, 0.005);
  // Its stations, each the one before plus a rounded length, as the example adds them.
  EXPECT_NEAR(keyStation(mdt, "TS"), 23818.69, 0.005);
  EXPECT_NEAR(keyStation(mdt, "SC"), 24028.69, 0.005);
  EXPECT_NEAR(keyStation(mdt, "CS"), 24604.09, 0.011);
  EXPECT_NEAR(keyStation(mdt, "ST"), 24814.09, 0.011);
  EXPECT_EQ(mdt.stationText(keyStation(mdt, "TS")), "238+18.69");
}

TEST(Alignment, ACircularCurveIsTheHorizontalCurveWindows) {
  for (bool chord : {false, true}) {
    AlignmentInput in = threePis(-32.5, 800, 0, 5000);
    in.chord = chord;
    const Alignment a(in);
    CurveElements given;
    given.delta = 32.5;
    given.radius = 800;
    CurveOptions options;
    options.chordDefinition = chord;
    options.pi = 4 * std::atan(1.0);
    const CurveElements hc = solveCurve(given, options).e;
    const PiCurve& c = a.curves()[0];
    EXPECT_DOUBLE_EQ(c.tangentIn, hc.tangent);
    EXPECT_DOUBLE_EQ(c.circleLength, hc.length);
    EXPECT_DOUBLE_EQ(c.external, hc.external);
    EXPECT_DOUBLE_EQ(c.degree, hc.degree);
    EXPECT_NEAR(keyStation(a, "PT") - keyStation(a, "PC"), hc.length, 1e-9);
    // The PT lies on the ahead tangent at its tangent length from the PI, whatever the stationing.
    const KeyPoint& pt = a.keyPoints()[2];
    EXPECT_NEAR(std::hypot(pt.northing, pt.easting), hc.tangent, 1e-8) << chord;
  }
}

TEST(Alignment, StationAndOffsetGoBothWaysWithinANanometre) {
  AlignmentInput in;
  in.start = 1000;
  in.pis = {{5000, 5000, {}, 0, 0},       {6000, 5500, 1000.0, 200, 150}, {6500, 7000, 600.0, 0, 0},
            {7800, 7200, 900.0, 120, 120}, {9000, 6400, {}, 0, 0}};
  const Alignment a(in);
  std::mt19937 random(43);
  std::uniform_real_distribution<double> along(0, a.length()), offset(-60, 60);
  for (int i = 0; i < 3000; ++i) {
    const double s = along(random), o = offset(random);
    const Pose p = a.at(s, o);
    const std::vector<Projection> found = a.project(p.northing, p.easting);
    ASSERT_FALSE(found.empty());
    const auto back = std::find_if(found.begin(), found.end(), [&](const Projection& f) { return std::fabs(f.along - s) < 1e-6; });
    ASSERT_NE(back, found.end()) << s << " " << o;
    EXPECT_NEAR(back->along, s, 1e-9);
    EXPECT_NEAR(back->offset, o, 1e-9);
  }
  // Beyond the start, refused with the reason.
  const Pose first = a.at(0);
  try {
    a.project(first.northing - 100, first.easting);
    FAIL() << "projected";
  } catch (const AlignmentError& e) {
    EXPECT_NE(std::string(e.what()).find("before the alignment's start at 10+00.00"), std::string::npos) << e.what();
  }
  // Inside an angle point without a curve, both tangents answer.
  AlignmentInput angle;
  angle.pis = {{0, 0, {}, 0, 0}, {1000, 0, {}, 0, 0}, {1000, 1000, {}, 0, 0}};
  EXPECT_EQ(Alignment(angle).project(990, 20).size(), 2u);
}

TEST(Alignment, FaultsAreNamedWithTheirNumbers) {
  const auto refused = [](const AlignmentInput& in) {
    try {
      Alignment a(in);
    } catch (const AlignmentError& e) {
      return std::string(e.what());
    }
    return std::string("built");
  };
  AlignmentInput overlap;
  overlap.pis = {{-10000, 0, {}, 0, 0}, {0, 0, 2000.0, 0, 0}, {0, 1000, 2000.0, 0, 0}, {10000, 1000, {}, 0, 0}};
  EXPECT_EQ(refused(overlap), "the curves at PI 2 and PI 3 overlap: their tangents take 4000.000 of the 1000.000 between them");
  overlap.pis = {{-1000, 0, {}, 0, 0}, {0, 0, 2000.0, 0, 0}, {0, 10000, {}, 0, 0}};
  EXPECT_EQ(refused(overlap), "the curve at PI 2 runs back past PI 1: its tangent takes 2000.000 of the 1000.000 between them");
  AlignmentInput spiral = threePis(10, 500, 100, 1000);
  EXPECT_EQ(refused(spiral), "PI 2: its spirals turn 11.4592 degrees together, but the tangents only 10.0000: a spiral longer than its curve allows");
  EXPECT_EQ(refused(threePis(10, 0, 0, 1000)), "PI 2: a radius of 0.000; a curve's radius is more than 0");
  AlignmentInput equations = threePis(10, 500, 0, 1000);
  equations.equations = {{1500, 1600}, {1200, 1300}};
  EXPECT_NE(refused(equations).find("station equation 2 (back 12+00.00, ahead 13+00.00): it comes at or before station equation 1"), std::string::npos)
      << refused(equations);
}

TEST(Alignment, StationsAcrossAnEquation) {
  AlignmentInput in = threePis(20, 1000, 0, 3000, 1000);  // 20+00 to about 39+93
  in.equations = {{2500, 2600}};                          // 100 feet of stationing given up
  const Alignment a(in);
  EXPECT_NEAR(a.stationAt(499.999), 2499.999, 1e-9);
  EXPECT_NEAR(a.stationAt(500), 2600, 1e-9);
  EXPECT_NEAR(a.alongAt(2600), 500, 1e-9);
  EXPECT_NEAR(a.alongAt(2499), 499, 1e-9);
  EXPECT_NEAR(a.alongAt(2500), 500, 1e-9);  // the back station: the equation's own point
  EXPECT_THROW(a.alongAt(2550), AlignmentError);  // in the gap
  try {
    a.alongAt(2550);
  } catch (const AlignmentError& e) {
    EXPECT_STREQ(e.what(), "station 25+50.00 is in the gap of station equation 1 (back 25+00.00, ahead 26+00.00): no point of the alignment has it");
  }
  EXPECT_EQ(parseStation("12+34.56").value(), 1234.56);
  EXPECT_EQ(parseStation("1+234.567").value(), 1234.567);
  EXPECT_FALSE(parseStation("12+"));
  EXPECT_EQ(a.stationText(-49.995), "-0+50.00");
}

// Two published vertical curve tables, to their printed places: a crest
// (+5 % into -3.5 %, 500 feet about 56+50.00 at 1325.00) and a sag (-4 %
// into +2.75 %, 425 feet from 88+00.00 at 1220.00) with its low point.
TEST(Profile, PublishedCurveTablesAndUnsymmetricCurves) {
  const Alignment a(threePis(0.0, 1000, 0, 7000, 3000));  // straight: 40+00 to 100+00
  const Profile crest({{5000, 1325 - 0.05 * 650}, {5650, 1325, 250, 250}, {6200, 1325 - 0.035 * 550}}, a);
  const double crestTable[][3] = {{5400, 1312.500, 5.0}, {5500, 1316.650, 3.3}, {5600, 1319.100, 1.6},
                                  {5700, 1319.850, -0.1}, {5800, 1318.900, -1.8}, {5900, 1316.250, -3.5}};
  for (const auto& [station, elevation, grade] : crestTable) {
    EXPECT_NEAR(crest.at(a.alongAt(station)).elevation, elevation, 0.0005) << station;
    EXPECT_NEAR(crest.at(a.alongAt(station)).grade * 100, grade, 0.05) << station;
  }
  const Profile sag({{8000, 1211.5 + 0.04 * 1012.5}, {9012.5, 1211.5, 212.5, 212.5}, {10000, 1211.5 + 0.0275 * 987.5}}, a);
  // 91+00 is printed 1216.147, a misprint by one foot: its grade (+0.76 %), its neighbours and
  // the low point (1214.963 at 90+51.852) all put it at 1215.147.
  const double sagTable[][3] = {{8900, 1216.794, -2.41}, {9000, 1215.176, -0.82}, {9100, 1215.147, 0.76},
                                {9200, 1216.706, 2.35},  {9225, 1217.344, 2.75}};
  for (const auto& [station, elevation, grade] : sagTable) {
    EXPECT_NEAR(sag.at(a.alongAt(station)).elevation, elevation, 0.0005) << station;
    EXPECT_NEAR(sag.at(a.alongAt(station)).grade * 100, grade, 0.005) << station;
  }
  const VerticalCurveData& low = sag.curves()[0];
  ASSERT_TRUE(low.turning);
  EXPECT_NEAR(a.stationAt(*low.turning), 9051.852, 0.0005);
  EXPECT_NEAR(*low.turningElevation, 1214.963, 0.0005);
  EXPECT_NEAR(low.k, 425 / 6.75, 1e-9);

  // Unsymmetric: 200 before, 400 after; the elevation and grade run on without a break.
  const Profile odd({{5000, 60}, {6000, 100, 200, 400}, {7000, 80}}, a);
  for (double station : {5800.0, 6000.0, 6400.0}) {
    const double s = a.alongAt(station);
    EXPECT_NEAR(odd.at(s - 1e-7).elevation, odd.at(s + 1e-7).elevation, 1e-7) << station;
    EXPECT_NEAR(odd.at(s - 1e-7).grade, odd.at(s + 1e-7).grade, 1e-6) << station;
  }
  EXPECT_THROW(Profile({{5000, 60}, {6000, 100, 1200, 1200}, {7000, 80}}, a), AlignmentError);  // runs past the VPIs
}

TEST(AlignmentFile, TheContractsExampleReadsAndBadFieldsAreNamed) {
  const AlignmentFile f = parseAlignmentFile(R"({ "version": 1, "units": "ft", "start": "10+00",
    "pis": [ { "northing": 5000.0, "easting": 5000.0 },
             { "northing": 6000.0, "easting": 5500.0, "radius": 1000.0, "spiral_in": 200.0, "spiral_out": 200.0 },
             { "northing": 6500.0, "easting": 7000.0 } ],
    "equations": [ { "back": "25+00.00", "ahead": "26+00.00" } ],
    "profile": [ { "station": "10+00", "elevation": 100.0 }, { "station": "20+00", "elevation": 110.0, "length": 400.0 },
                 { "station": "30+00", "elevation": 105.0 } ] })");
  const Alignment a(f.alignment);
  EXPECT_EQ(a.keyPoints().size(), 6u);  // POT, TS, SC, CS, ST, POT
  const Profile p(f.profile, a);
  EXPECT_NEAR(p.at(a.alongAt(1000)).elevation, 100, 1e-12);
  // The same alignment by its elements, from the first PI along the first tangent.
  const Alignment byPis(f.alignment);
  std::string elements = R"({ "version": 1, "start": "10+00", "origin": { "northing": 5000, "easting": 5000, "azimuth": AZ },
    "elements": [ { "type": "line", "length": L1 }, { "type": "spiral", "length": 200, "radius_end": 1000, "turn": "R" },
                  { "type": "arc", "length": LC, "radius": 1000, "turn": "R" }, { "type": "spiral", "length": 200, "radius_start": 1000, "turn": "R" },
                  { "type": "line", "length": L2 } ],
    "equations": [ { "back": "25+00.00", "ahead": "26+00.00" } ] })";
  const auto put = [&](const std::string& key, double v) { elements.replace(elements.find(key), key.size(), Format(v, "0.000000000000")); };
  put("AZ", std::atan2(500.0, 1000.0) / kDeg);
  put("L1", byPis.elements()[0].length);
  put("LC", byPis.elements()[2].length);
  put("L2", byPis.elements()[4].length);
  const Alignment byElements = alignmentOf(parseAlignmentFile(elements));
  ASSERT_EQ(byElements.keyPoints().size(), byPis.keyPoints().size());
  for (std::size_t i = 0; i < byPis.keyPoints().size(); ++i) {
    EXPECT_EQ(byElements.keyPoints()[i].name, byPis.keyPoints()[i].name);
    EXPECT_NEAR(byElements.keyPoints()[i].northing, byPis.keyPoints()[i].northing, 1e-6) << i;
    EXPECT_NEAR(byElements.keyPoints()[i].easting, byPis.keyPoints()[i].easting, 1e-6) << i;
  }
  EXPECT_NEAR(byElements.alongAt(2600), byPis.alongAt(2600), 1e-9);
  const std::pair<const char*, const char*> bad[] = {
      {R"({"version": 1, "origin": {"northing": 0, "easting": 0, "azimuth": 0}, "elements": [{"type": "spiral", "length": 5, "turn": "R"}]})",
       "element 1: a spiral runs to or from a radius: give \"radius_start\" or \"radius_end\" (none is a tangent)"},
      {R"({"version": 1, "pis": [], "elements": []})",
       "the file: give the alignment by its \"pis\" or by its \"elements\" (with its \"origin\"), one of the two"},
      {R"({"version": 1, "pis": [{"northing": 1}]})", "PI 1 has no \"easting\""},
      {R"({"version": 1, "pis": [], "start": "ten"})", "the file: \"start\" must be a station (\"12+34.56\" or 1234.56)"},
      {R"({"version": 1, "pis": [{"northing": 1, "easting": 2, "radious": 5}]})", "PI 1: unknown key \"radious\""}};
  for (const auto& [text, said] : bad) {
    try {
      parseAlignmentFile(text);
      ADD_FAILURE() << text;
    } catch (const AlignmentError& e) {
      EXPECT_EQ(std::string(e.what()), said);
    }
  }
}

// LandXML as other programs write it: an older namespace, a tenth of a
// millimetre between two elements, a spiral between two finite radii, an
// equation without its back station; read back to the same stations.
TEST(AlignmentLandXml, WrittenAndReadBackAsOtherProgramsWriteIt) {
  AlignmentInput in = threePis(30, 1000, 150, 5000);
  in.equations = {{4000, 4100}};
  const Alignment a(in);
  std::string xml = alignmentLandXml(a, nullptr, "Main", {"2026-11-26", "00:00:00"});
  for (const auto& [from, to] : {std::pair{"LandXML-1.2", "LandXML-1.0"}, {"version=\"1.2\"", "version=\"1.0\""}})
    xml.replace(xml.find(from), std::string(from).size(), to);
  xml.erase(xml.find(" staBack="), std::string(" staBack=\"4000.0\"").size());
  const std::size_t second = xml.find("<Start>", xml.find("</Spiral>", xml.find("</Spiral>") + 1));
  const std::size_t number = second + 7;
  xml.replace(number, xml.find(' ', number) - number, Format(a.elements().back().northing + 0.0001, "0.0######"));
  const std::vector<LandXmlAlignment> back = landXmlAlignments(xml);
  ASSERT_EQ(back.size(), 1u);
  const Alignment& b = back[0].alignment;
  ASSERT_EQ(b.keyPoints().size(), a.keyPoints().size());
  for (std::size_t i = 0; i < a.keyPoints().size(); ++i) {
    EXPECT_EQ(b.keyPoints()[i].name, a.keyPoints()[i].name);
    EXPECT_NEAR(b.stationAt(b.keyPoints()[i].along), a.stationAt(a.keyPoints()[i].along), 2e-4) << i;
  }
  EXPECT_NEAR(b.alongAt(4100), a.alongAt(4100), 2e-4);

  // A spiral from a 1000 to a 500 radius, to the left, between a curve and a curve.
  Element arc{ElementKind::Arc, 0, 300, 100, 200, 0.3, -1e-3, -1e-3};
  Element spiral{ElementKind::Spiral, 0, 120, 0, 0, 0, -1e-3, -2e-3};
  Element tight{ElementKind::Arc, 0, 200, 0, 0, 0, -2e-3, -2e-3};
  std::vector<Element> chain{arc};
  for (Element e : {spiral, tight}) {
    const Pose end = poseOn(chain.back(), chain.back().length);
    e.northing = end.northing, e.easting = end.easting, e.azimuth = end.azimuth * kDeg;
    chain.push_back(e);
  }
  AlignmentInput plain;
  const Alignment c(plain, chain, {});
  const Alignment d = landXmlAlignments(alignmentLandXml(c, nullptr, "Loop", {"2026-11-26", "00:00:00"}))[0].alignment;
  for (double s = 0; s <= c.length(); s += 37.5) {
    const Pose p = c.at(s, 5), q = d.at(s, 5);
    EXPECT_NEAR(p.northing, q.northing, 1e-6) << s;
    EXPECT_NEAR(p.easting, q.easting, 1e-6) << s;
  }
  EXPECT_EQ(d.keyPoints()[1].name, "CS");
  EXPECT_THROW(landXmlAlignments("<LandXML/>"), AlignmentError);
}

}  // namespace
}  // namespace tervalo
