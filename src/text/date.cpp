#include "text/date.h"

#include <chrono>
#include <ctime>

namespace tervalo {

std::string formatMdyy(const Date& date) {
  const int yy = date.year % 100;
  return std::to_string(date.month) + "/" + std::to_string(date.day) + "/" + (yy < 10 ? "0" : "") + std::to_string(yy);
}

std::string formatShortDate(const Date& date) {
  return std::to_string(date.month) + "/" + std::to_string(date.day) + "/" + std::to_string(date.year);
}

std::optional<Date> parseIsoDate(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  auto number = [&](std::size_t from, std::size_t count) -> int {
    int v = 0;
    for (std::size_t i = from; i < from + count; ++i) {
      if (text[i] < '0' || text[i] > '9') return -1;
      v = v * 10 + (text[i] - '0');
    }
    return v;
  };
  const int y = number(0, 4), m = number(5, 2), d = number(8, 2);
  if (y < 0 || m < 1 || d < 1) return std::nullopt;
  const std::chrono::year_month_day ymd{std::chrono::year{y}, std::chrono::month{static_cast<unsigned>(m)},
                                        std::chrono::day{static_cast<unsigned>(d)}};
  if (!ymd.ok()) return std::nullopt;
  return Date{y, m, d};
}

Date localToday() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return Date{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday};
}

}  // namespace tervalo
