#pragma once
// The lines of a subdivided section between grid positions, in the order
// and groups of the GEOPAK file: section lines, the two quarter lines, the
// east-west and north-south sixteenth lines.

#include <array>

namespace tervalo {

enum class LineKind { Section, Quarter, Sixteenth };

struct GridLine {
  const char* feature;  // the GEOPAK feature group: "SEC", "EWQ", "NSQ", "EWSX", "NSSX"
  const char* segment;  // the segment's key in the corner naming
  int from;
  int to;
  LineKind kind;
  int bridgedWhenAbsent = -1;  // drawn only while this position is absent
};

inline constexpr std::array<GridLine, 42> kGridLines{{
    {"SEC", "north A", 0, 1, LineKind::Section},   {"SEC", "north B", 1, 2, LineKind::Section},
    {"SEC", "north C", 2, 3, LineKind::Section},   {"SEC", "north D", 3, 4, LineKind::Section},
    {"SEC", "west A", 0, 5, LineKind::Section},    {"SEC", "west B", 5, 10, LineKind::Section},
    {"SEC", "west C", 10, 15, LineKind::Section},  {"SEC", "west D", 15, 20, LineKind::Section},
    {"SEC", "south A", 20, 21, LineKind::Section}, {"SEC", "south B", 21, 22, LineKind::Section},
    {"SEC", "south C", 22, 23, LineKind::Section}, {"SEC", "south D", 23, 24, LineKind::Section},
    {"SEC", "east A", 4, 9, LineKind::Section},    {"SEC", "east B", 9, 14, LineKind::Section},
    {"SEC", "east C", 14, 19, LineKind::Section},  {"SEC", "east D", 19, 24, LineKind::Section},
    // A missing sixteenth next to the center is bridged: the east-west line
    // under its first segment's name, the north-south one under its second's.
    {"EWQ", "QEWA", 10, 12, LineKind::Quarter, 11}, {"EWQ", "QEWA", 10, 11, LineKind::Quarter},
    {"EWQ", "QEWB", 11, 12, LineKind::Quarter},     {"EWQ", "QEWC", 12, 13, LineKind::Quarter},
    {"EWQ", "QEWD", 13, 14, LineKind::Quarter},     {"NSQ", "QNSB", 2, 12, LineKind::Quarter, 7},
    {"NSQ", "QNSA", 2, 7, LineKind::Quarter},       {"NSQ", "QNSB", 7, 12, LineKind::Quarter},
    {"NSQ", "QNSC", 12, 17, LineKind::Quarter},     {"NSQ", "QNSD", 17, 22, LineKind::Quarter},
    {"EWSX", "XWNW", 5, 6, LineKind::Sixteenth},    {"EWSX", "XENW", 6, 7, LineKind::Sixteenth},
    {"EWSX", "XWNE", 7, 8, LineKind::Sixteenth},    {"EWSX", "XENE", 8, 9, LineKind::Sixteenth},
    {"EWSX", "XWSW", 15, 16, LineKind::Sixteenth},  {"EWSX", "XESW", 16, 17, LineKind::Sixteenth},
    {"EWSX", "XWSE", 17, 18, LineKind::Sixteenth},  {"EWSX", "XESE", 18, 19, LineKind::Sixteenth},
    {"NSSX", "XNNW", 1, 6, LineKind::Sixteenth},    {"NSSX", "XSNW", 6, 11, LineKind::Sixteenth},
    {"NSSX", "XNSW", 11, 16, LineKind::Sixteenth},  {"NSSX", "XSSW", 16, 21, LineKind::Sixteenth},
    {"NSSX", "XNNE", 3, 8, LineKind::Sixteenth},    {"NSSX", "XSNE", 8, 13, LineKind::Sixteenth},
    {"NSSX", "XNSE", 13, 18, LineKind::Sixteenth},  {"NSSX", "XSSE", 18, 23, LineKind::Sixteenth},
}};

// Whether a line is drawn between the positions present (`present(slot)`):
// both ends present, and a bridging line only while the position it
// bridges is absent. The GEOPAK file, the drawing and every export agree.
template <class Present>
bool lineDrawn(const GridLine& line, const Present& present) {
  if (line.bridgedWhenAbsent >= 0 && present(line.bridgedWhenAbsent)) return false;
  return present(line.from) && present(line.to);
}

}  // namespace tervalo
