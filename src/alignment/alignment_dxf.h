#pragma once
// An alignment's plan as a DXF drawing: the centreline (lines and arcs as
// themselves, spirals as fine polylines) on ALIGN, a tick and station label
// at every full station on STATION, and each key point's tick and name with
// its station on KEYPOINT; true coordinates in the alignment's unit.

#include <filesystem>

#include "alignment/alignment.h"

namespace tervalo {

// Written whole or not at all (a RunTimeError names the file and fault).
void writeAlignmentDxf(const Alignment& alignment, const std::filesystem::path& file);

}  // namespace tervalo
