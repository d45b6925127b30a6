#include "secsub_out/evidence_page.h"

#include <algorithm>

#include "secsub_out/corner_record.h"
#include "secsub_out/report.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {

std::vector<std::string> evidencePage(const SectionRecord& r) {
  std::vector<std::string> out{"                CORNER EVIDENCE - SECTION " + CStr(r.section), "          " + locationLine(r), ""};
  int number = 8, designation = 14;
  for (const CornerSlot& c : r.slots) {
    if (c.x == 0) continue;
    number = std::max(number, static_cast<int>(textLength(shownName(c.pointNumber))) + 2);
    designation = std::max(designation, static_cast<int>(textLength(c.description)) + 2);
  }
  out.push_back("     " + leftJustify("Point", number) + leftJustify("Corner", 11) + leftJustify("Designation", designation) +
                leftJustify("Feature", 9) + "Evidence found");
  for (int s = 0; s < slot::count; ++s) {
    const CornerSlot& c = r.slots[static_cast<std::size_t>(s)];
    if (c.x == 0) continue;
    out.push_back("     " + leftJustify(shownName(c.pointNumber), number) + leftJustify(kSlotTitles[static_cast<std::size_t>(s)], 11) +
                  leftJustify(c.description, designation) + leftJustify(c.feature, 9) +
                  (c.evidence.empty() ? std::string("-") : c.evidence));
  }
  out.push_back("\f");
  return out;
}

}  // namespace tervalo
