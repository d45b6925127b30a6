#include "adjust/adjustment.h"

#include <Eigen/Dense>
#include <Eigen/Sparse>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/normal.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <numeric>
#include <optional>
#include <set>

namespace tervalo {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kSecond = kPi / 180 / 3600;

double wrap(double a) {  // into (-π, π]
  a = std::fmod(a, 2 * kPi);
  if (a <= -kPi) a += 2 * kPi;
  if (a > kPi) a -= 2 * kPi;
  return a;
}

struct Unknowns {
  std::vector<int> n, e, z;           // per point, -1 where held
  std::map<std::pair<int, int>, int> orientation;  // (at, set) -> unknown
  int count = 0;
  std::vector<std::string> names;     // what each unknown is, for a message
};

struct Row {
  std::vector<std::pair<int, double>> terms;  // unknown, partial
  double misclosure = 0;                      // observed - computed
  double sigma = 1;
};

int find(std::vector<int>& parent, int i) {
  while (parent[static_cast<std::size_t>(i)] != i) i = parent[static_cast<std::size_t>(i)] = parent[static_cast<std::size_t>(parent[static_cast<std::size_t>(i)])];
  return i;
}

Ellipse ellipseOf(double qnn, double qee, double qne, double scale) {
  const double mean = (qnn + qee) / 2, radius = std::sqrt(std::pow((qnn - qee) / 2, 2) + qne * qne);
  Ellipse e;
  e.a = std::sqrt(std::max(0.0, mean + radius)) * scale;
  e.b = std::sqrt(std::max(0.0, mean - radius)) * scale;
  double t = 0.5 * std::atan2(2 * qne, qnn - qee) * 180 / kPi;  // from north toward east
  if (t < 0) t += 180;
  e.azimuth = t;
  return e;
}

// The elements of the inverse of the normal matrix that the statistics
// need (each point's block, each observation's unknowns, the pairs joined
// by observations), taken from the sparse factor P N Pᵀ = L D Lᵀ by
// Takahashi's recurrence over the factor's own pattern: every such element
// lies in that pattern, so no dense inverse and no solve per point. An
// element outside it (a relative pair joined by no observation) is solved
// for by its column.
class SparseInverse {
 public:
  explicit SparseInverse(const Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>>& solver) : solver_(solver) {
    const Eigen::SparseMatrix<double>& L = solver.matrixL().nestedExpression();  // strictly lower, columns sorted by row
    const Eigen::Index n = L.cols();
    outer_ = L.outerIndexPtr();
    inner_ = L.innerIndexPtr();
    lower_.assign(static_cast<std::size_t>(L.nonZeros()), 0.0);
    diagonal_.assign(static_cast<std::size_t>(n), 0.0);
    const double* l = L.valuePtr();
    const Eigen::VectorXd& d = solver.vectorD();
    for (Eigen::Index j = n - 1; j >= 0; --j) {
      const int begin = outer_[j], end = outer_[j + 1];
      for (int p = begin; p < end; ++p) {  // Z(i, j) = -Σk L(k, j) Z(i, k), i and k below j
        const int i = inner_[p];
        double sum = 0;
        for (int q = begin; q < end; ++q) sum += l[q] * permuted(i, inner_[q]);
        lower_[static_cast<std::size_t>(p)] = -sum;
      }
      double sum = 0;
      for (int p = begin; p < end; ++p) sum += l[p] * lower_[static_cast<std::size_t>(p)];
      diagonal_[static_cast<std::size_t>(j)] = 1 / d[j] - sum;
    }
  }

  // The element of the inverse at the unknowns a and b, in their own order.
  double operator()(int a, int b) const {
    const auto& perm = solver_.permutationP().indices();
    const int i = perm[a], j = perm[b];
    if (const auto z = find(i, j)) return *z;
    auto column = columns_.find(b);
    if (column == columns_.end()) {
      Eigen::VectorXd unit = Eigen::VectorXd::Zero(static_cast<Eigen::Index>(diagonal_.size()));
      unit[b] = 1;
      column = columns_.emplace(b, solver_.solve(unit)).first;
    }
    return column->second[a];
  }

 private:
  // Z(i, j) where the factor's pattern holds it.
  std::optional<double> find(int i, int j) const {
    if (i == j) return diagonal_[static_cast<std::size_t>(i)];
    if (i < j) std::swap(i, j);
    const int* first = inner_ + outer_[j];
    const int* last = inner_ + outer_[j + 1];
    const int* at = std::lower_bound(first, last, i);
    if (at == last || *at != i) return std::nullopt;
    return lower_[static_cast<std::size_t>(at - inner_)];
  }
  double permuted(int i, int k) const { return find(i, k).value_or(0.0); }

