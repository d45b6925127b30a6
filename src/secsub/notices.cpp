#include "secsub/notices.h"

#include <algorithm>

#include "secsub/corners.h"
#include "secsub/township_rules.h"
#include "secsub_out/corner_record.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/number.h"

namespace tervalo {
namespace {

std::string corner(const SectionRecord& r, int s) {
  return "corner " + std::to_string(s) + " (" + r.slots[static_cast<std::size_t>(s)].description + ")";
}

std::string written(const CornerSlot& c) { return Format(c.x, "#######0.0000") + " " + Format(c.y, "#######0.0000"); }

// The chain fields reading 0 that measure the half-mile of a computed slot.
std::vector<const ChainFieldInfo*> zeroChains(const SectionRecord& r, int s) {
  std::vector<const ChainFieldInfo*> causes;
  for (const ChainFieldInfo& f : kChainFields)
    if ((f.sixteenth == s || f.centerSixteenth == s) && Val(r.chains.*f.text) == 0) causes.push_back(&f);
  return causes;
}

std::string cause(const SectionRecord& r, const ChainFieldInfo& f) {
  return "\"" + std::string(f.caption) + "\" " + ((r.chains.*f.text).empty() ? "is empty" : "reads 0");
}

// The computed positions that field `f` moved: the run again from the
// entered record with the field at the regular 20 chains puts them elsewhere.
std::vector<int> movedBy(const ChainFieldInfo& f, const SectionRecord& run, const std::array<bool, slot::count>& computed,
                         const SectionRecord& entered, bool centerTyped) {
  SectionRecord regular = entered;
  regular.chains.*f.text = "20";
  try {
    computeMissingCorners(regular, calculateChains(regular.chains), centerTyped, [](int, const CornerRule&) {});
  } catch (const RunTimeError&) {
    return {f.sixteenth};  // the regular lines cannot be computed; the sixteenth itself is certain
  }
  std::vector<int> moved;
  for (int s = 0; s < slot::count; ++s) {
    const auto i = static_cast<std::size_t>(s);
    if (computed[i] && written(run.slots[i]) != written(regular.slots[i])) moved.push_back(s);
  }
  return moved;
}

}  // namespace

RunNotices coincidenceNotices(const SectionRecord& r, const std::array<bool, slot::count>& computed,
                              const SectionRecord& entered, bool centerTyped) {
  RunNotices notices;
  std::array<std::string, slot::count> at;
  for (int s = 0; s < slot::count; ++s) {
    const CornerSlot& c = r.slots[static_cast<std::size_t>(s)];
    if (c.x != 0) at[static_cast<std::size_t>(s)] = written(c);
  }
  std::vector<const ChainFieldInfo*> causeFields;  // in the order the notices name them
  for (int b = 0; b < slot::count; ++b) {
    for (int a = 0; a < b; ++a) {
      const auto ia = static_cast<std::size_t>(a), ib = static_cast<std::size_t>(b);
      if (at[ib].empty() || at[ib] != at[ia]) continue;
      // The computed one lies on the other; two computed or two held ones coincide.
      const bool onlyA = computed[ia] && !computed[ib];
      const int moved = onlyA ? a : b, still = onlyA ? b : a;
      notices.coincidences.push_back({moved, still, computed[static_cast<std::size_t>(moved)]});
      std::string line = computed[ia] != computed[ib]
                             ? "The computed " + corner(r, moved) + " lies on " + corner(r, still)
                             : "The " + corner(r, a) + " and " + corner(r, b) + " coincide";
      std::vector<const ChainFieldInfo*> causes;
      for (int s : {a, b})
        if (computed[static_cast<std::size_t>(s)])
          for (const ChainFieldInfo* f : zeroChains(r, s)) causes.push_back(f);
      for (std::size_t i = 0; i < causes.size(); ++i) {
        line += (i == 0 ? ": " : " and ") + cause(r, *causes[i]);
        if (std::find(causeFields.begin(), causeFields.end(), causes[i]) == causeFields.end())
          causeFields.push_back(causes[i]);
      }
      notices.lines.push_back(line + ".");
    }
  }
  // Each such field moved more than the corner it put on another: every
  // position measured along its half-mile or from a corner on it.
  for (const ChainFieldInfo* f : causeFields) {
    const std::vector<int> moved = movedBy(*f, r, computed, entered, centerTyped);
    std::string line = "As 0 chains, \"" + std::string(f->caption) + "\" moved " + (moved.size() > 1 ? "corners " : "corner ");
    for (std::size_t i = 0; i < moved.size(); ++i)
      line += (i == 0 ? "" : i + 1 == moved.size() ? " and " : ", ") + std::to_string(moved[i]) + " (" +
              r.slots[static_cast<std::size_t>(moved[i])].description + ")";
    notices.lines.push_back(line + " from where 20 chains would put " + (moved.size() > 1 ? "them." : "it."));
  }
  if (!causeFields.empty()) notices.lines.push_back("An empty required chain field counts as 0 chains; 20 is the regular quarter-mile.");
  return notices;
}

namespace {

std::string slotNamed(const SectionRecord& r, int s) {
  return "corner " + std::to_string(s) + " (" + kSlotTitles[static_cast<std::size_t>(s)] + ", " +
         r.slots[static_cast<std::size_t>(s)].description + ")";
}

std::string joinedNames(const std::vector<std::string>& names) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) text += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
  return text;
}

