#include "text/decimal.h"

#include <cmath>
#include <charconv>
#include <cstdlib>

namespace tervalo::detail {

Decimal toDecimal15(double value) {
  Decimal d;
  d.negative = std::signbit(value) && value != 0.0;
  // Exactly printf's "%.14e" (both round the binary value correctly), at a
  // fraction of its cost: every number the program writes comes through here.
  char buf[40];
  const auto written = std::to_chars(buf, buf + sizeof buf - 1, std::fabs(value), std::chars_format::scientific, 14);
  *written.ptr = '\0';
  // buf is "d.dddddddddddddde+XX"
  d.digits.push_back(buf[0]);
  const char* p = buf + 2;
  while (*p >= '0' && *p <= '9') d.digits.push_back(*p++);
  if (*p == 'e') d.exponent = std::atoi(p + 1);
  if (value == 0.0) d.exponent = 0;
  return d;
}

Rounded roundDecimal(double value, int decimals) {
  const Decimal d = toDecimal15(value);
  Rounded r;
  r.negative = d.negative;
  const int intCount = d.exponent + 1;  // digits before the point (may be <= 0)
  std::string all;                       // integer digits then fraction digits
  int pointAt = 0;                       // index in `all` where the fraction starts
  if (intCount > 0) {
    all = d.digits;
    if (static_cast<int>(all.size()) < intCount) all.append(static_cast<std::size_t>(intCount) - all.size(), '0');
    pointAt = intCount;
  } else {
    all = std::string(static_cast<std::size_t>(-intCount), '0') + d.digits;
    pointAt = 0;
  }
  const std::size_t keep = static_cast<std::size_t>(pointAt + decimals);
  if (all.size() > keep) {
    const bool up = all[keep] >= '5';
    all.resize(keep);
    if (up) {
      std::size_t i = all.size();
      while (i > 0 && all[i - 1] == '9') all[--i] = '0';
      if (i == 0) {
        all.insert(all.begin(), '1');
        ++pointAt;
      } else {
        ++all[i - 1];
      }
    }
  } else {
    all.append(keep - all.size(), '0');
  }
  r.integer = all.substr(0, static_cast<std::size_t>(pointAt));
  r.fraction = all.substr(static_cast<std::size_t>(pointAt));
  const auto firstNonZero = r.integer.find_first_not_of('0');
  r.integer = firstNonZero == std::string::npos ? std::string() : r.integer.substr(firstNonZero);
  return r;
}

}  // namespace tervalo::detail
