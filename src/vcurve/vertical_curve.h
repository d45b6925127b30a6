#pragma once
// A symmetrical parabolic vertical curve: its key stations and elevations,
// its high or low point, and the elevation at any station. Grades are
// ratios (the user types percent); stations are plain numbers.

#include <string>

namespace tervalo {

enum class KnownPoint { PVI, PVC, PVT };

struct VerticalCurve {
  double g1 = 0, g2 = 0;  // entry and exit grades, as ratios
  double length = 0;
  double pvc = 0, pvi = 0, pvt = 0;              // stations
  double pvcElev = 0, pviElev = 0, pvtElev = 0;  // elevations
  bool hasMin = false, hasMax = false;
  double turningStation = 0, turningElev = 0;
};

// processStations and calcPointElev: the key stations and elevations from
// the known point's station and elevation.
VerticalCurve makeCurve(double g1, double g2, double length, KnownPoint known, double station, double elevation);

// minMaxCalc: the low point of a sag (g1 < 0 < g2) or high point of a crest
// (g1 > 0 > g2). Equal grades have no turning point and no division.
void minMaxCalc(VerticalCurve& curve);

struct StationElevation {
  std::string mark;  // "T" tangent, "C" curve, "PVC", "PVT"
  double elevation = 0;
};

// calcCurveElev: the elevation and mark at station x.
StationElevation calcCurveElev(const VerticalCurve& curve, double x);

// The station masks: "####+##.000" for 100-unit, "####+###.000" for
// 1000-unit stations.
const char* stationMask(bool metric);

}  // namespace tervalo
