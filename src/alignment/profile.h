#pragma once
// A profile along an alignment: VPIs with their elevations and parabolic
// vertical curves, symmetric (one length) or unsymmetric (a length either
// side of the VPI). A symmetric curve is computed by the Vertical Curve
// window's own code, so one curve gives that window's values. Grades are
// ratios here and percent where shown; stations are read through the
// alignment's equations.

#include <optional>
#include <string>
#include <vector>

#include "alignment/alignment.h"

namespace tervalo {

struct Vpi {
  double station = 0, elevation = 0;  // the station as shown
  double lengthIn = 0, lengthOut = 0;  // of the curve before and after the VPI; equal when symmetric
};

struct VerticalCurveData {
  int vpi = 0;
  double pvc = 0, pvt = 0;  // along the alignment
  double pvcElevation = 0, pvtElevation = 0;
  double g1 = 0, g2 = 0;    // ratios
  double k = 0;             // length per percent of grade change
  std::optional<double> turning{}, turningElevation{};  // the high or low point, along
};

struct ProfilePoint {
  double elevation = 0, grade = 0;  // grade as a ratio
};

class Profile {
 public:
  // AlignmentError naming the VPI: fewer than two, stations out of order,
  // a curve on the first or last, curves that overlap or run past a VPI.
  Profile(const std::vector<Vpi>& vpis, const Alignment& alignment);

  ProfilePoint at(double along) const;
  // Whether the profile reaches this far along: from its first VPI to its last.
  bool covers(double along) const { return along >= along_.front() - 1e-9 && along <= along_.back() + 1e-9; }
  const std::vector<VerticalCurveData>& curves() const { return curves_; }
  const std::vector<double>& vpiAlong() const { return along_; }
  const std::vector<Vpi>& vpis() const { return vpis_; }

 private:
  std::vector<Vpi> vpis_;
  std::vector<double> along_;
  std::vector<double> grades_;  // of each tangent, ratios
  std::vector<VerticalCurveData> curves_;
  std::string from_, to_;  // the first and last VPIs' stations, for a refusal
};

}  // namespace tervalo
