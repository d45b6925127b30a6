#include "adjust/network.h"

#include <cmath>
#include <map>
#include <numbers>

#include <nlohmann/json.hpp>

#include "cogo/cogo.h"

namespace tervalo {
namespace {

using Json = nlohmann::json;

constexpr double kSecond = std::numbers::pi / 180 / 3600;

struct Defaults {
  double angle = 5;                      // seconds
  std::array<double, 2> distance{0.01, 5};  // constant, ppm
  double centering = 0;
  std::optional<double> dh{};
};

double number(const Json& j, const std::string& where, const char* key) {
  if (!j.contains(key)) throw NetworkError(where + " has no \"" + key + "\"");
  if (!j[key].is_number()) throw NetworkError(where + ": \"" + key + "\" is not a number");
  const double v = j[key].get<double>();
  if (!std::isfinite(v)) throw NetworkError(where + ": \"" + key + "\" is not a finite number");
  return v;
}

double positive(double v, const std::string& where, const char* what) {
  if (!(v > 0)) throw NetworkError(where + ": a standard deviation of " + std::string(what) + " must be more than 0");
  return v;
}

// An angle given as "D-MM-SS" text (or a number of degrees), in radians.
double angle(const Json& j, const std::string& where, const char* key) {
  if (!j.contains(key)) throw NetworkError(where + " has no \"" + key + "\"");
  if (j[key].is_number()) return j[key].get<double>() * std::numbers::pi / 180;
  if (!j[key].is_string()) throw NetworkError(where + ": \"" + key + "\" is not an angle");
  const auto a = cogoAngle(j[key].get<std::string>());
  if (!a) throw NetworkError(where + ": \"" + j[key].get<std::string>() + "\" is not an angle (D-MM-SS)");
  return *a * std::numbers::pi / 180;
}

std::array<double, 2> distanceSigma(const Json& j, const std::string& where) {
  if (j.is_number()) return {positive(j.get<double>(), where, "a distance"), 0};
  if (j.is_array() && j.size() == 2 && j[0].is_number() && j[1].is_number()) {
    const std::array<double, 2> s{j[0].get<double>(), j[1].get<double>()};
    if (!(s[0] > 0) || s[1] < 0) throw NetworkError(where + ": a distance's standard deviation must be more than 0 (its ppm 0 or more)");
    return s;
  }
  throw NetworkError(where + ": a distance's standard deviation is a number or [constant, ppm]");
}

}  // namespace

Network parseNetwork(const std::string& text) {
  const Json j = Json::parse(text, nullptr, false);
  if (j.is_discarded() || !j.is_object()) throw NetworkError("the file is not a network: it is not a JSON object");
  if (!j.contains("version") || j["version"] != 1) throw NetworkError("the file is not a network of version 1");
  Network n;
  if (j.contains("units")) {
    if (!j["units"].is_string() || (j["units"] != "ft" && j["units"] != "m")) throw NetworkError("\"units\" is \"ft\" or \"m\"");
    n.units = j["units"].get<std::string>();
  }
  for (const auto& [key, member] : {std::pair{"significance", &n.significance}, {"snooping", &n.snooping}})
    if (j.contains(key)) {
      *member = number(j, "the network", key);
      if (!(*member > 0 && *member < 1)) throw NetworkError(std::string("\"") + key + "\" is a probability between 0 and 1");
    }
  Defaults d;
  if (j.contains("defaults")) {
    const Json& def = j["defaults"];
    if (def.contains("angle")) d.angle = positive(number(def, "the defaults", "angle"), "the defaults", "an angle");
    if (def.contains("distance")) d.distance = distanceSigma(def["distance"], "the defaults");
    if (def.contains("centering")) {
      d.centering = number(def, "the defaults", "centering");
      if (d.centering < 0) throw NetworkError("the defaults: a centering error is 0 or more");
    }
    if (def.contains("dh")) d.dh = positive(number(def, "the defaults", "dh"), "the defaults", "a height difference");
  }
  if (!j.contains("points") || !j["points"].is_array() || j["points"].empty()) throw NetworkError("the network has no points");
  std::map<std::string, int> index;
  for (const Json& p : j["points"]) {
    const std::string where = "point " + std::to_string(n.points.size() + 1);
    if (!p.is_object() || !p.contains("name") || !p["name"].is_string() || p["name"].get<std::string>().empty())
      throw NetworkError(where + " has no name");
    NetworkStation point;
    point.name = p["name"].get<std::string>();
    const std::string named = "point " + point.name;
    if (!index.emplace(point.name, static_cast<int>(n.points.size())).second) throw NetworkError(named + " is given twice");
    if (p.contains("northing") || p.contains("easting")) {
      point.northing = number(p, named, "northing");
      point.easting = number(p, named, "easting");
    }
    if (p.contains("elevation")) point.elevation = number(p, named, "elevation");
    if (p.contains("fixed") && !p["fixed"].is_boolean()) throw NetworkError(named + ": \"fixed\" is true or false");
    point.fixed = p.contains("fixed") && p["fixed"].get<bool>();
    if (p.contains("sigma")) {
      if (!p["sigma"].is_array() || p["sigma"].size() != 2 || !p["sigma"][0].is_number() || !p["sigma"][1].is_number())
        throw NetworkError(named + ": \"sigma\" is [σN, σE]");
      point.sigma = {positive(p["sigma"][0].get<double>(), named, "a coordinate"), positive(p["sigma"][1].get<double>(), named, "a coordinate")};
    }
    if (p.contains("sigma_z")) point.sigmaZ = positive(number(p, named, "sigma_z"), named, "an elevation");
    n.points.push_back(point);
  }
  const auto pointOf = [&](const Json& o, const std::string& where, const char* key) {
    if (!o.contains(key) || !o[key].is_string()) throw NetworkError(where + " has no \"" + key + "\" point");
    const auto at = index.find(o[key].get<std::string>());
    if (at == index.end()) throw NetworkError(where + " names point " + o[key].get<std::string>() + ", which the network does not hold");
    return at->second;
  };
  if (!j.contains("observations") || !j["observations"].is_array()) throw NetworkError("the network has no observations");
  for (const Json& o : j["observations"]) {
    Observation ob;
    ob.place = static_cast<int>(n.observations.size()) + 1;
    const std::string where = "observation " + std::to_string(ob.place);
    if (!o.is_object() || !o.contains("type") || !o["type"].is_string()) throw NetworkError(where + " has no type");
    const std::string type = o["type"].get<std::string>();
    const auto sigmaSeconds = [&] { return (o.contains("sigma") ? positive(number(o, where, "sigma"), where, "an angle") : d.angle) * kSecond; };
    const auto has = [&](int p) { return n.points[static_cast<std::size_t>(p)].northing.has_value(); };
    const auto horizontal = [&](std::initializer_list<int> ps) {
      for (int p : ps)
        if (!has(p)) throw NetworkError(where + ": point " + n.points[static_cast<std::size_t>(p)].name + " has no northing and easting");
    };
    const auto length = [&](int a, int b) {
      const NetworkStation &p = n.points[static_cast<std::size_t>(a)], &q = n.points[static_cast<std::size_t>(b)];
      return std::hypot(*q.northing - *p.northing, *q.easting - *p.easting);
    };
    if (type == "distance" || type == "slope") {
      ob.type = type == "distance" ? ObservationType::Distance : ObservationType::Slope;
      ob.from = pointOf(o, where, "from");
      ob.to = pointOf(o, where, "to");
      horizontal({ob.from, ob.to});
      ob.value = number(o, where, "value");
      if (!(ob.value > 0)) throw NetworkError(where + ": a distance must be more than 0");
      if (ob.type == ObservationType::Slope) ob.zenith = angle(o, where, "zenith");
      const auto s = o.contains("sigma") ? distanceSigma(o["sigma"], where) : d.distance;
      ob.sigma = std::sqrt(s[0] * s[0] + std::pow(s[1] * 1e-6 * ob.value, 2) + 2 * d.centering * d.centering);
    } else if (type == "angle") {
      ob.type = ObservationType::Angle;
      ob.at = pointOf(o, where, "at");
      ob.back = pointOf(o, where, "back");
      ob.fore = pointOf(o, where, "fore");
      horizontal({ob.at, ob.back, ob.fore});
      ob.value = angle(o, where, "value");
      // The centering of instrument and targets, over the sights' lengths as first approximated.
      const double a = std::max(length(ob.at, ob.back), 1e-9), b = std::max(length(ob.at, ob.fore), 1e-9);
      const double s = sigmaSeconds();
      ob.sigma = std::sqrt(s * s + 2 * d.centering * d.centering * (1 / (a * a) + 1 / (b * b)));
    } else if (type == "direction") {
      ob.type = ObservationType::Direction;
      ob.from = pointOf(o, where, "at");
      ob.to = pointOf(o, where, "to");
      horizontal({ob.from, ob.to});
      if (!o.contains("set") || !o["set"].is_number_integer()) throw NetworkError(where + ": a direction names its \"set\"");
      ob.set = o["set"].get<int>();
      ob.value = angle(o, where, "value");
      const double a = std::max(length(ob.from, ob.to), 1e-9), s = sigmaSeconds();
      ob.sigma = std::sqrt(s * s + 2 * d.centering * d.centering / (a * a));
    } else if (type == "azimuth") {
      ob.type = ObservationType::Azimuth;
      ob.from = pointOf(o, where, "from");
      ob.to = pointOf(o, where, "to");
      horizontal({ob.from, ob.to});
      ob.value = angle(o, where, "value");
      ob.sigma = sigmaSeconds();
    } else if (type == "dh") {
      ob.type = ObservationType::Dh;
      ob.from = pointOf(o, where, "from");
      ob.to = pointOf(o, where, "to");
      ob.value = number(o, where, "value");
      if (o.contains("sigma")) ob.sigma = positive(number(o, where, "sigma"), where, "a height difference");
      else if (d.dh) ob.sigma = *d.dh;
      else throw NetworkError(where + ": a height difference needs its \"sigma\" (or a \"dh\" default)");
      for (int p : {ob.from, ob.to})
        if (!n.points[static_cast<std::size_t>(p)].elevation)
          throw NetworkError(where + ": point " + n.points[static_cast<std::size_t>(p)].name + " has no elevation");
    } else {
      throw NetworkError(where + ": there is no observation type \"" + type + "\" (distance, slope, angle, direction, azimuth, dh)");
    }
    if (ob.from >= 0 && ob.from == ob.to) throw NetworkError(where + " runs from a point to itself");
    n.observations.push_back(ob);
  }
  if (j.contains("relative")) {
    n.relativeGiven = true;
    if (!j["relative"].is_array()) throw NetworkError("\"relative\" is a list of pairs of points");
    for (const Json& pair : j["relative"]) {
      if (!pair.is_array() || pair.size() != 2) throw NetworkError("\"relative\" is a list of pairs of points");
      Json both{{"a", pair[0]}, {"b", pair[1]}};
      n.relative.push_back({pointOf(both, "a relative pair", "a"), pointOf(both, "a relative pair", "b")});
    }
  }
  return n;
}

std::string observationName(const Network& n, const Observation& o) {
  const auto name = [&n](int p) { return n.points[static_cast<std::size_t>(p)].name; };
  std::string what;
  switch (o.type) {
    case ObservationType::Distance: what = "distance " + name(o.from) + "-" + name(o.to); break;
    case ObservationType::Slope: what = "slope distance " + name(o.from) + "-" + name(o.to); break;
    case ObservationType::Angle: what = "angle " + name(o.back) + "-" + name(o.at) + "-" + name(o.fore); break;
    case ObservationType::Direction: what = "direction " + name(o.from) + "-" + name(o.to) + " (set " + std::to_string(o.set) + ")"; break;
    case ObservationType::Azimuth: what = "azimuth " + name(o.from) + "-" + name(o.to); break;
    case ObservationType::Dh: what = "height difference " + name(o.from) + "-" + name(o.to); break;
  }
  return what + " (observation " + std::to_string(o.place) + ")";
}

}  // namespace tervalo
