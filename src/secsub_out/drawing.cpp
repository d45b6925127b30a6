#include "secsub_out/drawing.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace tervalo {
namespace {

std::string escaped(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
  return out;
}

std::string number(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  return buf;
}

}  // namespace

SectionDrawing sectionDrawing(const SectionRecord& r, const std::array<bool, slot::count>& computed,
                              const std::array<std::string, slot::count>& labels) {
  SectionDrawing d;
  auto present = [&](int s) { return r.slots[static_cast<std::size_t>(s)].x != 0; };
  for (const GridLine& l : kGridLines)
    if (lineDrawn(l, present)) d.lines.push_back({l.from, l.to, l.kind});
  for (int s = 0; s < slot::count; ++s)
    if (present(s)) {
      const auto i = static_cast<std::size_t>(s);
      d.markers.push_back({s, r.slots[i].x, r.slots[i].y, labels[i], computed[i]});
    }
  return d;
}

std::string drawingSvg(const SectionDrawing& d, const std::string& title, int size) {
  const std::string header = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + std::to_string(size) +
                             "\" height=\"" + std::to_string(size) + "\" viewBox=\"0 0 " + std::to_string(size) + " " +
                             std::to_string(size) + "\">\n<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  std::string svg = header + "<text x=\"12\" y=\"22\" font-family=\"sans-serif\" font-size=\"14\">" + escaped(title) +
                    "</text>\n";
  if (d.markers.empty()) return svg + "</svg>\n";

  // One scale for both axes (true to scale), north up, a margin for labels.
  double minX = std::numeric_limits<double>::max(), maxX = -minX, minY = minX, maxY = -minX;
  for (const auto& m : d.markers) {
    minX = std::min(minX, m.x), maxX = std::max(maxX, m.x);
    minY = std::min(minY, m.y), maxY = std::max(maxY, m.y);
  }
  const double margin = 60, span = std::max({maxX - minX, maxY - minY, 1e-9});
  const double scale = (size - 2 * margin) / span;
  const double offsetX = margin + ((size - 2 * margin) - (maxX - minX) * scale) / 2;
  const double offsetY = margin + ((size - 2 * margin) - (maxY - minY) * scale) / 2;
  auto px = [&](double x) { return offsetX + (x - minX) * scale; };
  auto py = [&](double y) { return offsetY + (maxY - y) * scale; };
  auto at = [&](int slot) {
    return *std::find_if(d.markers.begin(), d.markers.end(), [slot](const DrawingMarker& m) { return m.slot == slot; });
  };

  for (const auto& l : d.lines) {
    const DrawingMarker &a = at(l.from), &b = at(l.to);
    const char* style = l.kind == LineKind::Section   ? "stroke=\"black\" stroke-width=\"2\""
                        : l.kind == LineKind::Quarter ? "stroke=\"#1f5fa8\" stroke-width=\"1.5\""
                                                      : "stroke=\"#6c8ebf\" stroke-width=\"1\" stroke-dasharray=\"5,4\"";
    svg += "<line x1=\"" + number(px(a.x)) + "\" y1=\"" + number(py(a.y)) + "\" x2=\"" + number(px(b.x)) + "\" y2=\"" +
           number(py(b.y)) + "\" " + style + "/>\n";
  }
  // A corner on another corner would hide under its mark: ring it in amber
  // and say under the title which lies on which.
  std::string onText;
  for (const Coincidence& c : d.coincidences) {
    const DrawingMarker& m = at(c.slot);
    svg += "<circle class=\"coincident\" cx=\"" + number(px(m.x)) + "\" cy=\"" + number(py(m.y)) +
           "\" r=\"11\" fill=\"none\" stroke=\"#d35400\" stroke-width=\"2.5\"/>\n";
    onText += (onText.empty() ? "" : ", ") + std::to_string(c.slot) + (c.computed ? " on " : " = ") + std::to_string(c.onSlot);
  }
  if (!onText.empty())
    svg += "<text class=\"coincident\" x=\"12\" y=\"40\" font-family=\"sans-serif\" font-size=\"12\" fill=\"#d35400\">"
           "Coincident corners: " + escaped(onText) + "</text>\n";
  for (const auto& m : d.markers) {
    const std::string x = number(px(m.x)), y = number(py(m.y));
    svg += m.computed ? "<circle class=\"computed\" cx=\"" + x + "\" cy=\"" + y +
                            "\" r=\"4.5\" fill=\"white\" stroke=\"#c0392b\" stroke-width=\"1.5\"/>\n"
                      : "<rect class=\"entered\" x=\"" + number(px(m.x) - 5) + "\" y=\"" + number(py(m.y) - 5) +
                            "\" width=\"10\" height=\"10\" fill=\"black\"/>\n";
    svg += "<text x=\"" + number(px(m.x) + 7) + "\" y=\"" + number(py(m.y) - 7) +
           "\" font-family=\"sans-serif\" font-size=\"11\">" + escaped(m.label) + "</text>\n";
  }
  // A north arrow (bottom right, clear of the labels) and the legend.
  const std::string bottom = std::to_string(size - 15), arrowX = std::to_string(size - 24);
  svg += "<path d=\"M " + arrowX + " " + std::to_string(size - 40) + " l -7 18 l 14 0 z\" fill=\"black\"/>\n<text x=\"" +
         std::to_string(size - 44) + "\" y=\"" + std::to_string(size - 24) +
         "\" font-family=\"sans-serif\" font-size=\"12\">N</text>\n";
  svg += "<rect x=\"12\" y=\"" + std::to_string(size - 24) + "\" width=\"9\" height=\"9\" fill=\"black\"/>"
         "<text x=\"26\" y=\"" + bottom + "\" font-family=\"sans-serif\" font-size=\"11\">entered</text>\n"
         "<circle cx=\"96\" cy=\"" + std::to_string(size - 19) + "\" r=\"4.5\" fill=\"white\" stroke=\"#c0392b\" stroke-width=\"1.5\"/>"
         "<text x=\"106\" y=\"" + bottom + "\" font-family=\"sans-serif\" font-size=\"11\">computed</text>\n";
  return svg + "</svg>\n";
}

}  // namespace tervalo
