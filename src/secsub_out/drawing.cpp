#include "secsub_out/drawing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "secsub/grid_lines.h"

namespace tervalo {
namespace {

std::string feet(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  return buf;
}

}  // namespace

Picture sectionDrawing(const DrawingInput& in) {
  Picture d;
  d.mapUnits = "ft";
  const auto& slots = in.record.slots;
  auto present = [&](int s) { return slots[static_cast<std::size_t>(s)].x != 0; };
  auto at = [&](int s) { return PicturePoint{slots[static_cast<std::size_t>(s)].x, slots[static_cast<std::size_t>(s)].y}; };
  std::vector<PictureText> lengths;
  for (const GridLine& l : kGridLines) {
    if (!lineDrawn(l, present)) continue;
    const PicturePoint a = at(l.from), b = at(l.to);
    const double length = std::hypot(b.x - a.x, b.y - a.y);
    d.lines.push_back({{a, b}, l.kind == LineKind::Section ? Ink::Main : l.kind == LineKind::Quarter ? Ink::Accent : Ink::Quiet,
                       l.kind == LineKind::Sixteenth, l.kind == LineKind::Section,
                       in.labels[static_cast<std::size_t>(l.from)] + " - " + in.labels[static_cast<std::size_t>(l.to)] + ": " +
                           feet(length) + " ft"});
    if (in.lengths && length > 0) {
      const double bearing = std::atan2(b.y - a.y, b.x - a.x) * 180 / 3.14159265358979323846;
      lengths.push_back({{(a.x + b.x) / 2, (a.y + b.y) / 2}, feet(length), Ink::Quiet, Place::Above, bearing == 0 ? 1e-9 : bearing});
    }
  }
  // One label per point: corners that fell on one another are named together.
  std::array<bool, slot::count> named{};
  for (int s = 0; s < slot::count; ++s) {
    if (!present(s)) continue;
    const auto i = static_cast<std::size_t>(s);
    PictureMark mark = cornerMark(at(s), in.restored[i]   ? CornerKind::Restored
                                         : in.computed[i] ? CornerKind::Computed
                                                          : CornerKind::Entered);
    mark.tip = in.tips[i];
    d.marks.push_back(std::move(mark));
    if (named[i]) continue;
    std::string label = in.labels[i];
    for (int other = s + 1; other < slot::count; ++other) {
      const auto j = static_cast<std::size_t>(other);
      if (present(other) && std::abs(slots[j].x - slots[i].x) < 5e-5 && std::abs(slots[j].y - slots[i].y) < 5e-5) {
        named[j] = true;
        label += " = " + in.labels[j];
      }
    }
    d.texts.push_back({at(s), label, Ink::Main, Place::AboveRight});
  }
  d.texts.insert(d.texts.end(), lengths.begin(), lengths.end());
  // A corner on another would hide under its mark: ring it and say under the title which lies on which.
  std::string on;
  for (const Coincidence& c : in.coincidences) {
    d.marks.push_back({at(c.slot), Ink::Alert, Shape::Circle, false, 11, {}});
    on += (on.empty() ? "" : ", ") + std::to_string(c.slot) + (c.computed ? " on " : " = ") + std::to_string(c.onSlot);
  }
  d.caption = in.title + "    " + cornerLegend(std::find(in.restored.begin(), in.restored.end(), true) != in.restored.end());
  if (!on.empty()) d.caption += "\nCoincident corners: " + on;
  return d;
}

}  // namespace tervalo
