#pragma once
// The listing of elevations at stations of a range: the list lines of the
// results window, with up to three parallel profiles, the curve's turning
// point and a station equation merged in.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "vcurve/vertical_curve.h"

namespace tervalo {

struct ListingInput {
  double start = 0, end = 0, increment = 0;
  bool exact = false;   // list from the start itself instead of from multiples of the increment
  bool metric = false;  // 1000-unit stations
  std::array<double, 3> profiles{};  // offsets; 0 means no such profile
  std::optional<std::pair<double, double>> equation;  // IN and OUT stations
};

// The most stations one listing holds; a longer one stops there.
inline constexpr std::size_t kMaxListedStations = 10000;

// One line of a listing as its parts, for files of other programs: the
// station, mark and elevation texts and the profile elevations, or a
// banner ("**** EQUATION IN  ****") alone.
struct ListingRow {
  std::string station, mark, elevation;
  std::vector<std::string> profiles;
  std::string banner;
};

struct Listing {
  std::vector<std::string> lines;
  std::vector<ListingRow> rows;  // one for each line
  bool cut = false;  // stopped at kMaxListedStations
};

// processVincrements. `curve` is taken by value: an equation moves its
// stations into the OUT stationing for the rest of the listing.
Listing processVincrements(VerticalCurve curve, const ListingInput& input);

// One list line: station, mark, elevation text, then the profile columns.
std::string addItemTstr(const std::string& stationText, const std::string& mark, const std::string& elevationText,
                        const std::array<double, 3>& profiles);

// The same line as its parts.
ListingRow listingRow(const std::string& stationText, const std::string& mark, const std::string& elevationText,
                      const std::array<double, 3>& profiles);

// The listing as comma-separated values with a header line: station, mark,
// elevation and a column for each profile used; an equation's banners go in
// the mark column.
std::vector<std::string> listingCsv(const std::vector<ListingRow>& rows, const std::array<double, 3>& profiles);

}  // namespace tervalo
