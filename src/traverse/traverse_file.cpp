#include "traverse/traverse_file.h"

#include <cmath>
#include <filesystem>

#include "app/json_fields.h"
#include "app/json_text.h"
#include "crs/project_store.h"
#include "text/input_file.h"
#include "text/justify.h"
#include "text/number.h"
#include "traverse/rw5.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;
using Fields = JsonFields<TraverseFileError>;

KnownStation knownAt(const Json& j, const std::string& where, bool needsPlace) {
  KnownStation k;
  if (j.contains("point")) k.point = Fields::text(j["point"], where, "point");
  if (j.contains("x") || j.contains("y")) {
    if (!j.contains("x") || !j.contains("y")) throw TraverseFileError(where + ": typed coordinates need both \"x\" and \"y\"");
    k.at = PlanePosition{Fields::number(j["x"], where, "x"), Fields::number(j["y"], where, "y")};
  }
  if (needsPlace && k.point.empty() && !k.at) throw TraverseFileError(where + ": give a \"point\" number or \"x\" and \"y\"");
  return k;
}

// A horizontal distance, or a slope distance with its zenith angle.
void distanceAt(const Json& j, const std::string& where, std::optional<double>& distance, std::optional<double>& slope,
                std::optional<double>& zenith) {
  if (j.contains("distance")) distance = Fields::number(j["distance"], where, "distance");
  if (j.contains("slope") || j.contains("zenith")) {
    if (distance) throw TraverseFileError(where + ": give \"distance\", or \"slope\" and \"zenith\", not both");
    if (!j.contains("slope") || !j.contains("zenith"))
      throw TraverseFileError(where + ": a slope distance needs both \"slope\" and \"zenith\"");
    slope = Fields::number(j["slope"], where, "slope");
    zenith = Fields::angle(j["zenith"], where, "zenith");
  }
  if (!distance && !slope) throw TraverseFileError(where + ": give its \"distance\", or \"slope\" and \"zenith\"");
}

CourseEntry courseAt(const Json& j, const std::string& place) {
  if (!j.is_object()) throw TraverseFileError(place + " must be an object");
  CourseEntry c;
  if (j.contains("to")) c.to = Fields::text(j["to"], place, "to");
  const std::string where = place + (c.to.empty() ? "" : " (to " + c.to + ")");
  Fields::refuseUnknown(j, {"to", "azimuth", "bearing", "angle_right", "deflection", "distance", "slope", "zenith"}, where);
  if (c.to.empty()) throw TraverseFileError(where + ": \"to\" names the station the course reaches");
  int directions = 0;
  if (j.contains("azimuth")) c.turn = Turn::Azimuth, c.angle = Fields::angle(j["azimuth"], where, "azimuth"), ++directions;
  if (j.contains("bearing")) {
    const std::string text = Fields::text(j["bearing"], where, "bearing");
    const auto azimuth = bearingAzimuth(text);
    if (!azimuth) throw TraverseFileError(where + ": \"bearing\" must be a bearing such as \"S 10-20-00 W\", not \"" + text + "\"");
    c.turn = Turn::Bearing, c.angle = *azimuth, ++directions;
  }
  if (j.contains("angle_right")) c.turn = Turn::AngleRight, c.angle = Fields::angle(j["angle_right"], where, "angle_right"), ++directions;
  if (j.contains("deflection")) {
    const std::string text = Fields::text(j["deflection"], where, "deflection");
    const auto angle = deflectionAngle(text);
    if (!angle) throw TraverseFileError(where + ": \"deflection\" must be an angle with R or L, such as \"12-30-00 L\", not \"" + text + "\"");
    c.turn = Turn::Deflection, c.angle = *angle, ++directions;
  }
  if (directions != 1)
    throw TraverseFileError(where + ": give exactly one direction: \"azimuth\", \"bearing\", \"angle_right\" or \"deflection\"");
  distanceAt(j, where, c.distance, c.slope, c.zenith);
  return c;
}

}  // namespace

