#include "text/encoding.h"

#include <array>
#include <cstdint>

namespace tervalo {
namespace {

// Windows-1252 0x80 to 0x9F; the five bytes it leaves unassigned keep their
// C1 code points, as browsers read them.
constexpr std::array<char32_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void appendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

}  // namespace

bool isValidUtf8(std::string_view bytes) {
  std::size_t i = 0;
  while (i < bytes.size()) {
    const auto lead = static_cast<std::uint8_t>(bytes[i]);
    std::size_t more = 0;
    std::uint8_t low = 0x80, high = 0xBF;  // the range of the first continuation byte
    if (lead < 0x80) {
      ++i;
      continue;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
      more = 1;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      more = 2;
      if (lead == 0xE0) low = 0xA0;   // overlong
      if (lead == 0xED) high = 0x9F;  // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      more = 3;
      if (lead == 0xF0) low = 0x90;   // overlong
      if (lead == 0xF4) high = 0x8F;  // past U+10FFFF
    } else {
      return false;
    }
    if (i + more >= bytes.size()) return false;  // cut short
    for (std::size_t k = 1; k <= more; ++k) {
      const auto c = static_cast<std::uint8_t>(bytes[i + k]);
      if (c < (k == 1 ? low : 0x80) || c > (k == 1 ? high : 0xBF)) return false;
    }
    i += more + 1;
  }
  return true;
}

std::string decodeText(std::string_view bytes) {
  if (isValidUtf8(bytes)) return std::string(bytes);
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 4);
  for (const char b : bytes) {
    const auto c = static_cast<std::uint8_t>(b);
    appendUtf8(out, c >= 0x80 && c < 0xA0 ? kHighControls[c - 0x80] : c);
  }
  return out;
}

}  // namespace tervalo
