#include "cli/traverse_command.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <ostream>

#include "app/json_text.h"
#include "app/output_file.h"
#include "app/runner.h"
#include "cli/file_answer.h"
#include "crs/project_store.h"
#include "export/export_file.h"
#include "export/map_export.h"
#include "export/map_system.h"
#include "export/section_points.h"
#include "project/point_import.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/input_file.h"
#include "text/justify.h"
#include "traverse/raw_survey.h"
#include "traverse/rw5.h"
#include "traverse/traverse_file.h"
#include "traverse/traverse_report.h"

namespace tervalo {
namespace {


bool isRawFile(const std::string& name) { return exportKind(name) == ".rw5"; }

void exportTo(const CornerMap& map, const std::vector<std::string>& exports, const std::string& dataFolder, const Date& today,
              nlohmann::ordered_json& files) {
  for (const std::string& wanted : exports) {
    std::filesystem::path file(wanted);
    if (!file.has_parent_path()) file = std::filesystem::path(dataFolder) / file;
    writeMapFile(map, file, today);
    files.push_back(std::filesystem::absolute(file).lexically_normal().string());
  }
}

// A raw file with no traverse in it: every setup and shot reduced radially.
int radialCommand(const std::string& name, const RawRecords& records, const std::vector<std::string>& exports, bool json,
                  const std::string& dataFolder, const Date& today, std::ostream& out, std::ostream& err, const RawCommandOptions& raw) {
  nlohmann::ordered_json messages = nlohmann::ordered_json::array(), files = nlohmann::ordered_json::array();
  RawSurvey survey;
  try {
    for (const std::string& wanted : exports) checkMapFileName(wanted);
    survey = reduceRadial(records, {raw.tolerance, raw.crs, std::filesystem::path(name).filename().string()});
    // "job.rw5" writes "job-raw.rpt", "job-points.txt" (the program's points) and "job-points.csv" (PNEZD, with elevations).
    const std::string stem = std::filesystem::path(name).stem().string();
    const std::filesystem::path folder(dataFolder);
    CornerMap map = rawMap(survey, records.job.empty() ? stem : records.job);
    map.system = mapSystem(raw.crs);
    std::vector<std::string> points;
    for (const RawPoint& p : survey.points)
      points.push_back(p.name + "," + Format(p.at.x, "0.0000") + "," + Format(p.at.y, "0.0000") + ",," + p.description);
    const std::vector<std::pair<std::filesystem::path, std::vector<std::string>>> written{
        {folder / (stem + "-raw.rpt"), survey.report}, {folder / (stem + "-points.txt"), points}, {folder / (stem + "-points.csv"), pnezdLines(map)}};
    writeTextFiles(written);
    for (const auto& [path, lines] : written) files.push_back(std::filesystem::absolute(path).lexically_normal().string());
    exportTo(map, exports, dataFolder, today, files);
  } catch (const ExportError& e) {
    messages.push_back(e.what());
  } catch (const CrsError& e) {
    messages.push_back(e.what());
  } catch (const RunTimeError& e) {
    messages.push_back(std::string("Run-time Error: ") + e.what());
  }
  for (const std::string& r : survey.refused) messages.push_back("Not reduced: " + r + ".");
  for (const std::string& f : survey.flagged) messages.push_back("Beyond tolerance: " + f + ".");
  printFileAnswer(out, err, json, survey.json, survey.report, messages, files);
  if (!files.empty() && (!survey.refused.empty() || !survey.flagged.empty())) return kExitCriticalBox;
  return messages.empty() ? 0 : kExitEnded;
}

}  // namespace

int traverseCommand(const std::string& name, const std::vector<std::string>& exports, bool json, const std::string& dataFolder,
                    const Date& today, std::ostream& out, std::ostream& err, const RawCommandOptions& raw) {
  TraverseInput input;
  std::vector<std::string> setLines, flagged;
  RawRecords gnss;  // a raw traverse's GNSS records, placed apart from it
  try {
    if (isRawFile(name)) {
      RawRecords records;
      try {
        records = readRawRecords(readInputFile(name));
      } catch (const InputFileError& e) {
        throw TraverseFileError("\"" + name + "\" " + e.what());
      }
      if (records.recognised == 0)
        throw TraverseFileError("it is not a data collector's raw file: none of its " + std::to_string(records.records) +
                                " lines is a raw record (JB, MO, SP, OC, BK, LS, TR, SS, BD, BR, FD, FR, GPS)");
      if (records.setups.empty() && !records.gnss.empty() && raw.crs.none())
        throw TraverseFileError("the raw file holds only GNSS points (" + std::to_string(records.gnss.size()) +
                                (records.gnss.size() == 1 ? " GPS record" : " GPS records") + ") and no coordinate system to place them on: give one with --epsg");
      if (!recordsATraverse(records))
        return radialCommand(name, records, exports, json, dataFolder, today, out, err, raw);
      input = traverseOfRecords(records);
      setLines = setChecks(records, raw.tolerance, flagged);
      gnss.units = records.units;
      gnss.gnss = records.gnss;
    } else {
      input = readTraverseFile(name);
    }
  } catch (const TraverseFileError& e) {
    err << "tervalo-cli: " << name << ": " << e.what() << "\n";
    return kExitUsage;
  }
  if (raw.method) input.adjust = *raw.method;
  if (raw.precision) input.allowablePrecision = *raw.precision;
  if (raw.angular) input.allowableAngular = *raw.angular;
  nlohmann::ordered_json messages = nlohmann::ordered_json::array(), files = nlohmann::ordered_json::array();
  TraverseRun run;
  std::string failing;
  try {
    // A misnamed export is refused before anything is written.
    for (const std::string& wanted : exports) checkMapFileName(wanted);
    run = runTraverse(input, formatShortDate(today));
    // A raw file's sets and, beyond the allowable misclosure, a blunder said, never adjusted silently.
    for (const std::string& l : setLines) run.report.push_back("  " + l);
    if (!gnss.gnss.empty()) {
      // The GNSS points beside the traverse: listed, and on the grid where a system is given.
      const RawSurvey placed = reduceGnss(gnss, {raw.tolerance, raw.crs, std::filesystem::path(name).filename().string()});
      run.report.emplace_back("");
      run.report.insert(run.report.end(), placed.report.begin(), placed.report.end());
      for (const RawPoint& p : placed.points) {
        // A GNSS point of a traverse point's name checks it; it is not a second position for the name.
        const auto same = std::find_if(run.json["points"].begin(), run.json["points"].end(),
                                       [&](const nlohmann::ordered_json& q) { return upper(q["name"].get<std::string>()) == upper(p.name); });
        if (same != run.json["points"].end()) {
          run.report.push_back("    " + p.name + " by GNSS less the traverse's " + p.name + ": N " +
                               Format(p.at.y - (*same)["y"].get<double>(), "0.000") + "  E " +
                               Format(p.at.x - (*same)["x"].get<double>(), "0.000") + "; the traverse's is kept");
          continue;
        }
        run.points.push_back(p.name + "," + Format(p.at.x, "0.0000") + "," + Format(p.at.y, "0.0000") + ",GNSS," + p.description);
        nlohmann::ordered_json j{{"name", p.name}, {"x", p.at.x}, {"y", p.at.y}};
        if (p.z) j["z"] = *p.z;
        j["gnss"] = true;
        run.json["points"].push_back(j);
      }
    }
    // Beyond the allowable misclosure, a failed test or a flagged blunder: said, never adjusted silently.
    for (const std::string& f : run.failing) failing += (failing.empty() ? "" : " ") + f;
    if (!failing.empty()) run.json["failing"] = failing;
    // "loop.traverse.json" writes "loop-traverse.rpt" and "loop-adjusted.txt".
    std::string stem = std::filesystem::path(name).stem().string();
    if (stem.ends_with(".traverse")) stem.erase(stem.size() - 9);
    const auto [report, points] = traverseOutputs(dataFolder, stem);
    const std::vector<std::pair<std::filesystem::path, std::vector<std::string>>> written{{report, run.report}, {points, run.points}};
    writeTextFiles(written);
    for (const auto& [path, lines] : written) files.push_back(std::filesystem::absolute(path).lexically_normal().string());
    if (!exports.empty()) {
      CornerMap map = traverseMap(input, run.result);
      map.system = mapSystem(input.crs);
      exportTo(map, exports, dataFolder, today, files);
    }
    if (!input.project.empty()) {
      // The adjusted stations and side shots into the project; the held ones stay as the project holds them.
      const std::string source = "traverse " + std::filesystem::path(name).filename().string() + " adjusted by " + run.json["rule"].get<std::string>();
      const std::vector<ProjectPoint> adjusted = traversePoints(run.json["points"], source, false);
      try {
        const StoreCounts stored = openProject(input.project)->store(adjusted, OnDuplicate::Replace, source);
        run.json["stored"] = stored.stored;
        if (!json) out << "Stored " << stored.stored << " adjusted points in " << input.project << "\n";
      } catch (const ProjectError& e) {
        messages.push_back(std::string("The adjusted points are not stored: ") + e.what() + ".");
      }
    }
  } catch (const ExportError& e) {
    messages.push_back(e.what());
  } catch (const CrsError& e) {
    messages.push_back(e.what());
  } catch (const TraverseError& e) {
    messages.push_back(std::string("The traverse cannot be computed: ") + e.what() + ".");
  } catch (const TraverseFileError& e) {
    messages.push_back(e.what());
  } catch (const RunTimeError& e) {
    messages.push_back(std::string("Run-time Error: ") + e.what());
  }
  if (!failing.empty()) messages.push_back(failing);
  for (const std::string& f : flagged) messages.push_back("Beyond tolerance: " + f + ".");
  printFileAnswer(out, err, json, run.json, run.report, messages, files);
  if (!files.empty() && (!failing.empty() || !flagged.empty())) return kExitCriticalBox;
  return messages.empty() ? 0 : kExitEnded;
}

}  // namespace tervalo
