// Any bytes as a network file: read and adjusted, or refused with the
// program's own reason, never a crash; what is adjusted has finite
// coordinates and statistics.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "adjust/adjustment.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const tervalo::Adjustment a = tervalo::adjustNetwork(tervalo::parseNetwork(std::string(reinterpret_cast<const char*>(data), size)));
    for (const tervalo::AdjustedPoint& p : a.points)
      if (p.northing && (!std::isfinite(*p.northing) || !std::isfinite(*p.easting))) std::abort();
    if (!std::isfinite(a.variance) || a.dof < 0) std::abort();
  } catch (const tervalo::NetworkError&) {
  }
  return 0;
}
