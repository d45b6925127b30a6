#pragma once
// A map's corners (or stations) and lines exported in the kind of file the
// chosen name's ending asks for, as the section and traverse windows do.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/shell.h"
#include "export/corner_map.h"
#include "text/date.h"

namespace tervalo {

// The kinds offered in the save dialog, in order.
const std::vector<std::string>& mapExportFilters();

// ExportError when `file`'s ending names no kind offered.
void checkMapFileName(const std::filesystem::path& file);

// Writes `map` to `file` by its ending, whole or not at all: ExportError
// for an ending not offered or a field the kind cannot hold, RunTimeError
// for a file that cannot be written. `today` dates a LandXML file.
void writeMapFile(const CornerMap& map, const std::filesystem::path& file, const Date& today, bool latitudes = false);

// Writes `map` to `file` by its ending: PNEZD CSV (its .prj beside it),
// Tervalo points (with `latitudes`, each point's latitude and longitude),
// LandXML, DXF, GeoPackage, GeoJSON or KML. A fault is said in a box titled
// `title`; returns the file written, or nothing.
std::optional<std::filesystem::path> exportMap(Shell& shell, const std::string& title, const std::filesystem::path& file,
                                               const CornerMap& map, bool latitudes = false);

}  // namespace tervalo
