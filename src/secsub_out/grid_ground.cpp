#include "secsub_out/grid_ground.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "secsub_out/report.h"
#include "text/angle.h"
#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

const CornerSlot& at(const SectionRecord& r, int s) { return r.slots[static_cast<std::size_t>(s)]; }

std::string hemisphere(double degrees, char positive, char negative, bool threeDigits) {
  std::string text = dmsCarried(std::fabs(degrees), 5);
  if (threeDigits && std::fabs(degrees) < 99.5) text.insert(0, "0");
  return text + (degrees < 0 ? negative : positive);
}

}  // namespace

std::string latitudeText(double degrees) { return hemisphere(degrees, 'N', 'S', false); }
std::string longitudeText(double degrees) { return hemisphere(degrees, 'E', 'W', true); }

GridGround gridAndGround(const SectionRecord& r, const CrsChoice& crs) {
  const std::optional<double> elevation = crs.elevation;
  Geo& g = geo();
  const CrsDescription system = g.describe(crs.epsg);
  GridGround out{crs, crsTitle(crs), system.datum, landXmlUnit(crs, &system) == "meter" ? "m" : "ft", elevation, {}, {}};

  // The summary's lines: along the rows, then down the columns, both ends present.
  for (int i = 0; i < 24; ++i)
    if (i % 5 != 4) out.lines.push_back(GroundLine{.from = i, .to = i + 1, .name = {}});
  for (int i = 0; i < 20; ++i) out.lines.push_back(GroundLine{.from = i, .to = i + 5, .name = {}});
  std::erase_if(out.lines, [&r](const GroundLine& l) { return at(r, l.from).x == 0 || at(r, l.to).x == 0; });

  // One call to PROJ for every corner and every line's middle.
  std::vector<PlanePosition> places;
  for (int s = 0; s < slot::count; ++s)
    if (at(r, s).x != 0) {
      GroundCorner c;
      c.slot = s;
      c.name = at(r, s).pointNumber;
      out.corners.push_back(c);
      places.push_back({at(r, s).x, at(r, s).y});
    }
  for (const GroundLine& l : out.lines)
    places.push_back({(at(r, l.from).x + at(r, l.to).x) / 2, (at(r, l.from).y + at(r, l.to).y) / 2});
  if (places.empty()) return out;
  const std::vector<PointFactors> factors = combinedFactors(crs, places);
  std::vector<double> combined(places.size());
  for (std::size_t i = 0; i < places.size(); ++i) {
    combined[i] = factors[i].combined;
    if (i < out.corners.size()) {
      GroundCorner& c = out.corners[i];
      c.at = factors[i].at;
      c.grid = factors[i].grid;
      c.elevationFactor = factors[i].elevation;
      c.combined = factors[i].combined;
    }
  }
  std::array<std::size_t, slot::count> index{};
  for (std::size_t i = 0; i < out.corners.size(); ++i) index[static_cast<std::size_t>(out.corners[i].slot)] = i;
  for (std::size_t k = 0; k < out.lines.size(); ++k) {
    GroundLine& l = out.lines[k];
    const CornerSlot &a = at(r, l.from), &b = at(r, l.to);
    l.name = shownName(a.pointNumber) + " - " + shownName(b.pointNumber);
    l.grid = std::hypot(b.x - a.x, b.y - a.y);
    l.factor = lineFactor(combined[index[static_cast<std::size_t>(l.from)]], combined[out.corners.size() + k],
                          combined[index[static_cast<std::size_t>(l.to)]]);
    l.ground = l.grid / l.factor;
  }
  return out;
}

std::vector<std::string> groundLinesTable(const GridGround& g) {
  const std::string unit = g.unit == "m" ? "m" : "ft";
  int pair = 24;
  for (const GroundLine& l : g.lines) pair = std::max(pair, static_cast<int>(textLength(l.name)) + 2);
  std::vector<std::string> out{"     " + leftJustify("Line", pair) + rightJustify("Grid " + unit, 12) + rightJustify("Combined", 13) +
                               rightJustify("Ground " + unit, 12)};
  for (const GroundLine& l : g.lines)
    out.push_back("     " + leftJustify(l.name, pair) + rightJustify(Format(l.grid, "#0.000"), 12) +
                  rightJustify(Format(l.factor, "0.00000000"), 13) + rightJustify(Format(l.ground, "#0.000"), 12));
  return out;
}

std::string groundCornerLine(const GroundCorner& c) {
  return "Lat " + latitudeText(c.at.latitude) + "  Lon " + longitudeText(c.at.longitude) + "  k " +
         Format(c.grid.scale, "0.00000000") + "  convergence " + decimalToDmsCarried(c.grid.convergence) + "  combined " +
         Format(c.combined, "0.00000000");
}

std::vector<std::string> gridGroundPage(const SectionRecord& r, const GridGround& g) {
  const std::string unit = g.unit == "m" ? "m" : "ft";
  std::vector<std::string> out{"                GRID AND GROUND - SECTION " + CStr(r.section), "          " + locationLine(r), "",
                               "     Coordinate system: " + g.system,
                               "     Latitudes and longitudes on the " + g.datum,
                               g.elevation ? "     Elevation factor at the mean project elevation " + Format(*g.elevation, "0.00") +
                                                 " " + unit + ", taken as ellipsoid height"
                                           : "     No project elevation: the combined factor is the grid scale factor",
                               "     Grid length = ground length x combined factor", ""};
  int width = 8;
  for (const GroundCorner& c : g.corners) width = std::max(width, static_cast<int>(textLength(shownName(c.name))) + 2);
  out.push_back("     " + leftJustify("Point", width) + leftJustify("Latitude", 19) + leftJustify("Longitude", 20) +
                rightJustify("Scale factor", 12) + rightJustify("Convergence", 15) + rightJustify("Elev factor", 13) +
                rightJustify("Combined", 13));
  for (const GroundCorner& c : g.corners)
    out.push_back("     " + leftJustify(shownName(c.name), width) + leftJustify(latitudeText(c.at.latitude), 19) +
                  leftJustify(longitudeText(c.at.longitude), 20) + rightJustify(Format(c.grid.scale, "0.00000000"), 12) +
                  rightJustify(decimalToDmsCarried(c.grid.convergence), 15) +
                  rightJustify(Format(c.elevationFactor, "0.00000000"), 13) + rightJustify(Format(c.combined, "0.00000000"), 13));
  const std::vector<std::string> lines = groundLinesTable(g);
  out.push_back("");
  out.insert(out.end(), lines.begin(), lines.end());
  out.push_back("\f");
  return out;
}

}  // namespace tervalo
