#include "app/print_job.h"

#include <algorithm>

#include "text/justify.h"

namespace tervalo {

std::vector<std::vector<std::string>> textPages(const std::vector<std::string>& lines, int linesPerPage) {
  const std::size_t most = static_cast<std::size_t>(std::max(linesPerPage, 1));
  std::vector<std::vector<std::string>> pages(1);
  auto add = [&](const std::string& line) {
    if (pages.back().size() == most) pages.emplace_back();
    pages.back().push_back(line);
  };
  for (const std::string& line : lines) {
    std::string::size_type start = 0;
    for (auto feed = line.find('\f'); feed != std::string::npos; feed = line.find('\f', start)) {
      if (feed > start) add(line.substr(start, feed - start));
      if (!pages.back().empty()) pages.emplace_back();
      start = feed + 1;
    }
    if (start < line.size() || start == 0) add(line.substr(start));
  }
  while (pages.size() > 1 && pages.back().empty()) pages.pop_back();
  return pages;
}

int widestLine(const std::vector<std::string>& lines) {
  std::size_t widest = 0;
  for (const std::string& line : lines) widest = std::max(widest, textLength(line));
  return static_cast<int>(widest);
}

}  // namespace tervalo
