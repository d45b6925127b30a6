#pragma once
// What a run did that its numbers alone do not show: a corner that fell on
// another corner. An empty record-chain field counts as 0 chains and puts
// its sixteenth corner on the section corner; the final pass puts the
// center-line sixteenths of a section without corners on one point.

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "secsub/section_record.h"

namespace tervalo {

struct Coincidence {
  int slot = 0;      // the position that fell on another
  int onSlot = 0;    // the position it lies on
  bool computed = false;  // whether `slot` was computed (else both were held)
};

struct RunNotices {
  std::vector<std::string> lines;         // for the notice beside the grid
  std::vector<Coincidence> coincidences;  // for the drawing
};

// Every pair of present positions whose coordinates agree to the fourth
// decimal, with the chain fields that read 0 where they explain it, and for
// each such field every corner it moved: those the run would have put
// elsewhere with the field at 20 chains. `record` holds the run's
// coordinates, descriptions and chain texts; `entered` the record as the
// run began, before any position was computed.
RunNotices coincidenceNotices(const SectionRecord& record, const std::array<bool, slot::count>& computed,
                              const SectionRecord& entered, bool centerTyped);

}  // namespace tervalo
