#include "traverse/least_squares.h"

#include <Eigen/Dense>

#include <cmath>

namespace tervalo {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRadian = kPi / 180;
constexpr double kSecond = kRadian / 3600;

// The direction from `at` as the points stand: radians clockwise from north.
double direction(const std::vector<PlanePosition>& x, int at, const NetworkDirection& d) {
  if (d.point < 0) return d.azimuth * kRadian;
  return std::atan2(x[static_cast<std::size_t>(d.point)].x - x[static_cast<std::size_t>(at)].x,
                    x[static_cast<std::size_t>(d.point)].y - x[static_cast<std::size_t>(at)].y);
}

// An angle brought within half a turn of `near`.
double near(double angle, double target) {
  while (angle - target > kPi) angle -= 2 * kPi;
  while (angle - target < -kPi) angle += 2 * kPi;
  return angle;
}

}  // namespace

NetworkAdjustment adjustNetwork(const std::vector<NetworkPoint>& points, const std::vector<NetworkObservation>& observations) {
  // The free points' coordinates are the unknowns, two each.
  std::vector<int> unknown(points.size(), -1);
  int u = 0;
  for (std::size_t i = 0; i < points.size(); ++i)
    if (!points[i].fixed) unknown[i] = u, u += 2;
  std::vector<PlanePosition> x;
  for (const NetworkPoint& p : points) x.push_back(p.at);
  const Eigen::Index n = static_cast<Eigen::Index>(observations.size());
  if (u == 0 || n < u) throw TraverseError("the least-squares adjustment has fewer observations than unknown coordinates");

  Eigen::MatrixXd a(n, u);
  Eigen::VectorXd l(n), p(n);
  // The observation equations at the points as they stand: A dx = l (observed less computed).
  const auto linearise = [&] {
    a.setZero();
    for (Eigen::Index k = 0; k < n; ++k) {
      const NetworkObservation& o = observations[static_cast<std::size_t>(k)];
      const auto partials = [&](int from, int to, double dxTo, double dyTo) {  // d(value)/d(to) and its opposite for `from`
        if (unknown[static_cast<std::size_t>(to)] >= 0) {
          a(k, unknown[static_cast<std::size_t>(to)]) += dxTo;
          a(k, unknown[static_cast<std::size_t>(to)] + 1) += dyTo;
        }
        if (unknown[static_cast<std::size_t>(from)] >= 0) {
          a(k, unknown[static_cast<std::size_t>(from)]) -= dxTo;
          a(k, unknown[static_cast<std::size_t>(from)] + 1) -= dyTo;
        }
      };
      if (o.kind == NetworkObservation::Kind::Distance) {
        const double dx = x[static_cast<std::size_t>(o.to)].x - x[static_cast<std::size_t>(o.at)].x;
        const double dy = x[static_cast<std::size_t>(o.to)].y - x[static_cast<std::size_t>(o.at)].y;
        const double d = std::hypot(dx, dy);
        if (d == 0) throw TraverseError("the least-squares adjustment meets two stations at one place (" + o.label + ")");
        l(k) = o.value - d;
        partials(o.at, o.to, dx / d, dy / d);
        p(k) = 1 / (o.sigma * o.sigma);
      } else {
        const double computed = direction(x, o.at, o.toward) - direction(x, o.at, o.from);
        l(k) = near(o.value * kRadian, computed) - computed;
        // d(azimuth at->q)/dq = (dy, -dx) / d^2.
        for (const auto& [d, sign] : {std::pair{o.toward, 1.0}, {o.from, -1.0}}) {
          if (d.point < 0) continue;
          const double dx = x[static_cast<std::size_t>(d.point)].x - x[static_cast<std::size_t>(o.at)].x;
          const double dy = x[static_cast<std::size_t>(d.point)].y - x[static_cast<std::size_t>(o.at)].y;
          const double d2 = dx * dx + dy * dy;
          if (d2 == 0) throw TraverseError("the least-squares adjustment meets two stations at one place (" + o.label + ")");
          partials(o.at, d.point, sign * dy / d2, -sign * dx / d2);
        }
        const double sigma = o.sigma * kSecond;
        p(k) = 1 / (sigma * sigma);
      }
    }
  };

  NetworkAdjustment out;
  Eigen::MatrixXd normal;
  const double scale = [&] {
    double s = 1;
    for (const PlanePosition& q : x) s = std::max({s, std::abs(q.x), std::abs(q.y)});
    return s;
  }();
  bool converged = false;
  for (int iteration = 1; iteration <= 20 && !converged; ++iteration) {
    linearise();
    normal = a.transpose() * p.asDiagonal() * a;
    const Eigen::LDLT<Eigen::MatrixXd> solver(normal);
    if (solver.info() != Eigen::Success || !solver.isPositive() || solver.rcond() < 1e-14)
      throw TraverseError("the observations do not fix every station (a station without both a distance and a direction)");
    const Eigen::VectorXd dx = solver.solve(a.transpose() * p.asDiagonal() * l);
    for (std::size_t i = 0; i < points.size(); ++i)
      if (unknown[i] >= 0) x[i].x += dx(unknown[i]), x[i].y += dx(unknown[i] + 1);
    out.report.iterations = iteration;
    converged = dx.cwiseAbs().maxCoeff() < 1e-10 * scale;
  }
  if (!converged) throw TraverseError("the least-squares adjustment does not converge: check the observations for a blunder");

  // The residuals at the adjusted points: adjusted less observed.
  linearise();
  normal = a.transpose() * p.asDiagonal() * a;
  double weighted = 0;
  for (Eigen::Index k = 0; k < n; ++k) {
    const NetworkObservation& o = observations[static_cast<std::size_t>(k)];
    const bool angular = o.kind == NetworkObservation::Kind::Angle;
    const double v = -l(k);  // adjusted less observed
    weighted += p(k) * v * v;
    out.report.residuals.push_back({o.label, o.value, angular ? o.value + v / kRadian : o.value + v, angular ? v / kSecond : v, angular});
  }
  out.report.redundancy = static_cast<int>(n) - u;
  out.report.referenceVariance = out.report.redundancy > 0 ? weighted / out.report.redundancy : 1;

  // Each free point's standard error ellipse from its block of the covariance.
  const Eigen::MatrixXd covariance = out.report.referenceVariance * normal.inverse();
  out.points = x;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (unknown[i] < 0) {
      out.ellipses.emplace_back();
      continue;
    }
    const Eigen::Matrix2d c = covariance.block<2, 2>(unknown[i], unknown[i]);
    const Eigen::SelfAdjointEigenSolver<Eigen::Matrix2d> eigen(c);
    const Eigen::Vector2d axis = eigen.eigenvectors().col(1);  // of the larger value
    double azimuth = std::atan2(axis(0), axis(1)) / kRadian;
    while (azimuth < 0) azimuth += 180;
    while (azimuth >= 180) azimuth -= 180;
    out.ellipses.push_back(ErrorEllipse{std::sqrt(c(0, 0)), std::sqrt(c(1, 1)), std::sqrt(std::max(0.0, eigen.eigenvalues()(1))),
                                        std::sqrt(std::max(0.0, eigen.eigenvalues()(0))), azimuth});
  }
  return out;
}

}  // namespace tervalo
