// Column fitting, station text, packed angles and dates.

#include <gtest/gtest.h>

#include "text/angle.h"
#include "text/date.h"
#include "text/encoding.h"
#include "text/errors.h"
#include "text/justify.h"
#include "text/station.h"

namespace tervalo {
namespace {

TEST(Justify, PadsOrCutsOnTheRight) {
  EXPECT_EQ(rightJustify("12.5", 8), "    12.5");
  EXPECT_EQ(rightJustify("123456789", 5), "12345");  // a too-long number loses its last digits
  EXPECT_EQ(leftJustify("", 3), "   ");
  EXPECT_EQ(leftJustify("abc", 0), "");
  EXPECT_EQ(leftJustify("OPERATOR NAME LONGER THAN TWENTY", 20), "OPERATOR NAME LONGER");
  EXPECT_EQ(rightJustify("123456.7890", 12), " 123456.7890");
}

TEST(Justify, CountsCharactersNotBytes) {
  EXPECT_EQ(rightJustify("12\u00B0", 4), " 12\u00B0");
  EXPECT_EQ(leftJustify("\u00B0\u00B0\u00B0", 2), "\u00B0\u00B0");
  EXPECT_EQ(textLength("30\u00B000'00.00\""), 12u);
  EXPECT_THROW(leftJustify("x", -1), RunTimeError);
}

TEST(Encoding, Utf8StaysAndAnythingElseIsTheWindowsCodePage) {
  const std::pair<std::string, std::string> cases[] = {
      {"N 45\u00B0 E", "N 45\u00B0 E"},            // valid UTF-8 is kept
      {"N 45\xB0 E", "N 45\u00B0 E"},              // Latin-1 degree sign
      {"\x80 \x93q\x94 \x81", "\u20AC \u201Cq\u201D \u0081"},  // the code page's own 0x80-0x9F
      {"\xC0\x80", "\u00C0\u20AC"},                // overlong NUL is not UTF-8
      {"\xED\xA0\x80", "\u00ED\u00A0\u20AC"},      // a surrogate is not UTF-8
      {"\xF4\x90\x80\x80", "\u00F4\u0090\u20AC\u20AC"},  // beyond U+10FFFF
      {"ab\xE2\x82", "ab\u00E2\u201A"},             // cut short at the end
      {"\xF0\x9F\x93\x90", "\xF0\x9F\x93\x90"},  // four bytes, valid
  };
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(decodeText(bytes), text) << bytes;
    EXPECT_TRUE(isValidUtf8(decodeText(bytes)));
  }
}

TEST(StationToNumber, DropsThePlus) {
  EXPECT_EQ(stationToNumber("0+00").number, 0);
  EXPECT_EQ(stationToNumber("12+34.56").number, 1234.56);
  EXPECT_EQ(stationToNumber("1+234.567").number, 1234.567);
  EXPECT_EQ(stationToNumber("+50").number, 50);
  EXPECT_EQ(stationToNumber("12+34abc").number, 1234);
  const StationText s = stationToNumber("12+34.56");
  EXPECT_EQ(s.plusPosition, 3);
  EXPECT_EQ(s.before, "12");
  EXPECT_EQ(s.after, "34.56");
  EXPECT_EQ(s.joined, "1234.56");
  EXPECT_THROW(stationToNumber("1234"), RunTimeError);
}

TEST(DmsToDecimal, UnpacksDegreesMinutesSeconds) {
  std::string s = "12.3456";
  EXPECT_EQ(dmsToDecimal(s), "12.5822222");
  s = "12.345678";
  EXPECT_EQ(dmsToDecimal(s), "12.5824389");
  s = "123.0000";
  EXPECT_EQ(dmsToDecimal(s), "123.0000000");
  s = "5.3";
  EXPECT_EQ(dmsToDecimal(s), "5.5000000");
  s = "12.3000";
  EXPECT_EQ(dmsToDecimal(s), "12.5000000");
}

TEST(DmsToDecimal, ChangesTheCallersTextAndDropsTheSign) {
  std::string s = "45";
  EXPECT_EQ(dmsToDecimal(s), "45.0000000");
  EXPECT_EQ(s, "45.0000");
  s = "-12.3000";
  EXPECT_EQ(dmsToDecimal(s), "12.5000000");
  EXPECT_EQ(s, "12.3000");
}

TEST(DmsToDecimal, OnlyThreeDegreeDigitsCount) {
  std::string s = "1234.30";
  EXPECT_EQ(dmsToDecimal(s), "123.5000000");
}

TEST(DecimalToDms, ShowsDegreesMinutesSeconds) {
  EXPECT_EQ(decimalToDms(12.5), "12\u00B030'00.00\"");
  EXPECT_EQ(decimalToDms(45), "45\u00B000'00.00\"");
  EXPECT_EQ(decimalToDms(12.582439), "12\u00B034'56.78\"");
  EXPECT_EQ(decimalToDms(123.068056), "123\u00B004'05.00\"");
  EXPECT_EQ(decimalToDms(5.729578), "05\u00B043'46.48\"");
}

TEST(DecimalToDms, SixtySecondsCarryButSixtyMinutesNeverDo) {
  // 12°33'59.999" rounds its seconds to 60.00: a minute moves up.
  EXPECT_EQ(decimalToDms(12 + 33.0 / 60 + 59.999 / 3600), "12\u00B034'00.00\"");
  EXPECT_EQ(decimalToDms(12.9999999), "12\u00B060'00.00\"");
  // The report pages of the program's own design carry both.
  EXPECT_EQ(decimalToDmsCarried(12.9999999), "13\u00B000'00.00\"");
  EXPECT_EQ(decimalToDmsCarried(12 + 33.0 / 60 + 59.999 / 3600), "12\u00B034'00.00\"");
  EXPECT_EQ(decimalToDmsCarried(12.582439), decimalToDms(12.582439));
  EXPECT_EQ(decimalToDmsCarried(179.99999999), "180\u00B000'00.00\"");
}

TEST(Dates, AreWrittenForReportsAndHeadersAndImpossibleOnesRefused) {
  EXPECT_EQ(formatMdyy({2026, 11, 5}), "11/5/26");
  EXPECT_EQ(formatMdyy({2009, 3, 22}), "3/22/09");
  EXPECT_EQ(formatShortDate({2026, 1, 9}), "1/9/2026");
  EXPECT_EQ(parseIsoDate("2026-02-28"), (Date{2026, 2, 28}));
  EXPECT_FALSE(parseIsoDate("2026-02-30"));
  EXPECT_FALSE(parseIsoDate("26-2-3"));
}

}  // namespace
}  // namespace tervalo
