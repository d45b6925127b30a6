#pragma once
// A circular horizontal curve from two of its elements. Angles in degrees,
// lengths in feet or metres; the degree of curve is per 100 feet (arc
// definition: of arc; chord definition: of chord).

#include <string>

namespace tervalo {

struct CurveElements {
  double delta = 0;        // central angle
  double degree = 0;       // degree of curve
  double tangent = 0;
  double length = 0;       // length of curve
  double radius = 0;
  double external = 0;
  double midOrdinate = 0;
  double chord = 0;        // long chord
};

// How many elements are given (greater than 0).
int countGiven(const CurveElements& e);

// The refusal of a pair that does not fix a curve, checked on the values as
// typed in the program's order; empty when the pair is good.
std::string verifyPair(const CurveElements& e);

struct CurveOptions {
  bool chordDefinition = false;
  bool metric = false;
  bool packedAngles = false;  // angles typed as ddd.mmssss
  double pi = 0;              // 4·atan(1)
};

// What stopped a solution, with the message the form shows.
enum class CurveFault { None, MetricDegree, MidOrdinateOverExternal, ChordRadiusUnder50 };

struct CurveSolution {
  CurveElements e;
  CurveFault fault = CurveFault::None;
};

// Solves the curve: the angles unpacked, Δ and R found from the pair, then
// D, L, T, E, M and C recomputed. Impossible geometry (a chord longer than
// the diameter, a zero divisor) is a RunTimeError naming the fault.
CurveSolution solveCurve(CurveElements given, const CurveOptions& options);

struct CurveStations {
  double pc = 0, pi = 0, pt = 0;
};

enum class GivenPoint { PI, PC, PT };

// PC, PI and PT from the one station given.
CurveStations placeStations(double station, GivenPoint given, double tangent, double length);

// The curve on the ground: its PC, PT and center from the PI's northing and
// easting, the azimuth of the back tangent (the way the line runs into the
// PI, degrees) and the way it turns.
struct CurveOnGround {
  double pcNorthing = 0, pcEasting = 0, ptNorthing = 0, ptEasting = 0, centreNorthing = 0, centreEasting = 0;
};
CurveOnGround curveOnGround(const CurveElements& e, double piNorthing, double piEasting, double backAzimuth, bool right);

}  // namespace tervalo
