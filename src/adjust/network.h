#pragma once
// A survey network to adjust by least squares: its points (fixed, weighted
// by standard deviations, or free with their first approximations) and its
// observations with their standard deviations, as the network file gives
// them (`*.network.json`). Angles are held in radians, lengths in the unit.

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tervalo {

// A network file that cannot be adjusted as it stands: the message names
// the point or the observation by its place in the file and what is wrong.
class NetworkError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct NetworkStation {
  std::string name;
  std::optional<double> northing, easting, elevation;
  bool fixed = false;                            // held in position (and in height)
  std::optional<std::array<double, 2>> sigma{};  // weighted: σN, σE in the unit
  std::optional<double> sigmaZ{};                // weighted in height
};

enum class ObservationType { Distance, Slope, Angle, Direction, Azimuth, Dh };

struct Observation {
  ObservationType type = ObservationType::Distance;
  int place = 0;   // 1-based, in the file's order
  int from = -1;   // distance, slope, azimuth, dh: from; direction: at
  int to = -1;     // the point sighted
  int at = -1, back = -1, fore = -1;  // an angle, clockwise at `at` from `back` to `fore`
  int set = 0;     // a direction's set
  double value = 0;   // radians for angles, directions and azimuths; the unit otherwise
  double zenith = 0;  // a slope distance's zenith angle, radians
  double sigma = 0;   // radians or the unit
};

struct Network {
  std::string units = "ft";
  double significance = 0.05;  // of the global test
  double snooping = 0.001;     // of the w-test, two-sided
  std::vector<NetworkStation> points;
  std::vector<Observation> observations;
  // Pairs for relative ellipses; where the file names none, every pair of
  // points joined by an observation, not both held.
  std::vector<std::array<int, 2>> relative;
  bool relativeGiven = false;
};

// The network of a file's text. NetworkError names what is wrong and where.
Network parseNetwork(const std::string& text);

// The name of an observation for a message or a report: "distance A-C (observation 1)".
std::string observationName(const Network& network, const Observation& o);

}  // namespace tervalo
