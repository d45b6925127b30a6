#pragma once
// A subdivided section's corners as point files: PNEZD comma-separated
// values for data collectors and CAD, and the comma-delimited source format
// this program reads back, so a run's corners can start the next section.

#include <string>
#include <vector>

#include "export/corner_map.h"

namespace tervalo {

// A field of a comma-separated line: quoted when it holds a comma, a double
// quote or a line end, with its quotes doubled.
std::string csvField(const std::string& text);

// The header row of a PNEZD file, naming its columns.
inline constexpr const char* kPnezdHeader = "Point,Northing,Easting,Elevation,Description";

// The header row, then one line per present position, in slot order: name,
// northing, easting, an empty elevation (plane corners), description;
// coordinates with four decimals.
std::vector<std::string> pnezdLines(const CornerMap& map);

// One line per present position: name, X, Y, feature, description; with
// `latitudes`, then its latitude and longitude in decimal degrees (nine
// decimals, west negative) on the map's system's datum, which the reader
// passes over. The format knows no quoting, so a field holding "," or ";"
// is an ExportError.
std::vector<std::string> tervaloPointLines(const CornerMap& map, bool latitudes = false);

}  // namespace tervalo
