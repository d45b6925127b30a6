#include "secsub/corners.h"

#include <cmath>
#include <string>

#include "text/angle.h"
#include "text/errors.h"
#include "text/number.h"

namespace tervalo {
namespace {

// The arithmetic fault of the run, named.
double divide(double a, double b, const char* what) {
  if (b == 0) throw RunTimeError(std::string(a == 0 ? "Overflow" : "Division by zero") + ": " + what);
  return a / b;
}

// Degrees from the arctangent, with the factor the program has always used.
constexpr double kDegrees = 180 / 3.14159265358979;

PlanePoint at(const SectionRecord& r, int s) { return {r.slots[static_cast<std::size_t>(s)].x, r.slots[static_cast<std::size_t>(s)].y}; }

}  // namespace

HalfMiles calculateChains(const ChainTexts& c) {
  HalfMiles h;
  h.northOfEast = Val(c.nOfE) + 20;
  h.northOfWest = Val(c.nOfW) + 20;
  h.northOfCenter = (h.northOfWest + h.northOfEast) / 2;
  h.westOfNorth = Val(c.wOfN) + 20;
  h.westOfSouth = Val(c.wOfS) + 20;
  h.westOfCenter = (h.westOfSouth + h.westOfNorth) / 2;
  h.southOfEast = Val(c.sOfE) + 20;
  h.southOfWest = Val(c.sOfW) + 20;
  h.southOfCenter = (h.southOfWest + h.southOfEast) / 2;
  h.eastOfNorth = Val(c.eOfN) + 20;
  h.eastOfSouth = Val(c.eOfS) + 20;
  h.eastOfCenter = (h.eastOfSouth + h.eastOfNorth) / 2;
  return h;
}

PlanePoint computeCtr(PlanePoint n, PlanePoint s, PlanePoint w, PlanePoint e) {
  double dx1 = s.x - n.x;
  if (dx1 == 0) dx1 = 1e-9;
  const double m1 = (s.y - n.y) / dx1;
  double dx2 = e.x - w.x;
  if (dx2 == 0) dx2 = 1e-9;
  const double m2 = (e.y - w.y) / dx2;
  PlanePoint p;
  p.x = divide(m1 * n.x + (w.y - n.y) - m2 * w.x, m1 - m2, "the two lines of an intersection are parallel");
  p.y = m1 == 0 ? (p.x - n.x) * m1 + n.y : (p.x - w.x) * m2 + w.y;
  return p;
}

PlanePoint sectionCenter(const SectionRecord& r) {
  return computeCtr(at(r, slot::N4), at(r, slot::S4), at(r, slot::W4), at(r, slot::E4));
}

PlanePoint proportion(PlanePoint near, PlanePoint far, double chains) {
  // 20 times the difference first, then the division, X before Y.
  return {near.x + divide((far.x - near.x) * 20.0, chains, "a record half-mile of 0 chains"),
          near.y + divide((far.y - near.y) * 20.0, chains, "a record half-mile of 0 chains")};
}

CornerRule sectionCenterRule() {
  CornerRule rule;
  rule.kind = CornerRule::Kind::Intersection;
  rule.ends = {slot::N4, slot::S4, slot::W4, slot::E4};
  return rule;
}

void computeMissingCorners(SectionRecord& r, const HalfMiles& h, bool centerTyped,
                           const std::function<void(int, const CornerRule&)>& written) {
  const CornerPresence& p = r.present;
  if (p.n4 && p.s4 && p.w4 && p.e4 && !centerTyped) {
    const PlanePoint center = sectionCenter(r);
    r.slots[slot::C].x = center.x;
    r.slots[slot::C].y = center.y;
    written(slot::C, sectionCenterRule());
  }
  computeQtrs(r, h, written);
}

void computeQtrs(SectionRecord& r, const HalfMiles& h, const std::function<void(int, const CornerRule&)>& written) {
  auto& slots = r.slots;
  const CornerPresence& p = r.present;
  auto blank = [&](int s) { return slots[static_cast<std::size_t>(s)].blank(); };
  auto set = [&](int s, PlanePoint v, const CornerRule& rule) {
    slots[static_cast<std::size_t>(s)].x = v.x;
    slots[static_cast<std::size_t>(s)].y = v.y;
    written(s, rule);
  };
  auto proportionRule = [](CornerRule::Kind kind, int nearSlot, int farSlot, double chains, const char* halfMile) {
    CornerRule rule;
    rule.kind = kind;
    rule.nearSlot = nearSlot;
    rule.farSlot = farSlot;
    rule.chains = chains;
    rule.halfMile = halfMile;
    return rule;
  };
  // A sixteenth corner, when its slot is blank and its quarter corner present.
  auto sixteenth = [&](int target, bool quarterPresent, int nearSlot, int farSlot, double chains, const char* halfMile) {
    if (blank(target) && quarterPresent)
      set(target, proportion(at(r, nearSlot), at(r, farSlot), chains),
          proportionRule(CornerRule::Kind::Proportion, nearSlot, farSlot, chains, halfMile));
  };
  // A quarter-quarter center, when its slot is blank and all eight
  // coordinates of its four sixteenth corners are positive.
  auto center = [&](int target, int n, int s, int w, int e) {
    if (!blank(target)) return;
    for (int k : {n, s, w, e})
      if (!(slots[static_cast<std::size_t>(k)].x > 0 && slots[static_cast<std::size_t>(k)].y > 0)) return;
    CornerRule rule;
    rule.kind = CornerRule::Kind::Intersection;
    rule.ends = {n, s, w, e};
    set(target, computeCtr(at(r, n), at(r, s), at(r, w), at(r, e)), rule);
  };
  const char* const northLine[] = {"west half of the north line", "east half of the north line"};
  const char* const southLine[] = {"west half of the south line", "east half of the south line"};
  const char* const westLine[] = {"north half of the west line", "south half of the west line"};
  const char* const eastLine[] = {"north half of the east line", "south half of the east line"};
  const char* const centerNS[] = {"north half of the center line", "south half of the center line"};
  const char* const centerEW[] = {"west half of the east-west center line", "east half of the east-west center line"};

  if (p.nw) {
    sixteenth(1, p.n4, slot::N4, slot::NW, h.westOfNorth, northLine[0]);
    sixteenth(7, p.n4, slot::C, slot::N4, h.northOfCenter, centerNS[0]);
    sixteenth(11, p.w4, slot::C, slot::W4, h.westOfCenter, centerEW[0]);
    sixteenth(5, p.w4, slot::W4, slot::NW, h.northOfWest, westLine[0]);
    center(6, 1, 11, 5, 7);
  }
  if (p.ne) {
    sixteenth(3, p.n4, slot::N4, slot::NE, h.eastOfNorth, northLine[1]);
    sixteenth(9, p.e4, slot::E4, slot::NE, h.northOfEast, eastLine[0]);
    sixteenth(13, p.e4, slot::C, slot::E4, h.eastOfCenter, centerEW[1]);
    sixteenth(7, p.n4, slot::C, slot::N4, h.northOfCenter, centerNS[0]);  // again, for a missing NW corner
    center(8, 3, 13, 7, 9);
  }
  if (p.se) {
    sixteenth(19, p.e4, slot::E4, slot::SE, h.southOfEast, eastLine[1]);
    sixteenth(23, p.s4, slot::S4, slot::SE, h.eastOfSouth, southLine[1]);
    sixteenth(17, p.s4, slot::C, slot::S4, h.southOfCenter, centerNS[1]);
    sixteenth(13, p.e4, slot::C, slot::E4, h.eastOfCenter, centerEW[1]);
    center(18, 13, 23, 17, 19);
  }
  if (p.sw) {
    sixteenth(21, p.s4, slot::S4, slot::SW, h.westOfSouth, southLine[0]);
    sixteenth(15, p.w4, slot::W4, slot::SW, h.southOfWest, westLine[1]);
    sixteenth(17, p.s4, slot::C, slot::S4, h.southOfCenter, centerNS[1]);
    sixteenth(11, p.w4, slot::C, slot::W4, h.westOfCenter, centerEW[0]);
    center(16, 11, 21, 15, 17);
  }

  // Final pass: center-line sixteenths next to a quarter corner whose two
  // section corners were both missing. Every step measures along the east
  // half of the east-west center line, and slots 7 and 17 are put toward
  // the E 1/4 on the same point as slot 13: the program has always done so.
  const CornerSlot& c = slots[slot::C];
  if (c.x == 0 || c.y == 0) return;
  const double L = h.eastOfCenter;
  auto finalStep = [&](int target, bool quarterPresent, int nearSlot, int farSlot) {
    if (quarterPresent && slots[static_cast<std::size_t>(target)].x == 0)
      set(target, proportion(at(r, nearSlot), at(r, farSlot), L),
          proportionRule(CornerRule::Kind::FinalPass, nearSlot, farSlot, L, centerEW[1]));
  };
  const int s = r.section;
  finalStep(13, p.e4, slot::C, slot::E4);
  if (!(s == 6 || s == 7 || s == 18 || s == 19 || s == 30 || s == 31)) finalStep(11, p.w4, slot::W4, slot::C);
  if (!(s >= 1 && s <= 6)) finalStep(7, p.n4, slot::C, slot::E4);
  finalStep(17, p.s4, slot::C, slot::E4);
}

namespace {

// One grid line from `a` to `b`: its length, and its azimuth by the line's
// own formula. A missing end gives length 0; a line of no length (its ends
// on one point, after an empty chain field) has no direction.
template <class Azimuth>
void measure(const CornerSlot& a, const CornerSlot& b, double& length, double& azimuth, std::string& text,
             Azimuth azimuthOf) {
  if (a.x == 0 || b.x == 0) {
    length = 0;
    return;
  }
  length = std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y));
  if (length == 0) {
    azimuth = 0;
    text.clear();
    return;
  }
  azimuth = azimuthOf(b.x - a.x, b.y - a.y);
  text = decimalToDms(azimuth);
}

}  // namespace

void getLengthHor(SectionRecord& r) {
  for (int i = 0; i < 24; ++i) {
    if (i % 5 == 4) continue;
    CornerSlot& b = r.slots[static_cast<std::size_t>(i + 1)];
    // getAzimuthHor: lines that run east get azimuths from north of 0 to
    // 180. A line with no east-west extent (ends a hair apart) takes the
    // arctangent's limit, due north or south.
    measure(r.slots[static_cast<std::size_t>(i)], b, b.horizontalLength, b.horizontalAzimuth, b.horizontalAzimuthText,
            [](double dx, double dy) {
              const double deg = std::atan(dy / dx) * kDegrees;
              return deg < 0 ? std::fabs(deg) + 90 : 90 - deg;
            });
  }
}

void getLengthVert(SectionRecord& r) {
  for (int i = 0; i < 20; ++i) {
    CornerSlot& b = r.slots[static_cast<std::size_t>(i + 5)];
    // getAzimuthVert: the line runs south, from the slot above to this one.
    measure(r.slots[static_cast<std::size_t>(i)], b, b.verticalLength, b.verticalAzimuth, b.verticalAzimuthText,
            [](double dx, double dy) { return std::atan(dx / dy) * kDegrees + 180; });
  }
}

}  // namespace tervalo
