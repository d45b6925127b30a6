#pragma once
// A data collector's raw file in the comma-separated record format of RW5,
// read as a traverse: the job and its mode (units, scale factor, angle
// unit, azimuth direction), stored and occupied points, each setup's
// backsight, traverse shots and direct and reverse angle sets (averaged)
// from one occupied station to the next, side shots. Angles are packed
// degrees (DDD.MMSS); a traverse angle is the circle reading less the
// backsight's. A record the traverse does not use is listed in the
// traverse's notes, never dropped without a word.

#include <string>

#include "traverse/traverse.h"

namespace tervalo {

// TraverseFileError naming the line for a broken record or a raw file that
// is not a traverse.
TraverseInput parseRaw(const std::string& text);
TraverseInput readRawFile(const std::string& file);

// Degrees of a packed angle ("90.3333" is 90 degrees 33 minutes 33 seconds); nothing for another text.
std::optional<double> packedAngle(const std::string& text);

}  // namespace tervalo
