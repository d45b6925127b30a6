#include "export/map_system.h"

namespace tervalo {

MapSystem mapSystem(const CrsChoice& crs) {
  MapSystem s;
  s.crs = crs;
  if (crs.none()) return s;
  const CrsDescription d = geo().describe(crs.epsg);
  s.name = d.name;
  s.datum = d.datum;
  s.title = crsTitle(crs);
  s.linearUnit = landXmlUnit(crs, &d);
  s.dxfUnits = s.linearUnit == "USSurveyFoot" ? 21 : s.linearUnit == "foot" ? 2 : 6;
  s.prj = geo().wkt(crs, true);
  return s;
}

}  // namespace tervalo
