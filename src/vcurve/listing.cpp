#include "vcurve/listing.h"

#include <cmath>
#include <optional>

#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {

namespace {
// addProfiles: a parallel profile's elevation, from the elevation as printed.
std::string profileElevation(const std::string& elevationText, double offset) {
  return Format(Val(elevationText) + offset, "#0.000");
}
}  // namespace

ListingRow listingRow(const std::string& stationText, const std::string& mark, const std::string& elevationText,
                      const std::array<double, 3>& profiles) {
  ListingRow row{stationText, mark, elevationText, {}, {}};
  for (double offset : profiles)
    if (offset != 0) row.profiles.push_back(profileElevation(elevationText, offset));
  return row;
}

std::string addItemTstr(const std::string& stationText, const std::string& mark, const std::string& elevationText,
                        const std::array<double, 3>& profiles) {
  std::string line = rightJustify(stationText, 12) + "  " + leftJustify(mark, 5) + rightJustify(elevationText, 8) + "  ";
  // Each profile keeps its own column: profile 1 after one space, profiles
  // 2 and 3 after two, whichever of them are used.
  for (std::size_t k = 0; k < profiles.size(); ++k)
    if (profiles[k] != 0) line += (k == 0 ? " " : "  ") + profileElevation(elevationText, profiles[k]);
  return line;
}

std::vector<std::string> listingCsv(const std::vector<ListingRow>& rows, const std::array<double, 3>& profiles) {
  std::string header = "Station,Mark,Elevation";
  std::string emptyProfiles;  // a banner's line keeps every column
  for (std::size_t k = 0; k < profiles.size(); ++k)
    if (profiles[k] != 0) header += ",Profile " + std::to_string(k + 1), emptyProfiles += ",";
  std::vector<std::string> lines{header};
  for (const ListingRow& row : rows) {
    if (!row.banner.empty()) {
      // "    **** EQUATION IN  ****" names the two lines after it.
      std::string words = row.banner;
      words.erase(0, words.find_first_not_of(" *"));
      words.erase(words.find_last_not_of(" *") + 1);
      lines.push_back("," + words + "," + emptyProfiles);
      continue;
    }
    std::string line = row.station + "," + row.mark + "," + row.elevation;
    for (const std::string& p : row.profiles) line += "," + p;
    lines.push_back(line);
  }
  return lines;
}

namespace {

// The walk of processVincrements, step by step as the listing has always
// been made: tangent stations before the PVC and after the PVT are listed
// plainly, and only on the curve are the turning point and the equation
// merged in. There the step gives the order only in outline; the rule
// here: before a curve station is listed, every pending special at or
// before it is written in station order (the turning point before an
// equation at the same station), and a special exactly at the station
// stands in place of its plain line. The equation lines switch the listing
// into the OUT stationing: the PVC, PVT and turning station move by
// OUT - IN, and the current station is advanced by the increment until it
// is not below OUT. So an equation before the PVC is written at the first
// curve station, and one beyond the PVT is not written at all. The curve
// stations run up to and including the PVT; a turning point that none of
// them reached is written as the curve ends, so it is never left out.
class Walk {
 public:
  Walk(VerticalCurve& curve, const ListingInput& in) : c_(curve), in_(in) {
    turningPending_ = c_.hasMin || c_.hasMax;
    if (in_.equation) {
      equationPending_ = true;
      const StationElevation at = calcCurveElev(c_, in_.equation->first);
      equationElevation_ = Format(at.elevation, "######.000");
      equationMark_ = at.mark;
    }
  }

  Listing listing;

  // A station listed as it is, with no special merged in.
  void plain(double x) {
    const StationElevation e = calcCurveElev(c_, x);
    add(Format(x, mask()), e.mark, Format(e.elevation, "######.000"));
    lastPlain_ = x;
  }

  // The station of the last line, when that was a plain station line.
  std::optional<double> lastPlain() const { return lastPlain_; }

  // A station on the curve; returns the station after it: x + increment,
  // or where the listing goes on after an equation.
  double onCurve(double x) {
    if (equationPending_ && in_.equation->first <= x && (!turningPending_ || in_.equation->first < c_.turningStation))
      return writeEquations(x);
    bool replaced = false;
    if (turningPending_ && c_.turningStation <= x) {
      turningLine();
      replaced = c_.turningStation == x;
    }
    if (equationPending_ && in_.equation->first <= x) return writeEquations(x);
    if (!replaced) plain(x);
    return x + in_.increment;
  }

