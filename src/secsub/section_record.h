#pragma once
// One PLSS section as the subdivision works on it: 25 corner slots on a
// 5 by 5 grid, slot = 5 × row + column from the north-west corner (row 0 the
// north line, column 0 the west line; 12 is the center).

#include <array>
#include <cstdint>
#include <string>

namespace tervalo {

namespace slot {
inline constexpr int NW = 0, N4 = 2, NE = 4, W4 = 10, C = 12, E4 = 14, SW = 20, S4 = 22, SE = 24;
inline constexpr int count = 25;
// The eight PLS corners: the section and quarter corners, never computed.
inline constexpr std::array<int, 8> pls{NW, N4, NE, W4, E4, SW, S4, SE};
// Every slot that is not a PLS corner, the center included, in slot order.
inline constexpr std::array<int, 17> others{1, 3, 5, 6, 7, 8, 9, 11, 12, 13, 15, 16, 17, 18, 19, 21, 23};
}  // namespace slot

struct CornerSlot {
  double x = 0;             // easting; exactly 0 means not given
  double y = 0;             // northing
  std::string feature;
  std::string description;  // rewritten by every run (corner naming)
  // What the source file or the user said of the monument found ("FD STONE
  // NW COR SEC 14"), kept apart from the designation the run writes.
  std::string evidence{};
  std::string pointNumber;  // upper case
  // Formatted coordinates, kept by the report writers from run to run.
  std::string xText;
  std::string yText;
  // The line from the west neighbour (horizontal) and from the slot above
  // (vertical) to this slot; length 0 when either end is missing.
  double horizontalLength = 0;
  double horizontalAzimuth = 0;
  std::string horizontalAzimuthText;
  double verticalLength = 0;
  double verticalAzimuth = 0;
  std::string verticalAzimuthText;

  bool blank() const { return x == 0 && y == 0; }
};

// Which section and quarter corners were entered (set from the X fields).
struct CornerPresence {
  bool nw = false, ne = false, se = false, sw = false;
  bool n4 = false, w4 = false, e4 = false, s4 = false;
};

// The record lengths in chains of the eight irregular quarter-miles next to
// the section corners, as typed.
struct ChainTexts {
  std::string nOfW, sOfW, nOfE, sOfE, wOfN, eOfN, wOfS, eOfS;
};

// The eight record-chain fields: the form's stem ("NofW" names txtNofWchain
// and lblNofWchain), its caption, where the record keeps its text, and the
// sixteenth corners whose half-miles it measures: the one on its own line
// and the center-line one whose half-mile averages it with the opposite line.
struct ChainFieldInfo {
  const char* stem;
  const char* caption;
  std::string ChainTexts::*text;
  int sixteenth;
  int centerSixteenth;
};

// In the order of the form's chain fields: west line, east line, north line, south line.
inline constexpr std::array<ChainFieldInfo, 8> kChainFields{{
    {"NofW", "N 1/4 mile on W line", &ChainTexts::nOfW, 5, 7},
    {"SofW", "S 1/4 mile on W line", &ChainTexts::sOfW, 15, 17},
    {"NofE", "N 1/4 mile on E line", &ChainTexts::nOfE, 9, 7},
    {"SofE", "S 1/4 mile on E line", &ChainTexts::sOfE, 19, 17},
    {"WofN", "W 1/4 mile on N line", &ChainTexts::wOfN, 1, 11},
    {"EofN", "E 1/4 mile on N line", &ChainTexts::eOfN, 3, 13},
    {"WofS", "W 1/4 mile on S line", &ChainTexts::wOfS, 21, 11},
    {"EofS", "E 1/4 mile on S line", &ChainTexts::eOfS, 23, 13},
}};

// The twelve half-mile lengths in chains that the proportions use.
struct HalfMiles {
  double northOfEast = 0, northOfWest = 0, northOfCenter = 0;
  double westOfNorth = 0, westOfSouth = 0, westOfCenter = 0;
  double southOfEast = 0, southOfWest = 0, southOfCenter = 0;
  double eastOfNorth = 0, eastOfSouth = 0, eastOfCenter = 0;
};

struct SectionRecord {
  std::array<CornerSlot, slot::count> slots{};
  CornerPresence present;
  std::int16_t section = 0;
  std::int16_t township = 0;
  std::int16_t range = 0;     // east ranges held negative (3 East is -3)
  std::string meridian;       // "4" or "5"
  std::string direction;      // "E" or "W"
  ChainTexts chains;
};

}  // namespace tervalo