std::string angleText(double degrees) {
  const bool negative = degrees < 0;
  double a = std::abs(degrees);
  int d = static_cast<int>(std::floor(a));
  int m = static_cast<int>(std::floor((a - d) * 60));
  double s = (a - d - m / 60.0) * 3600;
  s = std::round(s * 1e6) / 1e6;  // a millionth of a second: no angle text needs more
  if (s >= 60) s -= 60, ++m;
  if (m >= 60) m -= 60, ++d;
  char seconds[32];
  std::snprintf(seconds, sizeof seconds, "%09.6f", s);
  std::string sec = seconds;
  while (sec.back() == '0') sec.pop_back();
  if (sec.back() == '.') sec.pop_back();
  char text[64];
  std::snprintf(text, sizeof text, "%s%d-%02d-%s", negative ? "-" : "", d, m, sec.c_str());
  return text;
}

std::string directionText(const CourseEntry& c) {
  switch (c.turn) {
    case Turn::Bearing: {
      const double az = normalAzimuth(c.angle);
      const bool north = az <= 90 || az >= 270, east = az < 180;
      const double angle = north ? (east ? az : 360 - az) : (east ? 180 - az : az - 180);
      return std::string(north ? "N " : "S ") + angleText(angle) + (east ? " E" : " W");
    }
    case Turn::AngleRight: return "AR " + angleText(c.angle);
    case Turn::Deflection: return angleText(std::abs(c.angle)) + (c.angle < 0 ? " L" : " R");
    case Turn::Azimuth: break;
  }
  return "Az " + angleText(c.angle);
}

