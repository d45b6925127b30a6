#pragma once
// Angles typed packed as "ddd.mmssss" and shown as 12°34'56.78".

#include <optional>
#include <string>

namespace tervalo {

// Decimal degrees of a packed angle, as text with the mask "0.0000000".
// Changes the caller's text as it always has: a leading "-" is dropped (the
// result is the unsigned angle; callers carry signs themselves) and a text
// without a point gains ".0000". With four or more integer digits only the
// first three count as degrees.
std::string dmsToDecimal(std::string& packed);

// Degrees, minutes and seconds display text: degrees "00", the degree sign,
// minutes "00", "'", seconds "00.00" and the seconds mark '"'. Seconds that
// round to 60.00 carry into the minutes; 60 minutes are never carried into
// the degrees (12.9999999 shows 12°60'00.00").
std::string decimalToDms(double degrees);

// The same display with every carry made: the angle is rounded once to
// hundredths of a second, so 60 seconds and 60 minutes never show
// (12.9999999 shows 13°00'00.00"). For the report pages of this program's
// own design; the fields and stored texts keep decimalToDms.
std::string decimalToDmsCarried(double degrees);
// The same with `places` (1 to 6) decimals of seconds: latitudes and longitudes
// to 0.00001" (a third of a millimetre).
std::string dmsCarried(double degrees, int places);

// Degrees of an angle typed in the text forms of field notes and files:
// degrees, minutes and seconds joined by hyphens ("45-30-15", "95-10-30.5";
// minutes and seconds below 60) or decimal degrees ("45.504167"). Nothing
// for any other text.
std::optional<double> angleFromText(const std::string& text);

}  // namespace tervalo
