#include "text/justify.h"

#include <algorithm>
#include <cctype>

#include "text/errors.h"

namespace tervalo {
namespace {

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Byte length of the character starting at `i`.
std::size_t charBytes(std::string_view text, std::size_t i) {
  const auto lead = static_cast<unsigned char>(text[i]);
  const std::size_t want = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
  std::size_t n = 1;
  while (n < want && i + n < text.size() && isContinuation(text[i + n])) ++n;
  return n;
}

std::size_t checkedWidth(int width) {
  if (width < 0) throw RunTimeError("Invalid procedure call or argument: negative field width");
  return static_cast<std::size_t>(width);
}

}  // namespace

std::size_t textLength(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); i += charBytes(text, i)) ++count;
  return count;
}

std::string_view textPrefix(std::string_view text, std::size_t count) {
  std::size_t i = 0;
  for (; i < text.size() && count > 0; --count) i += charBytes(text, i);
  return text.substr(0, i);
}

std::string rightJustify(std::string_view text, int width) {
  const std::size_t w = checkedWidth(width);
  const std::size_t n = textLength(text);
  if (w >= n) return std::string(w - n, ' ') + std::string(text);
  return std::string(textPrefix(text, w));
}

std::string leftJustify(std::string_view text, int width) {
  const std::size_t w = checkedWidth(width);
  const std::size_t n = textLength(text);
  if (w >= n) return std::string(text) + std::string(w - n, ' ');
  return std::string(textPrefix(text, w));
}

std::string upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

std::string stripBlanks(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return "";
  return std::string(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}

}  // namespace tervalo

namespace tervalo {

std::vector<std::string> wrapWords(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  std::string line;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t start = text.find_first_not_of(' ', at);
    if (start == std::string_view::npos) break;
    const std::size_t end = std::min(text.find(' ', start), text.size());
    const std::string_view word = text.substr(start, end - start);
    if (!line.empty() && textLength(line) + 1 + textLength(word) > width) {
      lines.push_back(line);
      line.clear();
    }
    line += (line.empty() ? "" : " ") + std::string(word);
    at = end;
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

}  // namespace tervalo
