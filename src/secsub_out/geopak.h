#pragma once
// The GEOPAK COGO input: one stored point per present position, then the
// section, quarter and sixteenth lines between present positions.

#include <string>
#include <vector>

#include "secsub/section_record.h"
#include "secsub_out/names.h"

namespace tervalo {

// Formats and stores the X and Y texts of every present position (X not 0).
std::vector<std::string> printPoints(SectionRecord& record, const CornerNaming& naming);

}  // namespace tervalo
