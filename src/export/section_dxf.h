#pragma once
// The subdivided section as a DXF drawing for any CAD program: one layer
// per line group (named as the GEOPAK feature groups), the corners on
// POINTS as a point and its name, and on ANNO each line's length and
// azimuth along it. True coordinates in feet, no shift or scale.

#include <filesystem>

#include "export/corner_map.h"

namespace tervalo {

// Writes the drawing whole (written with dxflib), or not at all: a
// RunTimeError names the file and the fault.
void writeCornerDxf(const CornerMap& map, const std::filesystem::path& file);

}  // namespace tervalo