constexpr const char* kRestoreFirst =
    "Restore the missing corner first (Corner Restoration, or a restore entry of a township plan), then run the section again.";

}  // namespace

std::vector<std::string> missingCornerNotices(const SectionRecord& r,
                                              const std::array<std::optional<CornerRule>, slot::count>& placedBy) {
  std::vector<std::string> lines;
  const auto missing = [&r](int s) { return r.slots[static_cast<std::size_t>(s)].blank(); };
  // The center-line sixteenths north and south of the center, and the
  // section corners whose blocks would have put them on their own line.
  struct OwnLine {
    int slot, quarter, cornerA, cornerB;
  };
  constexpr OwnLine kCenterLine[] = {{7, slot::N4, slot::NW, slot::NE}, {17, slot::S4, slot::SW, slot::SE}};
  // Proportions on a quarter corner that is not there (it counts as 0, 0), by that corner.
  std::array<std::vector<int>, slot::count> onMissing;
  for (int s = 0; s < slot::count; ++s) {
    const auto& rule = placedBy[static_cast<std::size_t>(s)];
    if (!rule || rule->kind == CornerRule::Kind::Intersection) continue;
    for (int end : {rule->nearSlot, rule->farSlot})
      if (end >= 0 && missing(end)) {
        onMissing[static_cast<std::size_t>(end)].push_back(s);
        break;
      }
  }
  for (int end = 0; end < slot::count; ++end) {
    const std::vector<int>& placed = onMissing[static_cast<std::size_t>(end)];
    if (placed.empty()) continue;
    const std::string title = kSlotTitles[static_cast<std::size_t>(end)];
    std::vector<std::string> named;
    for (int s : placed)
      named.push_back(slotNamed(r, s) + " at X " + Format(r.slots[static_cast<std::size_t>(s)].x, "0.0000") + ", Y " +
                      Format(r.slots[static_cast<std::size_t>(s)].y, "0.0000"));
    lines.push_back("The " + title + " corner is missing (its slot is empty and counts as X 0, Y 0), yet " + joinedNames(named) +
                    (placed.size() > 1 ? " were" : " was") + " proportioned on it and so " +
                    (placed.size() > 1 ? "lie" : "lies") + " off the section. The " + title + " counts as present because " +
                    (end == slot::N4 ? "a sixteenth corner of the south line (corner 21 or 23) has coordinates, as the program "
                                       "has always taken it (a second Continue holds the first run's)"
                                     : "its X field holds a text that reads 0") +
                    ". " + kRestoreFirst);
  }
  for (int s = 0; s < slot::count; ++s) {
    const auto& rule = placedBy[static_cast<std::size_t>(s)];
    if (!rule || rule->kind != CornerRule::Kind::FinalPass) continue;
    for (const OwnLine& own : kCenterLine) {
      if (own.slot != s) continue;
      std::vector<std::string> gone;
      for (int corner : {own.cornerA, own.cornerB, own.quarter})
        if (missing(corner)) gone.push_back(std::string("the ") + kSlotTitles[static_cast<std::size_t>(corner)]);
      std::string on;
      for (int other = 0; other < slot::count; ++other)
        if (other != s && !missing(other) && written(r.slots[static_cast<std::size_t>(other)]) == written(r.slots[static_cast<std::size_t>(s)]))
          on = ", on " + slotNamed(r, other);
      lines.push_back("The final pass put " + slotNamed(r, s) + " 20 chains from the center toward the E 1/4" + on +
                      ", not on the north-south center line, because " + joinedNames(gone) + (gone.size() > 1 ? " are" : " is") +
                      " missing: as the program has always done, this is no position of the " +
                      kSlotTitles[static_cast<std::size_t>(s)] + ". " + kRestoreFirst);
    }
  }
  return lines;
}

std::vector<std::string> takeEmptyChainsAsRegular(SectionRecord& r) {
  std::vector<std::string> lines;
  const auto required = requiredChains(r.section);
  const auto fractional = fractionalChains(r.section);
  const auto has = [](const std::vector<std::string>& names, const char* stem) {
    return std::find(names.begin(), names.end(), stem) != names.end();
  };
  for (const ChainFieldInfo& f : kChainFields) {
    std::string& text = r.chains.*f.text;
    if (!text.empty() || has(required, f.stem)) continue;
    text = "20";
    std::string line = "\"" + std::string(f.caption) + "\" was left empty and taken as 20 chains, the regular quarter-mile.";
    if (has(fractional, f.stem))
      line += " In section " + std::to_string(r.section) + " it is a fractional quarter-mile (the lots lie along the " +
              (f.stem[0] == 'N' ? "north" : "west") + " boundary of the township): type its record length from the plat.";
    lines.push_back(line);
  }
  return lines;
}

}  // namespace tervalo
