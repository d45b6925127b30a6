#pragma once
// Corner names and descriptions: every position of the section named as a
// corner of the section it belongs to (those on the west and south lines
// after the neighbouring section), and the names of the lines' segments.

#include <array>
#include <cstdint>
#include <map>
#include <string>

namespace tervalo {

struct CornerNaming {
  std::array<std::string, 25> descriptions;  // "N 1/16 NW 1/4 05-115-22"
  std::array<std::string, 25> pointNames;    // "XNNW0511522"
  std::map<std::string, std::string> segments;  // "north A" -> "SNA0511522", "QEWB" -> ...

  // The segment name of a section line ("north", "west", "south", "east"
  // and "A" to "D"), or of a quarter or sixteenth line by its code.
  const std::string& segment(const std::string& key) const { return segments.at(key); }
};

// The boundary-line boxes as the naming reads them: their visibility.
struct BoundaryVisibility {
  bool chk1 = false, chk4 = false, chk5 = false, chkDefaults = false;
};

// Names every position for section 1 to 36 of township T, range R (east
// ranges negative). Rebuilt from scratch at every run.
CornerNaming setDescriptions(std::int16_t section, std::int16_t township, std::int16_t range,
                             const BoundaryVisibility& boxes = {});

// A section number as two digits ("05").
std::string sectionText(int section);

}  // namespace tervalo
