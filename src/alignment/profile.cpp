#include "alignment/profile.h"

#include <algorithm>
#include <cmath>

#include "text/format.h"
#include "vcurve/vertical_curve.h"

namespace tervalo {
namespace {

std::string vpiName(std::size_t i) { return "VPI " + std::to_string(i + 1); }

}  // namespace

Profile::Profile(const std::vector<Vpi>& vpis, const Alignment& alignment) : vpis_(vpis) {
  if (vpis.size() < 2) throw AlignmentError("a profile needs two VPIs at least; it has " + std::to_string(vpis.size()));
  for (std::size_t i = 0; i < vpis.size(); ++i) {
    const Vpi& v = vpis[i];
    if (v.lengthIn < 0 || v.lengthOut < 0) throw AlignmentError(vpiName(i) + ": a vertical curve's length is 0 or more");
    if ((i == 0 || i + 1 == vpis.size()) && (v.lengthIn > 0 || v.lengthOut > 0))
      throw AlignmentError(vpiName(i) + (i == 0 ? " begins" : " ends") + " the profile: it has no vertical curve");
    try {
      along_.push_back(alignment.alongAt(v.station));
    } catch (const AlignmentError& e) {
      throw AlignmentError(vpiName(i) + ": " + e.what());
    }
    if (i > 0 && along_[i] <= along_[i - 1])
      throw AlignmentError(vpiName(i) + " at " + alignment.stationText(v.station) + " is not ahead of " + vpiName(i - 1) + " at " +
                           alignment.stationText(vpis[i - 1].station));
  }
  from_ = alignment.stationText(vpis.front().station);
  to_ = alignment.stationText(vpis.back().station);
  for (std::size_t i = 0; i + 1 < vpis.size(); ++i)
    grades_.push_back((vpis[i + 1].elevation - vpis[i].elevation) / (along_[i + 1] - along_[i]));
  for (std::size_t i = 1; i + 1 < vpis.size(); ++i) {
    const Vpi& v = vpis[i];
    if (v.lengthIn + v.lengthOut <= 0) continue;
    VerticalCurveData c;
    c.vpi = static_cast<int>(i);
    c.g1 = grades_[i - 1], c.g2 = grades_[i];
    c.pvc = along_[i] - v.lengthIn, c.pvt = along_[i] + v.lengthOut;
    const double before = curves_.empty() ? along_[i - 1] : std::max(along_[i - 1], curves_.back().pvt);
    if (c.pvc < before - 1e-9)
      throw AlignmentError(vpiName(i) + ": its curve begins at " + Format(c.pvc, "0.000") + " along, before " +
                           (curves_.empty() || curves_.back().pvt < along_[i - 1] ? vpiName(i - 1) : "the end of the curve at " + vpiName(i - 1)) +
                           " at " + Format(before, "0.000"));
    if (c.pvt > along_[i + 1] + 1e-9)
      throw AlignmentError(vpiName(i) + ": its curve runs on past " + vpiName(i + 1) + " (" + Format(c.pvt - along_[i + 1], "0.000") + " beyond it)");
    c.pvcElevation = v.elevation - c.g1 * v.lengthIn;
    c.pvtElevation = v.elevation + c.g2 * v.lengthOut;
    const double change = std::fabs(c.g2 - c.g1) * 100;
    c.k = change > 0 ? (v.lengthIn + v.lengthOut) / change : 0;
    // The turning point, where the grade passes through zero on the curve.
    if ((c.g1 > 0 && c.g2 < 0) || (c.g1 < 0 && c.g2 > 0)) {
      // Found by halving: the grade runs monotonically from g1 to g2 over the curve.
      const auto gradeAt = [&](double x) { return at(x).grade; };
      curves_.push_back(c);  // at() reads the curve
      double lo = c.pvc, hi = c.pvt;
      for (int k = 0; k < 200 && hi - lo > 1e-12 * std::max(1.0, hi); ++k) {
        const double m = (lo + hi) / 2;
        if ((gradeAt(m) > 0) == (c.g1 > 0)) lo = m;
        else hi = m;
      }
      curves_.back().turning = (lo + hi) / 2;
      curves_.back().turningElevation = at((lo + hi) / 2).elevation;
      continue;
    }
    curves_.push_back(c);
  }
}

ProfilePoint Profile::at(double along) const {
  // On a curve: symmetric by the Vertical Curve window's code, unsymmetric by its two parabolas.
  for (const VerticalCurveData& c : curves_) {
    if (along < c.pvc || along > c.pvt) continue;
    const Vpi& v = vpis_[static_cast<std::size_t>(c.vpi)];
    const double vpi = along_[static_cast<std::size_t>(c.vpi)];
    if (std::fabs(v.lengthIn - v.lengthOut) < 1e-12) {
      const double length = v.lengthIn + v.lengthOut;
      const VerticalCurve curve = makeCurve(c.g1, c.g2, length, KnownPoint::PVI, vpi, v.elevation);
      return {calcCurveElev(curve, along).elevation, c.g1 + (c.g2 - c.g1) * (along - c.pvc) / length};
    }
    const double l1 = v.lengthIn, l2 = v.lengthOut, e = l1 * l2 * (c.g2 - c.g1) / (2 * (l1 + l2));
    if (along <= vpi) {
      const double x = along - c.pvc;
      return {c.pvcElevation + c.g1 * x + e * (x / l1) * (x / l1), c.g1 + 2 * e * x / (l1 * l1)};
    }
    const double x = c.pvt - along;
    return {c.pvtElevation - c.g2 * x + e * (x / l2) * (x / l2), c.g2 - 2 * e * x / (l2 * l2)};
  }
  // On a tangent: the grade of the VPIs either side.
  if (!covers(along)) throw AlignmentError("the profile runs from " + from_ + " to " + to_ + " only");
  std::size_t i = static_cast<std::size_t>(std::upper_bound(along_.begin(), along_.end(), along) - along_.begin());
  i = std::clamp<std::size_t>(i, 1, along_.size() - 1) - 1;
  return {vpis_[i].elevation + grades_[i] * (along - along_[i]), grades_[i]};
}

}  // namespace tervalo
