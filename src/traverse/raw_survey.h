#pragma once
// A raw file reduced as the field recorded it: every setup placed (on its
// OC coordinates, a stored point or a point shot earlier in the file),
// oriented by its backsight azimuth or point, and every shot from it
// reduced to northing, easting and, where the setup's elevation, the
// heights and a zenith allow, elevation. Sets are averaged on the circle
// and checked; check shots to the backsight and second backsights are
// compared with what they check; GNSS points go through PROJ onto the
// system's grid. What cannot be reduced is named with its line and the
// rest is reduced all the same.

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "crs/crs.h"
#include "export/corner_map.h"
#include "traverse/raw_records.h"

namespace tervalo {

struct RawOptions {
  double tolerance = 10;  // seconds: a set's spread, a check shot's or a second backsight's angle
  CrsChoice crs{};        // for the GNSS points
  std::string source;     // the raw file's name, for each point's source
};

struct RawPoint {
  std::string name;
  PlanePosition at;
  std::optional<double> z{};  // unknown: absent, never 0
  std::string description;
  std::string source;  // "survey.rw5 setup 2 on 100 (line 14)"
};

struct RawSurvey {
  std::string units = "ft";
  std::vector<RawPoint> points;
  std::vector<std::string> report;
  std::vector<std::string> flagged;  // sets and checks beyond tolerance
  std::vector<std::string> refused;  // records, setups and shots that could not be reduced
  nlohmann::ordered_json json;       // units, points (z only where known), flagged, refused, unused
};

// Whether the file records a traverse: a later setup on a point shot from
// the setup before it by a traverse shot or a set, whose coordinates the
// file does not give.
bool recordsATraverse(const RawRecords& records);

RawSurvey reduceRadial(const RawRecords& records, const RawOptions& options);

// The GNSS records alone: their listing (the report) and, with a system, their points.
RawSurvey reduceGnss(const RawRecords& records, const RawOptions& options);

// The set and check lines of every setup, for a traverse's report too.
std::vector<std::string> setChecks(const RawRecords& records, double tolerance, std::vector<std::string>& flagged);

// The points as a map for the exports: no lines, each point's elevation kept.
CornerMap rawMap(const RawSurvey& survey, const std::string& title);

}  // namespace tervalo
