#pragma once
// A township plan: one source coordinate file and the sections to subdivide
// from it, each as a user would fill in the section window. Read from and
// written as a JSON document (the plan file).

#include <array>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/job.h"
#include "restore/restoration_file.h"

namespace tervalo {

// A plan that cannot be run; the message says where.
class PlanError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The eight corners a plan names, by their keys and section-form slots.
inline constexpr std::array<const char*, 8> kPlanCorners{"NW", "N", "NE", "W", "E", "SW", "S", "SE"};
inline constexpr std::array<int, 8> kPlanCornerSlots{0, 2, 4, 10, 14, 20, 22, 24};
// The chain fields a plan may give, by their field stems.
inline constexpr std::array<const char*, 8> kPlanChains{"NofW", "SofW", "NofE", "SofE", "WofN", "EofN", "WofS", "EofS"};

struct PlanCorner {
  std::string point;       // a point number in the source file, or
  std::string x, y;        // typed coordinates, or
  std::optional<CornerEntry> restore{};  // a lost corner, restored from its controls before the sections run
  bool given() const { return !point.empty() || !x.empty() || restore.has_value(); }
};

struct SectionPlan {
  std::string section, township, range;
  std::string direction = "W";  // "E" or "W"
  std::string meridian;         // empty: as the township rules set it
  std::array<PlanCorner, 8> corners;
  std::map<std::string, std::string> chains;  // by field stem; the rest keep the form's defaults
  std::string numbering = "1";  // the first number of unnumbered points, or "unique"
};

struct TownshipPlan {
  int version = 1;
  std::string source;  // the coordinate file; a relative name is taken from the plan's folder
  // The survey project (NAME.gpkg) the corners' points come from in place of
  // the source file, and the township's corners are stored in; "" for none.
  std::string project;
  std::vector<SectionPlan> sections;
  CrsChoice crs;       // the system of the source's coordinates; none: local
};

// Parses a plan strictly: unknown keys, wrong kinds, a section, township
// or range that is not a plain number, a section listed twice (by its
// numbers) or a plan from a newer program are PlanErrors, each naming its
// row ("row 5 (section 14)").
TownshipPlan parsePlan(const std::string& jsonText);
TownshipPlan readPlanFile(const std::string& file);
std::string planText(const TownshipPlan& plan);

// A plan's number text without its leading zeros ("014" is "14").
std::string plainNumberText(const std::string& digits);

// "SecSub-14", or "SecSub-14-T115R22W" where another township of the plan
// has a section 14 too: the name of the section's report and GEOPAK file.
std::string sectionFileStem(const TownshipPlan& plan, const SectionPlan& section);

// The job a user's hands would play for one section: the main window's
// source and output names, then the section window filled in and Continue.
// Its files are <sectionFileStem>.inp and .rpt in `dataFolder`.
Job sectionJob(const TownshipPlan& plan, const SectionPlan& section, const std::string& dataFolder);

}  // namespace tervalo
