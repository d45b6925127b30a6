#pragma once
// Numbers laid out by digit masks such as "#######0.0000" or "####+##.000".

#include <string>
#include <string_view>

namespace tervalo {

// Mask characters: '0' a forced digit, '#' an optional digit, one '.' the
// decimal point, anything else a literal that stays where it stands among
// the integer digits ("####+##.0000" gives 1255.65 as "12+55.6500" and 45 as
// "+45.0000"). The value is written with 15 significant digits and then
// rounded half away from zero to the mask's decimals, so 2.675 with "0.00"
// gives "2.68". Integer digits beyond the mask all go in front; a negative
// value takes "-" in front; without a forced integer digit a fraction has no
// leading zero (".500"). A value that is not finite is an Overflow.
std::string Format(double value, std::string_view mask);

// A report's number by `mask`, and no sign where its places show nothing:
// a residual of -0.00004 with "0.000" is 0.000, not -0.000.
std::string FormatShown(double value, std::string_view mask);

// A whole count with its thousands set apart: 12045 as "12,045".
std::string grouped(long long count);

}  // namespace tervalo
