#pragma once
// A network adjusted by least squares (parametric, Gauss-Newton): the
// adjusted coordinates with their standard deviations and error ellipses,
// every observation's residual, redundancy number and standardized
// residual (Baarda's w, the largest above its critical value flagged as
// the likely blunder), the a posteriori reference variance and the
// chi-square global test, and the relative ellipses of the pairs asked for
// against the ALTA/NSPS relative positional precision.

#include <optional>
#include <string>
#include <vector>

#include "adjust/network.h"

namespace tervalo {

struct Ellipse {
  double a = 0, b = 0;  // semi-axes, in the unit
  double azimuth = 0;   // of the major axis, degrees from north
};

struct AdjustedPoint {
  std::string name;
  std::optional<double> northing, easting, elevation;
  double sn = 0, se = 0;       // scaled by the a posteriori reference variance
  std::optional<double> sz{};
  Ellipse standard, ellipse95;  // 39.4 % and 95 %
  bool moved = false;           // free or weighted: adjusted, not held
};

struct AdjustedObservation {
  int place = 0;
  ObservationType type = ObservationType::Distance;
  double residual = 0;      // seconds for angles, directions and azimuths; the unit otherwise
  double standardized = 0;  // Baarda's w
  double redundancy = 0;
  bool flagged = false;
};

struct RelativeEllipse {
  int from = 0, to = 0;
  Ellipse ellipse95;
  double allowed = 0;  // 0.07 ft (0.02 m) + 50 ppm of the distance
  bool passed = false;
};

struct Adjustment {
  int dof = 0;
  int iterations = 0;
  double variance = 0;  // a posteriori reference variance
  double chiSquare = 0, lower = 0, upper = 0;
  bool passed = false;  // the global test
  double critical = 0;  // of |w|
  std::vector<AdjustedPoint> points;
  std::vector<AdjustedObservation> observations;
  std::vector<RelativeEllipse> relative;
  std::optional<int> flagged{};  // the place of the observation flagged
};

// Adjusts the network. NetworkError for a network that cannot be adjusted:
// a datum defect (too little control, a point joined by too few
// observations, a part not joined to the rest), naming what is missing and
// which points, or one that does not converge.
Adjustment adjustNetwork(const Network& network);

}  // namespace tervalo
