#pragma once
// A plat sheet written as the file's ending asks: PDF and SVG painted by the
// one painter (in the paper module, loaded on first use), DXF by dxflib.

#include <filesystem>

#include "parcels/plat.h"

namespace tervalo {

// Whole or not at all: a RunTimeError names the file and the fault, or the
// endings there are.
void writeSheetFile(const Sheet& sheet, const std::filesystem::path& file);

}  // namespace tervalo
