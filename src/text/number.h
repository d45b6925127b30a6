#pragma once
// Numbers as the program reads and writes them in fields and files.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tervalo {

// Lenient reading of a typed number. Blanks, tabs and line feeds are ignored
// wherever they stand (" 2 45 7" reads 2457); reading stops at the first
// character that cannot continue the number ("1,000" reads 1); empty or
// non-numeric text reads 0. Accepts a sign, digits, one point, an exponent
// written with E or D, and whole numbers prefixed &H (hex) or &O (octal).
// Throws RunTimeError("Overflow") when the number is beyond a double.
double Val(std::string_view text);

// Strict reading: the whole text, less surrounding blanks, must be a number.
// Returns nothing for empty or non-numeric text (the caller reports the
// type mismatch with its own context).
std::optional<double> strictNumber(std::string_view text);
// The same, and nothing either for a number beyond a double's range: for a
// coordinate or distance read from a file or a command, where an Overflow
// is one more text that is no number.
std::optional<double> finiteNumber(std::string_view text);

// Number to text: at most 15 significant digits, no trailing zeros or point,
// no leading blank, "0.5" for fractions, exponent form ("1E+15", "1E-05")
// only below 0.0001 or from 1E+15 up. A value that is not finite is an
// Overflow (RunTimeError), as its computation would have been.
std::string CStr(double value);

// Whole-number conversions of the 16-bit fields (section, township, range).
// Fractions are cut toward zero; a value beyond 16 bits is an Overflow.
std::int16_t toInt16(double value);

}  // namespace tervalo