TraverseInput parseTraverse(const std::string& text) {
  Json json;
  try {
    json = parseStrictJson(text);
  } catch (const JsonTextError& e) {
    throw TraverseFileError(std::string("not valid JSON: ") + e.what());
  }
  if (!json.is_object()) throw TraverseFileError("a traverse file is a JSON object");
  Fields::refuseUnknown(json, {"version", "units", "source", "project", "adjust", "start", "backsight", "courses", "close", "sigma_angle",
                               "sigma_distance", "ppm", "side_shots", "crs", "ground", "allowable_precision", "allowable_angular"},
                        "the file");
  const Json version = json.value("version", Json(std::uint64_t{kTraverseVersion}));
  if (!version.is_number_unsigned() || version.get<std::uint64_t>() < 1) throw TraverseFileError("\"version\" must be 1");
  if (version.get<std::uint64_t>() > kTraverseVersion)
    throw TraverseFileError("the file comes from a newer Tervalo (version " + jsonText(version) + ")");
  TraverseInput in;
  in.units = Fields::text(json.value("units", Json("ft")), "the file", "units");
  if (in.units != "ft" && in.units != "m") throw TraverseFileError("\"units\" is \"ft\" or \"m\"");
  if (json.contains("source")) in.source = Fields::text(json["source"], "the file", "source");
  if (json.contains("project")) in.project = Fields::text(json["project"], "the file", "project");
  if (!in.source.empty() && !in.project.empty())
    throw TraverseFileError("\"source\" and \"project\" both name where the points are: give one");
  if (json.contains("adjust")) {
    const std::string rule = Fields::text(json["adjust"], "the file", "adjust");
    const auto named = ruleNamed(rule);
    if (!named) throw TraverseFileError("\"adjust\" is none, compass, transit, crandall or least-squares, not \"" + rule + "\"");
    in.adjust = *named;
  }
  for (const auto& [key, field] : {std::pair{"sigma_angle", &in.sigmaAngle}, {"sigma_distance", &in.sigmaDistance}, {"ppm", &in.ppm}})
    if (json.contains(key)) {
      *field = Fields::number(json[key], "the file", key);
      if (!(*field >= 0) || !std::isfinite(*field)) throw TraverseFileError(std::string("\"") + key + "\" must not be negative");
    }
  // The allowable closure: a precision of 1:N (N at least 1) and k seconds times the root of the angles.
  for (const auto& [key, field, least] : {std::tuple{"allowable_precision", &in.allowablePrecision, 1.0}, {"allowable_angular", &in.allowableAngular, 0.0}})
    if (json.contains(key)) {
      *field = Fields::number(json[key], "the file", key);
      if (!(*field >= least) || !std::isfinite(*field))
        throw TraverseFileError(std::string("\"") + key + "\" must be " + (least > 0 ? "1 or more" : "0 or more"));
    }
  if (!json.contains("start") || !json["start"].is_object()) throw TraverseFileError("\"start\" must give the starting point");
  Fields::refuseUnknown(json["start"], {"point", "x", "y"}, "start");
  in.start = knownAt(json["start"], "start", true);
  if (json.contains("backsight")) {
    const Json& b = json["backsight"];
    if (!b.is_object()) throw TraverseFileError("\"backsight\" must be an object");
    Fields::refuseUnknown(b, {"point", "x", "y", "azimuth", "bearing"}, "backsight");
    if (b.contains("azimuth")) in.backsightAzimuth = Fields::angle(b["azimuth"], "backsight", "azimuth");
    if (b.contains("bearing")) {
      if (in.backsightAzimuth) throw TraverseFileError("backsight: give \"azimuth\" or \"bearing\", not both");
      in.backsightAzimuth = bearingAzimuth(Fields::text(b["bearing"], "backsight", "bearing"));
      if (!in.backsightAzimuth) throw TraverseFileError("backsight: \"bearing\" must be a bearing such as \"N 45-00-00 E\"");
    }
    const KnownStation point = knownAt(b, "backsight", !in.backsightAzimuth);
    if (!point.point.empty() || point.at) in.backsightPoint = point;
  }
  const Json courses = json.value("courses", Json::array());
  if (!courses.is_array() || courses.empty()) throw TraverseFileError("\"courses\" must list at least one course");
  for (std::size_t i = 0; i < courses.size(); ++i) in.courses.push_back(courseAt(courses[i], "course " + std::to_string(i + 1)));
  if (!json.contains("close") || !json["close"].is_object()) throw TraverseFileError("\"close\" must name the point the traverse closes on");
  const Json& close = json["close"];
  Fields::refuseUnknown(close, {"point", "x", "y", "azimuth", "angle_right"}, "close");
  in.close = knownAt(close, "close", true);
  if (close.contains("azimuth")) in.closeAzimuth = Fields::angle(close["azimuth"], "close", "azimuth");
  if (close.contains("angle_right")) in.closeAngle = Fields::angle(close["angle_right"], "close", "angle_right");
  const Json shots = json.value("side_shots", Json::array());
  if (!shots.is_array()) throw TraverseFileError("\"side_shots\" must be a list");
  for (std::size_t i = 0; i < shots.size(); ++i) {
    const std::string where = "side shot " + std::to_string(i + 1);
    const Json& s = shots[i];
    if (!s.is_object()) throw TraverseFileError(where + " must be an object");
    Fields::refuseUnknown(s, {"from", "to", "angle_right", "distance", "slope", "zenith", "note"}, where);
    SideShot shot;
    for (const auto& [key, field] : {std::pair{"from", &shot.from}, {"to", &shot.to}}) {
      if (!s.contains(key)) throw TraverseFileError(where + ": \"" + key + "\" is required");
      *field = Fields::text(s[key], where, key);
    }
    if (!s.contains("angle_right")) throw TraverseFileError(where + ": \"angle_right\" is required");
    shot.angleRight = Fields::angle(s["angle_right"], where, "angle_right");
    std::optional<double> distance, slope, zenith;
    distanceAt(s, where, distance, slope, zenith);
    shot.distance = distance ? *distance : *slope * std::sin(*zenith * 3.14159265358979323846 / 180);
    if (s.contains("note")) shot.note = Fields::text(s["note"], where, "note");
    in.sideShots.push_back(shot);
  }
  if (json.contains("crs")) {
    try {
      in.crs = usableCrsFromJson(json["crs"]);
    } catch (const CrsError& e) {
      throw TraverseFileError(std::string("the file: ") + e.what());
    }
  }
  if (json.contains("ground")) {
    if (!json["ground"].is_boolean()) throw TraverseFileError("\"ground\" is true or false");
    in.ground = json["ground"].get<bool>();
    if (in.ground && in.crs.none())
      throw TraverseFileError("\"ground\": ground distances are reduced to the grid of the file's \"crs\", which it does not give");
  }
  return in;
}

