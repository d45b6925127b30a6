// Any text as a COGO command file on a few points: every line answered or
// refused with the program's own word, never a crash; every answer is JSON
// that prints, and no point is made without finite coordinates.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>

#include "cogo/cogo.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::map<std::string, tervalo::ProjectPoint> held{
      {"1", {1, "1", 0, 0, 100.0, "", "", "", "", ""}},
      {"2", {2, "2", 0, 400, std::nullopt, "", "", "", "", ""}},
      {"3", {3, "3", 300, 400, 90.0, "", "", "", "", ""}}};
  tervalo::CogoEngine engine(
      [](const std::string& n) { return held.count(n) ? std::optional<tervalo::ProjectPoint>(held.at(n)) : std::nullopt; }, {});
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    try {
      if (const auto result = engine.run(line, ++number)) (void)result->dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    } catch (const tervalo::CogoError&) {
    }
  }
  try {
    engine.finish();
  } catch (const tervalo::CogoError&) {
  }
  for (const tervalo::ProjectPoint& p : engine.made())
    if (!std::isfinite(p.northing) || !std::isfinite(p.easting) || p.number.empty()) std::abort();
  return 0;
}
