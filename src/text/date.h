#pragma once
// Calendar dates for report titles and the header form.

#include <optional>
#include <string>
#include <string_view>

namespace tervalo {

struct Date {
  int year = 2000;
  int month = 1;
  int day = 1;
  bool operator==(const Date&) const = default;
};

// "m/d/yy": month and day without leading zeros, two-digit year (11/5/26).
std::string formatMdyy(const Date& date);

// The short date of the header form: "m/d/yyyy" (11/5/2026).
std::string formatShortDate(const Date& date);

// "YYYY-MM-DD", checked for a real calendar day.
std::optional<Date> parseIsoDate(std::string_view text);

// Today's date on this machine (local time).
Date localToday();

}  // namespace tervalo
