#include "crs/ground.h"

namespace tervalo {

double elevationFactor(double radius, double height) { return radius / (radius + height); }

double lineFactor(double atFrom, double atMiddle, double atTo) { return (atFrom + 4 * atMiddle + atTo) / 6; }

std::vector<PointFactors> combinedFactors(const CrsChoice& crs, const std::vector<PlanePosition>& places) {
  if (places.empty()) return {};
  Geo& g = geo();
  const std::vector<GeographicPosition> geographic = g.geographic(crs, places);
  const std::vector<GridFactors> factors = g.factors(crs, places);
  std::vector<PointFactors> out(places.size());
  for (std::size_t i = 0; i < places.size(); ++i) {
    out[i].at = geographic[i];
    out[i].grid = factors[i];
    out[i].elevation = crs.elevation ? elevationFactor(g.meanRadius(crs, geographic[i].latitude), *crs.elevation) : 1.0;
    out[i].combined = factors[i].scale * out[i].elevation;
  }
  return out;
}

}  // namespace tervalo
