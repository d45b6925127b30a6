#include "township/township.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

#include "project/point_import.h"
#include "app/output_file.h"
#include "app/program.h"
#include "export/export_file.h"
#include "export/gis_file.h"
#include "export/landxml.h"
#include "export/section_dxf.h"
#include "export/section_points.h"
#include "secsub/frm_sec_sub.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/number.h"
#include "text/justify.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

// What a section's run left behind, for the township files.
struct SectionRun {
  std::string section;
  std::size_t row = 0;  // of the plan
  CornerMap map;        // by unique names, each corner with its number, status and rule
  SectionRecord record;
  // What the section's run said beyond its numbers: each box but the one
  // that names its files ("title: text"), then the run's notices.
  std::vector<std::string> said;
};

std::string coordinate(double v) { return Format(v, "0.0000"); }

// The township's GEOPAK input: every corner once under its unique name,
// then each feature group's lines once.
std::vector<std::string> geopakLines(const CornerMap& map) {
  std::vector<std::string> lines{"$ $ Begin Township: " + map.title, "SET FEATURE OFF"};
  for (const MapPoint& p : map.points)
    lines.push_back("STO POI " + p.name + "  X " + coordinate(p.x) + "  Y " + coordinate(p.y) +
                    (p.feature.empty() ? "" : "  FEA " + p.feature) + "  DES \"" + p.description + "\"");
  lines.emplace_back("$ $ End Macro Data $");
  for (const char* group : kFeatureGroups) {
    lines.push_back(std::string("SET FEATURE ADD ") + group);
    for (const MapLine& l : map.lines)
      if (l.feature == group) lines.push_back("STO LIN " + l.name + " " + map.points[l.from].name + " TO " + map.points[l.to].name);
  }
  lines.emplace_back("SET FEATURE OFF");
  lines.emplace_back("$ END TOWNSHIP");
  return lines;
}

// " (1003)", or " (1003, also 2005)": the numbers the surveyor gave a corner.
std::string numbered(const MapPoint& p) {
  if (p.number.empty()) return "";
  std::string text = " (" + p.number;
  for (std::size_t i = 0; i < p.otherNumbers.size(); ++i) text += (i == 0 ? ", also " : " ") + p.otherNumbers[i];
  return text + ")";
}

double distance(const CornerPosition& a, const CornerPosition& b) { return std::hypot(a.x - b.x, a.y - b.y); }

// The plan's source, read once and whole: a county's control file may hold
// any number of points, and each section is given only the points it names.
struct PlanSource {
  bool read = false;
  FormatFlags formats;
  PointList points = PointList::unbounded();
  ReadNotes notes;
  std::map<std::string, std::size_t> firstByName;  // a lookup finds the first point of a name
};

PlanSource readPlanSource(const std::string& file) {
  PlanSource source;
  std::error_code ec;
  if (file.empty() || !std::filesystem::is_regular_file(file, ec)) return source;
  try {
    getFileFormat(file, source.formats);
    source.notes = readFile(file, source.formats, source.points);
  } catch (const ProgramFault&) {
    return PlanSource{};  // each section then meets the fault itself, as it would alone
  }
  source.read = true;
  for (std::size_t i = 0; i < source.points.records.size(); ++i)
    if (!source.points.records[i].name.empty()) source.firstByName.emplace(source.points.records[i].name, i);
  return source;
}

// The project's points as a plan's source, read once; a project that cannot
// be opened is said in `fault`.
PlanSource projectSource(const std::string& file, std::string& fault) {
  PlanSource source;
  try {
    source.points = pointListOf(*openProject(file));
  } catch (const ProjectError& e) {
    fault = e.what();
    return source;
  }
  source.read = true;
  for (std::size_t i = 0; i < source.points.records.size(); ++i)
    if (!source.points.records[i].name.empty()) source.firstByName.emplace(source.points.records[i].name, i);
  return source;
}

// The point numbers a section's corners name, as the section window looks
// them up (upper case).
std::vector<std::pair<std::string, std::string>> namedPoints(const SectionPlan& p) {
  std::vector<std::pair<std::string, std::string>> named;  // corner key, point
  for (std::size_t c = 0; c < kPlanCorners.size(); ++c)
    if (!p.corners[c].point.empty()) named.emplace_back(kPlanCorners[c], upper(p.corners[c].point));
  return named;
}

