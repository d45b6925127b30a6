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
// northing, easting, an empty elevation (plane corners), description (the
// designation, then " / " and the evidence found where there is any);
// coordinates with four decimals. A township's adds the surveyor's number
// and the other numbers sections gave the corner.
std::vector<std::string> pnezdLines(const CornerMap& map);

// "NW 14-115-22 / FD STONE NW COR SEC 14": the designation, then what was found.
std::string describedAsFound(const MapPoint& point);

// One line per present position: name, X, Y, feature, description, the
// evidence found; with `latitudes`, then its latitude and longitude in decimal degrees (nine
// decimals, west negative) on the map's system's datum, which the reader
// passes over. The format knows no quoting, so a field holding "," or ";"
// is an ExportError.
std::vector<std::string> tervaloPointLines(const CornerMap& map, bool latitudes = false);

}  // namespace tervalo