TraverseInput readTraverseFile(const std::string& name) {
  const std::filesystem::path file(name);
  std::string ending = file.extension().string();
  for (char& c : ending) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  TraverseInput in;
  try {
    in = ending == ".rw5" ? readRawFile(name) : parseTraverse(readInputFile(file));
  } catch (const InputFileError& e) {
    throw TraverseFileError("\"" + name + "\" " + e.what());
  }
  if (!in.source.empty() && std::filesystem::path(in.source).is_relative())
    in.source = (file.parent_path() / in.source).lexically_normal().string();
  in.project = projectBeside(in.project, file.parent_path());
  return in;
}

std::string traverseText(const TraverseInput& in) {
  const auto known = [](const KnownStation& k) {
    Json j = Json::object();
    if (!k.point.empty()) j["point"] = k.point;
    if (k.at) j["x"] = k.at->x, j["y"] = k.at->y;
    return j;
  };
  Json json{{"version", kTraverseVersion}, {"units", in.units}};
  if (!in.source.empty()) json["source"] = in.source;
  if (!in.project.empty()) json["project"] = in.project;
  json["adjust"] = ruleName(in.adjust);
  if (in.adjust == AdjustRule::LeastSquares) {
    json["sigma_angle"] = in.sigmaAngle;
    json["sigma_distance"] = in.sigmaDistance;
    json["ppm"] = in.ppm;
  }
  const TraverseInput defaults;
  if (in.allowablePrecision != defaults.allowablePrecision) json["allowable_precision"] = in.allowablePrecision;
  if (in.allowableAngular != defaults.allowableAngular) json["allowable_angular"] = in.allowableAngular;
  json["start"] = known(in.start);
  if (in.backsightPoint || in.backsightAzimuth) {
    Json b = in.backsightPoint ? known(*in.backsightPoint) : Json::object();
    if (in.backsightAzimuth) b["azimuth"] = angleText(*in.backsightAzimuth);
    json["backsight"] = b;
  }
  Json courses = Json::array();
  for (const CourseEntry& c : in.courses) {
    Json j{{"to", c.to}};
    const std::string direction = directionText(c);
    switch (c.turn) {
      case Turn::Azimuth: j["azimuth"] = angleText(c.angle); break;
      case Turn::Bearing: j["bearing"] = direction; break;
      case Turn::AngleRight: j["angle_right"] = angleText(c.angle); break;
      case Turn::Deflection: j["deflection"] = direction; break;
    }
    if (c.distance) {
      j["distance"] = *c.distance;
    } else {
      j["slope"] = c.slope.value_or(0);
      j["zenith"] = angleText(c.zenith.value_or(90));
    }
    courses.push_back(j);
  }
  json["courses"] = courses;
  Json close = known(in.close);
  if (in.closeAzimuth) close["azimuth"] = angleText(*in.closeAzimuth);
  if (in.closeAngle) close["angle_right"] = angleText(*in.closeAngle);
  json["close"] = close;
  if (!in.sideShots.empty()) {
    Json shots = Json::array();
    for (const SideShot& s : in.sideShots) {
      Json j{{"from", s.from}, {"to", s.to}, {"angle_right", angleText(s.angleRight)}, {"distance", s.distance}};
      if (!s.note.empty()) j["note"] = s.note;
      shots.push_back(j);
    }
    json["side_shots"] = shots;
  }
  if (!in.crs.none()) json["crs"] = crsToJson(in.crs);
  if (in.ground) json["ground"] = true;
  return jsonText(json) + "\n";
}

}  // namespace tervalo
