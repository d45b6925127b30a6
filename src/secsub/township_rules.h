#pragma once
// Which lines of a section lie on a correction line, standard parallel,
// guide meridian or principal meridian, and which meridian a location
// belongs to.

#include <array>
#include <string>
#include <vector>

namespace tervalo {

struct BoundaryBox {
  bool checked = false;
  bool visible = false;
  std::string caption;
};

struct TownshipRules {
  std::string meridian;             // "4" below township 101, else "5"
  std::array<BoundaryBox, 4> boxes;  // chk1 south, chk2 north, chk4 west, chk5 east
};

// `range` is the typed range, or -1 for any east range; `section` places
// the boxes: each checked one is shown only where its line is a line of the
// section (chk4 only for section 6, as it always was).
TownshipRules townshipRules(int township, int range, int section);

// The meridian from the location, starting from `meridian` as typed (Val of
// the field, so 4.7 stays 4.7): 5 for west ranges in the 5th's townships, 4
// for east ranges (or low ranges of high townships) in the 4th's. 0 when
// nothing fits and nothing was typed.
double meridianDefault(int township, int range, bool east, bool west, double meridian);

// The record chain fields a section needs ("NofW", ...), as the section
// window has always required them: a field left empty brings "Missing Data"
// and counts as 0 chains.
std::vector<std::string> requiredChains(int section);

// The fractional quarter-miles of a section, where the lots of the north and
// west tiers lie: the north quarter-miles of the west and east lines in
// sections 1 to 6, the west quarter-miles of the north and south lines in
// sections 6, 7, 18, 19, 30 and 31. The window shows each of them for its
// record length, whether required or not.
std::vector<std::string> fractionalChains(int section);

}  // namespace tervalo
