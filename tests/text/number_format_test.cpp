// Val, CStr and Format: the rules every field and output file depends on.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

#include "text/decimal.h"

#include "text/errors.h"
#include "text/format.h"
#include "text/number.h"
#include "support/test_names.h"

namespace tervalo {
namespace {

struct FormatCase {
  double value;
  const char* mask;
  const char* expected;
};

class FormatTable : public ::testing::TestWithParam<FormatCase> {};

std::string caseName(const ::testing::TestParamInfo<FormatCase>& info) {
  // A mask's optional digits as "h": 1255.65 by ####+##.0000 is 1255_65_by_hhhhplushh_0000.
  std::string mask = info.param.mask;
  for (char& c : mask) c = c == '#' ? 'h' : c;
  return testing::readableName(CStr(info.param.value)) + "_by_" + testing::readableName(mask);
}

TEST_P(FormatTable, LaysOutTheDigits) {
  const auto& c = GetParam();
  EXPECT_EQ(Format(c.value, c.mask), c.expected) << c.value << " with " << c.mask;
}

// Ties that printf rounds the wrong way, because the binary double lies
// just below the half.
INSTANTIATE_TEST_SUITE_P(HalfAwayFromZeroOnFifteenDigits, FormatTable,
                         ::testing::Values(FormatCase{0.075, "#.00", ".08"}, FormatCase{1.005, "0.00", "1.01"},
                                           FormatCase{2.675, "0.00", "2.68"}, FormatCase{8.885, "0.00", "8.89"},
                                           FormatCase{-1.005, "0.00", "-1.01"}, FormatCase{0.0005, "0.000", "0.001"},
                                           FormatCase{0.00049, "0.000", "0.000"}),
    caseName);

INSTANTIATE_TEST_SUITE_P(Carries, FormatTable,
                         ::testing::Values(FormatCase{9.99995, "0.0000", "10.0000"},
                                           FormatCase{99.9996, "#0.000", "100.000"},
                                           FormatCase{59.996, "00.00", "60.00"},
                                           FormatCase{0.9996, "#.000", "1.000"}),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    Coordinates, FormatTable,
    ::testing::Values(FormatCase{4567.5, "#######0.0000", "4567.5000"},
                      FormatCase{-4567.5, "#######0.0000", "-4567.5000"},
                      FormatCase{512340.218, "#######0.0000", "512340.2180"},
                      FormatCase{0.25, "#######0.0000", "0.2500"},
                      FormatCase{123456789.5, "#######0.0000", "123456789.5000"},  // wider than the mask
                      FormatCase{123456.78901, "#0.0000", "123456.7890"}, FormatCase{12.58222222, "0.0000000", "12.5822222"}),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    StationMasks, FormatTable,
    ::testing::Values(FormatCase{1255.65, "####+##.0000", "12+55.6500"}, FormatCase{45, "####+##.0000", "+45.0000"},
                      FormatCase{1255.65, "####+###.0000", "1+255.6500"}, FormatCase{732.051, "####+##.000", "7+32.051"},
                      FormatCase{1234.567, "####+###.000", "1+234.567"}, FormatCase{12345678, "####+##.000", "123456+78.000"},
                      FormatCase{45, "###+00.000", "+45.000"}, FormatCase{5, "###+00.000", "+05.000"},
                      FormatCase{1230, "###+00.000", "12+30.000"}, FormatCase{45, "###+000.000", "+045.000"},
                      FormatCase{-45, "####+##.000", "-+45.000"}),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    FractionsAndForcedDigits, FormatTable,
    ::testing::Values(FormatCase{0.5, "#.000", ".500"}, FormatCase{0, "###.000", ".000"},
                      FormatCase{-0.25, "###.000", "-.250"}, FormatCase{0.5, "#0.000", "0.500"},
                      FormatCase{5, "0#.000", "05.000"}, FormatCase{0.5, "0#.000", "00.500"},
                      FormatCase{123.4, "0#.000", "123.400"}, FormatCase{5, "00", "05"}, FormatCase{123, "00", "123"},
                      FormatCase{7.5, "00.00", "07.50"}, FormatCase{12345.678, "####.000", "12345.678"},
                      FormatCase{102, "#####.000", "102.000"}, FormatCase{12345.678, "######.000", "12345.678"},
                      FormatCase{400, "0.000", "400.000"}, FormatCase{0.4, "0.000", "0.400"}),
    caseName);

TEST(Val, ReadsLikeTheClassicFieldReader) {
  const std::pair<const char*, double> cases[] = {
      {" 2 45 7", 2457}, {"\t7\n", 7}, {"24 and 57", 24}, {"1,000", 1}, {"", 0}, {"abc", 0}, {"-5", -5},
      {"- 5", -5}, {"+5", 5}, {"--5", 0}, {".5", 0.5}, {"-.5", -0.5}, {"12.3.4", 12.3}, {"1e3", 1000},
      {"1D2", 100}, {"1e", 1}, {"2.5E-1x", 0.25}, {"&H10", 16}, {"&hff", 255}, {"&O17", 15}, {"12+34.56", 12},
      {"&HFFFF", -1}};  // a 16-bit whole number
  for (const auto& [text, value] : cases) EXPECT_EQ(Val(text), value) << text;
  EXPECT_THROW(Val("1e400"), RunTimeError);
}

TEST(StrictNumber, RefusesWhatIsNotWhollyANumber) {
  EXPECT_EQ(strictNumber(" 5000.25 "), 5000.25);
  EXPECT_EQ(strictNumber("-12"), -12);
  EXPECT_EQ(strictNumber("1.5e3"), 1500);
  for (const char* text : {"", "   ", "12abc", "1 2", "abc"}) EXPECT_FALSE(strictNumber(text)) << text;
}

TEST(CStr, FifteenDigitsNoLeadingBlankNoTrailingZeros) {
  const std::pair<double, const char*> cases[] = {
      {0.5, "0.5"}, {-2.5, "-2.5"}, {100, "100"}, {0, "0"}, {-0.0, "0"}, {1234.56, "1234.56"}, {0.1 + 0.2, "0.3"},
      {1.0 / 3, "0.333333333333333"}, {123456789012345.0, "123456789012345"}, {1e15, "1E+15"}, {1.5e20, "1.5E+20"},
      {0.0001, "0.0001"}, {0.00001, "1E-05"}, {-2.5e-7, "-2.5E-07"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(CStr(value), text) << value;
}

TEST(ToInt16, CutsTowardZeroAndRefusesOverflow) {
  EXPECT_EQ(toInt16(14.9), 14);
  EXPECT_EQ(toInt16(-3.7), -3);
  EXPECT_EQ(toInt16(32767), 32767);
  EXPECT_THROW(toInt16(32768), RunTimeError);
  EXPECT_THROW(toInt16(-40000), RunTimeError);
}

}  // namespace
}  // namespace tervalo

namespace tervalo {
namespace {

// Every number becomes text through its 15 significant digits: the fast
// conversion gives exactly printf's, ties and tiny and huge values included.
TEST(NumberText, FifteenDigitsAreExactlyPrintfs) {
  std::mt19937_64 random(20261124);
  std::vector<double> values{0.5, 2.675, 1e-300, 1.7976931348623157e308, 4.9e-324, 0.1 + 0.2, 512313.48949999998};
  for (int i = 0; i < 100000; ++i) {
    const std::uint64_t bits = random();
    double v = 0;
    std::memcpy(&v, &bits, sizeof v);
    if (std::isfinite(v)) values.push_back(v);
    values.push_back(std::ldexp(static_cast<double>(bits >> 11), -30));  // survey-sized numbers
  }
  for (const double v : values) {
    char wanted[40];
    std::snprintf(wanted, sizeof wanted, "%.14e", std::fabs(v));
    const detail::Decimal d = detail::toDecimal15(v);
    ASSERT_EQ(d.digits, std::string(1, wanted[0]) + std::string(wanted + 2, 14)) << wanted;
    ASSERT_EQ(d.exponent, v == 0 ? 0 : std::atoi(std::strchr(wanted, 'e') + 1)) << wanted;
  }
}

}  // namespace
}  // namespace tervalo
