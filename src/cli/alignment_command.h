#pragma once
// tervalo-cli alignment: an alignment file's key points and curve data, the
// point at a station and offset, the station and offset of a point, or a
// stakeout listing, as a report or JSON.

#include <iosfwd>
#include <optional>
#include <string>

namespace tervalo {

struct AlignmentQuery {
  std::optional<std::string> station{};
  double offset = 0;
  std::optional<std::pair<double, double>> point{};  // northing, easting
  std::optional<double> every{};
  bool json = false;
};

// 0 answered; 2 a file that is no alignment, an alignment that cannot be
// built, or a question it cannot answer (a station or point beyond it),
// each said with its place and numbers.
int alignmentCommand(const std::string& file, const AlignmentQuery& query, std::ostream& out, std::ostream& err);

}  // namespace tervalo
