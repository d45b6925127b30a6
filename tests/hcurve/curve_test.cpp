// The curve solution: the worked values, every pair that fixes a curve
// solved back to the same curve, and the refusals.

#include <gtest/gtest.h>

#include <cmath>

#include "hcurve/curve.h"
#include "hcurve/curve_sketch.h"
#include "text/errors.h"

namespace tervalo {
namespace {

const double kPi = 4 * std::atan(1.0);

CurveElements solve(CurveElements given, bool chord = false, bool packed = false) {
  const CurveSolution s = solveCurve(given, {chord, false, packed, kPi});
  EXPECT_EQ(s.fault, CurveFault::None);
  return s.e;
}

TEST(CurveSolution, WorkedValues) {
  CurveElements given;
  given.delta = 30;
  given.radius = 1000;
  const CurveElements e = solve(given);
  EXPECT_NEAR(e.tangent, 267.949, 5e-4);
  EXPECT_NEAR(e.length, 523.599, 5e-4);
  EXPECT_NEAR(e.external, 35.276, 5e-4);
  EXPECT_NEAR(e.midOrdinate, 34.074, 5e-4);
  EXPECT_NEAR(e.chord, 517.638, 5e-4);
  EXPECT_NEAR(e.degree, 5.729578, 5e-7);

  CurveElements d1;
  d1.degree = 1;
  d1.delta = 10;
  EXPECT_NEAR(solve(d1, true).radius, 5729.651, 5e-4);
  EXPECT_NEAR(solve(d1, false).radius, 5729.578, 5e-4);

  CurveElements packed;
  packed.delta = 12.3;  // 12°30'
  packed.radius = 1000;
  EXPECT_NEAR(solve(packed, false, true).delta, 12.5, 1e-12);
}

TEST(CurveSolution, DeltaAndLengthInChordDefinitionTakeTheArcRadius) {
  CurveElements given;
  given.delta = 30;
  given.length = 523.599;
  const CurveElements e = solve(given, true);
  EXPECT_NEAR(e.radius, 1000.000, 5e-4);
  EXPECT_NEAR(e.degree, 5.731966, 5e-7);
  EXPECT_NEAR(e.length, 523.381, 5e-4);  // not the length typed
}

TEST(CurveSolution, FaultsThatStopTheSolution) {
  CurveElements r40;
  r40.radius = 40;
  r40.delta = 30;
  EXPECT_EQ(solveCurve(r40, {true, false, false, kPi}).fault, CurveFault::ChordRadiusUnder50);
  CurveElements metricDegree;
  metricDegree.degree = 2;
  metricDegree.delta = 30;
  EXPECT_EQ(solveCurve(metricDegree, {false, true, false, kPi}).fault, CurveFault::MetricDegree);
  CurveElements midOverExternal;
  midOverExternal.midOrdinate = 40;
  midOverExternal.external = 35;
  EXPECT_EQ(solveCurve(midOverExternal, {false, false, false, kPi}).fault, CurveFault::MidOrdinateOverExternal);
  CurveElements longChord;
  longChord.radius = 100;
  longChord.chord = 250;  // longer than the diameter
  EXPECT_THROW(solveCurve(longChord, {false, false, false, kPi}), RunTimeError);
}

TEST(CurveSolution, PairCheckInItsOrder) {
  auto pair = [](double CurveElements::*a, double va, double CurveElements::*b, double vb) {
    CurveElements e;
    e.*a = va;
    e.*b = vb;
    return verifyPair(e);
  };
  const std::string combination = "Invalid combination of input data.";
  EXPECT_EQ(pair(&CurveElements::degree, 2, &CurveElements::radius, 900), combination);
  EXPECT_EQ(pair(&CurveElements::tangent, 2, &CurveElements::midOrdinate, 9), combination);
  EXPECT_EQ(pair(&CurveElements::tangent, 2, &CurveElements::length, 9), combination);
  EXPECT_EQ(pair(&CurveElements::length, 2, &CurveElements::chord, 9), combination);
  EXPECT_EQ(pair(&CurveElements::external, 2, &CurveElements::chord, 9), combination);
  EXPECT_EQ(pair(&CurveElements::delta, 180, &CurveElements::radius, 900), "Invalid delta angle.");
  EXPECT_EQ(pair(&CurveElements::delta, 179.9999, &CurveElements::radius, 900), "");
  EXPECT_EQ(pair(&CurveElements::degree, 180, &CurveElements::delta, 9), "Invalid degree of curve.");
  EXPECT_EQ(pair(&CurveElements::delta, 30, &CurveElements::tangent, 9), "");
}

// Every pair of a curve's own elements that the pair check accepts gives
// back the same curve: a wrong formula for any one pair shows here.
class RoundTrip : public ::testing::TestWithParam<bool> {};

TEST_P(RoundTrip, EveryAcceptedPairSolvesToTheSameCurve) {
  const bool chord = GetParam();
  CurveElements seed;
  seed.delta = 37.5;
  seed.radius = 850;
  const CurveElements truth = solve(seed, chord);
  double CurveElements::*members[] = {&CurveElements::delta,  &CurveElements::degree,   &CurveElements::tangent,
                                      &CurveElements::length, &CurveElements::radius,   &CurveElements::external,
                                      &CurveElements::midOrdinate, &CurveElements::chord};
  const char* names[] = {"delta", "degree", "tangent", "length", "radius", "external", "mid", "chord"};
  int solved = 0;
  for (int i = 0; i < 8; ++i)
    for (int j = i + 1; j < 8; ++j) {
      CurveElements given;
      given.*members[i] = truth.*members[i];
      given.*members[j] = truth.*members[j];
      if (!verifyPair(given).empty()) continue;
      // Chord definition with delta and length takes the arc radius, as it always has.
      if (chord && i == 0 && j == 3) continue;
      const CurveElements e = solve(given, chord);
      ++solved;
      for (int k = 0; k < 8; ++k)
        EXPECT_NEAR(e.*members[k], truth.*members[k], 1e-7 * std::max(1.0, truth.*members[k]))
            << names[i] << " + " << names[j] << " -> " << names[k];
    }
  EXPECT_EQ(solved, chord ? 20 : 21);
}

INSTANTIATE_TEST_SUITE_P(ArcAndChord, RoundTrip, ::testing::Values(false, true),
                         [](const auto& named) { return std::string(named.param ? "chord" : "arc"); });

TEST(Stations, FromPiPcOrPt) {
  const CurveStations fromPi = placeStations(1000, GivenPoint::PI, 267.949, 523.599);
  EXPECT_NEAR(fromPi.pc, 732.051, 1e-9);
  EXPECT_NEAR(fromPi.pt, 1255.650, 1e-9);
  const CurveStations fromPc = placeStations(732.051, GivenPoint::PC, 267.949, 523.599);
  EXPECT_NEAR(fromPc.pi, 1000, 1e-9);
  EXPECT_NEAR(fromPc.pt, 1255.650, 1e-9);
  const CurveStations fromPt = placeStations(1255.650, GivenPoint::PT, 267.949, 523.599);
  EXPECT_NEAR(fromPt.pc, 732.051, 1e-9);
  EXPECT_NEAR(fromPt.pi, 1000, 1e-9);
}

TEST(CurveSketch, TheWorkedCurveToScale) {
  CurveOptions options;
  options.pi = 4 * std::atan(1.0);
  CurveElements given;
  given.delta = 30;
  given.radius = 1000;
  const CurveElements e = solveCurve(given, options).e;
  const Picture p = curveSketch(e, {"7+32.0508", "10+00.0000", "12+55.6496", "30", "1000"});
  auto length = [](const PictureLine& l) { return std::hypot(l.points.back().x - l.points.front().x, l.points.back().y - l.points.front().y); };
  ASSERT_EQ(p.lines.size(), 6u);
  EXPECT_NEAR(length(p.lines[0]), 267.9492, 5e-5);  // PC to PI: the tangent
  EXPECT_NEAR(length(p.lines[1]), 267.9492, 5e-5);  // PI to PT
  EXPECT_NEAR(length(p.lines[3]), e.chord, 1e-9);
  EXPECT_NEAR(length(p.lines[4]), e.external, 1e-9);
  EXPECT_NEAR(length(p.lines[5]), e.midOrdinate, 1e-9);
  // The arc runs from the PC to the PT at the radius.
  EXPECT_NEAR(p.lines[2].points.front().x, 0, 1e-9);
  EXPECT_NEAR(p.lines[2].points.back().x, p.lines[1].points.back().x, 1e-9);
  EXPECT_EQ(p.texts[0].text, "PC 7+32.0508");
}

}  // namespace
}  // namespace tervalo
