#include "secsub/notices.h"

#include "text/format.h"
#include "text/number.h"

namespace tervalo {
namespace {

std::string corner(const SectionRecord& r, int s) {
  return "corner " + std::to_string(s) + " (" + r.slots[static_cast<std::size_t>(s)].description + ")";
}

// The chain fields reading 0 that measure the half-mile of a computed slot.
std::vector<std::string> zeroChains(const SectionRecord& r, int s) {
  std::vector<std::string> causes;
  for (const ChainFieldInfo& f : kChainFields) {
    if (f.sixteenth != s && f.centerSixteenth != s) continue;
    const std::string& text = r.chains.*f.text;
    if (Val(text) != 0) continue;
    causes.push_back("\"" + std::string(f.caption) + "\" " + (text.empty() ? "is empty" : "reads 0"));
  }
  return causes;
}

}  // namespace

RunNotices coincidenceNotices(const SectionRecord& r, const std::array<bool, slot::count>& computed) {
  RunNotices notices;
  std::array<std::string, slot::count> at;
  for (int s = 0; s < slot::count; ++s) {
    const CornerSlot& c = r.slots[static_cast<std::size_t>(s)];
    if (c.x != 0) at[static_cast<std::size_t>(s)] = Format(c.x, "#######0.0000") + " " + Format(c.y, "#######0.0000");
  }
  bool chainCause = false;
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
      std::vector<std::string> causes;
      for (int s : {a, b})
        if (computed[static_cast<std::size_t>(s)])
          for (std::string& c : zeroChains(r, s)) causes.push_back(std::move(c));
      for (std::size_t i = 0; i < causes.size(); ++i) line += (i == 0 ? ": " : " and ") + causes[i];
      chainCause = chainCause || !causes.empty();
      notices.lines.push_back(line + ".");
    }
  }
  if (chainCause) notices.lines.push_back("An empty chain field counts as 0 chains; 20 is the regular quarter-mile.");
  return notices;
}

}  // namespace tervalo
