#pragma once
// The plat sheet as a DXF drawing: the sheet in inches, a layer per kind of
// thing drawn (boundary, parcel lines, monuments, bearings and distances,
// names, tables, north arrow, scale bar, legend, title block, certificate),
// each label fitted to the box the sheet gives it.

#include <filesystem>

#include "parcels/plat.h"

namespace tervalo {

// Whole or not at all: a RunTimeError names the file and the fault.
void writePlatDxf(const Sheet& sheet, const std::filesystem::path& file);

}  // namespace tervalo
