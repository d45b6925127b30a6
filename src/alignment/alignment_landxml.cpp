#include "alignment/alignment_landxml.h"

#include <cmath>
#include <numbers>

#include "alignment/alignment_file.h"
#include "text/format.h"
#include "text/number.h"

namespace tervalo {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kDegree = kPi / 180;

std::string numberText(double v) { return Format(v, "0.0#########"); }
std::string point(double n, double e) { return numberText(n) + " " + numberText(e); }

// An element's name without its namespace prefix.
std::string local(const pugi::xml_node& n) {
  const std::string name = n.name();
  const auto colon = name.find(':');
  return colon == std::string::npos ? name : name.substr(colon + 1);
}

pugi::xml_node child(const pugi::xml_node& n, const char* name) {
  for (pugi::xml_node c : n.children())
    if (local(c) == name) return c;
  return {};
}

std::vector<double> numbers(const std::string& text, const std::string& where, std::size_t least) {
  std::vector<double> out;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t start = text.find_first_not_of(" \t\r\n,", at);
    if (start == std::string::npos) break;
    const std::size_t end = text.find_first_of(" \t\r\n,", start);
    const auto v = finiteNumber(text.substr(start, end == std::string::npos ? std::string::npos : end - start));
    if (!v) throw AlignmentError(where + ": \"" + text + "\" is not a list of numbers");
    out.push_back(*v);
    at = end == std::string::npos ? text.size() : end;
  }
  if (out.size() < least) throw AlignmentError(where + ": \"" + text + "\" gives fewer than " + std::to_string(least) + " numbers");
  return out;
}

double attribute(const pugi::xml_node& n, const char* name, const std::string& where) {
  const pugi::xml_attribute a = n.attribute(name);
  if (!a) throw AlignmentError(where + " has no " + name);
  const std::string t = a.value();
  if (t == "INF" || t == "-INF") return 0;  // an infinite radius: no curvature
  const auto v = finiteNumber(t);
  if (!v) throw AlignmentError(where + ": " + name + " \"" + t + "\" is not a number");
  return *v;
}

std::pair<double, double> coordinates(const pugi::xml_node& n, const char* name, const std::string& where) {
  const pugi::xml_node c = child(n, name);
  if (!c) throw AlignmentError(where + " has no " + name);
  const auto v = numbers(c.text().get(), where + " " + name, 2);
  return {v[0], v[1]};  // northing easting
}

double azimuthOf(std::pair<double, double> from, std::pair<double, double> to) {
  return std::atan2(to.second - from.second, to.first - from.first);
}

}  // namespace

