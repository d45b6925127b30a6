#pragma once
// Station text: whole stations, "+", and the distance within the station
// ("12+34.56" in 100-foot stations, "1+234.567" in 1000-metre stations).

#include <string>
#include <string_view>

namespace tervalo {

struct StationText {
  int plusPosition = 0;  // 1-based position of the first "+"
  std::string before;    // text before the "+"
  std::string after;     // text after the "+"
  std::string joined;    // before followed by after
  double number = 0;     // joined, read as a number: 12+34.56 is 1234.56
};

// Callers test for the "+" first; a text without one is an invalid
// procedure argument (RunTimeError).
StationText stationToNumber(std::string_view text);

}  // namespace tervalo
