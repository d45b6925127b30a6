#pragma once
// How the files of a map name the coordinate system its coordinates are in:
// LandXML's CoordinateSystem and linear unit, DXF's units and a text naming
// the system, the .prj beside a CSV. "Local" where no system is chosen.

#include <string>

#include "crs/crs.h"

namespace tervalo {

struct MapSystem {
  CrsChoice crs;
  std::string title = "local coordinates";  // "EPSG:3419 NAD83 / Kansas North (ftUS)"
  std::string name;                         // the system's own name; empty for none
  std::string datum;
  std::string linearUnit = "USSurveyFoot";  // LandXML: USSurveyFoot, foot or meter
  int dxfUnits = 21;                        // DXF $INSUNITS: 21 US survey feet, 2 feet, 6 metres
  std::string prj;                          // ESRI WKT for a .prj; empty for none
};

// The system as the files name it; PROJ is asked only for a chosen system.
// CrsError when the system cannot be described.
MapSystem mapSystem(const CrsChoice& crs);

}  // namespace tervalo
