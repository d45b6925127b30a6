#include "restore/restoration_file.h"

#include "project/point_import.h"

#include <algorithm>
#include <cmath>

#include "app/json_fields.h"
#include "app/json_text.h"
#include "crs/project_store.h"
#include "points/readers.h"
#include "text/angle.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/input_file.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kDirections[] = {"north", "south", "east", "west"};

using Fields = JsonFields<RestorationFileError>;

GivenControl controlAt(const Json& c, const std::string& where) {
  if (!c.is_object()) throw RestorationFileError(where + " must be an object");
  Fields::refuseUnknown(c, {"point", "x", "y", "record"}, where);
  GivenControl control;
  if (c.contains("point")) control.point = Fields::text(c["point"], where, "point");
  if (c.contains("x") || c.contains("y")) {
    if (!c.contains("x") || !c.contains("y")) throw RestorationFileError(where + ": typed coordinates need both \"x\" and \"y\"");
    control.at = Position{Fields::number(c["x"], where, "x"), Fields::number(c["y"], where, "y")};
  }
  if (control.point.empty() && !control.at) throw RestorationFileError(where + ": give a \"point\" number or \"x\" and \"y\"");
  if (!c.contains("record")) throw RestorationFileError(where + ": \"record\" (the record distance in chains) is required");
  control.record = Fields::number(c["record"], where, "record");
  return control;
}

std::optional<GivenControl>& controlOf(CornerEntry& c, int k) { return k == 0 ? c.north : k == 1 ? c.south : k == 2 ? c.east : c.west; }
const std::optional<GivenControl>& controlOf(const CornerEntry& c, int k) {
  return k == 0 ? c.north : k == 1 ? c.south : k == 2 ? c.east : c.west;
}
std::optional<Control>& controlOf(LostCorner& c, int k) { return k == 0 ? c.north : k == 1 ? c.south : k == 2 ? c.east : c.west; }

std::string coordinate(double v) { return Format(v, "#######0.0000"); }

std::string lowerCase(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

}  // namespace

CornerEntry parseCornerEntry(const Json& c, const std::string& place) {
  std::string where = place;
  if (!c.is_object()) throw RestorationFileError(where + " must be an object");
  CornerEntry corner;
  if (c.contains("name")) corner.name = Fields::text(c["name"], where, "name");
  if (!corner.name.empty()) where += " (" + corner.name + ")";
  Fields::refuseUnknown(c, {"name", "method", "index", "north", "south", "east", "west", "azimuth"}, where);
  if (c.contains("method")) {
    const std::string name = Fields::text(c["method"], where, "method");
    const auto method = methodNamed(name);
    if (!method)
      throw RestorationFileError(where + ": \"method\" is auto, single, double, three-point, two-point or one-point, not \"" +
                                 name + "\"");
    corner.method = *method;
  }
  if (c.contains("index")) corner.index = Fields::number(c["index"], where, "index");
  if (c.contains("azimuth")) corner.azimuth = Fields::angle(c["azimuth"], where, "azimuth");
  for (int k = 0; k < 4; ++k)
    if (c.contains(kDirections[k])) controlOf(corner, k) = controlAt(c[kDirections[k]], where + " " + kDirections[k]);
  return corner;
}

Json cornerEntryJson(const CornerEntry& c) {
  Json corner{{"name", c.name}, {"method", methodName(c.method)}, {"index", c.index}};
  if (c.azimuth) corner["azimuth"] = *c.azimuth;
  for (int k = 0; k < 4; ++k)
    if (const auto& control = controlOf(c, k)) {
      Json j = Json::object();
      if (!control->point.empty()) j["point"] = control->point;
      if (control->at) j["x"] = control->at->x, j["y"] = control->at->y;
      j["record"] = control->record;
      corner[kDirections[k]] = j;
    }
  return corner;
}

