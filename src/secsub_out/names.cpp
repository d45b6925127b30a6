#include "secsub_out/names.h"

#include <cstdlib>
#include <span>

#include "text/number.h"

namespace tervalo {
namespace {

struct Neighbours {
  int west = 0, south = 0, southWest = 0;
  int westRange = 0, southTownship = 0;
};

// Sections run serpentine: 6 5 4 3 2 1 across the north row, 7 to 12 back,
// and so on. R+1 is the next range west (east ranges are negative, so it
// steps west either way); T-1 the next township south.
Neighbours neighbours(int s, int T, int R) {
  if (s >= 1 && s <= 5) return {s + 1, 13 - s, 12 - s, R, T};
  if (s == 6 || s == 18 || s == 30) return {s - 5, s + 1, s + 6, R + 1, T};
  if (s == 7 || s == 19) return {s + 5, s + 11, s + 6, R + 1, T};
  if (s >= 8 && s <= 12) return {s - 1, 25 - s, 26 - s, R, T};
  if (s >= 13 && s <= 17) return {s + 1, 37 - s, 36 - s, R, T};
  if (s >= 20 && s <= 24) return {s - 1, 49 - s, 50 - s, R, T};
  if (s >= 25 && s <= 29) return {s + 1, 61 - s, 60 - s, R, T};
  if (s == 31) return {36, 6, 1, R + 1, T - 1};
  return {s - 1, 37 - s, 38 - s, R, T - 1};  // 32 to 36
}

std::string rangeCode(int range) { return CStr(range < 0 ? range + 100 : range); }

// Which section a position is named after (in the order of the parts table below).
enum class Owner { Own, West, South, SouthWest };

struct Plain {
  const char* label;
  Owner owner;
  const char* code;
};

// Labels are not uniform on purpose ("N 1/4 " at 2 but "N 1/4 COR " at 22,
// "NE COR " only at 24): corner descriptions as they have always read.
constexpr Plain kPlain[25] = {
    {"NE ", Owner::West, "SNE"},          {"N 1/16 NW 1/4 ", Owner::Own, "XNNW"}, {"N 1/4 ", Owner::Own, "QN"},
    {"N 1/16 NE 1/4 ", Owner::Own, "XNNE"}, {"NE ", Owner::Own, "SNE"},          {"E 1/16 NE 1/4 ", Owner::West, "XENE"},
    {"CTR NW 1/4 ", Owner::Own, "XCNW"},    {"E 1/16 NW 1/4 ", Owner::Own, "XENW"}, {"CTR NE 1/4 ", Owner::Own, "XCNE"},
    {"E 1/16 NE 1/4 ", Owner::Own, "XENE"}, {"E 1/4 COR ", Owner::West, "QE"},      {"N 1/16 SW 1/4 ", Owner::Own, "XNSW"},
    {"CENTER ", Owner::Own, "CQ"},          {"N 1/16 SE 1/4 ", Owner::Own, "XNSE"}, {"E 1/4 COR ", Owner::Own, "QE"},
    {"E 1/16 SE 1/4 ", Owner::West, "XESE"}, {"CTR SW 1/4 ", Owner::Own, "XCSW"},  {"E 1/16 SW 1/4 ", Owner::Own, "XESW"},
    {"CTR SE 1/4 ", Owner::Own, "XCSE"},    {"E 1/16 SE 1/4 ", Owner::Own, "XESE"}, {"NE ", Owner::SouthWest, "SNE"},
    {"N 1/16 NW 1/4 ", Owner::South, "XNNW"}, {"N 1/4 COR ", Owner::South, "QN"}, {"N 1/16 NE 1/4 ", Owner::South, "XNNE"},
    {"NE COR ", Owner::South, "SNE"}};

// The labels of closing corners, line by line. The program selects them by
// comparing a box's visibility (true is -1, false 0) with 1, which never
// holds, so every run writes the plain labels; the variants are kept so.
struct Variant {
  int position;
  const char* label;
};
constexpr Variant kNorthClosing[] = {{0, "(CC) NE "}, {1, "(N 1/16 NW 1/4) "}, {2, "(CC) N 1/4 "}, {3, "(N 1/16 NE 1/4) "}, {4, "(CC) NE "}};
constexpr Variant kSouthClosing[] = {{20, "(CC) SE "}, {21, "(S 1/16 SW 1/4) "}, {22, "(CC) S 1/4 "}, {23, "(S 1/16 SE 1/4) "}, {24, "(CC) SE "}};
constexpr Variant kEastClosing[] = {{4, "(CC) NE "}, {9, "(E 1/16 NE 1/4) "}, {14, "(CC) E 1/4 "}, {19, "(E 1/16 SE 1/4)"}, {24, "(CC) NE "}};
constexpr Variant kWestClosing[] = {{0, "(CC) NW COR "}, {5, "(W 1/16 NW 1/4) "}, {10, "(CC) W 1/4 COR "}, {15, "(W 1/16 SW 1/4) "}, {20, "(CC) NW COR "}};

int visibilityState(bool visible) { return visible ? -1 : 0; }

}  // namespace

std::string sectionText(int section) {
  const std::string text = CStr(section);
  return text.size() == 1 ? "0" + text : text;
}

CornerNaming setDescriptions(std::int16_t s, std::int16_t T, std::int16_t R, const BoundaryVisibility& boxes) {
  const Neighbours n = neighbours(s, T, R);
  const std::string own = sectionText(s), west = sectionText(n.west), south = sectionText(n.south),
                    southWest = sectionText(n.southWest);
  // A west neighbour in range 0 lies across the principal meridian, in 1 West.
  const std::string westRangeText = n.westRange == 0 ? "1W" : CStr(std::abs(n.westRange));
  const std::string westRangeCode = n.westRange == 0 ? "01" : rangeCode(n.westRange);
  const std::string ownRangeCode = rangeCode(R);
  const std::string t = CStr(T), southT = CStr(n.southTownship);
  // An east range prints with its minus sign (05-115--5): kept as it always was.
  const std::string r = CStr(R);

  // Section, township, and the range as descriptions and as names write it, by owner.
  struct Parts {
    std::string section, township, descriptionRange, nameRange;
  };
  const Parts parts[] = {{own, t, r, ownRangeCode},
                         {west, t, westRangeText, westRangeCode},
                         {south, southT, r, ownRangeCode},
                         {southWest, southT, westRangeText, westRangeCode}};

  CornerNaming naming;
  for (int pos = 0; pos < 25; ++pos) {
    const Plain& p = kPlain[pos];
    const Parts& of = parts[static_cast<int>(p.owner)];
    naming.descriptions[static_cast<std::size_t>(pos)] =
        p.label + of.section + "-" + of.township + "-" + of.descriptionRange;
    naming.pointNames[static_cast<std::size_t>(pos)] = p.code + of.section + of.township + of.nameRange;
  }

  const bool north = visibilityState(boxes.chk1) == 1;
  const bool southLine = visibilityState(boxes.chk4) == 1;
  const int eastLineCounter = 0;  // nothing in the program ever raises it
  const bool eastLine = visibilityState(boxes.chk5) == 1 && eastLineCounter >= 2;
  const bool westLine = visibilityState(boxes.chk4) == 1 && visibilityState(boxes.chkDefaults) == 1 &&
                        ((T >= 101 && R == 24) || (T < 100 && R == -1));
  for (const auto& [selected, variants] : {std::pair{north, std::span<const Variant>(kNorthClosing)},
                                           std::pair{southLine, std::span<const Variant>(kSouthClosing)},
                                           std::pair{eastLine, std::span<const Variant>(kEastClosing)},
                                           std::pair{westLine, std::span<const Variant>(kWestClosing)}})
    if (selected)
      for (const Variant& v : variants)
        naming.descriptions[static_cast<std::size_t>(v.position)] =
            v.label + naming.descriptions[static_cast<std::size_t>(v.position)].substr(
                          std::string(kPlain[v.position].label).size());

  auto segment = [&](const std::string& key, const std::string& code, const std::string& section,
                     const std::string& township, const std::string& range) {
    naming.segments[key] = code + section + township + range;
  };
  for (const char* letter : {"A", "B", "C", "D"}) {
    const std::string l = letter;
    segment("north " + l, "SN" + l, own, t, ownRangeCode);
    segment("west " + l, "SE" + l, west, t, westRangeCode);
    segment("south " + l, "SN" + l, south, t, ownRangeCode);  // T, not the south township: as it always was
    segment("east " + l, "SE" + l, own, t, ownRangeCode);
    segment("QEW" + l, "QEW" + l, own, t, ownRangeCode);
    segment("QNS" + l, "QNS" + l, own, t, ownRangeCode);
  }
  for (const char* code : {"XSNW", "XNSW", "XSSW", "XSNE", "XNSE", "XSSE", "XWNW", "XENW", "XWNE", "XENE", "XWSW", "XESW",
                           "XWSE", "XESE", "XNNW", "XNNE"})
    segment(code, code, own, t, ownRangeCode);
  return naming;
}

}  // namespace tervalo
