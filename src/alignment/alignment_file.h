#pragma once
// The alignment file (`*.alignment.json`): the PIs with their radii and
// spirals, the start station, station equations and the profile's VPIs.

#include <string>
#include <vector>

#include "alignment/alignment.h"
#include "alignment/profile.h"

namespace tervalo {

struct AlignmentFile {
  AlignmentInput alignment;  // by its PIs, or
  std::vector<Element> elements;  // by its elements, the first from the origin, each from the end of the one before
  std::vector<Vpi> profile;  // empty: no profile
};

// AlignmentError naming the place ("PI 2: \"radius\" must be a number").
AlignmentFile parseAlignmentFile(const std::string& text);

// The file's alignment, built from its PIs or its elements; AlignmentError
// naming the PI, element or equation at fault.
Alignment alignmentOf(const AlignmentFile& file);

}  // namespace tervalo
