#pragma once
// A later page of the section report, on request: what was found at each
// corner (the description and feature code the source file or the user
// gave), beside the designation the run writes.

#include <string>
#include <vector>

#include "secsub/section_record.h"

namespace tervalo {

// Every present position: its point number, corner, designation, feature
// code and the evidence found; ends with a form feed.
std::vector<std::string> evidencePage(const SectionRecord& record);

}  // namespace tervalo
