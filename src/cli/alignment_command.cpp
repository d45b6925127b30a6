#include "cli/alignment_command.h"

#include <cmath>
#include <iostream>
#include <numbers>

#include <nlohmann/json.hpp>

#include <filesystem>

#include "alignment/alignment_dxf.h"
#include "alignment/alignment_file.h"
#include "alignment/alignment_landxml.h"
#include "export/export_file.h"
#include "text/date.h"
#include "app/json_text.h"
#include "app/runner.h"
#include "text/angle.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/input_file.h"
#include "text/justify.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;
constexpr double kDeg = std::numbers::pi / 180;

std::string fixed(double v, const char* pattern) { return FormatShown(v, pattern); }

std::string elementName(const Alignment& a, int i) {
  const Element& e = a.elements()[static_cast<std::size_t>(i)];
  if (e.kind == ElementKind::Line) return "tangent";
  const std::string pi = "PI " + std::to_string(e.pi + 1);
  if (e.kind == ElementKind::Arc) return "curve at " + pi;
  return std::string(e.k0 == 0 ? "spiral in" : "spiral out") + " at " + pi;
}

// The deflection from the curve's start (its PC or TS) and the chord to a
// point `along` on the curve of PI `pi`, as a curve is staked from its start.
std::optional<std::pair<double, double>> deflection(const Alignment& a, double along) {
  for (const KeyPoint& k : a.keyPoints()) {
    if (k.name != "PC" && k.name != "TS") continue;
    const auto end = std::find_if(a.keyPoints().begin(), a.keyPoints().end(),
                                  [&](const KeyPoint& x) { return x.pi == k.pi && (x.name == "PT" || x.name == "ST"); });
    if (end == a.keyPoints().end() || along < k.along || along > end->along) continue;
    const Pose start = a.at(k.along), p = a.at(along);
    const double chord = std::hypot(p.northing - start.northing, p.easting - start.easting);
    if (chord == 0) return std::pair{0.0, 0.0};
    double d = std::atan2(p.easting - start.easting, p.northing - start.northing) / kDeg - start.azimuth;
    while (d > 180) d -= 360;
    while (d <= -180) d += 360;
    return std::pair{d, chord};
  }
  return std::nullopt;
}

}  // namespace

