#include "secsub/township_rules.h"

#include <algorithm>
#include <initializer_list>

namespace tervalo {
namespace {

bool in(int v, std::initializer_list<int> values) { return std::find(values.begin(), values.end(), v) != values.end(); }

}  // namespace

TownshipRules townshipRules(int T, int R, int section) {
  TownshipRules rules;
  auto& [south, north, west, east] = rules.boxes;
  if (T < 101) {
    rules.meridian = "4";
    south.caption = "South Section Line is on a Correction Line";
    north.caption = "North Section Line is on a Correction Line";
    west.caption = "West Section Line is on the Principal Meridian";
    east.caption = "East Section Line is on the Principal Meridian";
    if (T >= 48 && R >= 27) {
      west.visible = west.checked = true;
      west.caption = "West Section Line is on the 5th P.M G.M.";
    } else if (R == -1) {
      west.checked = true;
    } else if (R == 1) {
      // Correction lines are marked for range 1 only, as they always were.
      east.checked = true;
      if (in(T, {30, 40, 47, 53, 56, 60, 64, 68})) north.checked = true;
      if (in(T, {31, 41, 48, 54, 57, 61, 65, 69})) south.checked = true;
    }
  } else {
    if (R == 24) west.checked = true;
    if (R == 25) east.checked = true;
    rules.meridian = "5";
    south.caption = "South Section Line is on the Standard Parallel";
    north.caption = "North Section Line is on the Standard Parallel";
    west.caption = "West Section Line is on the Guide Meridian";
    east.caption = "East Section Line is on the Guide Meridian";
    if (T < 162) {
      if (T % 4 == 0) north.checked = true;
      if (T % 4 == 1) south.checked = true;
    }
  }
  if (south.checked && section >= 31) south.visible = true;
  if (north.checked && section < 7) north.visible = true;
  if (east.checked && in(section, {1, 12, 13, 24, 25, 36})) east.visible = true;
  if (west.checked && section == 6) west.visible = true;
  return rules;
}

double meridianDefault(int T, int R, bool east, bool west, double meridian) {
  if ((T >= 101 && T <= 122 && R >= 4 && R <= 48) || (T >= 123 && T <= 168 && R >= 25 && R <= 51)) {
    if (west) meridian = 5;
  } else if ((T >= 27 && T <= 47 && R >= 16 && R <= 32) || (T >= 48 && T <= 71 && R >= 1 && R <= 27)) {
    if (east || (R < 8 && T >= 61)) meridian = 4;
  }
  return meridian;
}

std::vector<std::string> requiredChains(int s) {
  if (s >= 1 && s <= 5) return {"NofE", "NofW"};
  if (s == 6) return {"NofW", "SofW", "NofE"};
  if (in(s, {7, 18, 19, 30, 31})) return {"NofW", "SofW"};
  return {};
}

std::vector<std::string> fractionalChains(int s) {
  if (s >= 1 && s <= 5) return {"NofW", "NofE"};
  if (s == 6) return {"NofW", "NofE", "WofN", "WofS"};
  if (in(s, {7, 18, 19, 30, 31})) return {"WofN", "WofS"};
  return {};
}

}  // namespace tervalo
