#include "text/number.h"

#include <cctype>
#include <cmath>
#include <cstdlib>

#include "text/decimal.h"
#include "text/errors.h"

namespace tervalo {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// &H and &O numbers are 16-bit when they fit in four hex (six octal) digits
// and 32-bit otherwise, so &HFFFF reads -1 as it always has.
double radixNumber(std::string_view digits, int radix) {
  double v = 0;
  for (char c : digits) v = v * radix + (isDigit(c) ? c - '0' : std::toupper(static_cast<unsigned char>(c)) - 'A' + 10);
  const bool short16 = radix == 16 ? digits.size() <= 4 : digits.size() <= 6;
  if (short16 && v <= 65535 && v >= 32768) return v - 65536;
  if (v <= 4294967295.0 && v >= 2147483648.0) return v - 4294967296.0;
  if (v > 4294967295.0) throw RunTimeError("Overflow");
  return v;
}

// The longest prefix of `s` that is a decimal number: sign, digits, one
// point, exponent. Empty when no digit is found.
std::string_view numberPrefix(std::string_view s) {
  std::size_t i = 0;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
  std::size_t digits = 0;
  while (i < s.size() && isDigit(s[i])) ++i, ++digits;
  if (i < s.size() && s[i] == '.') {
    ++i;
    while (i < s.size() && isDigit(s[i])) ++i, ++digits;
  }
  if (digits == 0) return {};
  if (i < s.size() && std::string_view("EeDd").find(s[i]) != std::string_view::npos) {
    std::size_t j = i + 1;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
    const std::size_t expStart = j;
    while (j < s.size() && isDigit(s[j])) ++j;
    if (j > expStart) i = j;
  }
  return s.substr(0, i);
}

double decimalValue(std::string_view number) {
  std::string text(number);
  for (char& c : text)
    if (c == 'D' || c == 'd') c = 'E';
  const double v = std::strtod(text.c_str(), nullptr);
  if (std::isinf(v)) throw RunTimeError("Overflow");
  return v;
}

std::optional<double> radixPrefix(std::string_view s, bool whole) {
  if (s.size() < 2 || s[0] != '&') return std::nullopt;
  const char kind = static_cast<char>(std::toupper(static_cast<unsigned char>(s[1])));
  const int radix = kind == 'H' ? 16 : kind == 'O' ? 8 : 0;
  if (radix == 0) return std::nullopt;
  std::size_t i = 2;
  while (i < s.size() && (radix == 16 ? std::isxdigit(static_cast<unsigned char>(s[i])) != 0 : (s[i] >= '0' && s[i] <= '7'))) ++i;
  if (whole && (i != s.size() || i == 2)) return std::nullopt;
  return radixNumber(s.substr(2, i - 2), radix);
}

}  // namespace

double Val(std::string_view text) {
  std::string s;
  s.reserve(text.size());
  for (char c : text)
    if (c != ' ' && c != '\t' && c != '\n') s.push_back(c);
  if (auto v = radixPrefix(s, false)) return *v;
  const std::string_view number = numberPrefix(s);
  return number.empty() ? 0.0 : decimalValue(number);
}

std::optional<double> finiteNumber(std::string_view text) {
  try {
    const auto v = strictNumber(text);
    return v && std::isfinite(*v) ? v : std::nullopt;
  } catch (const RunTimeError&) {
    return std::nullopt;
  }
}

std::optional<double> strictNumber(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return std::nullopt;
  const auto last = text.find_last_not_of(" \t");
  const std::string_view s = text.substr(first, last - first + 1);
  if (auto v = radixPrefix(s, true)) return v;
  const std::string_view number = numberPrefix(s);
  if (number.empty() || number.size() != s.size()) return std::nullopt;
  return decimalValue(number);
}

std::string CStr(double value) {
  if (!std::isfinite(value)) throw RunTimeError("Overflow");
  if (value == 0.0) return "0";
  const detail::Decimal d = detail::toDecimal15(value);
  std::string digits = d.digits;
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
  std::string out = d.negative ? "-" : "";
  if (d.exponent >= 15 || d.exponent < -4) {
    out += digits.substr(0, 1);
    if (digits.size() > 1) out += "." + digits.substr(1);
    const int e = std::abs(d.exponent);
    out += d.exponent < 0 ? "E-" : "E+";
    if (e < 10) out += '0';
    out += std::to_string(e);
  } else if (d.exponent < 0) {
    out += "0." + std::string(static_cast<std::size_t>(-d.exponent - 1), '0') + digits;
  } else {
    const auto intCount = static_cast<std::size_t>(d.exponent + 1);
    if (digits.size() <= intCount) {
      out += digits + std::string(intCount - digits.size(), '0');
    } else {
      out += digits.substr(0, intCount) + "." + digits.substr(intCount);
    }
  }
  return out;
}

std::int16_t toInt16(double value) {
  const double whole = std::trunc(value);
  if (!(whole >= -32768.0 && whole <= 32767.0)) throw RunTimeError("Overflow");
  return static_cast<std::int16_t>(whole);
}

}  // namespace tervalo
