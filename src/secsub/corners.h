#pragma once
// The corner computation: half-mile lengths, the section center, the
// sixteenth corners and quarter-quarter centers, and the grid lines.
// Coordinates are plane X (easting) and Y (northing); chains serve only as
// ratios. A zero half-mile or parallel lines are a division by zero
// (RunTimeError), as they always were; nothing is guarded beyond that.

#include <array>
#include <functional>

#include "secsub/section_record.h"

namespace tervalo {

// The half-miles from the chain texts: Val of each + 20 chains (an empty
// field gives 20, so its sixteenth corner falls on the section corner).
HalfMiles calculateChains(const ChainTexts& chains);

struct PlanePoint {
  double x = 0;
  double y = 0;
};

// Where the line north end–south end meets the line west end–east end. A
// north-south or east-west line (dx exactly 0) takes dx = 1e-9.
PlanePoint computeCtr(PlanePoint north, PlanePoint south, PlanePoint west, PlanePoint east);

// The section center: where the N 1/4–S 1/4 line meets the W 1/4–E 1/4 line.
PlanePoint sectionCenter(const SectionRecord& record);

// The point 20 chains from `near` toward `far` on a half-mile of record
// length `chains`, proportioned to the measured line.
PlanePoint proportion(PlanePoint near, PlanePoint far, double chains);

// By which rule, from which corners, a computed position was placed.
struct CornerRule {
  enum class Kind { Proportion, Intersection, FinalPass };
  Kind kind = Kind::Proportion;
  // A proportion: 20 chains from `nearSlot` toward `farSlot` on a half-mile
  // of `chains` chains of record (`halfMile` says which), factor 20 / chains.
  int nearSlot = -1, farSlot = -1;
  double chains = 0;
  const char* halfMile = "";
  // An intersection: the line north end to south end with the line west end to east end.
  std::array<int, 4> ends{};

  double factor() const { return 20.0 / chains; }
};

// The section center's rule: the N 1/4 to S 1/4 line with the W 1/4 to E 1/4 line.
CornerRule sectionCenterRule();

// Fills every blank sixteenth corner and quarter-quarter center it can, in
// the blocks NW, NE, SE, SW and a final pass; `written(slot, rule)` is told
// of each slot as it is computed, with the rule that placed it.
void computeQtrs(SectionRecord& record, const HalfMiles& halfMiles,
                 const std::function<void(int, const CornerRule&)>& written);

// The run's computation of positions: the section center where the four
// quarter corners are present and no center was typed (`centerTyped`), then
// computeQtrs; `written` as for computeQtrs, the center included.
void computeMissingCorners(SectionRecord& record, const HalfMiles& halfMiles, bool centerTyped,
                           const std::function<void(int, const CornerRule&)>& written);

// Lengths and azimuths of the lines between grid neighbours: horizontal
// ones kept with the east slot, vertical ones with the lower slot.
void getLengthHor(SectionRecord& record);
void getLengthVert(SectionRecord& record);

}  // namespace tervalo
