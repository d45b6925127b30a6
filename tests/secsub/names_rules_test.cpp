// Corner names and descriptions, township rules and meridian defaults.

#include <gtest/gtest.h>

#include "secsub/township_rules.h"
#include "secsub_out/names.h"
#include "support/test_names.h"

namespace tervalo {
namespace {

struct NameCase {
  int section, township, range, position;
  const char* description;
  const char* name;
};

class Names : public ::testing::TestWithParam<NameCase> {};

TEST_P(Names, EachPositionHasItsDescriptionAndPointName) {
  const auto& c = GetParam();
  const CornerNaming n = setDescriptions(static_cast<std::int16_t>(c.section), static_cast<std::int16_t>(c.township),
                                         static_cast<std::int16_t>(c.range));
  EXPECT_EQ(n.descriptions[static_cast<std::size_t>(c.position)], c.description);
  EXPECT_EQ(n.pointNames[static_cast<std::size_t>(c.position)], c.name);
}

INSTANTIATE_TEST_SUITE_P(
    NeighboursAndRanges, Names,
    ::testing::Values(
        NameCase{1, 115, 22, 0, "NE 02-115-22", "SNE0211522"}, NameCase{1, 115, 22, 24, "NE COR 12-115-22", "SNE1211522"},
        NameCase{1, 115, 22, 20, "NE 11-115-22", "SNE1111522"}, NameCase{5, 115, 22, 1, "N 1/16 NW 1/4 05-115-22", "XNNW0511522"},
        NameCase{5, 115, 22, 5, "E 1/16 NE 1/4 06-115-22", "XENE0611522"},
        NameCase{6, 115, 22, 0, "NE 01-115-23", "SNE0111523"}, NameCase{6, 115, 22, 20, "NE 12-115-23", "SNE1211523"},
        NameCase{6, 115, 22, 21, "N 1/16 NW 1/4 07-115-22", "XNNW0711522"},
        NameCase{7, 115, 22, 10, "E 1/4 COR 12-115-23", "QE1211523"}, NameCase{7, 115, 22, 22, "N 1/4 COR 18-115-22", "QN1811522"},
        NameCase{18, 115, 22, 15, "E 1/16 SE 1/4 13-115-23", "XESE1311523"},
        NameCase{18, 115, 22, 20, "NE 24-115-23", "SNE2411523"},
        NameCase{31, 115, 22, 20, "NE 01-114-23", "SNE0111423"}, NameCase{31, 115, 22, 0, "NE 36-115-23", "SNE3611523"},
        NameCase{31, 115, 22, 22, "N 1/4 COR 06-114-22", "QN0611422"},
        NameCase{36, 115, 22, 24, "NE COR 01-114-22", "SNE0111422"}, NameCase{36, 115, 22, 2, "N 1/4 36-115-22", "QN3611522"},
        // East ranges are held negative: own codes add 100, own descriptions keep the sign.
        NameCase{5, 115, -5, 12, "CENTER 05-115--5", "CQ0511595"}, NameCase{5, 115, -5, 14, "E 1/4 COR 05-115--5", "QE0511595"},
        NameCase{6, 115, -3, 0, "NE 01-115-2", "SNE0111598"},
        // Range 1 East: the west neighbour lies across the meridian, in 1 West.
        NameCase{6, 115, -1, 0, "NE 01-115-1W", "SNE0111501"}, NameCase{6, 115, -1, 4, "NE 06-115--1", "SNE0611599"},
        NameCase{27, 27, 8, 12, "CENTER 27-27-8", "CQ27278"}),
    [](const auto& named) { const auto& c = named.param; return "s" + std::to_string(c.section) + "_T" + std::to_string(c.township) + "_R" + testing::readableName(std::to_string(c.range)) + "_pos" + std::to_string(c.position); });

TEST(Names, EachLineSegmentIsNamedForItsSection) {
  const CornerNaming n = setDescriptions(36, 115, 22);
  EXPECT_EQ(n.segment("north A"), "SNA3611522");
  EXPECT_EQ(n.segment("west D"), "SED3511522");
  EXPECT_EQ(n.segment("south B"), "SNB0111522");  // T, not the south township
  EXPECT_EQ(n.segment("east C"), "SEC3611522");
  EXPECT_EQ(n.segment("QNSB"), "QNSB3611522");
  EXPECT_EQ(n.segment("XESE"), "XESE3611522");
}

TEST(Names, ClosingCornerVariantsAreNeverSelected) {
  const CornerNaming plain = setDescriptions(6, 48, 1);
  const CornerNaming boxesShown = setDescriptions(6, 48, 1, {true, true, true, true});
  EXPECT_EQ(plain.descriptions, boxesShown.descriptions);
  EXPECT_EQ(plain.pointNames, boxesShown.pointNames);
}

struct RulesCase {
  int township, range, section;
  const char* meridian;
  std::array<bool, 4> checked, visible;  // chk1 south, chk2 north, chk4 west, chk5 east
};

class Rules : public ::testing::TestWithParam<RulesCase> {};

TEST_P(Rules, CheckAndShowTheSpecialLines) {
  const auto& c = GetParam();
  const TownshipRules r = townshipRules(c.township, c.range, c.section);
  EXPECT_EQ(r.meridian, c.meridian);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(r.boxes[i].checked, c.checked[i]) << "box " << i;
    EXPECT_EQ(r.boxes[i].visible, c.visible[i]) << "box " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(
    FourthAndFifth, Rules,
    ::testing::Values(RulesCase{48, 1, 36, "4", {true, false, false, true}, {true, false, false, true}},
                      RulesCase{48, 2, 36, "4", {false, false, false, false}, {false, false, false, false}},
                      RulesCase{30, 1, 3, "4", {false, true, false, true}, {false, true, false, false}},
                      RulesCase{40, -1, 6, "4", {false, false, true, false}, {false, false, true, false}},
                      RulesCase{40, -1, 7, "4", {false, false, true, false}, {false, false, false, false}},
                      RulesCase{50, 27, 14, "4", {false, false, true, false}, {false, false, true, false}},
                      RulesCase{104, 22, 3, "5", {false, true, false, false}, {false, true, false, false}},
                      RulesCase{105, 24, 31, "5", {true, false, true, false}, {true, false, false, false}},
                      RulesCase{105, 25, 36, "5", {true, false, false, true}, {true, false, false, true}},
                      RulesCase{164, 30, 1, "5", {false, false, false, false}, {false, false, false, false}}),
    [](const auto& named) { const auto& c = named.param; return "T" + std::to_string(c.township) + "_R" + testing::readableName(std::to_string(c.range)) + "_s" + std::to_string(c.section); });

TEST(Rules, CaptionsFollowTheMeridianArea) {
  EXPECT_EQ(townshipRules(104, 22, 3).boxes[1].caption, "North Section Line is on the Standard Parallel");
  EXPECT_EQ(townshipRules(40, 5, 3).boxes[0].caption, "South Section Line is on a Correction Line");
  EXPECT_EQ(townshipRules(50, 27, 3).boxes[2].caption, "West Section Line is on the 5th P.M G.M.");
  EXPECT_EQ(townshipRules(110, 24, 6).boxes[2].caption, "West Section Line is on the Guide Meridian");
}

TEST(Rules, TheMeridianDefaultsFromTownshipAndRangeUnlessTyped) {
  EXPECT_EQ(meridianDefault(110, 20, false, true, 4), 5);
  EXPECT_EQ(meridianDefault(110, 20, true, false, 0), 0);
  EXPECT_EQ(meridianDefault(130, 30, false, true, 0), 5);
  EXPECT_EQ(meridianDefault(40, 20, true, false, 0), 4);
  EXPECT_EQ(meridianDefault(65, 5, false, true, 0), 4);
  EXPECT_EQ(meridianDefault(50, 10, false, true, 0), 0);
  EXPECT_EQ(meridianDefault(50, 10, false, true, 4), 4);  // what was typed stands
}

TEST(Rules, EachSectionRequiresTheChainsOfItsTier) {
  EXPECT_EQ(requiredChains(3), (std::vector<std::string>{"NofE", "NofW"}));
  EXPECT_EQ(requiredChains(6).size(), 3u);
  EXPECT_EQ(requiredChains(19), (std::vector<std::string>{"NofW", "SofW"}));
  EXPECT_TRUE(requiredChains(14).empty());
}

}  // namespace
}  // namespace tervalo