  const Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>>& solver_;
  const int* outer_ = nullptr;
  const int* inner_ = nullptr;
  std::vector<double> lower_, diagonal_;
  mutable std::map<int, Eigen::VectorXd> columns_;
};

}  // namespace

Adjustment adjustNetwork(const Network& net) {
  const int points = static_cast<int>(net.points.size());
  const auto P = [&net](int i) -> const NetworkStation& { return net.points[static_cast<std::size_t>(i)]; };
  // Which points take part horizontally and in height, and how often.
  std::vector<int> horizontalUses(static_cast<std::size_t>(points)), heightUses(static_cast<std::size_t>(points));
  std::vector<int> parentH(static_cast<std::size_t>(points)), parentZ(static_cast<std::size_t>(points));
  std::iota(parentH.begin(), parentH.end(), 0);
  std::iota(parentZ.begin(), parentZ.end(), 0);
  const auto join = [](std::vector<int>& parent, int a, int b) { parent[static_cast<std::size_t>(find(parent, a))] = find(parent, b); };
  for (const Observation& o : net.observations) {
    std::vector<int> touched = o.type == ObservationType::Angle ? std::vector<int>{o.at, o.back, o.fore} : std::vector<int>{o.from, o.to};
    auto& uses = o.type == ObservationType::Dh ? heightUses : horizontalUses;
    auto& parent = o.type == ObservationType::Dh ? parentZ : parentH;
    for (int p : touched) ++uses[static_cast<std::size_t>(p)];
    for (std::size_t k = 1; k < touched.size(); ++k) join(parent, touched[0], touched[k]);
  }
  Unknowns u;
  u.n.assign(static_cast<std::size_t>(points), -1);
  u.e = u.n;
  u.z = u.n;
  for (int p = 0; p < points; ++p) {
    const NetworkStation& q = P(p);
    if (q.fixed) continue;
    if (q.northing && (horizontalUses[static_cast<std::size_t>(p)] > 0 || q.sigma)) {
      u.n[static_cast<std::size_t>(p)] = u.count++;
      u.names.push_back("the northing of " + q.name);
      u.e[static_cast<std::size_t>(p)] = u.count++;
      u.names.push_back("the easting of " + q.name);
    }
    if (q.elevation && (heightUses[static_cast<std::size_t>(p)] > 0 || q.sigmaZ)) {
      u.z[static_cast<std::size_t>(p)] = u.count++;
      u.names.push_back("the elevation of " + q.name);
    }
  }
  for (const Observation& o : net.observations)
    if (o.type == ObservationType::Direction && !u.orientation.count({o.from, o.set})) {
      u.orientation[{o.from, o.set}] = u.count++;
      u.names.push_back("the orientation of set " + std::to_string(o.set) + " at " + P(o.from).name);
    }

  // What is missing, in words, before any number is tried.
  for (int p = 0; p < points; ++p) {
    const NetworkStation& q = P(p);
    if (u.n[static_cast<std::size_t>(p)] >= 0 && !q.sigma && horizontalUses[static_cast<std::size_t>(p)] < 2)
      throw NetworkError("point " + q.name + " is joined by " + std::to_string(horizontalUses[static_cast<std::size_t>(p)]) +
                         " observation; a free point needs 2 at least to be placed");
  }
  for (auto [uses, parent, isHeight] : {std::tuple{&horizontalUses, &parentH, false}, {&heightUses, &parentZ, true}}) {
    std::map<int, std::pair<bool, std::vector<std::string>>> parts;  // root -> (held, free points)
    for (int p = 0; p < points; ++p) {
      if ((*uses)[static_cast<std::size_t>(p)] == 0) continue;
      auto& part = parts[find(*parent, p)];
      const NetworkStation& q = P(p);
      const bool held = q.fixed || (isHeight ? q.sigmaZ.has_value() : q.sigma.has_value());
      part.first = part.first || held;
      if (!held) part.second.push_back(q.name);
    }
    for (const auto& [root, part] : parts)
      if (!part.first) {
        std::string names;
        for (const auto& n : part.second) names += (names.empty() ? "" : ", ") + n;
        throw NetworkError(std::string(isHeight ? "in height, " : "") + "points " + names +
                           " are not joined to any fixed or weighted point: hold one of them, or join them to the control");
      }
  }

  // The unknowns' values: coordinates from the file, orientations from the first sights.
  Eigen::VectorXd x = Eigen::VectorXd::Zero(u.count);
  std::vector<double> N(static_cast<std::size_t>(points)), E(N), Z(N);
  for (int p = 0; p < points; ++p) {
    N[static_cast<std::size_t>(p)] = P(p).northing.value_or(0);
    E[static_cast<std::size_t>(p)] = P(p).easting.value_or(0);
    Z[static_cast<std::size_t>(p)] = P(p).elevation.value_or(0);
  }
  std::map<int, double> orientation;  // unknown -> radians
  for (const Observation& o : net.observations)
    if (o.type == ObservationType::Direction && !orientation.count(u.orientation[{o.from, o.set}])) {
      const double az = std::atan2(E[static_cast<std::size_t>(o.to)] - E[static_cast<std::size_t>(o.from)],
                                   N[static_cast<std::size_t>(o.to)] - N[static_cast<std::size_t>(o.from)]);
      orientation[u.orientation[{o.from, o.set}]] = wrap(az - o.value);
    }

  const auto rows = [&]() {
    std::vector<Row> out;
    const auto azimuth = [&](int a, int b, Row& r, double sign) {
      const double dn = N[static_cast<std::size_t>(b)] - N[static_cast<std::size_t>(a)], de = E[static_cast<std::size_t>(b)] - E[static_cast<std::size_t>(a)];
      const double d2 = dn * dn + de * de;
      const auto add = [&r](int k, double v) {
        if (k >= 0) r.terms.push_back({k, v});
      };
      add(u.n[static_cast<std::size_t>(b)], sign * -de / d2);
      add(u.e[static_cast<std::size_t>(b)], sign * dn / d2);
      add(u.n[static_cast<std::size_t>(a)], sign * de / d2);
      add(u.e[static_cast<std::size_t>(a)], sign * -dn / d2);
      return std::atan2(de, dn);
    };
    for (const Observation& o : net.observations) {
      Row r;
      r.sigma = o.sigma;
      const auto add = [&r](int k, double v) {
        if (k >= 0) r.terms.push_back({k, v});
      };
      switch (o.type) {
        case ObservationType::Distance:
        case ObservationType::Slope: {
          const double dn = N[static_cast<std::size_t>(o.to)] - N[static_cast<std::size_t>(o.from)],
                       de = E[static_cast<std::size_t>(o.to)] - E[static_cast<std::size_t>(o.from)];
          const double d = std::hypot(dn, de);
          add(u.n[static_cast<std::size_t>(o.to)], dn / d);
          add(u.e[static_cast<std::size_t>(o.to)], de / d);
          add(u.n[static_cast<std::size_t>(o.from)], -dn / d);
          add(u.e[static_cast<std::size_t>(o.from)], -de / d);
          // A slope distance reduced to the horizontal by its zenith angle.
          const double observed = o.type == ObservationType::Slope ? o.value * std::sin(o.zenith) : o.value;
          if (o.type == ObservationType::Slope) r.sigma = o.sigma * std::sin(o.zenith);
          r.misclosure = observed - d;
          break;
        }
        case ObservationType::Azimuth:
          r.misclosure = wrap(o.value - azimuth(o.from, o.to, r, 1));
          break;
        case ObservationType::Direction: {
          const int k = u.orientation.at({o.from, o.set});
          const double computed = azimuth(o.from, o.to, r, 1) - orientation[k];
          r.terms.push_back({k, -1});
          r.misclosure = wrap(o.value - computed);
          break;
        }
        case ObservationType::Angle: {
          const double fore = azimuth(o.at, o.fore, r, 1);
          const double back = azimuth(o.at, o.back, r, -1);
          r.misclosure = wrap(o.value - (fore - back));
          break;
        }
        case ObservationType::Dh:
          add(u.z[static_cast<std::size_t>(o.to)], 1);
          add(u.z[static_cast<std::size_t>(o.from)], -1);
          r.misclosure = o.value - (Z[static_cast<std::size_t>(o.to)] - Z[static_cast<std::size_t>(o.from)]);
          break;
      }
      out.push_back(std::move(r));
    }
    // Weighted control: its given coordinates as observations of themselves.
    for (int p = 0; p < points; ++p) {
      const NetworkStation& q = P(p);
      if (q.sigma && u.n[static_cast<std::size_t>(p)] >= 0) {
        out.push_back({{{u.n[static_cast<std::size_t>(p)], 1}}, *q.northing - N[static_cast<std::size_t>(p)], (*q.sigma)[0]});
        out.push_back({{{u.e[static_cast<std::size_t>(p)], 1}}, *q.easting - E[static_cast<std::size_t>(p)], (*q.sigma)[1]});
      }
      if (q.sigmaZ && u.z[static_cast<std::size_t>(p)] >= 0)
        out.push_back({{{u.z[static_cast<std::size_t>(p)], 1}}, *q.elevation - Z[static_cast<std::size_t>(p)], *q.sigmaZ});
    }
    return out;
  };

  Adjustment out;
  const int m = static_cast<int>(rows().size());
  out.dof = m - u.count;
  if (out.dof < 0)
    throw NetworkError("the network has " + std::to_string(m) + " observations for " + std::to_string(u.count) +
                       " unknowns: it needs " + std::to_string(-out.dof) + " more to be adjusted");
  Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>> solver;
  std::vector<Row> last;
  for (out.iterations = 1; out.iterations <= 50; ++out.iterations) {
    last = rows();
    std::vector<Eigen::Triplet<double>> triplets;
    Eigen::VectorXd rhs = Eigen::VectorXd::Zero(u.count);
    for (const Row& r : last) {
      const double w = 1 / (r.sigma * r.sigma);
      for (const auto& [i, ai] : r.terms) {
        rhs[i] += ai * w * r.misclosure;
        for (const auto& [j, aj] : r.terms) triplets.emplace_back(i, j, ai * w * aj);
      }
    }
    Eigen::SparseMatrix<double> normal(u.count, u.count);
    normal.setFromTriplets(triplets.begin(), triplets.end());
    solver.compute(normal);
    const Eigen::VectorXd& d = solver.vectorD();
    const double largest = d.size() ? d.cwiseAbs().maxCoeff() : 0;
    std::vector<std::string> loose;
    for (Eigen::Index i = 0; i < d.size(); ++i)
      if (!(std::fabs(d[i]) > largest * 1e-12)) loose.push_back(u.names[static_cast<std::size_t>(solver.permutationPinv().indices()[i])]);
    if (solver.info() != Eigen::Success || !loose.empty()) {
      std::string what;
      for (const auto& l : loose) what += (what.empty() ? "" : ", ") + l;
      throw NetworkError("the network has a datum defect: the observations do not fix " + (what.empty() ? "every unknown" : what) +
                         "; hold or weight more control, or observe an azimuth");
    }
    const Eigen::VectorXd dx = solver.solve(rhs);
    for (int p = 0; p < points; ++p) {
      if (u.n[static_cast<std::size_t>(p)] >= 0) N[static_cast<std::size_t>(p)] += dx[u.n[static_cast<std::size_t>(p)]];
      if (u.e[static_cast<std::size_t>(p)] >= 0) E[static_cast<std::size_t>(p)] += dx[u.e[static_cast<std::size_t>(p)]];
      if (u.z[static_cast<std::size_t>(p)] >= 0) Z[static_cast<std::size_t>(p)] += dx[u.z[static_cast<std::size_t>(p)]];
    }
    for (auto& [k, w] : orientation) w += dx[k];
    if (dx.size() == 0 || dx.cwiseAbs().maxCoeff() < 1e-8) break;
    if (out.iterations == 50) throw NetworkError("the adjustment does not converge in 50 iterations: look for a blunder or a poor first approximation");
  }
  last = rows();  // the residuals at the adjusted values: v = computed - observed = -misclosure

  // Statistics: vᵀPv, the global test, the cofactors of the unknowns.
  double vpv = 0;
  for (const Row& r : last) vpv += r.misclosure * r.misclosure / (r.sigma * r.sigma);
  out.chiSquare = vpv;
  out.variance = out.dof > 0 ? vpv / out.dof : 1;
  if (out.dof > 0) {
    const boost::math::chi_squared chi(out.dof);
    out.lower = boost::math::quantile(chi, net.significance / 2);
    out.upper = boost::math::quantile(chi, 1 - net.significance / 2);
    out.passed = out.lower <= vpv && vpv <= out.upper;
  } else {
    out.passed = true;
  }
  out.critical = boost::math::quantile(boost::math::complement(boost::math::normal(), net.snooping / 2));
  const SparseInverse Q(solver);
  const double scale95 = std::sqrt(boost::math::quantile(boost::math::chi_squared(2), 0.95));
  double worst = 0;
  for (std::size_t i = 0; i < net.observations.size(); ++i) {
    const Observation& o = net.observations[i];
    const Row& r = last[i];
    double aqa = 0;
    for (const auto& [a, va] : r.terms)
      for (const auto& [b, vb] : r.terms) aqa += va * Q(a, b) * vb;
    AdjustedObservation adjusted;
    adjusted.place = o.place;
    adjusted.type = o.type;
    const double v = -r.misclosure;
    const bool angular = o.type == ObservationType::Angle || o.type == ObservationType::Direction || o.type == ObservationType::Azimuth;
    adjusted.residual = angular ? v / kSecond : v;
    adjusted.redundancy = std::clamp(1 - aqa / (r.sigma * r.sigma), 0.0, 1.0);
    adjusted.standardized = adjusted.redundancy > 1e-9 ? v / (r.sigma * std::sqrt(adjusted.redundancy)) : 0;
    if (std::fabs(adjusted.standardized) > out.critical && std::fabs(adjusted.standardized) > worst) {
      worst = std::fabs(adjusted.standardized);
      out.flagged = o.place;
    }
    out.observations.push_back(adjusted);
  }
  for (AdjustedObservation& o : out.observations) o.flagged = out.flagged && *out.flagged == o.place;
  const double sigma0 = std::sqrt(out.variance);
  for (int p = 0; p < points; ++p) {
    const NetworkStation& q = P(p);
    AdjustedPoint a;
    a.name = q.name;
    const int in = u.n[static_cast<std::size_t>(p)], ie = u.e[static_cast<std::size_t>(p)], iz = u.z[static_cast<std::size_t>(p)];
    if (q.northing) a.northing = N[static_cast<std::size_t>(p)], a.easting = E[static_cast<std::size_t>(p)];
    if (q.elevation) a.elevation = Z[static_cast<std::size_t>(p)];
    a.moved = in >= 0 || iz >= 0;
    if (in >= 0) {
      a.sn = sigma0 * std::sqrt(Q(in, in));
      a.se = sigma0 * std::sqrt(Q(ie, ie));
      a.standard = ellipseOf(Q(in, in), Q(ie, ie), Q(in, ie), sigma0);
      a.ellipse95 = ellipseOf(Q(in, in), Q(ie, ie), Q(in, ie), sigma0 * scale95);
    }
    if (iz >= 0) a.sz = sigma0 * std::sqrt(Q(iz, iz));
    out.points.push_back(a);
  }
  // Relative ellipses, and the relative positional precision allowed: 2 cm or 0.07 ft, plus 50 ppm.
  std::vector<std::array<int, 2>> pairs = net.relative;
  if (!net.relativeGiven) {
    // Every pair joined by an observation, once, where one of them moves.
    std::set<std::array<int, 2>> joined;
    const auto joinPair = [&](int i, int j) {
      if (i == j || (u.n[static_cast<std::size_t>(i)] < 0 && u.n[static_cast<std::size_t>(j)] < 0)) return;
      if (!P(i).northing || !P(j).northing) return;
      if (joined.insert({std::min(i, j), std::max(i, j)}).second) pairs.push_back({std::min(i, j), std::max(i, j)});
    };
    for (const Observation& o : net.observations) {
      if (o.type == ObservationType::Dh) continue;
      if (o.type == ObservationType::Angle) {
        joinPair(o.at, o.back);
        joinPair(o.at, o.fore);
      } else {
        joinPair(o.from, o.to);
      }
    }
  }
  for (const auto& [i, j] : pairs) {
    const auto q = [&](int a, int b) { return a >= 0 && b >= 0 ? Q(a, b) : 0.0; };
    const int ni = u.n[static_cast<std::size_t>(i)], ei = u.e[static_cast<std::size_t>(i)], nj = u.n[static_cast<std::size_t>(j)],
              ej = u.e[static_cast<std::size_t>(j)];
    const double qnn = q(ni, ni) + q(nj, nj) - 2 * q(ni, nj), qee = q(ei, ei) + q(ej, ej) - 2 * q(ei, ej);
    const double qne = q(ni, ei) + q(nj, ej) - q(ni, ej) - q(nj, ei);
    RelativeEllipse r;
    r.from = i, r.to = j;
    r.ellipse95 = ellipseOf(qnn, qee, qne, sigma0 * scale95);
    const double d = std::hypot(N[static_cast<std::size_t>(j)] - N[static_cast<std::size_t>(i)], E[static_cast<std::size_t>(j)] - E[static_cast<std::size_t>(i)]);
    r.allowed = (net.units == "m" ? 0.02 : 0.07) + 50e-6 * d;
    r.passed = r.ellipse95.a <= r.allowed;
    out.relative.push_back(r);
  }
  return out;
}

}  // namespace tervalo
