#include "grading/grading.h"

#include <cmath>

#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {

GradingResult computeGrading(const GradingInput& in) {
  GradingResult r;
  double elevChangeFin = 0, elevChangeSub = 0;
  for (const Segment& s : in.finished) {
    elevChangeFin += s.slope * s.width;
    r.ptAoffset += s.width;
  }
  r.ptAelev = in.clElev + elevChangeFin;
  r.ptBelev = r.ptAelev - in.topSoil;
  for (const Segment& s : in.subgrade) {
    elevChangeSub += s.slope * s.width;
    r.ptCoffset += s.width;
  }
  // Only the subgrade elevation enters here (0 when blank); the report turns
  // a thickness into an elevation. The asymmetry is the program's own.
  r.ptCelev = elevChangeSub + in.subElev;
  r.subgradeWider = r.ptCoffset > r.ptAoffset;
  r.subgradeAbove = r.ptCelev > r.ptBelev;
  const double lastFin = in.finished.empty() ? 0 : in.finished.back().slope;
  const double lastSub = in.subgrade.empty() ? 0 : in.subgrade.back().slope;
  if (lastSub == lastFin) {
    r.parallel = true;
    return r;
  }
  // Where ptBelev + lastFin·d = ptCelev + lastSub·d.
  r.d = (r.ptBelev - r.ptCelev) / (lastSub - lastFin);
  r.inside = r.d < 0;
  r.grdElev = r.d * lastSub + r.ptCelev;
  r.grdOffset = r.d + r.ptAoffset;  // from the finished shoulder, whatever the subgrade's width
  // The true meeting point: ptBelev + lastFin·(o − ptAoffset) = ptCelev + lastSub·(o − ptCoffset).
  r.meetOffset = (r.ptCelev - r.ptBelev + lastFin * r.ptAoffset - lastSub * r.ptCoffset) / (lastFin - lastSub);
  r.meetElev = r.ptBelev + lastFin * (r.meetOffset - r.ptAoffset);
  r.meetDiffers = std::fabs(r.meetOffset - r.grdOffset) > 0.001 || std::fabs(r.meetElev - r.grdElev) > 0.001;
  return r;
}

std::string slopeText(const std::string& typed, bool finished) {
  if (typed == "1:2") return "-0.50";
  if (typed == "1:3") return "-0.33";
  if (typed == "1:4") return "-0.25";
  if (typed == "1:6") return finished ? "-0.166667" : "-0.167";
  return typed;
}

namespace {

std::string slope(double v) { return Format(v, "#0.000###"); }
std::string number(double v) { return Format(v, "#0.000"); }

// One table: each segment's slope and width and the elevation and offset
// at its outer end, from the centerline elevation out.
void table(std::vector<std::string>& out, const char* title, const std::vector<Segment>& segments, double clElev) {
  out.push_back(title);
  out.push_back("   #     Slope       Width      Elev     Offset");
  double elev = clElev, offset = 0;
  int n = 0;
  for (const Segment& s : segments) {
    elev += s.slope * s.width;
    offset += s.width;
    out.push_back(rightJustify(std::to_string(++n), 4) + rightJustify(slope(s.slope), 10) + rightJustify(number(s.width), 12) +
                  rightJustify(number(elev), 10) + rightJustify(number(offset), 11));
  }
  if (segments.empty()) out.push_back("   (none)");
  out.push_back("");
}

}  // namespace

std::vector<std::string> printResults(const GradingInput& in, const GradingResult& r) {
  // The subgrade centerline from the thickness when its elevation is blank,
  // and the thickness from the elevations when it is given.
  const double subCl = in.subElevGiven ? in.subElev : in.clElev - in.subThick;
  const double thickness = in.subElevGiven ? in.clElev - in.subElev : in.subThick;
  std::vector<std::string> out{"                GRADING WIDTH CALCULATION", "",
                               "  Station: " + leftJustify(in.station, 16) + "Side: " + in.side, "",
                               "  Finished CL Elevation: " + rightJustify(number(in.clElev), 10) +
                                   "     Topsoil:             " + rightJustify(number(in.topSoil), 10),
                               "  Subgrade CL Elevation: " + rightJustify(number(subCl), 10) +
                                   "     Surfacing Thickness: " + rightJustify(number(thickness), 10),
                               ""};
  table(out, "  FINISHED SURFACE", in.finished, in.clElev);
  table(out, "  SUBGRADE", in.subgrade, subCl);
  if (r.parallel) {
    out.push_back("  No grading P.I.: the last finished and subgrade slopes are parallel.");
    return out;
  }
  const double lastSub = in.subgrade.empty() ? 0 : in.subgrade.back().slope;
  double subEnd = subCl;
  for (const Segment& s : in.subgrade) subEnd += s.slope * s.width;
  // The same distance d as the calculation, from the subgrade the report describes.
  out.push_back("  Grading P.I.   Elev: " + rightJustify(number(r.d * lastSub + subEnd), 10) +
                "   Offset: " + rightJustify(number(r.grdOffset), 10));
  out.push_back("  Distance beyond the finished shoulder: " + number(r.d));
  return out;
}

std::string segmentRow(int number, const Segment& s) {
  // In the order of the entry fields: width, then slope.
  return rightJustify(std::to_string(number), 3) + rightJustify(Format(s.width, "#0.000"), 12) + rightJustify(slope(s.slope), 12);
}

}  // namespace tervalo
