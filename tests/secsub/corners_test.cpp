// Corner computation: the proportion rule, intersections, the blocks and
// the final pass, the grid lines.

#include <gtest/gtest.h>

#include <cmath>

#include "secsub/corners.h"
#include "text/errors.h"

namespace tervalo {
namespace {

// A section 5280 feet square, its SW corner at (10000, 10000).
SectionRecord squareSection() {
  SectionRecord r;
  r.section = 14;
  const std::pair<int, PlanePoint> corners[] = {{0, {10000, 15280}}, {2, {12640, 15280}}, {4, {15280, 15280}},
                                                 {10, {10000, 12640}}, {14, {15280, 12640}}, {20, {10000, 10000}},
                                                 {22, {12640, 10000}}, {24, {15280, 10000}}};
  for (const auto& [s, p] : corners) {
    r.slots[static_cast<std::size_t>(s)].x = p.x;
    r.slots[static_cast<std::size_t>(s)].y = p.y;
  }
  r.present = {true, true, true, true, true, true, true, true};
  return r;
}

ChainTexts allTwenty() { return {"20", "20", "20", "20", "20", "20", "20", "20"}; }

void computeCenter(SectionRecord& r) {
  const PlanePoint c = sectionCenter(r);
  r.slots[12].x = c.x;
  r.slots[12].y = c.y;
}

#define EXPECT_AT(record, s, ex, ey)                                        \
  do {                                                                      \
    EXPECT_NEAR((record).slots[s].x, ex, 1e-6) << "slot " << s;             \
    EXPECT_NEAR((record).slots[s].y, ey, 1e-6) << "slot " << s;             \
  } while (0)

TEST(HalfMiles, EmptyFieldsCountTwentyChains) {
  const HalfMiles h = calculateChains({"19.5", "", "20.25", "20", "", "20", "21", "20"});
  EXPECT_EQ(h.northOfWest, 39.5);
  EXPECT_EQ(h.southOfWest, 20);
  EXPECT_EQ(h.northOfEast, 40.25);
  EXPECT_EQ(h.northOfCenter, (39.5 + 40.25) / 2);
  EXPECT_EQ(h.westOfSouth, 41);
  EXPECT_EQ(h.westOfCenter, (41 + 20) / 2.0);
  EXPECT_EQ(h.eastOfCenter, 40);
}

TEST(ComputeQtrs, RegularSectionEverySixteenthIsAMidpoint) {
  SectionRecord r = squareSection();
  computeCenter(r);
  EXPECT_AT(r, 12, 12640, 12640);
  std::vector<int> written;
  computeQtrs(r, calculateChains(allTwenty()), [&](int s, const CornerRule&) { written.push_back(s); });
  // Block order NW, NE, SE, SW; nothing is computed twice.
  EXPECT_EQ(written, (std::vector<int>{1, 7, 11, 5, 6, 3, 9, 13, 8, 19, 23, 17, 18, 21, 15, 16}));
  const double q[] = {10000, 11320, 12640, 13960, 15280};
  for (std::size_t s = 0; s < 25; ++s) EXPECT_AT(r, s, q[s % 5], q[4 - s / 5]);
}

TEST(ComputeQtrs, RecordChainsProportionTheMeasuredLine) {
  SectionRecord r = squareSection();
  computeCenter(r);
  ChainTexts chains = allTwenty();
  chains.wOfN = "19.50";  // west half of the north line: 39.5 chains of record
  chains.nOfW = "";        // an empty field: 20 chains, onto the section corner
  computeQtrs(r, calculateChains(chains), [](int, const CornerRule&) {});
  EXPECT_AT(r, 1, 12640 + (10000 - 12640) * 20.0 / 39.5, 15280);
  EXPECT_AT(r, 5, 10000, 15280);  // 20/20 of the way: the NW corner itself
  // The center line's north half averages the west (20) and east (40) halves.
  EXPECT_AT(r, 7, 12640, 12640 + (15280 - 12640) * 20.0 / 30);
}

TEST(ComputeQtrs, HeldCornersStayAndAreUsed) {
  SectionRecord r = squareSection();
  computeCenter(r);
  r.slots[1].x = 11300;
  r.slots[1].y = 15290;
  computeQtrs(r, calculateChains(allTwenty()), [](int s, const CornerRule&) { EXPECT_NE(s, 1); });
  EXPECT_AT(r, 1, 11300, 15290);
  // The NW quarter's center lies on the line from the held corner down to slot 11.
  const double t = (r.slots[6].y - r.slots[11].y) / (15290 - r.slots[11].y);
  EXPECT_NEAR(r.slots[6].x, r.slots[11].x + t * (11300 - r.slots[11].x), 1e-6);
}

TEST(ComputeQtrs, HeldCenterWithoutAllQuarterCorners) {
  SectionRecord r = squareSection();
  r.slots[10] = {};
  r.present.w4 = false;
  r.slots[12].x = 12600;
  r.slots[12].y = 12700;  // held, not recomputed
  computeQtrs(r, calculateChains(allTwenty()), [](int, const CornerRule&) {});
  EXPECT_AT(r, 12, 12600, 12700);
  EXPECT_AT(r, 7, 12620, 13990);   // halfway from the held center to the N 1/4
  EXPECT_TRUE(r.slots[11].blank());  // needs the W 1/4
  EXPECT_TRUE(r.slots[5].blank());
  EXPECT_TRUE(r.slots[6].blank());  // its four sixteenths are not all there
}

TEST(ComputeQtrs, OnlyTheEastCornersBlocksNEAndSEStillSetTheCenterLine) {
  SectionRecord r = squareSection();
  for (int s : {0, 20}) r.slots[static_cast<std::size_t>(s)] = {};
  r.present.nw = r.present.sw = false;
  computeCenter(r);
  computeQtrs(r, calculateChains(allTwenty()), [](int, const CornerRule&) {});
  EXPECT_AT(r, 7, 12640, 13960);  // block NE, toward the N 1/4
  EXPECT_AT(r, 17, 12640, 11320);  // block SE, toward the S 1/4
  EXPECT_AT(r, 11, 11320, 12640);  // block NW is skipped; the final pass, from the W 1/4
  EXPECT_TRUE(r.slots[1].blank());
}

TEST(ComputeQtrs, FinalPassPutsSevenAndSeventeenOnThirteen) {
  SectionRecord r = squareSection();
  for (int s : {0, 4, 20, 24}) r.slots[static_cast<std::size_t>(s)] = {};
  r.present.nw = r.present.ne = r.present.se = r.present.sw = false;
  computeCenter(r);
  std::vector<int> written;
  computeQtrs(r, calculateChains(allTwenty()), [&](int s, const CornerRule&) { written.push_back(s); });
  EXPECT_EQ(written, (std::vector<int>{13, 11, 7, 17}));
  EXPECT_AT(r, 13, 13960, 12640);
  EXPECT_AT(r, 7, 13960, 12640);  // toward the E 1/4, as the program has always put it
  EXPECT_AT(r, 17, 13960, 12640);
  EXPECT_AT(r, 11, 11320, 12640);  // from the W 1/4 toward the center

  SectionRecord north = r;
  north.section = 3;  // sections 1 to 6 skip slot 7
  for (int s : {7, 11, 13, 17}) north.slots[static_cast<std::size_t>(s)] = {};
  computeQtrs(north, calculateChains(allTwenty()), [](int, const CornerRule&) {});
  EXPECT_TRUE(north.slots[7].blank());
  SectionRecord west = r;
  west.section = 18;  // the west tier skips slot 11
  for (int s : {7, 11, 13, 17}) west.slots[static_cast<std::size_t>(s)] = {};
  computeQtrs(west, calculateChains(allTwenty()), [](int, const CornerRule&) {});
  EXPECT_TRUE(west.slots[11].blank());
}

TEST(ComputeCtr, NorthSouthLinesAndLevelLines) {
  const PlanePoint p = computeCtr({100, 200}, {100, 0}, {0, 100}, {200, 100});
  EXPECT_NEAR(p.x, 100, 1e-6);
  EXPECT_NEAR(p.y, 100, 1e-6);
  // A level "north-south" line: Y is taken from it (the m1 = 0 branch).
  const PlanePoint q = computeCtr({0, 50}, {100, 50}, {40, 0}, {60, 100});
  EXPECT_NEAR(q.x, 50, 1e-9);
  EXPECT_EQ(q.y, 50);
}

TEST(Faults, ZeroHalfMileAndParallelLinesAreNamedRunTimeErrors) {
  SectionRecord r = squareSection();
  computeCenter(r);
  ChainTexts chains = allTwenty();
  chains.wOfN = "-20";
  try {
    computeQtrs(r, calculateChains(chains), [](int, const CornerRule&) {});
    FAIL();
  } catch (const RunTimeError& e) {
    EXPECT_NE(std::string(e.what()).find("Division by zero: a record half-mile of 0 chains"), std::string::npos);
  }
  EXPECT_THROW(computeCtr({0, 0}, {10, 10}, {0, 5}, {10, 15}), RunTimeError);
}

TEST(GridLines, LengthsAndAzimuthsFromNorth) {
  SectionRecord r;
  auto place = [&r](int s, double x, double y) {
    r.slots[static_cast<std::size_t>(s)].x = x;
    r.slots[static_cast<std::size_t>(s)].y = y;
  };
  place(0, 100, 100);
  place(1, 200, 100);                                                // due east
  place(2, 300, 100 + 100 * std::tan(30 * 3.14159265358979 / 180));  // 30 degrees above east
  place(3, 400, r.slots[2].y - 100);                                 // 45 degrees below east
  place(5, 100, 0);                                                  // due south of slot 0
  place(6, 200, 100);                                                // on slot 1: no length, no direction
  place(7, 300 + 1e-10, r.slots[2].y);                               // a hair east of slot 2: due north
  getLengthHor(r);
  getLengthVert(r);
  EXPECT_DOUBLE_EQ(r.slots[1].horizontalLength, 100);
  EXPECT_DOUBLE_EQ(r.slots[1].horizontalAzimuth, 90);
  EXPECT_EQ(r.slots[1].horizontalAzimuthText, "90\u00B000'00.00\"");
  EXPECT_NEAR(r.slots[2].horizontalAzimuth, 60, 1e-9);
  EXPECT_NEAR(r.slots[3].horizontalAzimuth, 135, 1e-9);
  EXPECT_EQ(r.slots[4].horizontalLength, 0);  // slot 4 missing
  EXPECT_DOUBLE_EQ(r.slots[5].verticalAzimuth, 180);
  EXPECT_EQ(r.slots[6].verticalLength, 0);
  EXPECT_EQ(r.slots[6].verticalAzimuthText, "");
  EXPECT_DOUBLE_EQ(r.slots[7].verticalAzimuth, 270);  // the arctangent's limit, not a fault
}

}  // namespace
}  // namespace tervalo
