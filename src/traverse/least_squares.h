#pragma once
// A traverse adjusted by least squares as a plane network: distances and
// angles (an azimuth being an angle from north) among its stations, the
// known ones held, each observation weighted by its standard error; solved
// by the network engine. Gives the adjusted points, each observation's
// residual with its redundancy number and standardized residual, the
// reference variance with the global test, and each free point's standard
// error ellipse.

#include <optional>
#include <string>
#include <vector>

#include "traverse/traverse.h"

namespace tervalo {

struct NetworkPoint {
  PlanePosition at;  // held, or where the iteration starts
  bool fixed = false;
  std::string name{};  // for a message
};

// A direction from a point: toward another point, or a fixed azimuth.
struct NetworkDirection {
  int point = -1;  // -1: the azimuth below
  double azimuth = 0;
};

struct NetworkObservation {
  enum class Kind { Distance, Angle };
  Kind kind = Kind::Distance;
  int at = 0;
  int to = 0;                // a distance's far end
  NetworkDirection from{}, toward{};  // an angle: the direction `toward` less the direction `from`, clockwise
  double value = 0;          // the unit, or degrees
  double sigma = 0;          // the unit, or seconds
  std::string label;
};

struct NetworkAdjustment {
  std::vector<PlanePosition> points;
  std::vector<std::optional<ErrorEllipse>> ellipses;  // free points only
  LeastSquaresReport report;
};

// TraverseError when the network does not fix its free points or does not
// converge. `units` ("ft" or "m") is the traverse's.
NetworkAdjustment adjustTraverseNetwork(const std::vector<NetworkPoint>& points, const std::vector<NetworkObservation>& observations,
                                        const std::string& units);

}  // namespace tervalo