RestorationFile parseRestoration(const std::string& text) {
  Json json;
  try {
    json = parseStrictJson(text);
  } catch (const JsonTextError& e) {
    throw RestorationFileError(std::string("not valid JSON: ") + e.what());
  }
  if (!json.is_object()) throw RestorationFileError("a restoration file is a JSON object");
  Fields::refuseUnknown(json, {"version", "units", "basis", "source", "project", "corners", "crs"}, "the file");
  const Json version = json.value("version", Json(std::uint64_t{kRestorationVersion}));
  if (!version.is_number_unsigned() || version.get<std::uint64_t>() < 1) throw RestorationFileError("\"version\" must be 1");
  if (version.get<std::uint64_t>() > kRestorationVersion)
    throw RestorationFileError("the file comes from a newer Tervalo (version " + jsonText(version) + ")");
  RestorationFile file;
  file.units = Fields::text(json.value("units", Json("ft")), "the file", "units");
  if (file.units != "ft" && file.units != "m") throw RestorationFileError("\"units\" is \"ft\" or \"m\"");
  if (json.contains("basis")) {
    const Json& basis = json["basis"];
    if (basis.is_string() && lowerCase(basis.get<std::string>()) == "true north")
      file.basisTrueNorth = true;
    else
      file.basis = Fields::angle(basis, "the file", "basis");
  }
  if (json.contains("source")) file.source = Fields::text(json["source"], "the file", "source");
  if (json.contains("project")) file.project = Fields::text(json["project"], "the file", "project");
  if (!file.source.empty() && !file.project.empty())
    throw RestorationFileError("\"source\" and \"project\" both name where the controls are: give one");
  if (json.contains("crs")) {
    try {
      file.crs = usableCrsFromJson(json["crs"]);
    } catch (const CrsError& e) {
      throw RestorationFileError(std::string("the file: ") + e.what());
    }
  }
  if (file.basisTrueNorth && file.crs.none())
    throw RestorationFileError("\"basis\": \"true north\" needs the coordinate system of the coordinates (\"crs\")");
  const Json corners = json.value("corners", Json::array());
  if (!corners.is_array() || corners.empty()) throw RestorationFileError("\"corners\" must list at least one corner");
  for (std::size_t i = 0; i < corners.size(); ++i) file.corners.push_back(parseCornerEntry(corners[i], "corner " + std::to_string(i + 1)));
  return file;
}

RestorationFile readRestorationFile(const std::string& name) {
  std::string text;
  try {
    text = readInputFile(name);
  } catch (const InputFileError& e) {
    throw RestorationFileError("\"" + name + "\" " + e.what());
  }
  RestorationFile file = parseRestoration(text);
  const std::filesystem::path source(file.source);
  if (!file.source.empty() && source.is_relative())
    file.source = (std::filesystem::path(name).parent_path() / source).lexically_normal().string();
  file.project = projectBeside(file.project, std::filesystem::path(name).parent_path());
  return file;
}

std::string restorationText(const RestorationFile& file) {
  Json corners = Json::array();
  for (const CornerEntry& c : file.corners) corners.push_back(cornerEntryJson(c));
  Json json{{"version", kRestorationVersion}, {"units", file.units}};
  json["basis"] = file.basisTrueNorth ? Json("true north") : Json(file.basis);
  if (!file.source.empty()) json["source"] = file.source;
  if (!file.project.empty()) json["project"] = file.project;
  if (!file.crs.none()) json["crs"] = crsToJson(file.crs);
  json["corners"] = corners;
  return jsonText(json) + "\n";
}

bool RestorationRun::allRestored() const {
  return std::all_of(corners.begin(), corners.end(), [](const CornerOutcome& c) { return c.restored.has_value(); });
}

// Where a corner's controls are, on the whole: the mean of those found.
PlanePosition controlsCentre(const CornerEntry& entry, const PointList& points) {
  double x = 0, y = 0;
  int n = 0;
  for (int k = 0; k < 4; ++k) {
    const auto& given = controlOf(entry, k);
    if (!given) continue;
    std::optional<Position> at = given->at;
    if (!at)
      for (const PointRecord& p : points.records)
        if (!given->point.empty() && (p.name == given->point || p.name == upper(given->point))) {
          at = Position{p.x, p.y};
          break;
        }
    if (!at) continue;
    x += at->x, y += at->y, ++n;
  }
  if (n == 0) throw RestoreError("none of its controls is found");
  return {x / n, y / n};
}

