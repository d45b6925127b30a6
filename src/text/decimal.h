#pragma once
// A double written out with 15 significant decimal digits, the precision at
// which every number of the program is turned into text.

#include <string>

namespace tervalo::detail {

struct Decimal {
  bool negative = false;
  std::string digits;  // 15 significant digits, "000000000000000" for zero
  int exponent = 0;    // power of ten of the first digit
};

Decimal toDecimal15(double value);

// Integer and fraction digit strings of |value| rounded half away from zero to
// `decimals` places (on the 15-digit form, never on the binary value), so
// that 2.675 rounds to 2.68. The integer string has no leading zeros ("" for
// zero); the fraction string is exactly `decimals` long.
struct Rounded {
  bool negative = false;
  std::string integer;
  std::string fraction;
};
Rounded roundDecimal(double value, int decimals);

}  // namespace tervalo::detail
