#pragma once
// A whole township in one run: each section of a plan played through the
// section window's model exactly as a single run (its own report and GEOPAK
// file), then every corner and line of the plan once, by its unique name,
// in a GEOPAK file, a PNEZD CSV, a LandXML and a DXF; and every corner that
// two sections computed compared between them.

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/runner.h"
#include "export/corner_map.h"
#include "township/plan.h"

namespace tervalo {

class FormRegistry;

// One section's position of a corner.
struct CornerPosition {
  std::string section;
  int slot = 0;
  double x = 0, y = 0;
};

// A corner two sections put apart by more than the tolerance.
struct Disagreement {
  std::string name;         // the corner's unique name
  std::string description;
  std::vector<CornerPosition> positions;
  double difference = 0;    // the greatest distance between two of them, in feet
};

// A section that did not complete its run: refused by the section window
// (its checks, a missing source) or ended by a fault.
struct StoppedSection {
  int row = 0;  // 0-based row of the plan
  std::string section;
  bool ended = false;              // the program ended; otherwise refused
  std::vector<std::string> boxes;  // "title: text" of each box it showed
};

// A completed section's boundary, for the township's map: its present
// boundary corners in order round it, and where its number may be written,
// best first: the middles of its quarter-quarters, those round its center
// first, clear of every corner.
struct SectionOutline {
  int row = 0;  // 0-based row of the plan
  std::string section;
  std::vector<std::pair<double, double>> boundary;  // x, y
  std::vector<std::pair<double, double>> labelSpots;
};

struct TownshipOutcome {
  nlohmann::ordered_json result;  // per section the runner's result; the stopped sections, counts, disagreements, files
  // 0 every section completed; 3 a section was refused or ended, or the
  // township files could not be written; 4 every section completed but one
  // showed a critical box.
  int exitCode = 0;
  std::vector<StoppedSection> stopped;
  std::vector<int> stoppedLines;  // the summary's lines that tell of them
  CornerMap map;                  // every corner and line once
  std::size_t sharedCorners = 0;
  std::vector<Disagreement> disagreements;
  std::vector<std::string> summary;  // Township.txt
  std::vector<int> disagreementLines;  // the summary's lines that tell of a disagreement
  std::vector<SectionOutline> outlines;  // one per completed section, in run order
  std::vector<SectionRecord> records;    // each completed section's corners after its run, in run order
};

// Differences up to this are agreement: a hundredth of a foot.
inline constexpr double kAgreement = 0.01;

// Runs the plan into `options.dataFolder` and writes the township files
// there: Township.txt, Township.inp, Township.csv, Township.xml, Township.dxf,
// Township.gpkg, and Township.prj beside the CSV when the plan names a system.
TownshipOutcome runTownship(const TownshipPlan& plan, const RunOptions& options, const FormRegistry& registry);

}  // namespace tervalo
