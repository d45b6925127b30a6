#include "cli/project_command.h"
#include "project/point_import.h"

#include <algorithm>
#include <filesystem>
#include <ostream>

#include "app/json_text.h"
#include "app/output_file.h"
#include "app/runner.h"
#include "export/map_export.h"
#include "export/map_system.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/justify.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

Json pointJson(const ProjectPoint& p) {
  return Json{{"number", p.number},   {"northing", p.northing}, {"easting", p.easting},
              {"elevation", p.elevation ? Json(*p.elevation) : Json(nullptr)},
              {"description", p.description}, {"feature", p.feature}, {"evidence", p.evidence}, {"source", p.source}};
}

}  // namespace

int projectNew(const std::string& project, const ProjectSettings& settings, std::ostream& out, std::ostream& err) {
  try {
    createProject(project, settings);
  } catch (const ProjectError& e) {
    err << "tervalo-cli: " << e.what() << "\n";
    return kExitUsage;
  }
  out << "Project made: " << (sharedProject(project) ? project : std::filesystem::absolute(project).lexically_normal().string()) << "\n";
  return 0;
}

int projectCopy(const std::string& from, const std::string& to, bool json, std::ostream& out, std::ostream& err) {
  long long copied = 0;
  try {
    copied = copyProject(from, to);
  } catch (const ProjectError& e) {
    err << "tervalo-cli: " << e.what() << "\n";
    return kExitUsage;
  }
  if (json)
    out << jsonText(Json{{"from", from}, {"to", to}, {"points", copied}}) << "\n";
  else
    out << "Copied " << copied << (copied == 1 ? " point" : " points") << " with the project's settings, journal and alignments to " << to << ".\n";
  return 0;
}

int projectImport(const std::string& project, const std::string& file, const std::string& columns, OnDuplicate onDuplicate, bool json,
                  std::ostream& out, std::ostream& err) {
  StoreCounts counts;
  try {
    auto p = openProject(project);
    std::vector<ProjectPoint> points = pointsOfFile(file, upper(columns), p->settings().crs);
    counts = p->store(std::move(points), onDuplicate, "import " + std::filesystem::path(file).filename().string());
  } catch (const ProjectError& e) {
    err << "tervalo-cli: " << e.what() << "\n";
    return kExitUsage;
  }
  if (json) {
    out << jsonText(Json{{"read", counts.read}, {"stored", counts.stored}, {"skipped", counts.skipped}, {"replaced", counts.replaced},
                         {"renumbered", counts.renumbered}})
        << "\n";
  } else {
    out << "Read " << counts.read << " points: " << counts.stored << " stored (" << counts.replaced << " replacing a point, "
        << counts.renumbered << " renumbered), " << counts.skipped << " skipped as the project holds their numbers.\n";
  }
  return 0;
}

int projectList(const std::string& project, bool json, std::ostream& out, std::ostream& err) {
  std::unique_ptr<ProjectFile> p;
  std::vector<ProjectPoint> points;
  try {
    p = openProject(project);
    points = p->points();
  } catch (const ProjectError& e) {
    err << "tervalo-cli: " << e.what() << "\n";
    return kExitUsage;
  }
  if (json) {
    Json list = Json::array();
    for (const ProjectPoint& q : points) list.push_back(pointJson(q));
    out << jsonText(Json{{"unit", p->settings().unit}, {"crs", crsToJson(p->settings().crs)}, {"points", list}}) << "\n";
    return 0;
  }
  out << "Project " << project << ": " << crsTitle(p->settings().crs) << ", " << (p->settings().unit == "m" ? "metres" : "feet") << ", "
      << points.size() << " points\n";
  for (const ProjectPoint& q : points)
    // A number is never cut: a long one pushes its line along.
    out << leftJustify(q.number, std::max(10, static_cast<int>(textLength(q.number)) + 1)) << rightJustify(Format(q.northing, "0.0000"), 16) << rightJustify(Format(q.easting, "0.0000"), 16)
        << rightJustify(q.elevation ? Format(*q.elevation, "0.000") : "", 12) << "  " << q.description << "\n";
  return 0;
}

int projectExport(const std::string& project, const std::string& file, bool json, const Date& today, std::ostream& out,
                  std::ostream& err) {
  try {
    checkMapFileName(file);
    auto p = openProject(project);
    const CornerMap map = mapOfProject(*p);
    writeMapFile(map, file, today);
    if (json)
      out << jsonText(Json{{"points", map.points.size()}, {"file", std::filesystem::absolute(file).lexically_normal().string()}}) << "\n";
    else
      out << "Exported " << map.points.size() << " points to " << std::filesystem::absolute(file).lexically_normal().string() << "\n";
  } catch (const ProjectError& e) {
    err << "tervalo-cli: " << e.what() << "\n";
    return kExitUsage;
  } catch (const ExportError& e) {
    err << "tervalo-cli: " << e.what() << "\n";
    return kExitEnded;
  } catch (const CrsError& e) {
    err << "tervalo-cli: " << e.what() << "\n";
    return kExitEnded;
  } catch (const RunTimeError& e) {
    err << "Run-time Error: " << e.what() << "\n";
    return kExitEnded;
  }
  return 0;
}

}  // namespace tervalo
