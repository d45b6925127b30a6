#include "secsub_out/geopak.h"

#include "secsub/grid_lines.h"

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

  std::string group;
  for (const GridLine& l : kGridLines) {
    if (group != l.feature) {
      group = l.feature;
      out.push_back("SET FEATURE ADD " + group);
    }
    if (lineDrawn(l, present))
      out.push_back("STO LIN " + naming.segment(l.segment) + " " + name(l.from) + " TO " + name(l.to));
  }
  out.push_back("SET FEATURE OFF");
  out.push_back("$ END SECTION " + CStr(r.section));
  return out;
}

}  // namespace tervalo
