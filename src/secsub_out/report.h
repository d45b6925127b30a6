#pragma once
// The section subdivision report: the first page restates the input; the
// pages of computed positions and the summary follow after the run.

#include <optional>
#include <string>
#include <vector>

#include "app/header_data.h"
#include "secsub/section_record.h"
#include "secsub_out/names.h"
#include "text/date.h"

namespace tervalo {

// The chain texts in the report's order: W of N, E of N, N of W, N of E,
// S of W, S of E, W of S, E of S.
struct ReportInput {
  std::optional<HeaderData> header;  // when "Add Header Data" is checked
  std::string dataFile;              // the source coordinate file, for the header
  Date today;
  ChainTexts chains;
};

// "SECTION 14, TOWNSHIP 115N, RANGE 22W, 5th PM", as the pages head themselves.
std::string locationLine(const SectionRecord& record);
// A point name as the pages print it: whole up to 20 characters, else cut with "~".
std::string shownName(const std::string& name);

// The first page, ending with its form feed. Formats the X and Y texts of
// the PLS corners it prints into the record; the other positions print the
// texts the record kept (blank in the first run): as it always has.
std::vector<std::string> printReportHeader(SectionRecord& record, const ReportInput& input);

// The page of computed positions: the section as a diagram of coordinate
// boxes, then every position with its description and whether it was held
// or computed. Stores the X and Y texts of every position it prints.
std::vector<std::string> printReport(SectionRecord& record, const CornerNaming& naming,
                                     const std::array<bool, 25>& computed);

// The one-page summary: the header block when header data is asked for,
// the diagram of point names, and the length and azimuth of every grid
// line between present corners (coincident corners marked so).
std::vector<std::string> print3rdPage(const SectionRecord& record, const ReportInput& input);

// A later page, the last, only when the run has something to say that its
// numbers do not show (a chain field taken as 20 chains, a corner on
// another, a corner placed from a missing one): each notice as a paragraph.
std::vector<std::string> noticesPage(const SectionRecord& record, const std::vector<std::string>& notices);

}  // namespace tervalo