double basisToTrueNorth(const CrsChoice& crs, const PlanePosition& at) {
  try {
    return -geo().factors(crs, {at})[0].convergence;
  } catch (const CrsError& e) {
    throw RestoreError(e.what());
  }
}

CornerOutcome restoreEntry(const CornerEntry& entry, const PointList& points, bool haveSource, double basis, double chain) {
  const auto lookUp = [&points](const std::string& number) -> std::optional<Position> {
    for (const std::string& wanted : {number, upper(number)})
      for (const PointRecord& p : points.records)
        if (p.name == wanted) return Position{p.x, p.y};
    return std::nullopt;
  };
  CornerOutcome outcome;
  outcome.name = entry.name;
  outcome.corner = {entry.name, entry.method, entry.index, {}, {}, {}, {}, entry.azimuth};
  try {
    for (int k = 0; k < 4; ++k) {
      const auto& given = controlOf(entry, k);
      if (!given) continue;
      Control control{given->point, {}, given->record};
      if (given->at) {
        control.at = *given->at;
      } else if (const auto found = lookUp(given->point)) {
        control.at = *found;
      } else {
        throw RestoreError(std::string("the ") + kDirections[k] + " control names point " + given->point + ", which is " +
                           (haveSource ? "not in the source file" : "in no source file (the file names none)"));
      }
      controlOf(outcome.corner, k) = control;
    }
    outcome.restored = restoreCorner(outcome.corner, basis, chain);
  } catch (const RestoreError& e) {
    outcome.refused = e.what();
  }
  return outcome;
}

