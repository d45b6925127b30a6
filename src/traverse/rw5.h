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

#include "traverse/raw_records.h"
#include "traverse/traverse.h"

namespace tervalo {

// TraverseFileError naming the line for a broken record or a raw file that
// is not a traverse.
TraverseInput parseRaw(const std::string& text);
TraverseInput traverseOfRecords(const RawRecords& records);

// A direct and reverse set reduced: each reading less its face's backsight
// reading, averaged on the circle (across 0 and 360), reverse zeniths from
// 360, distances averaged; the spread of the readings and the direct less
// the reverse mean, in seconds. `fault` says why it cannot be reduced.
struct SetMean {
  double angleRight = 0, zenith = 90, slope = 0, horizontal = 0;
  double spread = 0;
  std::optional<double> directLessReverse{};
  std::vector<double> angles;  // each reading reduced to the backsight, degrees
  std::string fault;
};
SetMean meanOfSet(const RawSetup& setup, const RawShot& set);
TraverseInput readRawFile(const std::string& file);

// Degrees of a packed angle ("90.3333" is 90 degrees 33 minutes 33 seconds); nothing for another text.
std::optional<double> packedAngle(const std::string& text);

}  // namespace tervalo
