#include "secsub/notices.h"

#include <algorithm>

#include "secsub/corners.h"
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
  if (!causeFields.empty()) notices.lines.push_back("An empty chain field counts as 0 chains; 20 is the regular quarter-mile.");
  return notices;
}

}  // namespace tervalo
