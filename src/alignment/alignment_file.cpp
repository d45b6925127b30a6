#include "alignment/alignment_file.h"

#include <cmath>
#include <numbers>

#include "text/format.h"

#include "app/json_fields.h"

namespace tervalo {
namespace {

using Fields = JsonFields<AlignmentError>;
using Json = nlohmann::ordered_json;

double finite(const Json& j, const std::string& where, const char* key) {
  if (!j.contains(key)) throw AlignmentError(where + " has no \"" + key + "\"");
  const double v = Fields::number(j[key], where, key);
  if (!std::isfinite(v)) throw AlignmentError(where + ": \"" + key + "\" must be a finite number");
  return v;
}

double station(const Json& j, const std::string& where, const char* key) {
  if (!j.contains(key)) throw AlignmentError(where + " has no \"" + key + "\"");
  if (j[key].is_number()) return finite(j, where, key);
  if (j[key].is_string())
    if (const auto s = parseStation(j[key].get<std::string>())) return *s;
  throw AlignmentError(where + ": \"" + key + "\" must be a station (\"12+34.56\" or 1234.56)");
}

}  // namespace

AlignmentFile parseAlignmentFile(const std::string& text) {
  Json j;
  try {
    j = parseStrictJson(text);
  } catch (const std::exception& e) {
    throw AlignmentError(std::string("the file is not JSON: ") + e.what());
  }
  if (!j.is_object()) throw AlignmentError("the file is not an alignment file: it holds no object");
  Fields::refuseUnknown(j, {"version", "units", "start", "pis", "origin", "elements", "equations", "profile", "chord"}, "the file");
  if (!j.contains("version") || !j["version"].is_number_integer() || j["version"].get<int>() != 1)
    throw AlignmentError("the file: \"version\" must be 1");
  AlignmentFile f;
  AlignmentInput& a = f.alignment;
  if (j.contains("units")) {
    a.units = Fields::text(j["units"], "the file", "units");
    if (a.units != "ft" && a.units != "m") throw AlignmentError("the file: \"units\" is \"ft\" or \"m\"");
  }
  a.start = j.contains("start") ? station(j, "the file", "start") : 0;
  if (j.contains("chord")) {
    if (!j["chord"].is_boolean()) throw AlignmentError("the file: \"chord\" is true or false");
    a.chord = j["chord"].get<bool>();
  }
  if (j.contains("pis") == j.contains("elements"))
    throw AlignmentError("the file: give the alignment by its \"pis\" or by its \"elements\" (with its \"origin\"), one of the two");
  if (j.contains("elements")) {
    if (!j.contains("origin") || !j["origin"].is_object()) throw AlignmentError("the file: \"origin\" must give where the first element starts");
    const Json& o = j["origin"];
    Fields::refuseUnknown(o, {"northing", "easting", "azimuth"}, "the origin");
    if (!o.contains("azimuth")) throw AlignmentError("the origin has no \"azimuth\"");
    Element first;
    first.northing = finite(o, "the origin", "northing");
    first.easting = finite(o, "the origin", "easting");
    first.azimuth = Fields::angle(o["azimuth"], "the origin", "azimuth") * std::numbers::pi / 180;
    if (!j["elements"].is_array() || j["elements"].empty()) throw AlignmentError("the file: \"elements\" must list the elements");
    for (std::size_t i = 0; i < j["elements"].size(); ++i) {
      const Json& e = j["elements"][i];
      const std::string where = "element " + std::to_string(i + 1);
      if (!e.is_object() || !e.contains("type") || !e["type"].is_string())
        throw AlignmentError(where + " must be an object with its \"type\": line, arc or spiral");
      const std::string type = e["type"].get<std::string>();
      Element el = i == 0 ? first : Element{};
      el.length = finite(e, where, "length");
      if (!(el.length > 0)) throw AlignmentError(where + ": a length of " + Format(el.length, "0.000") + "; it must be more than 0");
      double sign = 0;
      if (type != "line") {
        if (!e.contains("turn") || !e["turn"].is_string() || (e["turn"] != "L" && e["turn"] != "R"))
          throw AlignmentError(where + ": \"turn\" is \"L\" or \"R\"");
        sign = e["turn"] == "R" ? 1 : -1;
      }
      const auto radius = [&](const char* key) {
        const double r = finite(e, where, key);
        if (!(r > 0)) throw AlignmentError(where + ": a radius of " + Format(r, "0.000") + "; a radius is more than 0");
        return sign / r;
      };
      if (type == "line") {
        Fields::refuseUnknown(e, {"type", "length"}, where);
        el.kind = ElementKind::Line;
      } else if (type == "arc") {
        Fields::refuseUnknown(e, {"type", "length", "radius", "turn"}, where);
        el.kind = ElementKind::Arc;
        el.k0 = el.k1 = radius("radius");
      } else if (type == "spiral") {
        Fields::refuseUnknown(e, {"type", "length", "radius_start", "radius_end", "turn"}, where);
        el.kind = ElementKind::Spiral;
        if (!e.contains("radius_start") && !e.contains("radius_end"))
          throw AlignmentError(where + ": a spiral runs to or from a radius: give \"radius_start\" or \"radius_end\" (none is a tangent)");
        el.k0 = e.contains("radius_start") ? radius("radius_start") : 0;
        el.k1 = e.contains("radius_end") ? radius("radius_end") : 0;
        if (el.k0 == el.k1) throw AlignmentError(where + ": a spiral's two radii differ; one radius throughout is an arc");
      } else {
        throw AlignmentError(where + ": \"type\" is line, arc or spiral, not \"" + type + "\"");
      }
      f.elements.push_back(el);
    }
  } else {
    if (!j.contains("pis") || !j["pis"].is_array()) throw AlignmentError("the file: \"pis\" must list the PIs");
    for (std::size_t i = 0; i < j["pis"].size(); ++i) {
      const Json& p = j["pis"][i];
      const std::string where = "PI " + std::to_string(i + 1);
      if (!p.is_object()) throw AlignmentError(where + " must be an object");
      Fields::refuseUnknown(p, {"northing", "easting", "radius", "spiral_in", "spiral_out"}, where);
      AlignmentPi pi;
      pi.northing = finite(p, where, "northing");
      pi.easting = finite(p, where, "easting");
      if (p.contains("radius")) pi.radius = finite(p, where, "radius");
      if (p.contains("spiral_in")) pi.spiralIn = finite(p, where, "spiral_in");
      if (p.contains("spiral_out")) pi.spiralOut = finite(p, where, "spiral_out");
      a.pis.push_back(pi);
    }
  }
  if (j.contains("equations")) {
    if (!j["equations"].is_array()) throw AlignmentError("the file: \"equations\" must list the station equations");
    for (std::size_t i = 0; i < j["equations"].size(); ++i) {
      const Json& q = j["equations"][i];
      const std::string where = "station equation " + std::to_string(i + 1);
      if (!q.is_object()) throw AlignmentError(where + " must be an object");
      Fields::refuseUnknown(q, {"back", "ahead"}, where);
      a.equations.push_back({station(q, where, "back"), station(q, where, "ahead")});
    }
  }
  if (j.contains("profile")) {
    if (!j["profile"].is_array()) throw AlignmentError("the file: \"profile\" must list the VPIs");
    for (std::size_t i = 0; i < j["profile"].size(); ++i) {
      const Json& v = j["profile"][i];
      const std::string where = "VPI " + std::to_string(i + 1);
      if (!v.is_object()) throw AlignmentError(where + " must be an object");
      Fields::refuseUnknown(v, {"station", "elevation", "length", "length_in", "length_out"}, where);
      Vpi vpi;
      vpi.station = station(v, where, "station");
      vpi.elevation = finite(v, where, "elevation");
      if (v.contains("length")) {
        if (v.contains("length_in") || v.contains("length_out"))
          throw AlignmentError(where + ": give \"length\" (symmetric) or \"length_in\" and \"length_out\", not both");
        vpi.lengthIn = vpi.lengthOut = finite(v, where, "length") / 2;
      } else {
        if (v.contains("length_in")) vpi.lengthIn = finite(v, where, "length_in");
        if (v.contains("length_out")) vpi.lengthOut = finite(v, where, "length_out");
      }
      f.profile.push_back(vpi);
    }
  }
  return f;
}

Alignment alignmentOf(const AlignmentFile& f) {
  if (f.elements.empty()) return Alignment(f.alignment);
  // Each element from the end of the one before; the equations where their back stations fall.
  std::vector<Element> chain;
  for (const Element& e : f.elements) {
    Element next = e;
    if (!chain.empty()) {
      const Element& before = chain.back();
      const Pose end = poseOn(before, before.length);
      next.northing = end.northing, next.easting = end.easting, next.azimuth = end.azimuth * std::numbers::pi / 180;
    }
    chain.push_back(next);
  }
  std::vector<double> along;
  double offset = f.alignment.start;
  for (std::size_t j = 0; j < f.alignment.equations.size(); ++j) {
    along.push_back(f.alignment.equations[j].back - offset);
    offset += f.alignment.equations[j].ahead - f.alignment.equations[j].back;
  }
  return Alignment(f.alignment, chain, along);
}

}  // namespace tervalo
