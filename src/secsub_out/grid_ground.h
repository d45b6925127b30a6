#pragma once
// A section's corners on the earth and its lines on the ground, for a run
// whose coordinates are in a chosen coordinate system: each corner's
// latitude and longitude, grid scale factor and convergence (PROJ's), the
// elevation factor at the project elevation and the combined factor; each
// line of the summary with its grid length and its ground length. The
// report's later page, the corner record, the runner's result and the
// Tervalo points export take them from here.

#include <optional>
#include <string>
#include <vector>

#include "crs/crs.h"
#include "crs/ground.h"
#include "secsub/section_record.h"

namespace tervalo {

struct GroundCorner {
  int slot = 0;
  std::string name;  // the point number the files give it
  GeographicPosition at;
  GridFactors grid;
  double elevationFactor = 1;
  double combined = 1;  // grid scale factor times elevation factor: grid = ground x combined
};

struct GroundLine {
  int from = 0, to = 0;  // slots
  std::string name;      // "1001 - 2003", as the summary names it
  double grid = 0;       // the length between the coordinates
  double factor = 1;     // the line's combined factor
  double ground = 0;     // grid / factor
};

struct GridGround {
  CrsChoice crs;
  std::string system;  // the system for people
  std::string datum;   // of the latitudes and longitudes
  std::string unit;    // "ft" or "m", the coordinates' unit
  std::optional<double> elevation;  // the mean project elevation, taken as ellipsoid height
  std::vector<GroundCorner> corners;  // every present position, in slot order
  std::vector<GroundLine> lines;      // the summary's lines between present positions, in its order
};

// For the record's present positions in `crs` (not none), at its project
// elevation. CrsError when PROJ cannot give them.
GridGround gridAndGround(const SectionRecord& record, const CrsChoice& crs);

// The report's later page: the system, every corner's latitude, longitude
// and factors, every line's grid and ground length; ends with a form feed.
std::vector<std::string> gridGroundPage(const SectionRecord& record, const GridGround& ground);

// The lines with their grid length, combined factor and ground length, a
// header line first, as the page and the corner record list them.
std::vector<std::string> groundLinesTable(const GridGround& ground);
// One corner's latitude, longitude, grid scale factor, convergence and
// combined factor on one line, for the corner record.
std::string groundCornerLine(const GroundCorner& corner);

// "39°12'34.56789\"N" and "098°12'34.56789\"W": to 0.00001 second.
std::string latitudeText(double degrees);
std::string longitudeText(double degrees);

}  // namespace tervalo
