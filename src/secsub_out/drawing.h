#pragma once
// A picture of the subdivided section: its section, quarter and sixteenth
// lines between the present corners, each corner marked (entered ones
// filled squares, computed ones open circles, restored ones filled
// diamonds) and labelled with its point
// number; north up, true to scale, in feet.

#include <array>
#include <string>
#include <vector>

#include "app/picture.h"
#include "secsub/notices.h"
#include "secsub/section_record.h"

namespace tervalo {

struct DrawingInput {
  const SectionRecord& record;
  const std::array<bool, slot::count>& computed;
  std::array<bool, slot::count> restored{};  // held as restored by proportion
  const std::array<std::string, slot::count>& labels;  // each corner's name
  std::array<std::string, slot::count> tips;            // what each mark is, for its tooltip
  std::vector<Coincidence> coincidences;                 // ringed, named under the title
  std::string title;
  bool lengths = false;  // each line's length written along it
};

// The drawing of the present positions (X not 0). Corners on one point
// share one label naming them all.
Picture sectionDrawing(const DrawingInput& in);

}  // namespace tervalo
