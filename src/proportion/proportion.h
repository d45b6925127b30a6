#pragma once
// Straight-line proportion along stationing: the value at a station, at
// every station of a range, or the station of a value, across a station
// equation when there is one.

#include <string>
#include <vector>

namespace tervalo {

struct ProportionInput {
  double begSta = 0, begValue = 0;
  double endSta = 0, endValue = 0;
  bool ratioGiven = false;  // the ending field held S:V
  double ratio = 0;         // value per unit of station
  std::string ratioText;    // as typed, for the title
  double increment = 0, first = 0, last = 0, value = 0;
  double eqIn = 0, eqOut = 0;
  bool between = false;  // an equation lies between the beginning and ending stations
  bool round = false;    // after the equation, stations at multiples of the increment
  bool metric = false;
};

// "###+00.000", or "###+000.000" for 1000-unit stations.
const char* proportionMask(bool metric);

// The title lines, first in the output list.
std::vector<std::string> writeFileTitle(const ProportionInput& in);

struct ProportionResult {
  std::vector<std::string> lines;  // result and equation lines, then the closing rule
  std::string refusal;             // why nothing could be computed; empty when all went well
};

// processData with processNoEquation or processWithEquation.
ProportionResult processData(ProportionInput in);

// The most stations one listing holds.
inline constexpr std::size_t kMaxProportionLines = 10000;

}  // namespace tervalo
