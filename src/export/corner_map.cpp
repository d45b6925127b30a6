#include "export/corner_map.h"

#include "secsub_out/grid_lines.h"
#include "text/number.h"

namespace tervalo {

CornerMap sectionMap(const SectionRecord& r, const std::array<bool, slot::count>& computed, const CornerNaming& naming,
                     bool uniqueNames) {
  CornerMap map;
  map.title = "Section " + CStr(r.section) + " T" + CStr(r.township) + "N R" + CStr(r.range < 0 ? -r.range : r.range) +
              r.direction;
  std::array<std::size_t, slot::count> index{};
  for (int s = 0; s < slot::count; ++s) {
    const auto i = static_cast<std::size_t>(s);
    const CornerSlot& c = r.slots[i];
    if (c.x == 0) continue;
    index[i] = map.points.size();
    map.points.push_back({uniqueNames ? naming.pointNames[i] : c.pointNumber, c.description, c.feature, c.x, c.y, computed[i]});
  }
  auto present = [&r](int s) { return r.slots[static_cast<std::size_t>(s)].x != 0; };
  for (const GridLine& l : kGridLines) {
    if (!lineDrawn(l, present)) continue;
    const auto segment = naming.segments.find(l.segment);
    map.lines.push_back({l.feature, segment == naming.segments.end() ? std::string() : segment->second,
                         index[static_cast<std::size_t>(l.from)], index[static_cast<std::size_t>(l.to)]});
  }
  return map;
}

}  // namespace tervalo