  // The low or high point's line, once. The turning point lies on the
  // curve, so one that no curve station reached is written as the curve
  // ends, before anything beyond the PVT: it is never dropped.
  void turningLine() {
    if (!turningPending_) return;
    turningPending_ = false;
    add(Format(c_.turningStation, mask()), c_.hasMin ? "MIN" : "MAX", Format(c_.turningElev, "#0.000"));
  }

  // The PVC line carries the PVC elevation as the results show it.
  void pvcLine() { add(Format(c_.pvc, mask()), "PVC", Format(c_.pvcElev, "####.000")); }

  // The equation lines at the current station x; returns where the listing goes on.
  double writeEquations(double x) {
    equationPending_ = false;
    const auto [in, out] = *in_.equation;
    lastPlain_.reset();
    banner("    **** EQUATION IN  ****");
    add(Format(in, "#0.000"), equationMark_, Format(Val(equationElevation_), "#0.000"));
    add(Format(out, "#0.000"), equationMark_, Format(Val(equationElevation_), "#0.000"));
    banner("    **** EQUATION OUT ****");
    const double shift = out - in;
    c_.pvc += shift;
    c_.pvt += shift;
    c_.turningStation += shift;
    // By the increment up to OUT; a gap of millions of increments is crossed at once.
    if ((out - x) / in_.increment > 1e6)
      x += std::ceil((out - x) / in_.increment) * in_.increment;
    else
      while (x < out) x += in_.increment;
    return x;
  }

  bool full() const { return listing.lines.size() >= kMaxListedStations; }
  const VerticalCurve& curve() const { return c_; }

 private:
  const char* mask() const { return stationMask(in_.metric); }

  void add(const std::string& station, const std::string& mark, const std::string& elevation) {
    lastPlain_.reset();
    if (full()) {
      listing.cut = true;
      return;
    }
    listing.lines.push_back(addItemTstr(station, mark, elevation, in_.profiles));
    listing.rows.push_back(listingRow(station, mark, elevation, in_.profiles));
  }

  void banner(const std::string& text) {
    listing.lines.push_back(text);
    listing.rows.push_back(ListingRow{{}, {}, {}, {}, text});
  }

  VerticalCurve& c_;
  const ListingInput& in_;
  bool turningPending_ = false;
  bool equationPending_ = false;
  std::optional<double> lastPlain_;
  std::string equationElevation_, equationMark_;
};

}  // namespace

Listing processVincrements(VerticalCurve curve, const ListingInput& in) {
  if (!(in.increment > 0)) return {};
  Walk walk(curve, in);
  const VerticalCurve& c = walk.curve();
  const double step = in.increment;
  double x = in.start;
  if (!in.exact) {
    // The start itself, then the first multiple of the increment at or
    // above it, reached by repeated addition as the program always has.
    walk.plain(x);
    double k = 0;
    while (k < x) k += step;
    x = k;
  }
  // Before the PVC. The increment comes first, so the station reached so
  // far (the start in exact mode, the rounded multiple otherwise) is not
  // itself listed here.
  for (x += step; x < c.pvc && !walk.full(); x += step) walk.plain(x);
  // At the PVC, wherever it lies: its own line, or the equation standing
  // there. The PVC is compared with the equation's IN station, which is 0
  // when there is no equation: a PVC at 0+00 then has no line of its own,
  // and a rounded listing from 0+00 lists it once, as its start.
  const double equationIn = in.equation ? in.equation->first : 0;
  if (c.pvc != equationIn)
    walk.pvcLine();
  else if (in.equation)
    x = walk.writeEquations(x);
  if (x == c.pvc) x += step;  // listed just now
  // The curve up to and including the PVT, which a station on it lists as
  // the PVT line; then the turning point if no curve station reached it.
  while (x <= c.pvt && !walk.full()) x = walk.onCurve(x);
  walk.turningLine();
  // After the PVT, below the end station; then the end station as the last
  // line, once: not again when it was just listed (a PVT on the end station).
  for (; x < in.end && !walk.full(); x += step) walk.plain(x);
  if (walk.lastPlain() != in.end) walk.plain(in.end);
  return walk.listing;
}

}  // namespace tervalo