int alignmentCommand(const std::string& file, const AlignmentQuery& q, std::ostream& out, std::ostream& err) {
  try {
    // An alignment file, or the first alignment of a LandXML file.
    std::string name = std::filesystem::path(file).stem().string();
    if (name.ends_with(".alignment")) name.erase(name.size() - 10);
    LandXmlAlignment read = readAlignment(readInputFile(file), upper(std::filesystem::path(file).extension().string()) == ".XML" ? "landxml" : "alignment", name);
    const std::vector<Vpi>& vpis = read.profile;
    name = read.name;
    const Alignment& a = read.alignment;
    std::optional<Profile> profile;
    if (!vpis.empty()) profile.emplace(vpis, a);
    const std::string unit = a.input().units;
    if (!q.landxml.empty()) {
      try {
        writeDocument(q.landxml, alignmentLandXml(a, profile ? &*profile : nullptr, name, stampOf(localToday())));
      } catch (const RunTimeError& e) {
        err << "tervalo-cli: " << q.landxml << ": " << e.what() << "\n";
        return kExitEnded;
      }
    }
    if (!q.dxf.empty()) {
      try {
        writeAlignmentDxf(a, q.dxf);
      } catch (const RunTimeError& e) {
        err << "tervalo-cli: " << q.dxf << ": " << e.what() << "\n";
        return kExitEnded;
      }
    }

    if (q.station) {
      const auto station = parseStation(*q.station);
      if (!station) throw AlignmentError("--station: \"" + *q.station + "\" is no station (12+34.56 or 1234.56)");
      const double along = a.alongAt(*station);
      const Pose p = a.at(along, q.offset);
      Json j{{"station", a.stationText(*station)}, {"offset", q.offset}, {"northing", p.northing}, {"easting", p.easting}, {"azimuth", a.at(along).azimuth}};
      if (profile && profile->covers(along)) {
        const ProfilePoint z = profile->at(along);
        j["elevation"] = z.elevation;
        j["grade"] = z.grade * 100;
      }
      if (q.json) {
        out << jsonText(j) << "\n";
      } else {
        out << "Station " << a.stationText(*station) << (q.offset != 0 ? ", offset " + fixed(std::fabs(q.offset), "0.000") + (q.offset > 0 ? " right" : " left") : "")
            << ": N " << fixed(p.northing, "0.0000") << "  E " << fixed(p.easting, "0.0000") << "  tangent azimuth "
            << decimalToDmsCarried(a.at(along).azimuth);
        if (j.contains("elevation")) out << "  elevation " << fixed(j["elevation"].get<double>(), "0.000") << "  grade " << fixed(j["grade"].get<double>(), "0.000") << " %";
        out << "\n";
      }
      return 0;
    }
    if (q.point) {
      const std::vector<Projection> found = a.project(q.point->first, q.point->second);
      Json list = Json::array();
      for (const Projection& p : found)
        list.push_back({{"station", a.stationText(a.stationAt(p.along))}, {"offset", p.offset}, {"element", elementName(a, p.element)}});
      if (q.json) {
        out << jsonText(list.size() == 1 ? list[0] : list) << "\n";
      } else {
        if (found.size() > 1) out << "The point projects onto " << found.size() << " elements, the nearest first:\n";
        for (const Json& p : list)
          out << "Station " << p["station"].get<std::string>() << "  offset " << fixed(std::fabs(p["offset"].get<double>()), "0.000")
              << (p["offset"].get<double>() >= 0 ? " right" : " left") << "  on the " << p["element"].get<std::string>() << "\n";
      }
      return 0;
    }
    if (q.every) {
      if (!(*q.every > 0)) throw AlignmentError("--every: the interval must be more than 0");
      if (a.length() / *q.every > 100000) throw AlignmentError("--every " + fixed(*q.every, "0.###") + " would list more than 100,000 stations");
      // Every round station at the interval, and every key point, in order along.
      std::vector<std::pair<double, std::string>> stops;
      for (const KeyPoint& k : a.keyPoints()) stops.push_back({k.along, k.name});
      const double first = a.stationAt(0);
      for (double s = std::ceil(first / *q.every - 1e-9) * *q.every; s <= a.stationAt(a.length()) + 1e-9; s += *q.every) {
        try {
          stops.push_back({a.alongAt(s), ""});
        } catch (const AlignmentError&) {  // a station in an equation's gap is no point
        }
      }
      std::stable_sort(stops.begin(), stops.end(), [](const auto& x, const auto& y) { return x.first < y.first; });
      Json list = Json::array();
      if (!q.json)
        out << leftJustify("Station", 12) << leftJustify("Point", 6) << rightJustify("Northing", 14) << rightJustify("Easting", 14)
            << rightJustify("Deflection", 15) << rightJustify("Chord", 11) << (q.offset != 0 ? rightJustify("Left N", 14) + rightJustify("Left E", 14) +
                                                                                       rightJustify("Right N", 14) + rightJustify("Right E", 14)
                                                                                 : std::string())
            << "\n";
      for (std::size_t i = 0; i < stops.size(); ++i) {
        const auto& [along, key] = stops[i];
        if (i > 0 && key.empty() && std::fabs(stops[i - 1].first - along) < 1e-6) continue;  // a round station at a key point: once
        const Pose p = a.at(along);
        Json j{{"station", a.stationText(a.stationAt(along))}, {"name", key}, {"northing", p.northing}, {"easting", p.easting}};
        const auto d = deflection(a, along);
        if (d) j["deflection"] = d->first, j["chord"] = d->second;
        if (q.offset != 0) {
          const Pose l = a.at(along, -std::fabs(q.offset)), r = a.at(along, std::fabs(q.offset));
          j["left"] = {{"northing", l.northing}, {"easting", l.easting}};
          j["right"] = {{"northing", r.northing}, {"easting", r.easting}};
        }
        if (profile && profile->covers(along)) j["elevation"] = profile->at(along).elevation;
        if (!q.json) {
          std::string line = leftJustify(j["station"].get<std::string>(), 12) + leftJustify(key, 6) + rightJustify(fixed(p.northing, "0.0000"), 14) +
                             rightJustify(fixed(p.easting, "0.0000"), 14) +
                             rightJustify(d ? decimalToDmsCarried(std::fabs(d->first)) + (d->first < 0 ? "L" : "R") : "", 15) +
                             rightJustify(d ? fixed(d->second, "0.000") : "", 11);
          if (q.offset != 0)
            line += rightJustify(fixed(j["left"]["northing"].get<double>(), "0.0000"), 14) + rightJustify(fixed(j["left"]["easting"].get<double>(), "0.0000"), 14) +
                    rightJustify(fixed(j["right"]["northing"].get<double>(), "0.0000"), 14) +
                    rightJustify(fixed(j["right"]["easting"].get<double>(), "0.0000"), 14);
          line.erase(line.find_last_not_of(' ') + 1);
          out << line << "\n";
        }
        list.push_back(j);
      }
      if (q.json) out << jsonText(Json{{"stakeout", list}}) << "\n";
      return 0;
    }

    // The alignment itself: its key points and curves, and the profile's.
    Json keys = Json::array();
    for (const KeyPoint& k : a.keyPoints())
      keys.push_back({{"name", k.name}, {"station", a.stationText(a.stationAt(k.along))}, {"northing", k.northing}, {"easting", k.easting}});
    Json curves = Json::array();
    for (const PiCurve& c : a.curves()) {
      Json j{{"pi", c.pi + 1}, {"delta", c.delta}, {"radius", c.radius}, {"degree", c.degree}, {"tangent_in", c.tangentIn},
             {"tangent_out", c.tangentOut}, {"circle_delta", c.circleDelta}, {"length", c.circleLength}, {"external", c.external},
             {"mid_ordinate", c.midOrdinate}, {"chord", c.chord}};
      for (const auto& [key, s] : {std::pair{"spiral_in", &c.in}, {"spiral_out", &c.out}})
        j[key] = *s ? Json{{"length", (*s)->length}, {"theta", (*s)->theta}, {"x", (*s)->x}, {"y", (*s)->y}, {"p", (*s)->p},
                           {"k", (*s)->k}, {"long_tangent", (*s)->longTangent}, {"short_tangent", (*s)->shortTangent}}
                    : Json(nullptr);
      curves.push_back(j);
    }
    Json vertical = Json::array();
    if (profile)
      for (const VerticalCurveData& c : profile->curves()) {
        Json j{{"vpi", c.vpi + 1}, {"pvc", a.stationText(a.stationAt(c.pvc))}, {"pvt", a.stationText(a.stationAt(c.pvt))},
               {"pvc_elevation", c.pvcElevation}, {"pvt_elevation", c.pvtElevation}, {"g1", c.g1 * 100}, {"g2", c.g2 * 100}, {"k", c.k}};
        if (c.turning) j["turning"] = {{"station", a.stationText(a.stationAt(*c.turning))}, {"elevation", *c.turningElevation}};
        vertical.push_back(j);
      }
    if (q.json) {
      Json j{{"units", unit}, {"length", a.length()}, {"key_points", keys}, {"curves", curves}};
      if (profile) j["vertical_curves"] = vertical;
      out << jsonText(j) << "\n";
      return 0;
    }
    out << "Alignment " << file << ": " << fixed(a.length(), "0.000") << " " << unit << ", " << a.stationText(a.stationAt(0)) << " to "
        << a.stationText(a.stationAt(a.length())) << "\n\n";
    out << leftJustify("Point", 7) << leftJustify("Station", 12) << rightJustify("Northing", 14) << rightJustify("Easting", 14) << "\n";
    for (const Json& k : keys)
      out << leftJustify(k["name"].get<std::string>(), 7) << leftJustify(k["station"].get<std::string>(), 12)
          << rightJustify(fixed(k["northing"].get<double>(), "0.0000"), 14) << rightJustify(fixed(k["easting"].get<double>(), "0.0000"), 14) << "\n";
    for (const PiCurve& c : a.curves()) {
      out << "\nPI " << c.pi + 1 << ": delta " << decimalToDmsCarried(std::fabs(c.delta)) << (c.delta > 0 ? " RT" : " LT") << "  R "
          << fixed(c.radius, "0.000") << "  D " << decimalToDmsCarried(c.degree) << "  T " << fixed(c.tangentIn, "0.000");
      if (c.tangentOut != c.tangentIn) out << " / " << fixed(c.tangentOut, "0.000");
      out << "  Lc " << fixed(c.circleLength, "0.000") << "  delta c " << decimalToDmsCarried(c.circleDelta) << "\n";
      for (const auto& [word, s] : {std::pair{"spiral in ", &c.in}, {"spiral out", &c.out}})
        if (*s)
          out << "  " << word << ": Ls " << fixed((*s)->length, "0.000") << "  theta " << decimalToDmsCarried((*s)->theta) << "  X "
              << fixed((*s)->x, "0.000") << "  Y " << fixed((*s)->y, "0.000") << "  p " << fixed((*s)->p, "0.000") << "  k " << fixed((*s)->k, "0.000")
              << "  LT " << fixed((*s)->longTangent, "0.000") << "  ST " << fixed((*s)->shortTangent, "0.000") << "\n";
    }
    for (const Json& c : vertical) {
      out << "\nVPI " << c["vpi"].get<int>() << ": PVC " << c["pvc"].get<std::string>() << " (" << fixed(c["pvc_elevation"].get<double>(), "0.000")
          << ")  PVT " << c["pvt"].get<std::string>() << " (" << fixed(c["pvt_elevation"].get<double>(), "0.000") << ")  grades "
          << fixed(c["g1"].get<double>(), "0.000") << " % to " << fixed(c["g2"].get<double>(), "0.000") << " %  K " << fixed(c["k"].get<double>(), "0.0");
      if (c.contains("turning"))
        out << "  " << (c["g1"].get<double>() > 0 ? "high" : "low") << " point " << c["turning"]["station"].get<std::string>() << " ("
            << fixed(c["turning"]["elevation"].get<double>(), "0.000") << ")";
      out << "\n";
    }
    return 0;
  } catch (const AlignmentError& e) {
    err << "tervalo-cli: " << file << ": " << e.what() << "\n";
  } catch (const InputFileError& e) {
    err << "tervalo-cli: " << file << ": " << e.what() << "\n";
  }
  return kExitUsage;
}

}  // namespace tervalo
