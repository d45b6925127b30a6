#include "crs/crs.h"
#include "crs/project_store.h"

#include <cmath>
#include <cstdlib>
#include <mutex>

#include "app/json_fields.h"
#include "app/json_text.h"
#include "app/module.h"

namespace tervalo {

CrsChoice crsFromJson(const nlohmann::ordered_json& value) {
  if (value.is_null()) return {};
  if (!value.is_object()) throw CrsError("\"crs\" must be an object such as {\"epsg\": 3419}");
  JsonFields<CrsError>::refuseUnknown(value, {"epsg", "foot", "elevation"}, "\"crs\"");
  const auto epsg = value.find("epsg");
  if (epsg == value.end() || !epsg->is_number_integer() || epsg->get<std::int64_t>() < 1 || epsg->get<std::int64_t>() > 999999)
    throw CrsError("\"crs\": \"epsg\" must be the code of a projected system, such as 3419");
  CrsChoice crs;
  crs.epsg = static_cast<int>(epsg->get<std::int64_t>());
  if (const auto foot = value.find("foot"); foot != value.end()) {
    if (!foot->is_string() || (*foot != "us" && *foot != "international"))
      throw CrsError("\"crs\": \"foot\" is \"us\" or \"international\"");
    crs.foot = foot->get<std::string>();
  }
  if (const auto elevation = value.find("elevation"); elevation != value.end()) {
    if (!elevation->is_number() || !(std::fabs(elevation->get<double>()) < kMostElevation))
      throw CrsError("\"crs\": \"elevation\" must be the mean project elevation, a number");
    crs.elevation = elevation->get<double>();
  }
  return crs;
}

CrsChoice usableCrsFromJson(const nlohmann::ordered_json& value) {
  const CrsChoice crs = crsFromJson(value);
  if (!crs.none()) geo().geographic(crs, {});  // PROJ takes the system and its foot, or says why not
  return crs;
}

nlohmann::ordered_json crsToJson(const CrsChoice& crs) {
  if (crs.none()) return nullptr;
  nlohmann::ordered_json j{{"epsg", crs.epsg}};
  if (!crs.foot.empty()) j["foot"] = crs.foot;
  if (crs.elevation) j["elevation"] = *crs.elevation;
  return j;
}

namespace {

using Factory = Geo* (*)();

Geo* loaded = nullptr;

}  // namespace

Geo& geo() {
  static std::once_flag once;
  static std::string fault;
  std::call_once(once, [] {
    std::string tried;
    if (auto make = reinterpret_cast<Factory>(moduleEntry("libtervalo_geo.so", "TERVALO_GEO_MODULE", "tervalo_make_geo", tried)))
      loaded = make();
    else
      fault = "The coordinate system module (PROJ and GDAL) cannot be loaded:" + tried;
  });
  if (!loaded) throw CrsError(fault);
  return *loaded;
}

bool geoLoaded() { return loaded != nullptr; }

std::string landXmlUnit(const CrsChoice& crs, const CrsDescription* system) {
  if (crs.foot == "international") return "foot";
  if (crs.none() || crs.foot == "us" || !system) return "USSurveyFoot";
  if (system->unit.find("US survey foot") != std::string::npos) return "USSurveyFoot";
  if (system->unit.find("foot") != std::string::npos) return "foot";
  return "meter";
}

std::string crsTitle(const CrsChoice& crs) {
  if (crs.none()) return "local coordinates";
  std::string title = "EPSG:" + std::to_string(crs.epsg);
  try {
    title += " " + geo().describe(crs.epsg).name;
  } catch (const CrsError&) {  // the code alone, where the module or the code is not there
  }
  if (!crs.foot.empty()) title += crs.foot == "us" ? ", coordinates in US survey feet" : ", coordinates in international feet";
  return title;
}

}  // namespace tervalo

namespace tervalo {

std::unique_ptr<ProjectFile> createProject(const std::filesystem::path& file, const ProjectSettings& settings) {
  try {
    ProjectSettings s = settings;
    if (!s.crs.none()) {
      // The coordinates' unit is the system's, or the foot given on a metric one.
      const CrsDescription d = geo().describe(s.crs.epsg);
      s.unit = std::fabs(d.metresPerUnit - 1) < 1e-12 && s.crs.foot.empty() ? "m" : "ft";
    }
    return geo().project(file, &s);
  } catch (const CrsError& e) {
    throw ProjectError(e.what());
  }
}

std::unique_ptr<ProjectFile> openProject(const std::filesystem::path& file) {
  try {
    return geo().project(file, nullptr);
  } catch (const CrsError& e) {
    throw ProjectError(e.what());
  }
}

std::string projectBeside(const std::string& project, const std::filesystem::path& folder) {
  if (project.empty() || sharedProject(project) || std::filesystem::path(project).is_absolute()) return project;
  return (folder / project).lexically_normal().string();
}

long long copyProject(const std::filesystem::path& from, const std::filesystem::path& to) {
  const auto source = openProject(from);
  const std::vector<ProjectPoint> points = source->points();
  std::vector<JournalEntry> journal = source->history();
  const std::vector<StoredAlignment> alignments = source->alignments();
  auto target = createProject(to, source->settings());
  try {
    journal.push_back({stampNow(), "project copy", "copied from " + source->name() + ": " + std::to_string(points.size()) + " points"});
    target->append(points, journal);
    for (const StoredAlignment& a : alignments) target->storeAlignment(a);
  } catch (...) {
    // A file copy is made whole or not at all; a database keeps its empty project, which the message names.
    target.reset();
    std::error_code ec;
    if (!sharedProject(to.string())) std::filesystem::remove(to, ec);
    throw;
  }
  return static_cast<long long>(points.size());
}

}  // namespace tervalo
