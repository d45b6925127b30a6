#include "secsub_out/geopak.h"

#include <tuple>

#include "text/format.h"
#include "text/number.h"

namespace tervalo {
namespace {

// Comment labels of the section and quarter corners and the center.
const char* cornerLabel(int s) {
  switch (s) {
    case 0: return "NW";
    case 2: return "NQ";
    case 4: return "NE";
    case 10: return "WQ";
    case 12: return "CQ";
    case 14: return "EQ";
    case 20: return "SW";
    case 22: return "SQ";
    case 24: return "SE";
    default: return nullptr;
  }
}

}  // namespace

std::vector<std::string> printPoints(SectionRecord& r, const CornerNaming& naming) {
  auto& slots = r.slots;
  auto present = [&](int s) { return slots[static_cast<std::size_t>(s)].x != 0; };
  auto name = [&](int s) -> const std::string& { return slots[static_cast<std::size_t>(s)].pointNumber; };

  std::vector<std::string> out;
  out.push_back("$ $ Begin Section:" + CStr(r.section) + "  Township:" + CStr(r.township) + "  Range:" + CStr(r.range));
  out.push_back("SET FEATURE OFF");
  for (auto& c : slots)
    if (c.x != 0) {
      c.xText = Format(c.x, "#######0.0000");
      c.yText = Format(c.y, "#######0.0000");
    }
  for (int s = 0; s < slot::count; ++s) {
    const CornerSlot& c = slots[static_cast<std::size_t>(s)];
    if (c.x == 0) continue;
    const char* label = cornerLabel(s);
    const std::string coordinates = "  XC:" + c.xText + "  YC:" + c.yText;
    out.push_back(label ? "$ $ Corner:" + std::string(label) + coordinates + "  FE:" + c.feature + " $"
                        : "$ $ Corner:" + sectionText(s) + coordinates + " $");
    // Only the section and quarter corners and the center carry their
    // feature; a sixteenth corner's is left out even when entered.
    const std::string feature = label && !c.feature.empty() ? "  FEA " + c.feature : "";
    out.push_back("STO POI " + c.pointNumber + "  X " + c.xText + "  Y " + c.yText + feature + "  DES \"" +
                  naming.descriptions[static_cast<std::size_t>(s)] + "\"");
  }
  out.push_back("$ $ End Macro Data $");

  auto line = [&](const std::string& segment, int from, int to) {
    if (present(from) && present(to)) out.push_back("STO LIN " + naming.segment(segment) + " " + name(from) + " TO " + name(to));
  };
  out.push_back("SET FEATURE ADD SEC");
  const char* letters[] = {"A", "B", "C", "D"};
  for (int k = 0; k < 4; ++k) line(std::string("north ") + letters[k], k, k + 1);
  for (int k = 0; k < 4; ++k) line(std::string("west ") + letters[k], 5 * k, 5 * k + 5);
  for (int k = 0; k < 4; ++k) line(std::string("south ") + letters[k], 20 + k, 21 + k);
  for (int k = 0; k < 4; ++k) line(std::string("east ") + letters[k], 4 + 5 * k, 9 + 5 * k);

  out.push_back("SET FEATURE ADD EWQ");
  if (!present(11)) line("QEWA", 10, 12);
  line("QEWA", 10, 11);
  line("QEWB", 11, 12);
  line("QEWC", 12, 13);
  line("QEWD", 13, 14);

  out.push_back("SET FEATURE ADD NSQ");
  // Bridged with the second segment's name, unlike the east-west line: as it always was.
  if (!present(7)) line("QNSB", 2, 12);
  line("QNSA", 2, 7);
  line("QNSB", 7, 12);
  line("QNSC", 12, 17);
  line("QNSD", 17, 22);

  out.push_back("SET FEATURE ADD EWSX");
  for (const auto& [code, from, to] : {std::tuple{"XWNW", 5, 6}, {"XENW", 6, 7}, {"XWNE", 7, 8}, {"XENE", 8, 9},
                                       {"XWSW", 15, 16}, {"XESW", 16, 17}, {"XWSE", 17, 18}, {"XESE", 18, 19}})
    line(code, from, to);
  out.push_back("SET FEATURE ADD NSSX");
  for (const auto& [code, from, to] : {std::tuple{"XNNW", 1, 6}, {"XSNW", 6, 11}, {"XNSW", 11, 16}, {"XSSW", 16, 21},
                                       {"XNNE", 3, 8}, {"XSNE", 8, 13}, {"XNSE", 13, 18}, {"XSSE", 18, 23}})
    line(code, from, to);
  out.push_back("SET FEATURE OFF");
  out.push_back("$ END SECTION " + CStr(r.section));
  return out;
}

}  // namespace tervalo
