#pragma once
// Column fitting for fixed-column output lines. Widths count characters
// (UTF-8 code points), not bytes, so a degree sign takes one column.

#include <string>
#include <string_view>
#include <vector>

namespace tervalo {

// Pads on the left to exactly `width`; a longer text keeps its first `width`
// characters (it is cut on the right, so a too-long number loses its last
// digits, not its first).
std::string rightJustify(std::string_view text, int width);

// Pads on the right to exactly `width`; a longer text keeps its first `width`
// characters.
std::string leftJustify(std::string_view text, int width);

// The text cut into lines of at most `width` characters at blanks (a word
// longer than a line stands alone on one); no line ends in a blank.
std::vector<std::string> wrapWords(std::string_view text, std::size_t width);

// The text in upper case (ASCII letters; as point numbers are compared).
std::string upper(std::string text);

// The text without the blanks, tabs and line ends before and after it.
std::string stripBlanks(std::string_view text);

// Number of characters of a UTF-8 text; a stray byte counts as one.
std::size_t textLength(std::string_view text);

// The first `count` characters of a UTF-8 text.
std::string_view textPrefix(std::string_view text, std::size_t count);

}  // namespace tervalo