RestorationRun runRestoration(const RestorationFile& file, const std::string& today) {
  // The source, read whole by the program's readers: controls by number come from it.
  PointList points = PointList::unbounded();
  if (!file.source.empty()) {
    try {
      points = readWholeFile(file.source);
    } catch (const ProgramFault& e) {
      throw RestorationFileError("the source file \"" + file.source + "\" cannot be read: " + e.what());
    }
  } else if (!file.project.empty()) {
    try {
      points = pointListOf(*openProject(file.project));
    } catch (const ProjectError& e) {
      throw RestorationFileError(std::string("the project cannot be read: ") + e.what());
    }
  }

  RestorationRun run;
  Json corners = Json::array(), refused = Json::array();
  const double chain = file.chain();
  const char* unit = file.units == "m" ? "m" : "ft";
  run.report = {"                RESTORATION OF LOST CORNERS", "",
                "  Source: " + (file.source.empty() ? std::string("(typed coordinates)") : file.source),
                "  Date: " + today + "    Units: " + (file.units == "m" ? "metres (chain 20.1168 m)" : "feet (chain 66 ft)") +
                    "    Basis: " +
                    (file.basisTrueNorth ? std::string("true north at each corner, from ") + crsTitle(file.crs)
                                         : decimalToDmsCarried(file.basis) + " from grid north to true north"),
                ""};
  for (const CornerEntry& entry : file.corners) {
    double basis = file.basis;
    std::string basisFault;
    if (file.basisTrueNorth) {
      // True north at the corner's controls: the bearing of true north from grid north is minus the convergence.
      try {
        basis = basisToTrueNorth(file.crs, controlsCentre(entry, points));
      } catch (const std::exception& e) {
        basisFault = e.what();
      }
    }
    CornerOutcome outcome = restoreEntry(entry, points, !file.source.empty() || !file.project.empty(), basis, chain);
    outcome.basis = basis;
    if (!basisFault.empty() && outcome.restored) {
      outcome.restored.reset();
      outcome.refused = "its basis to true north cannot be found: " + basisFault;
    }

    // The report: the corner, its controls, record and measured distances, the ratio, the rule and the result.
    // One control measures nothing against its record: no measured chains or ratio then.
    const bool measured = outcome.restored && outcome.restored->method != RestoreMethod::OnePoint;
    run.report.push_back("  " + leftJustify(entry.name, 40) +
                         (outcome.restored ? std::string(methodName(outcome.restored->method)) + " proportion" : "REFUSED"));
    run.report.push_back("     " + leftJustify("Control", 8) + " " + leftJustify("Point", 8) + rightJustify("X", 14) + " " +
                         rightJustify("Y", 14) + rightJustify("Record ch", 12) +
                         (measured ? rightJustify("Measured ch", 13) + rightJustify("Ratio", 9) : std::string()));
    for (int k = 0; k < 4; ++k) {
      const auto& c = controlOf(outcome.corner, k);
      if (!c) continue;
      std::string line = "     " + leftJustify(kDirections[k], 8) + " " + leftJustify(c->point, 8) + rightJustify(coordinate(c->at.x), 14) +
                         " " + rightJustify(coordinate(c->at.y), 14) + rightJustify(Format(c->record, "0.00"), 12);
      if (measured) {
        const double retraced = std::hypot(c->at.x - outcome.restored->at.x, c->at.y - outcome.restored->at.y) / chain;
        line += rightJustify(Format(retraced, "0.000"), 13) + rightJustify(Format(retraced / c->record, "0.00000"), 9);
      }
      run.report.push_back(line);
    }
    if (outcome.restored) {
      for (const TemporaryPoint& t : outcome.restored->temporary)
        run.report.push_back("     Temporary point " + leftJustify(t.name, 24) + rightJustify(coordinate(t.at.x), 14) + " " +
                             rightJustify(coordinate(t.at.y), 14));
      run.report.push_back("     Restored                 " + rightJustify(coordinate(outcome.restored->at.x), 14) + " " +
                           rightJustify(coordinate(outcome.restored->at.y), 14) + "  " + unit);
      run.report.push_back("     By " + outcome.restored->text + ".");
      if (file.basisTrueNorth)
        run.report.push_back("     Basis " + decimalToDmsCarried(basis) + " from grid north to true north at its controls.");
      // The points file knows no quoting: a comma or semicolon in a name becomes a blank.
      std::string pointName = entry.name;
      std::replace_if(pointName.begin(), pointName.end(), [](char ch) { return ch == ',' || ch == ';'; }, ' ');
      run.points.push_back(pointName + "," + Format(outcome.restored->at.x, "0.0000") + "," +
                           Format(outcome.restored->at.y, "0.0000") + ",RES,RESTORED " +
                           upper(methodName(outcome.restored->method)) + " PROPORTION");
      Json temporary = Json::array();
      for (const TemporaryPoint& t : outcome.restored->temporary)
        temporary.push_back(Json{{"name", t.name}, {"x", t.at.x}, {"y", t.at.y}});
      corners.push_back(Json{{"name", entry.name},
                             {"x", outcome.restored->at.x},
                             {"y", outcome.restored->at.y},
                             {"method", methodName(outcome.restored->method)},
                             {"temporary", temporary},
                             {"text", outcome.restored->text}});
      if (file.basisTrueNorth) corners.back()["basis"] = basis;
    } else {
      run.report.push_back("     Not restored: " + outcome.refused + ".");
      refused.push_back(Json{{"name", entry.name}, {"reason", outcome.refused}});
    }
    run.report.emplace_back("");
    run.corners.push_back(std::move(outcome));
  }
  run.result = Json{{"corners", corners}, {"refused", refused}};
  return run;
}

std::pair<std::filesystem::path, std::filesystem::path> restorationOutputs(const std::filesystem::path& folder,
                                                                           const std::string& stem) {
  return {folder / (stem + "-restored.rpt"), folder / (stem + "-restored.txt")};
}

}  // namespace tervalo
