#pragma once
// A subdivided section's parcels: the sixteen quarter-quarters of a regular
// section, and in the sections of a township's north and west tiers the
// government lots that take the place of the quarter-quarters along the
// township's north or west line. Each a closed figure of the computed
// corners, with its area, and the section's area checked against the sum of
// its parts.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "parcels/deed.h"
#include "secsub/section_record.h"

namespace tervalo {

struct AliquotPart {
  int section = 0;
  std::string name;   // "NE 1/4 NW 1/4" or "Lot 3"
  std::string words;  // "Northeast Quarter of the Northwest Quarter" or "Lot 3"
  int lot = 0;        // the government lot's number; 0 for a quarter-quarter
  int row = 0, column = 0;          // the cell, row 0 north, column 0 west
  std::array<int, 4> slots{};       // round it clockwise from the corner named by `first`
  std::vector<int> cornerSlots;      // its corners' slots, a place two slots share once
  std::vector<std::string> corners;  // the surveyor's point numbers, in the same order
  std::vector<Course> courses;       // round it from its first corner
  double area = 0;                   // square units, on the grid where there is a system
  double acres = 0;
  std::optional<double> groundArea{}, groundAcres{};  // by the combined factor, with a system
};

struct SectionParts {
  int section = 0;
  std::string unit = "ft";
  std::vector<AliquotPart> parts;  // quarter-quarters in rows from the north-west, lots by number first
  double area = 0, acres = 0;            // the section's own boundary
  double partsArea = 0, partsAcres = 0;  // the sum of its parts
  std::optional<double> combinedFactor{};
  std::vector<std::string> missing;  // a part that could not be closed, and why
};

// The lot numbers of a section's cells (0 for a quarter-quarter): in
// sections 1 to 5 the north row is lots 1 to 4 from the east; in sections 7,
// 18, 19, 30 and 31 the west column is lots 1 to 4 from the north; section 6
// has both, lots 1 to 4 along the north from the east and 5 to 7 down the west.
int lotNumber(int section, int row, int column);

// The parts of `record`'s section as its slots stand after a run (a slot
// with x = 0 is missing); lengths in `unit` ("ft" or "m"). With a combined
// factor (grid = ground x factor), each part's ground area beside the grid's.
SectionParts aliquotParts(const SectionRecord& record, const std::string& unit = "ft",
                          std::optional<double> combinedFactor = std::nullopt);

// "the Northwest corner", "the North Quarter corner", "the Center" of a
// section's slot (the section corners, quarter corners and center); empty for another.
std::string slotCornerWords(int slot);

}  // namespace tervalo
