#pragma once
// Alignments in LandXML: written as CoordGeom (Line, Curve, Spiral),
// StaEquation and Profile (ProfAlign with PVI, ParaCurve and
// UnsymParaCurve); read back from what any program writes, LandXML 1.0 to
// 1.2, the geometry taken from the coordinates, radii, lengths and
// rotations, never from a direction alone.

#include <string>
#include <vector>

#include "alignment/alignment.h"
#include "alignment/profile.h"
#include "export/landxml.h"

namespace tervalo {

// One alignment named `name`, with its profile where there is one.
std::string alignmentLandXml(const Alignment& alignment, const Profile* profile, const std::string& name, const XmlStamp& stamp);

struct LandXmlAlignment {
  std::string name;
  Alignment alignment;
  std::vector<Vpi> profile;  // the first ProfAlign's, at the stations shown
};

// Every alignment of a LandXML document. AlignmentError naming the
// alignment and element that cannot be read.
std::vector<LandXmlAlignment> landXmlAlignments(const std::string& text);

// An alignment from its text: "landxml" (its first alignment and profile,
// named as the file names it) or an alignment file's JSON (named `name`).
LandXmlAlignment readAlignment(const std::string& text, const std::string& format, const std::string& name);

}  // namespace tervalo