std::string alignmentLandXml(const Alignment& a, const Profile* profile, const std::string& name, const XmlStamp& stamp) {
  const bool metric = a.input().units == "m";
  pugi::xml_document doc;
  pugi::xml_node root = landXmlRoot(doc, stamp, metric);
  pugi::xml_node al = root.append_child("Alignments").append_child("Alignment");
  al.append_attribute("name") = name.c_str();
  al.append_attribute("length") = numberText(a.length()).c_str();
  al.append_attribute("staStart") = numberText(a.input().start).c_str();
  pugi::xml_node geom = al.append_child("CoordGeom");
  for (const Element& e : a.elements()) {
    const double internal = a.input().start + e.start;
    const auto put = [](pugi::xml_node n, const char* what, double northing, double easting) { n.append_child(what).text() = point(northing, easting).c_str(); };
    if (e.kind == ElementKind::Line) {
      pugi::xml_node l = geom.append_child("Line");
      l.append_attribute("staStart") = numberText(internal).c_str();
      l.append_attribute("length") = numberText(e.length).c_str();
      put(l, "Start", e.northing, e.easting);
      put(l, "End", e.endNorthing, e.endEasting);
      continue;
    }
    const char* rot = (e.kind == ElementKind::Arc ? e.k0 : e.k0 + e.k1) > 0 ? "cw" : "ccw";
    if (e.kind == ElementKind::Arc) {
      const double radius = 1 / std::fabs(e.k0), delta = std::fabs(e.k0) * e.length * e.arcScale;
      pugi::xml_node c = geom.append_child("Curve");
      c.append_attribute("rot") = rot;
      c.append_attribute("crvType") = e.arcScale != 1 ? "chord" : "arc";
      c.append_attribute("radius") = numberText(radius).c_str();
      c.append_attribute("length") = numberText(e.length).c_str();
      c.append_attribute("delta") = numberText(delta / kDegree).c_str();
      c.append_attribute("staStart") = numberText(internal).c_str();
      const double right = e.azimuth + kPi / 2;
      const double tangent = radius * std::tan(delta / 2);
      put(c, "Start", e.northing, e.easting);
      put(c, "Center", e.northing + std::cos(right) / e.k0, e.easting + std::sin(right) / e.k0);
      put(c, "End", e.endNorthing, e.endEasting);
      put(c, "PI", e.northing + tangent * std::cos(e.azimuth), e.easting + tangent * std::sin(e.azimuth));
      continue;
    }
    pugi::xml_node s = geom.append_child("Spiral");
    s.append_attribute("length") = numberText(e.length).c_str();
    s.append_attribute("radiusEnd") = e.k1 == 0 ? "INF" : numberText(1 / std::fabs(e.k1)).c_str();
    s.append_attribute("radiusStart") = e.k0 == 0 ? "INF" : numberText(1 / std::fabs(e.k0)).c_str();
    s.append_attribute("rot") = rot;
    s.append_attribute("spiType") = "clothoid";
    s.append_attribute("staStart") = numberText(internal).c_str();
    // The spiral's PI: where its start and end tangents meet.
    const double turn = e.endAzimuth - e.azimuth;
    const double dn = e.endNorthing - e.northing, de = e.endEasting - e.easting;
    const double cross = std::sin(e.endAzimuth - e.azimuth);
    const double along = std::fabs(cross) > 1e-15 ? (dn * std::sin(e.endAzimuth) - de * std::cos(e.endAzimuth)) /
                                                        (std::cos(e.azimuth) * std::sin(e.endAzimuth) - std::sin(e.azimuth) * std::cos(e.endAzimuth))
                                                  : e.length / 2;
    s.append_attribute("theta") = numberText(std::fabs(turn) / kDegree).c_str();
    put(s, "Start", e.northing, e.easting);
    put(s, "PI", e.northing + along * std::cos(e.azimuth), e.easting + along * std::sin(e.azimuth));
    put(s, "End", e.endNorthing, e.endEasting);
  }
  double shift = a.input().start;
  for (std::size_t j = 0; j < a.input().equations.size(); ++j) {
    const StationEquation& q = a.input().equations[j];
    const double internal = q.back - shift + a.input().start;
    shift += q.ahead - q.back;
    pugi::xml_node eq = al.append_child("StaEquation");
    eq.append_attribute("staAhead") = numberText(q.ahead).c_str();
    eq.append_attribute("staBack") = numberText(q.back).c_str();
    eq.append_attribute("staInternal") = numberText(internal).c_str();
    eq.append_attribute("staIncrement") = "increasing";
  }
  if (profile) {
    pugi::xml_node p = al.append_child("Profile");
    p.append_attribute("name") = name.c_str();
    pugi::xml_node prof = p.append_child("ProfAlign");
    prof.append_attribute("name") = name.c_str();
    for (std::size_t i = 0; i < profile->vpis().size(); ++i) {
      const Vpi& v = profile->vpis()[i];
      // A profile's stations are internal stations: the start plus the distance along.
      const std::string text = numberText(a.input().start + profile->vpiAlong()[i]) + " " + numberText(v.elevation);
      if (v.lengthIn + v.lengthOut <= 0) {
        prof.append_child("PVI").text() = text.c_str();
      } else if (std::fabs(v.lengthIn - v.lengthOut) < 1e-12) {
        pugi::xml_node c = prof.append_child("ParaCurve");
        c.append_attribute("length") = numberText(v.lengthIn + v.lengthOut).c_str();
        c.text() = text.c_str();
      } else {
        pugi::xml_node c = prof.append_child("UnsymParaCurve");
        c.append_attribute("lengthIn") = numberText(v.lengthIn).c_str();
        c.append_attribute("lengthOut") = numberText(v.lengthOut).c_str();
        c.text() = text.c_str();
      }
    }
  }
  return landXmlText(doc);
}

