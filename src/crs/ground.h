#pragma once
// Grid and ground: the combined factor that takes a length measured on the
// ground to the system's grid (grid = ground x combined), from PROJ's grid
// scale factor and the elevation factor at the project elevation.

#include <vector>

#include "crs/crs.h"

namespace tervalo {

// R / (R + h): a length at height h above the ellipsoid of mean radius R,
// brought down to it. R and h in one unit.
double elevationFactor(double radius, double height);

// A line's factor from the factors at its ends and its middle, weighted
// 1:4:1 (Simpson's rule): close to the exact mean along any line of a
// section or a traverse course.
double lineFactor(double atFrom, double atMiddle, double atTo);

struct PointFactors {
  GeographicPosition at;
  GridFactors grid;
  double elevation = 1;  // the elevation factor; 1 without a project elevation
  double combined = 1;   // grid scale factor times elevation factor
};

// At each of `places` in `crs` (not none), at its project elevation (taken
// as ellipsoid height), in one call to PROJ. CrsError when PROJ cannot.
std::vector<PointFactors> combinedFactors(const CrsChoice& crs, const std::vector<PlanePosition>& places);

}  // namespace tervalo
