#include "text/angle.h"

#include <cmath>

#include "text/errors.h"
#include "text/format.h"
#include "text/number.h"

namespace tervalo {

std::string dmsToDecimal(std::string& packed) {
  if (!packed.empty() && packed.front() == '-') packed.erase(0, 1);
  if (packed.find('.') == std::string::npos) packed += ".0000";
  const std::size_t point = packed.find('.');  // 0-based; the 1-based position is point + 1
  const std::size_t degreeChars = point == 1 ? 1 : point == 2 ? 2 : 3;
  const std::string degrees = packed.substr(0, degreeChars);
  const std::string minutes = CStr(Val(packed.substr(point, 3)) * 100);
  const double minutesNumber = Val(packed.substr(point)) * 100;

  // The seconds are the decimals of the minutes, read from their 15-digit text.
  const std::string minutesText = CStr(minutesNumber);
  const std::size_t q = minutesText.find('.');
  const std::string seconds = q == std::string::npos ? "00" : CStr(Val(minutesText.substr(q)) * 100);

  return Format(Val(degrees) + Val(minutes) / 60 + Val(seconds) / 3600, "0.0000000");
}

std::string decimalToDms(double degrees) {
  const std::string text = CStr(degrees);
  std::string degreeText, minuteText, secondText;
  if (const std::size_t point = text.find('.'); point != std::string::npos) {
    degreeText = text.substr(0, point);
    const double minutesNumber = (degrees - Val(degreeText)) * 60;
    minuteText = CStr(std::floor(minutesNumber));
    secondText = CStr((minutesNumber - Val(minuteText)) * 60);
  } else {
    degreeText = text;
    minuteText = "0";
    secondText = "0";
  }
  secondText = Format(Val(secondText), "00.00");
  if (secondText == "60.00") {
    minuteText = CStr(Val(minuteText) + 1);
    secondText = "00";
  }
  minuteText = Format(Val(minuteText), "00");
  // The minutes were just formatted "00", so this test never holds and 60
  // minutes stay in the minutes field: kept as the program has always shown it.
  if (minuteText == "60.00") {
    degreeText = CStr(Val(degreeText) + 1);
    minuteText = "00";
  }
  return Format(Val(degreeText), "00") + "\u00B0" + Format(Val(minuteText), "00") + "'" +
         Format(Val(secondText), "00.00") + "\"";
}

std::string decimalToDmsCarried(double degrees) { return dmsCarried(degrees, 2); }

std::string dmsCarried(double degrees, int places) {
  const double perSecond = std::pow(10.0, places), perDegree = 3600.0 * perSecond;
  const double units = std::round(std::fabs(degrees) * perDegree);
  const double whole = std::floor(units / perDegree);
  const double minutes = std::floor((units - whole * perDegree) / (60 * perSecond));
  const double seconds = (units - whole * perDegree - minutes * 60 * perSecond) / perSecond;
  return std::string(degrees < 0 && units > 0 ? "-" : "") + Format(whole, "00") + "\u00B0" + Format(minutes, "00") +
         "'" + Format(seconds, "00." + std::string(static_cast<std::size_t>(places), '0')) + "\"";
}

std::optional<double> angleFromText(const std::string& text) try {
  std::string t = text;
  t.erase(0, t.find_first_not_of(' '));
  t.erase(t.find_last_not_of(' ') + 1);
  const auto dash = t.find('-', 1);  // a leading "-" is a sign
  if (dash == std::string::npos) return strictNumber(t);
  const auto second = t.find('-', dash + 1);
  if (second == std::string::npos) return std::nullopt;
  const auto d = strictNumber(t.substr(0, dash)), m = strictNumber(t.substr(dash + 1, second - dash - 1)),
             s = strictNumber(t.substr(second + 1));
  if (!d || !m || !s || *m < 0 || *m >= 60 || *s < 0 || *s >= 60 || *m != std::floor(*m) || *d != std::floor(*d))
    return std::nullopt;
  const double magnitude = std::fabs(*d) + *m / 60 + *s / 3600;
  return t.front() == '-' ? -magnitude : magnitude;
} catch (const RunTimeError&) {  // a number beyond a double is no angle
  return std::nullopt;
}

}  // namespace tervalo
