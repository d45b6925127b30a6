#pragma once
// The vertical curve as a profile: both tangents, the parabola, PVC, PVI and
// PVT and the high or low point labelled with station and elevation, every
// listed station as a tick, the parallel profiles dashed, and a station
// equation as a break in the station axis. Elevations are drawn
// `exaggeration` times taller than stations, as the caption says.

#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "app/picture.h"
#include "vcurve/listing.h"
#include "vcurve/vertical_curve.h"

namespace tervalo {

struct ProfileInput {
  VerticalCurve curve;  // in the stationing before any equation
  bool metric = false;
  std::array<double, 3> profiles{};
  std::vector<ListingRow> listed;
  std::optional<std::pair<double, double>> equation;  // IN and OUT stations
};

struct ProfileSketch {
  Picture picture;
  double exaggeration = 1;
};

ProfileSketch profileSketch(const ProfileInput& in);

}  // namespace tervalo
