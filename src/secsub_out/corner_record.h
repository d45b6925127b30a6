#pragma once
// Why every position of a run is where it is: held as typed, looked up
// from the point file, or computed by which rule from which corners. The
// section window shows it as tooltips, the runner's result carries it, and
// the corner record writes it out for a review.

#include <array>
#include <string>
#include <vector>

#include "secsub/corners.h"
#include "secsub/section_record.h"
#include "secsub_out/grid_ground.h"

namespace tervalo {

// The corner each slot holds ("NW Cor", "N 1/16", ..., "SE Cor").
extern const std::array<const char*, slot::count> kSlotTitles;

struct CornerOrigin {
  enum class Kind { Absent, Typed, LookedUp, Computed, Restored };
  Kind kind = Kind::Absent;
  std::string point;  // looked up: the point's name in the file
  CornerRule rule;    // computed: how
  std::string restoredBy;  // restored: the rule in words ("double proportion: northing by ...")
};
using CornerOrigins = std::array<CornerOrigin, slot::count>;

// "proportion", "intersection", "final pass", "held", "looked up", "absent".
const char* originName(const CornerOrigin& origin);

// One or two sentences a reviewing surveyor reads, naming the corners by
// their titles and point numbers as the run left them.
std::string explainCorner(const SectionRecord& record, const CornerOrigins& origins, int slot);

// The corner record: a title, then each present position with its point
// number, its description and why it is where it is.
// With `ground`, each corner also its latitude, longitude and factors, and
// after them every line's grid and ground length.
std::vector<std::string> cornerRecordLines(const SectionRecord& record, const CornerOrigins& origins, const std::string& title,
                                           const GridGround* ground = nullptr);

}  // namespace tervalo
