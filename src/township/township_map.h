#pragma once
// The township's map: every completed section outlined and numbered, its
// quarter and sixteenth lines, each corner marked by its status (entered,
// computed, restored), the corners two sections put apart ringed with the
// difference beside them; north up, true to scale, in feet.

#include <optional>
#include <string>

#include "app/picture.h"
#include "township/township.h"

namespace tervalo {

// `selectedRow`: the plan row whose section is outlined in the accent ink.
Picture townshipMap(const TownshipOutcome& outcome, int selectedRow = -1);

// What a click on the map at (x, y) picks, `tolerance` being how far from a
// ring still counts: a disagreement (its index) before a section (its row).
struct MapPick {
  std::optional<std::size_t> disagreement;
  std::optional<int> row;
};
MapPick pickOnMap(const TownshipOutcome& outcome, double x, double y, double tolerance);

}  // namespace tervalo
