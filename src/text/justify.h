#pragma once
// Column fitting for fixed-column output lines. Widths count characters
// (UTF-8 code points), not bytes, so a degree sign takes one column.

#include <string>
#include <string_view>

namespace tervalo {

// Pads on the left to exactly `width`; a longer text keeps its first `width`
// characters (it is cut on the right, so a too-long number loses its last
// digits, not its first).
std::string rightJustify(std::string_view text, int width);

// Pads on the right to exactly `width`; a longer text keeps its first `width`
// characters.
std::string leftJustify(std::string_view text, int width);

// The text in upper case (ASCII letters; as point numbers are compared).
std::string upper(std::string text);

// Number of characters of a UTF-8 text; a stray byte counts as one.
std::size_t textLength(std::string_view text);

// The first `count` characters of a UTF-8 text.
std::string_view textPrefix(std::string_view text, std::size_t count);

}  // namespace tervalo
