#pragma once
// A picture of the subdivided section: its section, quarter and sixteenth
// lines between the present corners, each corner marked (entered ones
// filled, computed ones open) and labelled with its point number; north
// up, true to scale.

#include <array>
#include <string>
#include <vector>

#include "secsub/notices.h"
#include "secsub/section_record.h"
#include "secsub_out/grid_lines.h"

namespace tervalo {

struct DrawingMarker {
  int slot = 0;
  double x = 0, y = 0;
  std::string label;
  bool computed = false;
};

struct DrawingLine {
  int from = 0, to = 0;
  LineKind kind = LineKind::Section;
};

struct SectionDrawing {
  std::vector<DrawingLine> lines;
  std::vector<DrawingMarker> markers;
  // Corners that fell on another corner: ringed, and named under the title.
  std::vector<Coincidence> coincidences;
};

// The drawing of the present positions (X not 0), labelled with `labels`.
SectionDrawing sectionDrawing(const SectionRecord& record, const std::array<bool, slot::count>& computed,
                              const std::array<std::string, slot::count>& labels);

// The drawing as a standalone SVG document, `size` pixels square.
std::string drawingSvg(const SectionDrawing& drawing, const std::string& title, int size = 640);

}  // namespace tervalo
