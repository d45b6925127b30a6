#pragma once
// The alignment file (`*.alignment.json`): the PIs with their radii and
// spirals, the start station, station equations and the profile's VPIs.

#include <string>
#include <vector>

#include "alignment/alignment.h"
#include "alignment/profile.h"

namespace tervalo {

struct AlignmentFile {
  AlignmentInput alignment;
  std::vector<Vpi> profile;  // empty: no profile
};

// AlignmentError naming the place ("PI 2: \"radius\" must be a number").
AlignmentFile parseAlignmentFile(const std::string& text);

}  // namespace tervalo
