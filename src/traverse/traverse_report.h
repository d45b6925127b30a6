#pragma once
// A traverse run as the user gets it: the report in the program's
// fixed-column style (the courses, their latitudes and departures before
// and after the adjustment, the closure and precision, the rule, the
// coordinates), the adjusted points as a coordinate file the main window
// reads, the result for tervalo-cli, the points and lines for the exports
// and the sketch with the misclosure drawn to an exaggerated scale.

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/picture.h"
#include "export/corner_map.h"
#include "traverse/traverse.h"

namespace tervalo {

struct TraverseRun {
  TraverseResult result;
  std::vector<std::string> report;
  std::vector<std::string> points;  // name, X, Y, feature, description: the program's comma-delimited source format
  nlohmann::ordered_json json;      // points, closure, courses, rule
  // What fails: a closure beyond the allowable, a failed global test, a
  // flagged observation; each a sentence. The points are adjusted all the
  // same, and said to be failing.
  std::vector<std::string> failing;
};

// Reads the traverse's source (TraverseFileError when it cannot be read),
// computes the traverse (TraverseError) and writes what it gives.
TraverseRun runTraverse(const TraverseInput& input, const std::string& today);

// "<stem>-traverse.rpt" and "<stem>-adjusted.txt" in `folder`.
std::pair<std::filesystem::path, std::filesystem::path> traverseOutputs(const std::filesystem::path& folder, const std::string& stem);

// The allowable misclosures exceeded, the global test failed or a blunder
// flagged, each a sentence.
std::vector<std::string> traverseFaults(const TraverseInput& input, const TraverseResult& result);

// The stations and side shots as points, the courses as lines (group "TRAV"), for the exports.
// One line for the window: the misclosure, the precision, the angular
// misclosure where angles close, and the rule.
std::string closureSummary(const TraverseInput& input, const TraverseResult& result);

CornerMap traverseMap(const TraverseInput& input, const TraverseResult& result);

// The traverse as adjusted: its courses and stations, the side shots, and
// the misclosure drawn from the known end, enlarged to be seen, labelled
// with its length and the enlargement.
Picture traverseSketch(const TraverseInput& input, const TraverseResult& result);

}  // namespace tervalo
