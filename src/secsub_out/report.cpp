#include "secsub_out/report.h"

#include <algorithm>
#include <functional>

#include "text/angle.h"
#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

const std::string kHyphens = "                ---------------------------------------------";
const char* const kCoordinate = "#######0.0000";
const std::string kFormFeed = "\f";

CornerSlot& at(SectionRecord& r, int s) { return r.slots[static_cast<std::size_t>(s)]; }
const CornerSlot& at(const SectionRecord& r, int s) { return r.slots[static_cast<std::size_t>(s)]; }

void formatTexts(CornerSlot& c) {
  c.xText = Format(c.x, kCoordinate);
  c.yText = Format(c.y, kCoordinate);
}

}  // namespace

std::string locationLine(const SectionRecord& r) {
  return "SECTION " + CStr(r.section) + ", TOWNSHIP " + CStr(r.township) + "N, RANGE " + CStr(r.range) + r.direction +
         ", " + r.meridian + "th PM";
}

std::vector<std::string> printReportHeader(SectionRecord& r, const ReportInput& in) {
  std::vector<std::string> out;
  if (in.header) out = headerBlock(*in.header, in.dataFile);
  out.push_back(kHyphens);
  out.push_back("                  *****  SECTION SUBDIVISION  " + formatMdyy(in.today) + " *****");
  out.push_back(kHyphens);
  // An east range prints as stored, with its minus sign (RANGE -5E).
  out.push_back("                 " + locationLine(r));
  out.push_back(kHyphens);
  out.insert(out.end(), {"", "    INPUT DATA:", "", "       PLS Corners", ""});
  out.push_back("          Point Name   X-Coordinate   Y-Coordinate   Corner Description");
  for (int s : slot::pls) {
    CornerSlot& c = at(r, s);
    if (c.x == 0) continue;
    formatTexts(c);
    out.push_back(rightJustify(c.pointNumber, 20) + rightJustify(c.xText, 15) + rightJustify(c.yText, 15) + "   " +
                  c.description);
  }
  out.insert(out.end(), {"", ""});

  bool anyFixed = false;
  for (int s : slot::others) anyFixed = anyFixed || at(r, s).x != 0;
  if (anyFixed) {
    out.insert(out.end(), {"       Additional Fixed Points", "",
                           "          Point Number   X-Coordinate   Y-Coordinate     Corner Description"});
    for (int s : slot::others) {
      const CornerSlot& c = at(r, s);
      if (c.x == 0) continue;
      // The texts kept from the previous run's pages, not refreshed here.
      out.push_back(rightJustify(c.pointNumber, 22) + "   " + rightJustify(c.xText, 15) + rightJustify(c.yText, 15) +
                    "  " + c.description);
    }
  }
  out.insert(out.end(), {"", ""});

  const ChainTexts& ch = in.chains;
  const std::string sec = CStr(r.section);
  // The last row repeats "West" for the east quarter mile of the south line, as it always has.
  const std::pair<const std::string*, const char*> chainLines[] = {
      {&ch.wOfN, "West 1/4 Mile on North Line"}, {&ch.eOfN, "East 1/4 Mile on North Line"},
      {&ch.nOfW, "North 1/4 Mile on West Line"}, {&ch.nOfE, "North 1/4 Mile on East Line"},
      {&ch.sOfW, "South 1/4 Mile on West Line"}, {&ch.sOfE, "South 1/4 Mile on East Line"},
      {&ch.wOfS, "West 1/4 Mile on South Line"}, {&ch.eOfS, "West 1/4 Mile on South Line"}};
  bool anyChain = false;
  for (const auto& [text, label] : chainLines) anyChain = anyChain || !text->empty();
  if (anyChain) {
    out.push_back("       PLS Chainages");
    for (const auto& [text, label] : chainLines)
      if (*text != "20") out.push_back(std::string("          ") + label + " of Section " + sec + " = " + *text);
    out.push_back("");
  }
  out.push_back("All land corners in this document not showing coordinate values on this page");
  out.push_back("are computed positions that may require additional evidence for verification.");
  out.push_back(kFormFeed);
  return out;
}

// The longest name these pages print whole; a longer one keeps its first
// characters and ends in "~", so a cut never passes unseen.
constexpr std::size_t kNameWidth = 20;

std::string shownName(const std::string& name) {
  if (textLength(name) <= kNameWidth) return name;
  return std::string(textPrefix(name, kNameWidth - 1)) + "~";
}

