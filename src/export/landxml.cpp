#include "export/landxml.h"

#include <pugixml.hpp>
#include <cmath>
#include <map>
#include <numbers>
#include <sstream>

#include "text/format.h"
#include "text/number.h"

namespace tervalo {
namespace {

const char* const kNamespace = "http://www.landxml.org/schema/LandXML-1.2";

}  // namespace

pugi::xml_node landXmlRoot(pugi::xml_document& doc, const XmlStamp& stamp, bool metric, const std::string& linearUnit) {
  pugi::xml_node declaration = doc.append_child(pugi::node_declaration);
  declaration.append_attribute("version") = "1.0";
  declaration.append_attribute("encoding") = "UTF-8";
  pugi::xml_node root = doc.append_child("LandXML");
  root.append_attribute("xmlns") = kNamespace;
  root.append_attribute("version") = "1.2";
  root.append_attribute("date") = stamp.date.c_str();
  root.append_attribute("time") = stamp.time.c_str();
  pugi::xml_node units = root.append_child("Units");
  if (metric) {
    pugi::xml_node m = units.append_child("Metric");
    for (const auto& [name, value] : {std::pair{"areaUnit", "squareMeter"}, {"linearUnit", "meter"},
                                      {"volumeUnit", "cubicMeter"}, {"temperatureUnit", "celsius"},
                                      {"pressureUnit", "milliBars"}, {"elevationUnit", "meter"}})
      m.append_attribute(name) = value;
  } else {
    pugi::xml_node i = units.append_child("Imperial");
    for (const auto& [name, value] : {std::pair{"areaUnit", "squareFoot"}, {"linearUnit", linearUnit.c_str()},
                                      {"volumeUnit", "cubicFeet"}, {"temperatureUnit", "fahrenheit"},
                                      {"pressureUnit", "inHG"}, {"elevationUnit", "feet"}})
      i.append_attribute(name) = value;
  }
  // Angles and directions (north azimuths) in the degrees every surveyor reads.
  pugi::xml_node unit = units.first_child();
  unit.append_attribute("angularUnit") = "decimal degrees";
  unit.append_attribute("directionUnit") = "decimal degrees";
  return root;
}

std::string landXmlText(const pugi::xml_document& doc) {
  std::ostringstream out;
  doc.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
  return out.str();
}

namespace {

std::string text(const pugi::xml_document& doc) { return landXmlText(doc); }

std::string coordinate(double v) { return Format(v, "0.0000"); }

void crsNode(pugi::xml_node root, const MapSystem& system) {
  pugi::xml_node crs = root.append_child("CoordinateSystem");
  if (system.crs.none()) {
    crs.append_attribute("name") = "local";
    crs.append_attribute("desc") = "local coordinates: no coordinate system";
  } else {
    crs.append_attribute("name") = system.name.c_str();
    crs.append_attribute("epsgCode") = std::to_string(system.crs.epsg).c_str();
    crs.append_attribute("horizontalDatum") = system.datum.c_str();
    crs.append_attribute("desc") = system.title.c_str();
  }
}

std::string number(double v) { return Format(v, "0.000000"); }

// A course's end: the point by name, or its coordinates.
void end(pugi::xml_node course, const char* which, const std::string& name, double n, double e) {
  pugi::xml_node node = course.append_child(which);
  if (!name.empty())
    node.append_attribute("pntRef") = name.c_str();
  else
    node.text() = (coordinate(n) + " " + coordinate(e)).c_str();
}

void parcelsNode(pugi::xml_node root, const std::vector<LandXmlParcel>& parcels, const std::string& title) {
  if (parcels.empty()) return;
  pugi::xml_node all = root.append_child("Parcels");
  all.append_attribute("name") = title.c_str();
  for (const LandXmlParcel& p : parcels) {
    pugi::xml_node parcel = all.append_child("Parcel");
    parcel.append_attribute("name") = p.name.c_str();
    if (!p.description.empty()) parcel.append_attribute("desc") = p.description.c_str();
    parcel.append_attribute("area") = number(p.area).c_str();
    parcel.append_attribute("distClosure") = number(p.closure).c_str();
    if (p.closureAzimuth) parcel.append_attribute("dirClosure") = number(*p.closureAzimuth).c_str();
    parcel.append_attribute("parcelType") = "aliquot";
    pugi::xml_node geometry = parcel.append_child("CoordGeom");
    const std::size_t n = p.courses.size();
    for (std::size_t i = 0; i < n; ++i) {
      const Course& c = p.courses[i];
      const std::string from = i < p.cornerNames.size() ? p.cornerNames[i] : "";
      const std::string to = p.cornerNames.size() == n ? p.cornerNames[(i + 1) % n] : "";
      pugi::xml_node course = geometry.append_child(c.curve ? "Curve" : "Line");
      if (c.curve) {
        course.append_attribute("rot") = c.right ? "cw" : "ccw";
        course.append_attribute("radius") = number(c.radius).c_str();
        course.append_attribute("length") = number(c.arc).c_str();
        course.append_attribute("delta") = number(c.delta).c_str();
        course.append_attribute("chord") = number(c.length).c_str();
        course.append_attribute("crvType") = "arc";
        end(course, "Start", from, c.fromN, c.fromE);
        end(course, "Center", "", c.centerN, c.centerE);
        end(course, "End", to, c.toN, c.toE);
      } else {
        course.append_attribute("dir") = number(c.azimuth).c_str();
        course.append_attribute("length") = number(c.length).c_str();
        end(course, "Start", from, c.fromN, c.fromE);
        end(course, "End", to, c.toN, c.toE);
      }
    }
  }
}

}  // namespace

std::string cornerLandXml(const CornerMap& map, const XmlStamp& stamp) {
  requireOneNamePerPosition(map);  // every pntRef names one point
  pugi::xml_document doc;
  const MapSystem& system = map.system;
  pugi::xml_node root = landXmlRoot(doc, stamp, system.linearUnit == "meter", system.linearUnit);
  // The system the coordinates are in, or that they are local.
  crsNode(root, system);
  pugi::xml_node points = root.append_child("CgPoints");
  points.append_attribute("name") = map.title.c_str();
  for (const MapPoint& c : map.points) {
    pugi::xml_node p = points.append_child("CgPoint");
    p.append_attribute("name") = c.name.c_str();
    p.append_attribute("desc") = c.description.c_str();
    if (!c.feature.empty()) p.append_attribute("code") = c.feature.c_str();
    p.append_attribute("role") = c.computed ? "calculated" : "user entered point";
    p.append_attribute("pntSurv") = c.computed ? "boundary" : "monument";
    p.text() = (coordinate(c.y) + " " + coordinate(c.x)).c_str();
  }
  // What a CgPoint has no attribute for, as a feature of the points named
  // after it: a restored corner's status and rule, the evidence found, and
  // in a township the surveyor's numbers for the corner.
  for (const MapPoint& c : map.points) {
    std::vector<std::pair<const char*, std::string>> said;
    if (c.status == "restored") said.insert(said.end(), {{"status", c.status}, {"rule", c.rule}});
    if (!c.evidence.empty()) said.emplace_back("evidence", c.evidence);
    if (map.uniqueNames && !c.number.empty()) said.emplace_back("pointNumber", c.number);
    for (const std::string& other : c.otherNumbers) said.emplace_back("otherPointNumber", other);
    if (said.empty()) continue;
    pugi::xml_node f = points.append_child("Feature");
    f.append_attribute("name") = c.name.c_str();
    f.append_attribute("code") = "corner";
    for (const auto& [label, value] : said) {
      pugi::xml_node property = f.append_child("Property");
      property.append_attribute("label") = label;
      property.append_attribute("value") = value.c_str();
    }
  }
  pugi::xml_node features;
  for (const std::string& group : lineGroups(map)) {
    pugi::xml_node geometry;
    for (const MapLine& l : map.lines) {
      if (l.feature != group) continue;
      if (!geometry) {  // one plan feature per line group that has lines
        if (!features) {
          features = root.append_child("PlanFeatures");
          features.append_attribute("name") = map.title.c_str();
        }
        pugi::xml_node feature = features.append_child("PlanFeature");
        feature.append_attribute("name") = group.c_str();
        geometry = feature.append_child("CoordGeom");
      }
      pugi::xml_node line = geometry.append_child("Line");
      line.append_attribute("name") = l.name.c_str();
      line.append_child("Start").append_attribute("pntRef") = map.points[l.from].name.c_str();
      line.append_child("End").append_attribute("pntRef") = map.points[l.to].name.c_str();
    }
  }
  parcelsNode(root, map.parcels, map.title);
  return text(doc);
}

std::string parcelsLandXml(const std::vector<LandXmlParcel>& parcels, const std::string& title, const MapSystem& system,
                           const XmlStamp& stamp) {
  pugi::xml_document doc;
  pugi::xml_node root = landXmlRoot(doc, stamp, system.linearUnit == "meter", system.linearUnit);
  crsNode(root, system);
  parcelsNode(root, parcels, title);
  return text(doc);
}

std::vector<LandXmlParcel> landXmlParcels(const std::string& document) {
  pugi::xml_document doc;
  if (!doc.load_string(document.c_str()) || std::string(doc.document_element().name()) != "LandXML")
    throw ExportError("the file is not a LandXML document");
  std::map<std::string, std::pair<double, double>> points;
  for (const pugi::xpath_node& x : doc.select_nodes("//CgPoint")) {
    std::istringstream in(x.node().text().get());
    double n = 0, e = 0;
    if (in >> n >> e) points[x.node().attribute("name").value()] = {n, e};
  }
  const auto place = [&points](pugi::xml_node node, const std::string& parcel) {
    if (const auto ref = node.attribute("pntRef")) {
      const auto at = points.find(ref.value());
      if (at == points.end()) throw ExportError("parcel " + parcel + " names point " + ref.value() + ", which the file does not hold");
      return at->second;
    }
    std::istringstream in(node.text().get());
    double n = 0, e = 0;
    if (!(in >> n >> e)) throw ExportError("parcel " + parcel + " has a " + node.name() + " with no coordinates");
    return std::pair{n, e};
  };
  std::vector<LandXmlParcel> out;
  for (const pugi::xpath_node& x : doc.select_nodes("//Parcel")) {
    LandXmlParcel p;
    p.name = x.node().attribute("name").value();
    p.description = x.node().attribute("desc").value();
    p.area = x.node().attribute("area").as_double();
    p.closure = x.node().attribute("distClosure").as_double();
    if (const auto dir = x.node().attribute("dirClosure")) p.closureAzimuth = dir.as_double();
    for (pugi::xml_node c : x.node().child("CoordGeom").children()) {
      const std::string kind = c.name();
      if (kind != "Line" && kind != "Curve") continue;
      const auto [fn, fe] = place(c.child("Start"), p.name);
      const auto [tn, te] = place(c.child("End"), p.name);
      Course course;
      course.fromN = fn, course.fromE = fe, course.toN = tn, course.toE = te;
      course.length = std::hypot(tn - fn, te - fe);
      course.azimuth = std::fmod(std::atan2(te - fe, tn - fn) * 180 / std::numbers::pi + 360, 360);
      if (kind == "Curve") {
        const auto [cn, ce] = place(c.child("Center"), p.name);
        course.curve = true;
        course.right = std::string(c.attribute("rot").value()) == "cw";
        course.centerN = cn, course.centerE = ce;
        course.radius = std::hypot(fn - cn, fe - ce);
        course.delta = 2 * std::asin(std::min(1.0, course.length / (2 * course.radius))) * 180 / std::numbers::pi;
        if (c.attribute("delta")) course.delta = c.attribute("delta").as_double();
        course.arc = course.radius * course.delta * std::numbers::pi / 180;
      }
      p.courses.push_back(course);
    }
    out.push_back(std::move(p));
  }
  return out;
}

std::string profileLandXml(const VerticalCurve& c, bool metric, const std::string& name, const XmlStamp& stamp) {
  pugi::xml_document doc;
  pugi::xml_node root = landXmlRoot(doc, stamp, metric);
  pugi::xml_node alignment = root.append_child("Alignments").append_child("Alignment");
  alignment.append_attribute("name") = name.c_str();
  alignment.append_attribute("length") = CStr(c.pvt - c.pvc).c_str();
  alignment.append_attribute("staStart") = CStr(c.pvc).c_str();
  pugi::xml_node profile = alignment.append_child("Profile");
  profile.append_attribute("name") = name.c_str();
  pugi::xml_node prof = profile.append_child("ProfAlign");
  prof.append_attribute("name") = name.c_str();
  auto point = [](double station, double elevation) { return CStr(station) + " " + CStr(elevation); };
  prof.append_child("PVI").text() = point(c.pvc, c.pvcElev).c_str();
  pugi::xml_node curve = prof.append_child("ParaCurve");
  curve.append_attribute("length") = CStr(c.length).c_str();
  curve.text() = point(c.pvi, c.pviElev).c_str();
  prof.append_child("PVI").text() = point(c.pvt, c.pvtElev).c_str();
  return text(doc);
}

}  // namespace tervalo
