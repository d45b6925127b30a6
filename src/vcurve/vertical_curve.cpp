#include "vcurve/vertical_curve.h"

#include <cmath>

#include "text/format.h"
#include "text/number.h"

namespace tervalo {

VerticalCurve makeCurve(double g1, double g2, double L, KnownPoint known, double station, double elevation) {
  VerticalCurve c;
  c.g1 = g1;
  c.g2 = g2;
  c.length = L;
  const double h = L / 2;
  switch (known) {
    case KnownPoint::PVI:
      c.pvi = station;
      c.pviElev = elevation;
      c.pvc = station - L / 2;
      c.pvt = c.pvc + L;
      c.pvcElev = c.pviElev - g1 * h;
      c.pvtElev = g2 * h + c.pviElev;
      break;
    case KnownPoint::PVC:
      c.pvc = station;
      c.pvcElev = elevation;
      c.pvt = L + station;
      c.pvi = station + L / 2;
      c.pviElev = g1 * h + c.pvcElev;
      c.pvtElev = g2 * h + c.pviElev;
      break;
    case KnownPoint::PVT:
      c.pvt = station;
      c.pvtElev = elevation;
      c.pvc = station - L;
      c.pvi = c.pvc + L / 2;
      c.pviElev = c.pvtElev - g2 * h;
      c.pvcElev = c.pviElev - g1 * h;
      break;
  }
  return c;
}

void minMaxCalc(VerticalCurve& c) {
  c.hasMin = c.hasMax = false;
  const double A = c.g2 - c.g1;
  if (A == 0) return;  // equal grades: a straight grade, no turning point
  const double d = c.length * c.g1 / A;
  // Rounded to three decimals through its text, as the program keeps it.
  c.turningStation = Val(Format(std::fabs(d) + c.pvc, "#0.000"));
  c.turningElev = c.pvcElev - c.g1 * c.g1 * c.length / (2 * A);
  c.hasMin = c.g1 < 0 && c.g2 > 0;
  c.hasMax = c.g1 > 0 && c.g2 < 0;
}

StationElevation calcCurveElev(const VerticalCurve& c, double x) {
  if (x < c.pvc) return {"T", c.pvcElev - c.g1 * (c.pvc - x)};
  if (x <= c.pvt) {
    if (x == c.pvc) return {"PVC", c.pvcElev};
    if (x == c.pvt) return {"PVT", c.pvtElev};
    const double d = x - c.pvc;
    const double tangent = c.g1 * d + c.pvcElev;
    const double offset = d * d * (c.g2 - c.g1) / (c.length + c.length);
    return {"C", tangent + offset};
  }
  return {"T", c.g2 * (x - c.pvt) + c.pvtElev};
}

const char* stationMask(bool metric) { return metric ? "####+###.000" : "####+##.000"; }

}  // namespace tervalo
