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
  std::string landxml{};  // also write the alignment and its profile here as LandXML
  std::string dxf{};      // and its plan here as a DXF drawing
  bool json = false;
};

// The file is an alignment file or a LandXML file (.xml: its first
// alignment and profile). 0 answered; 3 the LandXML could not be written;
// 2 a file that is no alignment, an alignment that cannot be
// built, or a question it cannot answer (a station or point beyond it),
// each said with its place and numbers.
int alignmentCommand(const std::string& file, const AlignmentQuery& query, std::ostream& out, std::ostream& err);

}  // namespace tervalo
