#include "text/format.h"

#include "text/errors.h"

#include <algorithm>
#include <cmath>

#include "text/decimal.h"
#include "text/number.h"

namespace tervalo {
namespace {

bool isPlaceholder(char c) { return c == '0' || c == '#'; }

// Lays the integer digits into the integer part of the mask from the right.
std::string layInteger(std::string digits, std::string_view mask) {
  // The leftmost forced digit fixes the least number of digits shown.
  std::size_t minDigits = 0, placeholders = 0;
  for (auto it = mask.rbegin(); it != mask.rend(); ++it) {
    if (!isPlaceholder(*it)) continue;
    ++placeholders;
    if (*it == '0') minDigits = placeholders;
  }
  if (digits.size() < minDigits) digits.insert(0, minDigits - digits.size(), '0');

  std::string out;  // built right to left
  std::size_t next = digits.size();
  for (auto it = mask.rbegin(); it != mask.rend(); ++it) {
    if (isPlaceholder(*it)) {
      if (next > 0) out.push_back(digits[--next]);
    } else {
      out.push_back(*it);
    }
  }
  while (next > 0) out.push_back(digits[--next]);
  std::reverse(out.begin(), out.end());
  return out;
}

}  // namespace

std::string Format(double value, std::string_view mask) {
  // A computation that left the doubles has overflowed; it never reaches a label or a file.
  if (!std::isfinite(value)) throw RunTimeError("Overflow");
  const auto point = mask.find('.');
  const std::string_view intMask = mask.substr(0, point);
  const std::string_view decMask = point == std::string_view::npos ? std::string_view() : mask.substr(point + 1);
  const auto decimals = static_cast<int>(std::count_if(decMask.begin(), decMask.end(), isPlaceholder));

  const detail::Rounded r = detail::roundDecimal(value, decimals);
  std::string out = r.negative ? "-" : "";
  out += layInteger(r.integer, intMask);
  if (point == std::string_view::npos) return out;

  // Optional decimal digits ('#') drop their trailing zeros.
  std::size_t shown = r.fraction.size();
  {
    std::size_t forced = 0, count = 0;
    for (char c : decMask) {
      if (!isPlaceholder(c)) continue;
      ++count;
      if (c == '0') forced = count;
    }
    while (shown > forced && r.fraction[shown - 1] == '0') --shown;
  }
  out += '.';
  std::size_t used = 0;
  for (char c : decMask) {
    if (isPlaceholder(c)) {
      if (used < shown) out += r.fraction[used];
      ++used;
    } else {
      out += c;
    }
  }
  return out;
}

std::string grouped(long long count) {
  const std::string digits = std::to_string(count < 0 ? -count : count);
  std::string out = count < 0 ? "-" : "";
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) out += ',';
    out += digits[i];
  }
  return out;
}

std::string FormatShown(double value, std::string_view mask) {
  std::string text = Format(value, mask);
  if (text.size() > 1 && text[0] == '-' && text.find_first_not_of("0.", 1) == std::string::npos) text.erase(0, 1);
  return text;
}

}  // namespace tervalo
