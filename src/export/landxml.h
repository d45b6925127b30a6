#pragma once
// LandXML 1.2 documents for design and survey packages: the corners and
// lines of a subdivided section, and the profile of a vertical curve.
// Built with pugixml, never by pasting text.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "export/corner_map.h"
#include "parcels/deed.h"
#include "vcurve/vertical_curve.h"

namespace tervalo {

// When the document was made, as LandXML wants it: "2026-11-21", "14:05:00".
struct XmlStamp {
  std::string date;
  std::string time;
};

// For every LandXML writer: the declaration and the LandXML 1.2 root with
// its Units (feet as `linearUnit` says, or metres) in decimal degrees; and
// the document as text, indented, UTF-8.
pugi::xml_node landXmlRoot(pugi::xml_document& doc, const XmlStamp& stamp, bool metric, const std::string& linearUnit = "USSurveyFoot");
std::string landXmlText(const pugi::xml_document& doc);

// Units in the map's linear unit (US survey feet where no system says
// otherwise) and its CoordinateSystem ("local" where none is chosen); one CgPoint per present position ("northing
// easting", the corner description, the feature code; entered corners as
// monuments, computed ones as calculated boundary points); the section,
// quarter and sixteenth lines as one PlanFeature per line group, each line
// referring to its end points by name.
// The map's parcels each as a Parcel of CoordGeom lines and curves between
// the points by name, with its area and closure.
std::string cornerLandXml(const CornerMap& map, const XmlStamp& stamp);

using LandXmlParcel = MapParcel;

// Parcels alone (a mapcheck, a set of parcels), in the map's system and unit.
std::string parcelsLandXml(const std::vector<LandXmlParcel>& parcels, const std::string& title, const MapSystem& system,
                           const XmlStamp& stamp);

// The parcels of a LandXML document, their courses followed from the file's
// Start, Center and End (a pntRef looked up among its CgPoints), for reading
// back what another program wrote. ExportError for a document that is not
// LandXML or a Parcel that cannot be followed.
std::vector<LandXmlParcel> landXmlParcels(const std::string& text);

// One alignment named `name` from the PVC over the curve's length, whose
// profile holds the PVC and PVT as PVIs and the curve as a ParaCurve at
// its PVI. Stations and elevations as plain numbers; units in feet, or in
// metres for a metric curve.
std::string profileLandXml(const VerticalCurve& curve, bool metric, const std::string& name, const XmlStamp& stamp);

}  // namespace tervalo