std::vector<LandXmlAlignment> landXmlAlignments(const std::string& text) {
  pugi::xml_document doc;
  if (!doc.load_string(text.c_str())) throw AlignmentError("the file is not XML");
  const pugi::xml_node root = doc.document_element();
  if (local(root) != "LandXML") throw AlignmentError("the file is not LandXML: its root is <" + std::string(root.name()) + ">");
  std::string units = "ft";
  if (const pugi::xml_node u = child(root, "Units"); child(u, "Metric")) units = "m";
  std::vector<LandXmlAlignment> out;
  for (pugi::xml_node group : root.children()) {
    if (local(group) != "Alignments") continue;
    for (pugi::xml_node al : group.children()) {
      if (local(al) != "Alignment") continue;
      const std::string name = al.attribute("name").value();
      const std::string where = "alignment \"" + name + "\"";
      AlignmentInput in;
      in.units = units;
      in.start = attribute(al, "staStart", where);
      std::vector<Element> elements;
      const pugi::xml_node geom = child(al, "CoordGeom");
      if (!geom) throw AlignmentError(where + " has no CoordGeom");
      int index = 0;
      for (pugi::xml_node g : geom.children()) {
        const std::string kind = local(g);
        if (kind != "Line" && kind != "Curve" && kind != "Spiral") continue;
        const std::string at = where + ", element " + std::to_string(++index) + " (" + kind + ")";
        Element e;
        const auto start = coordinates(g, "Start", at), end = coordinates(g, "End", at);
        e.northing = start.first, e.easting = start.second;
        if (kind == "Line") {
          e.kind = ElementKind::Line;
          e.azimuth = azimuthOf(start, end);
          e.length = std::hypot(end.first - start.first, end.second - start.second);
        } else if (kind == "Curve") {
          e.kind = ElementKind::Arc;
          const auto centre = coordinates(g, "Center", at);
          const std::string rot = g.attribute("rot").value();
          if (rot != "cw" && rot != "ccw") throw AlignmentError(at + ": rot \"" + rot + "\" is neither cw nor ccw");
          const double sign = rot == "cw" ? 1 : -1;
          const double radius = std::hypot(start.first - centre.first, start.second - centre.second);
          if (!(radius > 0)) throw AlignmentError(at + ": its Start is at its Center");
          const double from = azimuthOf(centre, start), to = azimuthOf(centre, end);
          double sweep = std::fmod(sign * (to - from) + 4 * kPi, 2 * kPi);
          if (sweep < 1e-12) sweep = 2 * kPi;
          e.azimuth = from + sign * kPi / 2;
          e.k0 = e.k1 = sign / radius;
          const double geometric = radius * sweep;
          e.length = geometric;
          if (std::string(g.attribute("crvType").value()) == "chord" && g.attribute("length")) {
            e.length = attribute(g, "length", at);
            e.arcScale = geometric / e.length;
          }
        } else {
          e.kind = ElementKind::Spiral;
          const std::string rot = g.attribute("rot").value();
          if (rot != "cw" && rot != "ccw") throw AlignmentError(at + ": rot \"" + rot + "\" is neither cw nor ccw");
          const double sign = rot == "cw" ? 1 : -1;
          const double r0 = attribute(g, "radiusStart", at), r1 = attribute(g, "radiusEnd", at);
          e.k0 = r0 == 0 ? 0 : sign / std::fabs(r0);
          e.k1 = r1 == 0 ? 0 : sign / std::fabs(r1);
          e.length = attribute(g, "length", at);
          e.azimuth = azimuthOf(start, coordinates(g, "PI", at));
        }
        elements.push_back(e);
      }
      // Station equations at their internal stations, in order.
      std::vector<double> along;
      for (pugi::xml_node q : al.children()) {
        if (local(q) != "StaEquation") continue;
        const std::string at = where + ", station equation " + std::to_string(along.size() + 1);
        const double internal = attribute(q, "staInternal", at), ahead = attribute(q, "staAhead", at);
        double shift = in.start;
        for (const StationEquation& e : in.equations) shift += e.ahead - e.back;
        const double back = q.attribute("staBack") ? attribute(q, "staBack", at) : internal - in.start + shift;
        in.equations.push_back({back, ahead});
        along.push_back(internal - in.start);
      }
      LandXmlAlignment a{name, Alignment(in, elements, along), {}};
      // The first profile's PVIs, their internal stations shown as stations.
      if (const pugi::xml_node prof = child(child(al, "Profile"), "ProfAlign")) {
        for (pugi::xml_node v : prof.children()) {
          const std::string kind = local(v);
          if (kind != "PVI" && kind != "ParaCurve" && kind != "UnsymParaCurve") continue;
          const std::string at = where + ", profile " + kind;
          const auto se = numbers(v.text().get(), at, 2);
          Vpi vpi;
          vpi.station = a.alignment.stationAt(se[0] - in.start);
          vpi.elevation = se[1];
          if (kind == "ParaCurve") vpi.lengthIn = vpi.lengthOut = attribute(v, "length", at) / 2;
          if (kind == "UnsymParaCurve") vpi.lengthIn = attribute(v, "lengthIn", at), vpi.lengthOut = attribute(v, "lengthOut", at);
          a.profile.push_back(vpi);
        }
      }
      out.push_back(std::move(a));
    }
  }
  if (out.empty()) throw AlignmentError("the LandXML file holds no alignment");
  return out;
}

LandXmlAlignment readAlignment(const std::string& text, const std::string& format, const std::string& name) {
  if (format == "landxml") {
    LandXmlAlignment first = std::move(landXmlAlignments(text)[0]);
    if (first.name.empty()) first.name = name;
    return first;
  }
  const AlignmentFile f = parseAlignmentFile(text);
  return {name, alignmentOf(f), f.profile};
}

}  // namespace tervalo
