#pragma once
// What a run did that its numbers alone do not show: a corner that fell on
// another corner. An empty record-chain field counts as 0 chains and puts
// its sixteenth corner on the section corner; the final pass puts the
// center-line sixteenths of a section without corners on one point.

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "secsub/corners.h"
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
  // What the run computed that needs the surveyor's eye: the lines above
  // less those about files, for the report's notices page, the runner's
  // result and a township's summary.
  std::vector<std::string> said;
};

// Every pair of present positions whose coordinates agree to the fourth
// decimal, with the chain fields that read 0 where they explain it, and for
// each such field every corner it moved: those the run would have put
// elsewhere with the field at 20 chains. `record` holds the run's
// coordinates, descriptions and chain texts; `entered` the record as the
// run began, before any position was computed.
RunNotices coincidenceNotices(const SectionRecord& record, const std::array<bool, slot::count>& computed,
                              const SectionRecord& entered, bool centerTyped);

// The computed corners placed from a missing corner: a center-line
// sixteenth the final pass put toward the E 1/4 because the section
// corners of its line are missing, and a sixteenth proportioned toward a
// quarter corner whose slot is empty (counted present by a sixteenth of the
// south line). Each says what happened and that the missing corner must be
// restored first.
std::vector<std::string> missingCornerNotices(const SectionRecord& record,
                                              const std::array<std::optional<CornerRule>, slot::count>& placedBy);

// Record-chain fields the section does not require but that were left
// empty: each is taken as the regular 20 chains in `record` (an empty field
// would read 0 and put its sixteenth corner on the section corner), and a
// line says which, naming a fractional quarter-mile of the north or west
// tier as such.
std::vector<std::string> takeEmptyChainsAsRegular(SectionRecord& record);

}  // namespace tervalo