// The section's share of the source, put in its point list in file order.
ReadNotes givePoints(const PlanSource& source, const std::vector<std::pair<std::string, std::string>>& named,
                     FormatFlags& formats, PointList& points) {
  formats = source.formats;
  points.clearRecords(0, PointList::kSourceCapacity - 1);
  std::vector<std::size_t> indices;
  for (const auto& [corner, point] : named) indices.push_back(source.firstByName.at(point));
  std::sort(indices.begin(), indices.end());
  indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
  for (std::size_t k = 0; k < indices.size(); ++k) points.records[k] = source.points.records[indices[k]];
  points.pointCount = static_cast<std::int16_t>(indices.size());
  ReadNotes notes;
  for (const std::string& cut : source.notes.cutCoordinates)
    if (std::any_of(named.begin(), named.end(), [&cut](const auto& n) { return n.second == cut; })) notes.cutCoordinates.push_back(cut);
  return notes;
}

}  // namespace

TownshipOutcome runTownship(const TownshipPlan& plan, const RunOptions& options, const FormRegistry& registry) {
  TownshipOutcome out;
  Json sections = Json::array();
  std::vector<SectionRun> runs;
  Json stopped = Json::array();
  bool criticalBox = false;
  std::string projectFault;
  const PlanSource source = plan.project.empty() ? readPlanSource(plan.source) : projectSource(plan.project, projectFault);
  // A row refused before its section runs, with the boxes that say why.
  const auto refuseRow = [&](std::size_t row, const std::string& title, const std::vector<std::string>& texts) {
    const SectionPlan& p = plan.sections[row];
    Json messages = Json::array();
    std::vector<std::string> boxes;
    for (const std::string& text : texts) {
      messages.push_back(Json{{"form", ""}, {"title", title}, {"text", text}, {"icon", "critical"}, {"buttons", "ok"}, {"answer", nullptr}});
      boxes.push_back(title + ": " + text);
    }
    sections.push_back(Json{{"section", p.section},
                            {"completed", false},
                            {"result", Json{{"messages", std::move(messages)}, {"ended", false}, {"files", Json::array()}}}});
    stopped.push_back(Json{{"row", row + 1}, {"section", p.section}, {"ended", false}, {"boxes", boxes}});
    out.stopped.push_back({static_cast<int>(row), p.section, false, boxes});
  };

  // Lost corners are restored first, once each by name, from the plan's
  // source; every section naming one takes the restored position as typed
  // coordinates. A plan restores in feet, to the coordinates' north.
  TownshipPlan runPlan = plan;
  std::map<std::string, CornerOutcome> restorations;  // by name
  std::map<std::pair<std::size_t, int>, std::string> restoredSlots;  // (row, slot) -> name
  std::vector<std::vector<std::string>> restoreRefusals(plan.sections.size());
  for (std::size_t row = 0; row < plan.sections.size(); ++row)
    for (std::size_t k = 0; k < kPlanCorners.size(); ++k) {
      const PlanCorner& corner = plan.sections[row].corners[k];
      if (!corner.restore) continue;
      const std::string name = corner.restore->name.empty() ? "row " + std::to_string(row + 1) + " corner " + kPlanCorners[k]
                                                            : corner.restore->name;
      auto found = restorations.find(name);
      if (found == restorations.end())
        found = restorations.emplace(name, restoreEntry(*corner.restore, source.points, source.read, 0, kChainFeet)).first;
      const CornerOutcome& outcome = found->second;
      if (!outcome.restored) {
        restoreRefusals[row].push_back("corner " + std::string(kPlanCorners[k]) + " (" + name + ") cannot be restored: " +
                                       outcome.refused + ".");
        continue;
      }
      PlanCorner& typed = runPlan.sections[row].corners[k];
      typed = {};
      typed.x = CStr(outcome.restored->at.x);
      typed.y = CStr(outcome.restored->at.y);
      restoredSlots[{row, kPlanCornerSlots[k]}] = name;
    }

  // The sections' files are written as one batch: each whole, all synced
  // at once and then put in place, so a thousand sections wait for one sync.
  WriteBatch batch;
  for (std::size_t row = 0; row < runPlan.sections.size(); ++row) {
    const SectionPlan& p = runPlan.sections[row];
    const auto named = namedPoints(p);
    RunOptions one = options;
    if (!restoreRefusals[row].empty()) {
      refuseRow(row, "Restore Refused", restoreRefusals[row]);
      continue;
    }
    if (!projectFault.empty()) {
      refuseRow(row, "Project", {projectFault + "."});
      continue;
    }
    if (source.read) {
      // A corner naming a point the source does not hold is refused here, by
      // row, corner and number, rather than left blank in the section.
      std::vector<std::string> missing;
      for (const auto& [corner, point] : named)
        if (!source.firstByName.count(point))
          missing.push_back("corner " + corner + " names point " + point + ", which is not in " +
                            (plan.project.empty() ? "the source file " + plan.source : "the project " + plan.project) + ".");
      if (!missing.empty()) {
        refuseRow(row, "Missing Point", missing);
        continue;
      }
    }
    // Each section writes into the batch and, from a source, takes its points from the one read.
    one.prepare = [&batch, &source, &named](Program& program) {
      program.outputBatch = &batch;
      if (!source.read) return;
      program.readSource = [&source, &named](const std::string&, FormatFlags& formats, PointList& points) {
        return givePoints(source, named, formats, points);
      };
    };
    std::optional<SectionRun> taken;
    one.inspect = [&](Program& program) {
      auto& form = program.form<frmSecSub>("frmSecSub");
      if (form.hasRun) taken = SectionRun{p.section, row, form.runMap(true), form.record, form.notices.said};
    };
    RunOutcome run = runJob(sectionJob(runPlan, p, options.dataFolder), one, registry);
    if (taken) {
      std::vector<std::string> boxes;
      for (const auto& m : run.result["messages"])
        if (m["title"] != "Program Complete") boxes.push_back(m["title"].get<std::string>() + ": " + m["text"].get<std::string>());
      taken->said.insert(taken->said.begin(), boxes.begin(), boxes.end());
    }
    criticalBox = criticalBox || run.exitCode == kExitCriticalBox;
    // A section that did not complete its run (refused by the form, or
    // ended) is said with the boxes that tell why, never passed over.
    const bool ended = run.result.value("ended", false);
    if (!taken || ended) {
      StoppedSection s{static_cast<int>(row), p.section, ended, {}};
      for (const auto& m : run.result["messages"])
        s.boxes.push_back(m["title"].get<std::string>() + ": " + m["text"].get<std::string>());
      if (s.boxes.empty()) s.boxes.emplace_back("the section window did not run the section");
      stopped.push_back(Json{{"row", row + 1}, {"section", p.section}, {"ended", ended}, {"boxes", s.boxes}});
      out.stopped.push_back(std::move(s));
    }
    sections.push_back(Json{{"section", p.section}, {"completed", taken.has_value()}, {"result", std::move(run.result)}});
    if (taken) runs.push_back(std::move(*taken));
  }
  std::string sectionFault;
  try {
    batch.finish();
  } catch (const RunTimeError& e) {
    sectionFault = e.what();
  }
  out.exitCode = !out.stopped.empty() ? kExitEnded : criticalBox ? kExitCriticalBox : 0;

  // Every corner once by its unique name, every line once by its name.
  std::map<std::string, std::size_t> pointAt;
  std::vector<std::vector<CornerPosition>> positions;
  std::map<std::string, bool> lineSeen;
  std::vector<MapLine> lines;
  for (const SectionRun& run : runs) {
    const CornerMap& own = run.map;
    std::vector<std::size_t> index(own.points.size());
    for (std::size_t k = 0; k < own.points.size(); ++k) {
      const MapPoint& point = own.points[k];
      const auto [at, added] = pointAt.emplace(point.name, out.map.points.size());
      if (added) {
        out.map.points.push_back(point);
        positions.emplace_back();
      } else {
        // The first section's number and rule stand; another number it was given, and evidence found, are kept too.
        MapPoint& kept = out.map.points[at->second];
        if (kept.number.empty())
          kept.number = point.number;  // the first section that numbered it
        else if (!point.number.empty() && point.number != kept.number &&
                 std::find(kept.otherNumbers.begin(), kept.otherNumbers.end(), point.number) == kept.otherNumbers.end())
          kept.otherNumbers.push_back(point.number);
        if (kept.evidence.empty()) kept.evidence = point.evidence;
      }
      positions[at->second].push_back({run.section, point.slot, point.x, point.y});
      // A corner a section took restored is restored in the township's files too, with its rule.
      if (const auto r = restoredSlots.find({run.row, point.slot}); r != restoredSlots.end()) {
        MapPoint& kept = out.map.points[at->second];
        kept.status = "restored";
        kept.rule = "restored by " + restorations.at(r->second).restored->text;
      }
      index[k] = at->second;
    }
    for (const MapLine& l : own.lines) {
      const std::string key = l.name.empty() ? l.feature + " " + out.map.points[index[l.from]].name + " " + out.map.points[index[l.to]].name : l.name;
      if (!lineSeen.emplace(key, true).second) continue;
      lines.push_back({l.feature, l.name, index[l.from], index[l.to]});
    }
  }
  // Each completed section's outline, round its present boundary corners.
  for (const SectionRun& run : runs) {
    out.records.push_back(run.record);
    for (MapParcel parcel : run.map.parcels) {
      parcel.name = "Section " + run.section + " " + parcel.name;
      out.map.parcels.push_back(std::move(parcel));
    }
    constexpr int kBoundary[] = {0, 1, 2, 3, 4, 9, 14, 19, 24, 23, 22, 21, 20, 15, 10, 5};
    SectionOutline outline{static_cast<int>(run.row), run.section, {}, {}};
    double sumX = 0, sumY = 0;
    for (int slot : kBoundary) {
      const CornerSlot& c = run.record.slots[static_cast<std::size_t>(slot)];
      if (c.x == 0) continue;
      outline.boundary.emplace_back(c.x, c.y);
      sumX += c.x, sumY += c.y;
    }
    if (outline.boundary.empty()) continue;
    // The middle of each quarter-quarter whose four corners are there (the
    // slots run west to east, north to south, five to a row): the four round
    // the center, then the others from the north-west.
    const auto& sl = run.record.slots;
    constexpr int kQuarterQuarters[] = {6, 7, 11, 12, 0, 3, 15, 18, 1, 2, 5, 8, 10, 13, 16, 17};
    for (int nw : kQuarterQuarters) {
      const int four[] = {nw, nw + 1, nw + 5, nw + 6};
      if (std::any_of(std::begin(four), std::end(four), [&sl](int s) { return sl[static_cast<std::size_t>(s)].x == 0; })) continue;
      double x = 0, y = 0;
      for (int s : four) x += sl[static_cast<std::size_t>(s)].x / 4, y += sl[static_cast<std::size_t>(s)].y / 4;
      outline.labelSpots.emplace_back(x, y);
    }
    const double n = static_cast<double>(outline.boundary.size());
    outline.labelSpots.emplace_back(sumX / n, sumY / n);  // no quarter-quarter whole: the middle of its corners
    out.outlines.push_back(std::move(outline));
  }
  for (const char* group : kFeatureGroups)
    for (const MapLine& l : lines)
      if (l.feature == group) out.map.lines.push_back(l);
  out.map.uniqueNames = true;
  out.map.title = "Township plan";
  if (!plan.sections.empty()) out.map.title = "T" + plan.sections.front().township + "N R" + plan.sections.front().range + plan.sections.front().direction;

  // The agreement check: every corner two sections computed, compared.
  Json disagreements = Json::array();
  for (std::size_t i = 0; i < positions.size(); ++i) {
    if (positions[i].size() < 2) continue;
    ++out.sharedCorners;
    double most = 0;
    for (std::size_t a = 0; a < positions[i].size(); ++a)
      for (std::size_t b = a + 1; b < positions[i].size(); ++b) most = std::max(most, distance(positions[i][a], positions[i][b]));
    if (most <= kAgreement) continue;
    out.disagreements.push_back({out.map.points[i].name, out.map.points[i].description, positions[i], most});
    Json at = Json::array();
    for (const CornerPosition& p : positions[i])
      at.push_back(Json{{"section", p.section}, {"slot", p.slot}, {"x", p.x}, {"y", p.y}});
    disagreements.push_back(Json{{"name", out.map.points[i].name}, {"description", out.map.points[i].description},
                                 {"positions", at}, {"difference", most}});
  }

  // The summary.
  auto& s = out.summary;
  s.push_back("TOWNSHIP SUMMARY - " + out.map.title);
  s.push_back("Source file: " + plan.source);
  std::string listed;
  for (const SectionRun& run : runs) listed += (listed.empty() ? "" : ", ") + run.section;
  s.push_back("Sections run: " + std::to_string(runs.size()) + (listed.empty() ? "" : " (" + listed + ")"));
  std::string stoppedList;
  for (const StoppedSection& e : out.stopped) stoppedList += (stoppedList.empty() ? "" : ", ") + e.section;
  s.push_back("Sections ended or refused: " + (stoppedList.empty() ? std::string("none") : stoppedList));
  for (const StoppedSection& e : out.stopped) {
    out.stoppedLines.push_back(static_cast<int>(s.size()));
    s.push_back("  Row " + std::to_string(e.row + 1) + " (section " + e.section + "): " + (e.ended ? "ended" : "refused"));
    for (const std::string& box : e.boxes) {
      out.stoppedLines.push_back(static_cast<int>(s.size()));
      s.push_back("    " + box);
    }
  }
  // What each completed section's run said, under that section: a box a
  // section showed never passes unseen because its run went on.
  const auto saidSomething = std::count_if(runs.begin(), runs.end(), [](const SectionRun& r) { return !r.said.empty(); });
  s.push_back("Sections with boxes or notices: " + (saidSomething == 0 ? std::string("none") : std::to_string(saidSomething)));
  for (const SectionRun& run : runs) {
    if (run.said.empty()) continue;
    s.push_back("  Row " + std::to_string(run.row + 1) + " (section " + run.section + "):");
    for (const std::string& line : run.said) s.push_back("    " + line);
  }
  s.push_back("Corners: " + std::to_string(out.map.points.size()));
  if (!restorations.empty()) {
    s.push_back("Restored corners: " + std::to_string(restorations.size()));
    for (const auto& [name, outcome] : restorations) {
      std::string rows;
      for (const auto& [at, used] : restoredSlots)
        if (used == name) rows += (rows.empty() ? "" : ", ") + std::to_string(at.first + 1) + " (section " + plan.sections[at.first].section + ")";
      if (outcome.restored) {
        s.push_back("  " + name + "  X " + coordinate(outcome.restored->at.x) + "  Y " + coordinate(outcome.restored->at.y) +
                    "  for rows " + rows);
        s.push_back("    restored by " + outcome.restored->text);
      } else {
        s.push_back("  " + name + "  not restored: " + outcome.refused);
      }
    }
  }
  s.push_back("Shared corners: " + std::to_string(out.sharedCorners));
  s.push_back("Lines: " + std::to_string(out.map.lines.size()));
  char tolerance[64];
  std::snprintf(tolerance, sizeof tolerance, "%.2f", kAgreement);
  s.push_back("Disagreements over " + std::string(tolerance) + " ft: " + std::to_string(out.disagreements.size()));
  auto told = [&out](std::string line) {
    out.disagreementLines.push_back(static_cast<int>(out.summary.size()));
    out.summary.push_back(std::move(line));
  };
  for (const Disagreement& d : out.disagreements) {
    s.emplace_back("");
    told("  " + d.name + numbered(out.map.points[pointAt.at(d.name)]) + "  " + d.description);
    for (const CornerPosition& p : d.positions)
      told("    Section " + p.section + " slot " + std::to_string(p.slot) + ":  X " + coordinate(p.x) + "  Y " + coordinate(p.y));
    told("    Difference: " + coordinate(d.difference) + " ft");
  }
  s.emplace_back("");
  // Every corner by its unique name, with the numbers the surveyor gave it.
  if (!out.map.points.empty()) {
    s.push_back("Corners by name, with their point numbers:");
    std::size_t width = 0;
    for (const MapPoint& p : out.map.points) width = std::max(width, p.name.size());
    for (const MapPoint& p : out.map.points) {
      std::string line = "  " + p.name + std::string(width + 2 - p.name.size(), ' ') + p.number;
      if (!p.otherNumbers.empty()) {
        line += "  (also";
        for (const std::string& other : p.otherNumbers) line += " " + other;
        line += ")";
      }
      if (p.status == "restored") line += "  restored";
      s.push_back(line);
    }
    s.emplace_back("");
  }

  // The township files carry the plan's system (or say they are local).
  try {
    out.map.system = mapSystem(plan.crs);
  } catch (const CrsError& e) {
    s.push_back(std::string("The coordinate system cannot be used: ") + e.what() + " The files say local coordinates.");
  }

  // The township's corners into its project, each once, replacing those of an earlier run.
  Json stored;
  if (!plan.project.empty() && !runs.empty()) {
    try {
      const auto project = openProject(plan.project);
      const StoreCounts c = project->store(mapPoints(out.map, "township", project.get()), OnDuplicate::Replace, "township");
      stored = Json{{"file", plan.project}, {"stored", c.stored}, {"replaced", c.replaced}};
      s.push_back("Stored " + grouped(c.stored) + " corners in the project " + plan.project + ".");
    } catch (const ProjectError& e) {
      s.push_back(std::string("The corners are not stored in the project: ") + e.what() + ".");
      out.exitCode = kExitEnded;
    }
  }

  // The township files, each whole; none at all when no section completed,
  // so an earlier run's files are not replaced by empty ones. A file that
  // cannot be written is said, and every section's result still reported.
  const std::filesystem::path folder(options.dataFolder);
  if (!sectionFault.empty()) {
    s.push_back("The sections' files could not all be put in place: " + sectionFault);
    out.exitCode = kExitEnded;
  }
  Json files = Json::array();
  std::string fault;
  if (runs.empty()) {
    s.push_back("No section completed: no township file was written (those of an earlier run are as they were).");
  } else {
    try {
      const auto textFiles = std::vector<std::pair<std::filesystem::path, std::vector<std::string>>>{
          {folder / "Township.txt", s}, {folder / "Township.inp", geopakLines(out.map)}, {folder / "Township.csv", pnezdLines(out.map)}};
      writeTextFiles(textFiles);
      for (const char* name : {"Township.txt", "Township.inp", "Township.csv"}) files.push_back((folder / name).string());
      writeDocument(folder / "Township.xml", cornerLandXml(out.map, stampOf(options.today.value_or(localToday()))));
      files.push_back((folder / "Township.xml").string());
      writeCornerDxf(out.map, folder / "Township.dxf");
      files.push_back((folder / "Township.dxf").string());
      // The whole township as one GeoPackage; the CSV's .prj where there is a system.
      writeGisFile(out.map, folder / "Township.gpkg", "GPKG");
      files.push_back((folder / "Township.gpkg").string());
      if (!out.map.system.prj.empty()) {
        writePrjBeside(out.map, folder / "Township.csv");
        files.push_back((folder / "Township.prj").string());
      }
    } catch (const std::exception& e) {  // a RunTimeError of a writer, or an ExportError
      fault = e.what();
      s.push_back("The township files could not all be written: " + fault);
      out.exitCode = kExitEnded;
    }
  }

  Json restored = Json::array();
  for (const auto& [name, outcome] : restorations)
    restored.push_back(outcome.restored ? Json{{"name", name},
                                               {"x", outcome.restored->at.x},
                                               {"y", outcome.restored->at.y},
                                               {"method", methodName(outcome.restored->method)},
                                               {"text", outcome.restored->text}}
                                        : Json{{"name", name}, {"refused", outcome.refused}});
  out.result = Json{{"sections", std::move(sections)},
                    {"stopped", std::move(stopped)},
                    {"restored", std::move(restored)},
                    {"corners", out.map.points.size()},
                    {"shared", out.sharedCorners},
                    {"lines", out.map.lines.size()},
                    {"disagreements", std::move(disagreements)},
                    {"files", std::move(files)}};
  if (!fault.empty()) out.result["fault"] = fault;
  if (!stored.is_null()) out.result["project"] = stored;
  return out;
}

}  // namespace tervalo