namespace {

// The 5 by 5 grid as text: each position a box of up to three lines,
// joined by the section's lines ("-" along a row, "|" between rows) where
// both ends are present. Boxes are as wide as their texts need, with room
// for a blank, at least two dashes and a blank after the longest name, so a
// name never touches a line.
std::vector<std::string> diagram(const SectionRecord& r,
                                 const std::function<std::array<std::string, 3>(const CornerSlot&, int)>& box) {
  std::array<std::array<std::string, 3>, slot::count> texts;
  std::size_t width = 15;
  for (int s = 0; s < slot::count; ++s) {
    const CornerSlot& c = at(r, s);
    texts[static_cast<std::size_t>(s)] = c.x != 0 ? box(c, s) : std::array<std::string, 3>{"      .", "", ""};
    const auto& t = texts[static_cast<std::size_t>(s)];
    width = std::max({width, textLength(t[0]) + 4, textLength(t[1]) + 1, textLength(t[2]) + 1});
  }
  const int cellWidth = static_cast<int>(width);
  std::vector<std::string> out;
  for (int row = 0; row < 5; ++row) {
    std::array<std::string, 3> lines;
    for (int col = 0; col < 5; ++col) {
      const int s = 5 * row + col;
      const auto& boxText = texts[static_cast<std::size_t>(s)];
      const bool joinedEast = col < 4 && at(r, s).x != 0 && at(r, s + 1).x != 0;
      for (std::size_t k = 0; k < 3; ++k) {
        std::string cell = leftJustify(boxText[k], cellWidth) + (col < 4 ? " " : "");
        if (k == 0 && joinedEast) {
          // The line to the east neighbour: from one blank after the name to one blank before the next box.
          const std::size_t from = boxText[0].size() + 1;
          for (std::size_t i = from; i + 1 < cell.size(); ++i) cell[i] = '-';
        }
        lines[k] += cell;
      }
    }
    for (std::size_t k = 0; k < lines.size(); ++k) {
      std::string& l = lines[k];
      while (!l.empty() && l.back() == ' ') l.pop_back();
      if (k == 0 || !l.empty()) out.push_back(l);  // a box of names only takes one line
    }
    if (row < 4) {
      std::string connector;
      for (int col = 0; col < 5; ++col) {
        const bool joined = at(r, 5 * row + col).x != 0 && at(r, 5 * row + col + 5).x != 0;
        connector += leftJustify(joined ? "|" : "", cellWidth + 1);
      }
      while (!connector.empty() && connector.back() == ' ') connector.pop_back();
      out.push_back(connector);
    }
  }
  return out;
}

// Wide enough for every present position's shown name and one blank.
int nameColumn(const SectionRecord& r, std::size_t least) {
  std::size_t width = least;
  for (const CornerSlot& c : r.slots)
    if (c.x != 0) width = std::max(width, textLength(shownName(c.pointNumber)) + 1);
  return static_cast<int>(width);
}

}  // namespace

std::vector<std::string> printReport(SectionRecord& r, const CornerNaming& naming, const std::array<bool, 25>& computed) {
  for (auto& c : r.slots)
    if (c.x != 0) formatTexts(c);
  std::vector<std::string> out{"          COMPUTED POSITIONS - " + locationLine(r), ""};
  const auto grid = diagram(r, [](const CornerSlot& c, int) {
    return std::array<std::string, 3>{shownName(c.pointNumber), "X=" + c.xText, "Y=" + c.yText};
  });
  out.insert(out.end(), grid.begin(), grid.end());
  const int names = nameColumn(r, 12);
  out.insert(out.end(), {"", "  Pos  " + leftJustify("Point Name", names) + rightJustify("X-Coordinate", 15) +
                                 rightJustify("Y-Coordinate", 15) + "  Status    Corner Description"});
  for (int s = 0; s < slot::count; ++s) {
    const CornerSlot& c = at(r, s);
    if (c.x == 0) continue;
    out.push_back(rightJustify(sectionText(s), 5) + "  " + leftJustify(shownName(c.pointNumber), names) +
                  rightJustify(c.xText, 15) + rightJustify(c.yText, 15) + "  " +
                  leftJustify(computed[static_cast<std::size_t>(s)] ? "computed" : "held", 10) +
                  naming.descriptions[static_cast<std::size_t>(s)]);
  }
  out.push_back("");
  out.push_back("  Held positions were entered or read from the source file; computed positions follow");
  out.push_back("  from them by the proportion rules and intersections of the subdivision.");
  out.push_back(kFormFeed);
  return out;
}

std::vector<std::string> print3rdPage(const SectionRecord& r, const ReportInput& input) {
  std::vector<std::string> out;
  // The header data heads the summary sheet too, when it is asked for.
  if (input.header) out = headerBlock(*input.header, input.dataFile);
  out.insert(out.end(), {"                SUMMARY - SECTION " + CStr(r.section), "          " + locationLine(r), ""});
  const auto grid = diagram(r, [](const CornerSlot& c, int) {
    return std::array<std::string, 3>{shownName(c.pointNumber), "", ""};
  });
  out.insert(out.end(), grid.begin(), grid.end());
  const int pair = std::max(24, 2 * nameColumn(r, 0) + 2);
  out.insert(out.end(), {"", "     " + leftJustify("Line", pair) + rightJustify("Length", 12) + "    Azimuth"});
  // A line of length 0 between two present corners joins coincident
  // corners and has no direction; a line with a missing end is not listed.
  auto line = [&](int from, int to, double length, double azimuth) {
    if (at(r, from).x == 0 || at(r, to).x == 0) return;
    out.push_back("     " + leftJustify(shownName(at(r, from).pointNumber) + " - " + shownName(at(r, to).pointNumber), pair) +
                  rightJustify(Format(length, "#0.000"), 12) + "    " +
                  (length == 0 ? std::string("coincident") : decimalToDmsCarried(azimuth)));
  };
  for (int i = 0; i < 24; ++i)
    if (i % 5 != 4) line(i, i + 1, at(r, i + 1).horizontalLength, at(r, i + 1).horizontalAzimuth);
  for (int i = 0; i < 20; ++i) line(i, i + 5, at(r, i + 5).verticalLength, at(r, i + 5).verticalAzimuth);
  out.push_back(kFormFeed);
  return out;
}

std::vector<std::string> noticesPage(const SectionRecord& r, const std::vector<std::string>& notices) {
  if (notices.empty()) return {};
  std::vector<std::string> out{"                NOTICES - SECTION " + CStr(r.section), "          " + locationLine(r), "",
                               "    What this run did that its numbers alone do not show:", ""};
  for (const std::string& notice : notices) {
    const std::vector<std::string> lines = wrapWords(notice, 84);
    for (std::size_t i = 0; i < lines.size(); ++i) out.push_back((i == 0 ? "  - " : "    ") + lines[i]);
    out.emplace_back("");
  }
  out.push_back(kFormFeed);
  return out;
}

}  // namespace tervalo
