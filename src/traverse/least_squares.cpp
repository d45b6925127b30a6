#include "traverse/least_squares.h"

#include <cmath>
#include <numbers>

#include "adjust/adjustment.h"

namespace tervalo {
namespace {

constexpr double kRadian = std::numbers::pi / 180;
constexpr double kSecond = kRadian / 3600;

}  // namespace

// The traverse's stations and sightings become a network of the network
// engine, so a least-squares traverse carries the same statistics as any
// network: its global test, redundancy numbers and Baarda's w.
NetworkAdjustment adjustTraverseNetwork(const std::vector<NetworkPoint>& points, const std::vector<NetworkObservation>& observations,
                                        const std::string& units) {
  Network net;
  net.units = units;
  for (std::size_t i = 0; i < points.size(); ++i) {
    NetworkStation s;
    s.name = points[i].name.empty() ? "station " + std::to_string(i + 1) : points[i].name;
    s.northing = points[i].at.y;
    s.easting = points[i].at.x;
    s.fixed = points[i].fixed;
    net.points.push_back(s);
  }
  for (const NetworkObservation& o : observations) {
    Observation x;
    x.place = static_cast<int>(net.observations.size()) + 1;
    if (o.kind == NetworkObservation::Kind::Distance) {
      x.type = ObservationType::Distance;
      x.from = o.at, x.to = o.to, x.value = o.value, x.sigma = o.sigma;
    } else if (o.from.point >= 0 && o.toward.point >= 0) {
      x.type = ObservationType::Angle;
      x.at = o.at, x.back = o.from.point, x.fore = o.toward.point;
      x.value = o.value * kRadian, x.sigma = o.sigma * kSecond;
    } else if (o.toward.point >= 0) {  // turned from a known direction: the azimuth of the sight
      x.type = ObservationType::Azimuth;
      x.from = o.at, x.to = o.toward.point;
      x.value = (o.from.azimuth + o.value) * kRadian, x.sigma = o.sigma * kSecond;
    } else if (o.from.point >= 0) {  // turned onto a known direction: the azimuth of the backsight
      x.type = ObservationType::Azimuth;
      x.from = o.at, x.to = o.from.point;
      x.value = (o.toward.azimuth - o.value) * kRadian, x.sigma = o.sigma * kSecond;
    } else {
      continue;  // between two known directions: no station's position in it
    }
    net.observations.push_back(x);
  }

  Adjustment solved;
  try {
    solved = adjustNetwork(net);
  } catch (const NetworkError& e) {
    throw TraverseError(std::string("the least-squares adjustment cannot be made: ") + e.what());
  }

  NetworkAdjustment out;
  out.report.iterations = solved.iterations;
  out.report.redundancy = solved.dof;
  out.report.referenceVariance = solved.variance;
  out.report.chiSquare = solved.chiSquare;
  out.report.lower = solved.lower;
  out.report.upper = solved.upper;
  out.report.passed = solved.passed;
  out.report.critical = solved.critical;
  std::size_t k = 0;
  for (const NetworkObservation& o : observations) {
    if (o.kind != NetworkObservation::Kind::Distance && o.from.point < 0 && o.toward.point < 0) continue;
    const AdjustedObservation& a = solved.observations[k++];
    const bool angular = o.kind == NetworkObservation::Kind::Angle;
    Residual r{o.label, o.value, angular ? o.value + a.residual / 3600 : o.value + a.residual, a.residual, angular};
    r.standardized = a.standardized;
    r.redundancy = a.redundancy;
    r.flagged = a.flagged;
    if (a.flagged) out.report.flagged = o.label;
    out.report.residuals.push_back(r);
  }
  for (const AdjustedPoint& p : solved.points) {
    out.points.push_back({*p.easting, *p.northing});
    if (p.moved)
      out.ellipses.push_back(ErrorEllipse{p.se, p.sn, p.standard.a, p.standard.b, p.standard.azimuth});
    else
      out.ellipses.emplace_back();
  }
  return out;
}

}  // namespace tervalo
