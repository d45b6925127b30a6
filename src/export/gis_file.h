#pragma once
// A map as a GIS file through GDAL: a GeoPackage with a corners layer and a
// lines layer in the map's system, GeoJSON (RFC 7946, longitude and
// latitude) or KML for a quick look on a globe.

#include <filesystem>
#include <string>

#include "export/corner_map.h"

namespace tervalo {

// "GPKG", "GeoJSON" or "KML" for ".gpkg", ".geojson", ".kml"; "" otherwise.
std::string gisDriver(const std::string& ending);

// Writes the map whole by `driver`. ExportError when the map has no system
// and the kind needs one (GeoJSON, KML), or when GDAL or PROJ cannot write it.
void writeGisFile(const CornerMap& map, const std::filesystem::path& file, const std::string& driver);

// The .prj beside a CSV of the map (ESRI WKT), when it has a system.
void writePrjBeside(const CornerMap& map, const std::filesystem::path& csv);

}  // namespace tervalo
