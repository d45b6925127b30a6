#include "text/station.h"

#include "text/errors.h"
#include "text/number.h"

namespace tervalo {

StationText stationToNumber(std::string_view text) {
  const auto plus = text.find('+');
  if (plus == std::string_view::npos)
    throw RunTimeError("Invalid procedure call or argument: station \"" + std::string(text) + "\" has no \"+\"");
  StationText s;
  s.plusPosition = static_cast<int>(plus) + 1;
  s.before = std::string(text.substr(0, plus));
  s.after = std::string(text.substr(plus + 1));
  s.joined = s.before + s.after;
  s.number = Val(s.joined);
  return s;
}

}  // namespace tervalo
