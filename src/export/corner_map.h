#pragma once
// Corners and the lines between them, as every export writes them: a
// section's, or a whole township's with each shared corner and line once.

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "secsub/section_record.h"
#include "secsub_out/names.h"

namespace tervalo {

struct MapPoint {
  std::string name;
  std::string description;
  std::string feature;
  double x = 0, y = 0;
  bool computed = false;
};

struct MapLine {
  std::string feature;  // the GEOPAK feature group: "SEC", "EWQ", "NSQ", "EWSX", "NSSX"
  std::string name;     // the segment's unique name
  std::size_t from = 0, to = 0;  // indices into the points
};

struct CornerMap {
  std::string title;  // "Section 14 T115N R22W"
  std::vector<MapPoint> points;
  std::vector<MapLine> lines;  // grouped by feature, in the groups' order
};

// The feature groups, in the order the files list them.
inline constexpr std::array<const char*, 5> kFeatureGroups{"SEC", "EWQ", "NSQ", "EWSX", "NSSX"};

// A section's present positions in slot order and its drawn lines. Points
// are named by their point numbers, or by their unique corner names when
// `uniqueNames` is set.
CornerMap sectionMap(const SectionRecord& record, const std::array<bool, slot::count>& computed, const CornerNaming& naming,
                     bool uniqueNames = false);

}  // namespace tervalo
