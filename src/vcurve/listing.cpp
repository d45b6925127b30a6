#include "vcurve/listing.h"

#include <cmath>

#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {

std::string addItemTstr(const std::string& stationText, const std::string& mark, const std::string& elevationText,
                        const std::array<double, 3>& profiles) {
  std::string line = rightJustify(stationText, 12) + "  " + leftJustify(mark, 5) + rightJustify(elevationText, 8) + "  ";
  // addProfiles: each from the elevation as printed, one space before the first, two before the others.
  for (std::size_t k = 0; k < 3; ++k)
    if (profiles[k] != 0) line += (k == 0 ? " " : "  ") + Format(Val(elevationText) + profiles[k], "#0.000");
  return line;
}

namespace {

// The walk of processVincrements. The Part gives the turning point and the
// equation only in outline; the rule here: before a station is listed,
// every pending special at or before it is written, in station order (the
// turning point before an equation at the same station), and a special
// exactly at the station stands in place of its plain line. The equation
// lines switch the listing into the OUT stationing: the PVC, PVT and turning
// station move by OUT - IN, and the listing goes on from the first station
// at or beyond OUT, reached by the increment. Nothing beyond the end station
// is listed, and a turning point before the start is left out: the listing
// runs in station order from start to end.
class Walk {
 public:
  Walk(VerticalCurve& curve, const ListingInput& in) : c_(curve), in_(in) {
    turningPending_ = (c_.hasMin || c_.hasMax) && c_.turningStation >= in_.start;
    if (in_.equation) {
      equationPending_ = true;
      const StationElevation at = calcCurveElev(c_, in_.equation->first);
      equationElevation_ = Format(at.elevation, "######.000");
      equationMark_ = at.mark;
    }
  }

  Listing listing;

  // Lists station x; returns the station after it: x + increment, or where
  // the listing goes on after an equation.
  double list(double x) {
    if (const auto restart = specialsUpTo(x)) return *restart;
    if (!replaced_) {
      const StationElevation e = calcCurveElev(c_, x);
      add(Format(x, mask()), e.mark, Format(e.elevation, "######.000"));
    }
    replaced_ = false;
    last_ = x;
    return x + in_.increment;
  }

  // The station of the last line, in the stationing now in force.
  double last() const { return last_; }

  // The PVC line carries the PVC elevation as the results show it.
  std::optional<double> listPVC() {
    if (const auto restart = specialsUpTo(c_.pvc)) return restart;
    if (!replaced_) add(Format(c_.pvc, mask()), "PVC", Format(c_.pvcElev, "####.000"));
    replaced_ = false;
    last_ = c_.pvc;
    return std::nullopt;
  }

  bool full() const { return listing.lines.size() >= kMaxListedStations; }
  const VerticalCurve& curve() const { return c_; }

 private:
  const char* mask() const { return stationMask(in_.metric); }

  void add(const std::string& station, const std::string& mark, const std::string& elevation) {
    if (full()) {
      listing.cut = true;
      return;
    }
    listing.lines.push_back(addItemTstr(station, mark, elevation, in_.profiles));
  }

  std::optional<double> specialsUpTo(double x) {
    // An equation before the turning point comes first; at one station the turning point does.
    if (equationPending_ && in_.equation->first <= x && (!turningPending_ || in_.equation->first < c_.turningStation))
      return writeEquations(x);
    if (turningPending_ && c_.turningStation <= x) {
      turningPending_ = false;
      add(Format(c_.turningStation, mask()), c_.hasMin ? "MIN" : "MAX", Format(c_.turningElev, "#0.000"));
      if (c_.turningStation == x) replaced_ = true;
    }
    if (equationPending_ && in_.equation->first <= x) return writeEquations(x);
    return std::nullopt;
  }

  double writeEquations(double x) {
    equationPending_ = false;
    const auto [in, out] = *in_.equation;
    listing.lines.push_back("    **** EQUATION IN  ****");
    add(Format(in, "#0.000"), equationMark_, Format(Val(equationElevation_), "#0.000"));
    add(Format(out, "#0.000"), equationMark_, Format(Val(equationElevation_), "#0.000"));
    listing.lines.push_back("    **** EQUATION OUT ****");
    const double shift = out - in;
    c_.pvc += shift;
    c_.pvt += shift;
    c_.turningStation += shift;
    replaced_ = false;
    last_ = out;
    // By the increment up to OUT; a gap of millions of increments is crossed at once.
    if ((out - x) / in_.increment > 1e6)
      x += std::ceil((out - x) / in_.increment) * in_.increment;
    else
      while (x < out) x += in_.increment;
    return x;
  }

  VerticalCurve& c_;
  const ListingInput& in_;
  bool turningPending_ = false;
  bool equationPending_ = false;
  bool replaced_ = false;
  double last_ = -1e300;
  std::string equationElevation_, equationMark_;
};

}  // namespace

Listing processVincrements(VerticalCurve curve, const ListingInput& in) {
  if (!(in.increment > 0)) return {};
  Walk walk(curve, in);
  const VerticalCurve& c = walk.curve();
  double x = in.start;
  if (!in.exact) {
    // The start itself, then the first multiple of the increment at or
    // above it, reached by repeated addition as the program always has.
    walk.list(x);
    double k = 0;
    while (k < x) k += in.increment;
    x = k;
  }
  // The station reached so far (the start in exact mode, the rounded
  // multiple otherwise) is not itself listed: the increment comes first.
  x += in.increment;
  while (x < c.pvc && x < in.end && !walk.full()) x = walk.list(x);
  if (c.pvc > walk.last() && c.pvc < in.end)
    if (const auto restart = walk.listPVC()) x = *restart;
  if (x == c.pvc) x += in.increment;
  while (x < c.pvt && x < in.end && !walk.full()) x = walk.list(x);
  if (x == c.pvt && x < in.end) x = walk.list(x);
  while (x < in.end && !walk.full()) x = walk.list(x);
  walk.list(in.end);  // the end station is always the last line
  return walk.listing;
}

}  // namespace tervalo
