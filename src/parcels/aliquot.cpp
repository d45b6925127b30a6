#include "parcels/aliquot.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tervalo {
namespace {

constexpr double kRadian = std::numbers::pi / 180;
constexpr const char* kQuarter[2][2] = {{"NW", "NE"}, {"SW", "SE"}};
constexpr const char* kQuarterWords[2][2] = {{"Northwest", "Northeast"}, {"Southwest", "Southeast"}};
// The section's boundary slots clockwise from its north-west corner.
constexpr int kBoundary[] = {0, 1, 2, 3, 4, 9, 14, 19, 24, 23, 22, 21, 20, 15, 10, 5};

bool present(const SectionRecord& r, int s) { return r.slots[static_cast<std::size_t>(s)].x != 0; }

double shoelace(const SectionRecord& r, const int* slots, std::size_t n) {
  double twice = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const CornerSlot& p = r.slots[static_cast<std::size_t>(slots[i])];
    const CornerSlot& q = r.slots[static_cast<std::size_t>(slots[(i + 1) % n])];
    twice += p.x * q.y - q.x * p.y;
  }
  return std::fabs(twice / 2);
}

bool namedCorner(int s) { return !slotCornerWords(s).empty(); }

}  // namespace

int lotNumber(int section, int row, int column) {
  const bool northTier = section >= 1 && section <= 6;
  const bool westTier = section == 6 || section == 7 || section == 18 || section == 19 || section == 30 || section == 31;
  if (northTier && row == 0) return 4 - column;
  if (section == 6 && column == 0) return 4 + row;
  if (westTier && section != 6 && column == 0) return row + 1;
  return 0;
}

std::string slotCornerWords(int s) {
  switch (s) {
    case 0: return "the Northwest corner";
    case 2: return "the North Quarter corner";
    case 4: return "the Northeast corner";
    case 10: return "the West Quarter corner";
    case 12: return "the Center";
    case 14: return "the East Quarter corner";
    case 20: return "the Southwest corner";
    case 22: return "the South Quarter corner";
    case 24: return "the Southeast corner";
    default: return "";
  }
}

SectionParts aliquotParts(const SectionRecord& r, const std::string& unit, std::optional<double> factor) {
  SectionParts out;
  out.section = r.section;
  out.unit = unit;
  out.combinedFactor = factor;
  const double perAcre = squareUnitsPerAcre(unit);
  std::vector<AliquotPart> lots, regular;
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) {
      AliquotPart part;
      part.section = r.section;
      part.row = row;
      part.column = column;
      part.lot = lotNumber(r.section, row, column);
      const char* quarter = kQuarter[row / 2][column / 2];
      if (part.lot) {
        part.name = part.words = "Lot " + std::to_string(part.lot);
      } else {
        part.name = std::string(kQuarter[row % 2][column % 2]) + " 1/4 " + quarter + " 1/4";
        part.words = std::string(kQuarterWords[row % 2][column % 2]) + " Quarter of the " + kQuarterWords[row / 2][column / 2] + " Quarter";
      }
      const int nw = 5 * row + column;
      std::array<int, 4> round{nw, nw + 1, nw + 6, nw + 5};
      // Round it from the section or quarter corner or center it touches, where its description begins.
      const auto first = std::find_if(round.begin(), round.end(), namedCorner);
      if (first != round.end()) std::rotate(round.begin(), first, round.end());
      part.slots = round;
      std::vector<std::string> gone;
      for (int s : round)
        if (!present(r, s)) gone.push_back(std::to_string(s));
      if (!gone.empty()) {
        out.missing.push_back(part.name + ": the corner" + (gone.size() > 1 ? "s in slots " : " in slot ") +
                              [&gone] {
                                std::string t;
                                for (const auto& g : gone) t += (t.empty() ? "" : ", ") + g;
                                return t;
                              }() +
                              (gone.size() > 1 ? " are" : " is") + " not there");
        continue;
      }
      // Two slots at one place (a corner that stands for both) make one corner of the part.
      std::vector<int> distinct;
      for (int s : round) {
        const CornerSlot& c = r.slots[static_cast<std::size_t>(s)];
        const bool same = !distinct.empty() && [&] {
          const CornerSlot& d = r.slots[static_cast<std::size_t>(distinct.back())];
          return std::hypot(c.x - d.x, c.y - d.y) < 1e-6;
        }();
        if (!same) distinct.push_back(s);
      }
      while (distinct.size() > 1) {
        const CornerSlot& a = r.slots[static_cast<std::size_t>(distinct.front())];
        const CornerSlot& b = r.slots[static_cast<std::size_t>(distinct.back())];
        if (std::hypot(a.x - b.x, a.y - b.y) >= 1e-6) break;
        distinct.pop_back();
      }
      if (distinct.size() < 3) {
        out.missing.push_back(part.name + ": its corners stand on a line or a point; it has no area");
        continue;
      }
      for (std::size_t i = 0; i < distinct.size(); ++i) {
        const CornerSlot& a = r.slots[static_cast<std::size_t>(distinct[i])];
        const CornerSlot& b = r.slots[static_cast<std::size_t>(distinct[(i + 1) % distinct.size()])];
        part.corners.push_back(a.pointNumber);
        part.cornerSlots.push_back(distinct[i]);
        DeedCall call;
        call.azimuth = std::atan2(b.x - a.x, b.y - a.y) / kRadian;
        call.distance = std::hypot(b.x - a.x, b.y - a.y);
        part.courses.push_back(follow(call, a.y, a.x, std::nullopt));
        part.courses.back().toN = b.y;  // the corner itself, not the line followed to it
        part.courses.back().toE = b.x;
      }
      part.area = shoelace(r, round.data(), round.size());
      part.acres = part.area / perAcre;
      if (factor && *factor > 0) {
        part.groundArea = part.area / (*factor * *factor);
        part.groundAcres = *part.groundArea / perAcre;
      }
      out.partsArea += part.area;
      (part.lot ? lots : regular).push_back(std::move(part));
    }
  std::sort(lots.begin(), lots.end(), [](const AliquotPart& a, const AliquotPart& b) { return a.lot < b.lot; });
  out.parts = std::move(lots);
  out.parts.insert(out.parts.end(), regular.begin(), regular.end());
  if (std::all_of(std::begin(kBoundary), std::end(kBoundary), [&r](int s) { return present(r, s); }))
    out.area = shoelace(r, kBoundary, std::size(kBoundary));
  else
    out.missing.emplace_back("the section: a corner of its boundary is not there, so its whole area is not known");
  out.acres = out.area / perAcre;
  out.partsAcres = out.partsArea / perAcre;
  return out;
}

}  // namespace tervalo
