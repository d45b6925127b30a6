#include "app/mnemonics.h"

#include <cctype>
#include <vector>

namespace tervalo {
namespace {

char folded(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }
bool usable(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

}  // namespace

std::string Mnemonics::marked(const std::string& scope, const std::string& control, const std::string& caption) {
  auto& taken = taken_[scope];
  const std::string key = scope + "\n" + control;
  // A caption with its own marker ("&1  file") keeps it.
  if (const auto at = caption.find('&'); at != std::string::npos && at + 1 < caption.size() && caption[at + 1] != '&') {
    const char own = folded(caption[at + 1]);
    taken[own] = control;
    letter_[key] = own;
    return caption;
  }
  // Where a letter may stand: the one this control had, word initials, then the rest in order.
  std::vector<std::size_t> candidates;
  if (const auto old = letter_.find(key); old != letter_.end()) {
    for (std::size_t i = 0; i < caption.size(); ++i)
      if (folded(caption[i]) == old->second) {
        candidates.push_back(i);
        break;
      }
    if (const auto owner = taken.find(old->second); owner != taken.end() && owner->second == control) taken.erase(owner);
    letter_.erase(old);
  }
  for (std::size_t i = 0; i < caption.size(); ++i)
    if (usable(caption[i]) && (i == 0 || !usable(caption[i - 1]))) candidates.push_back(i);
  for (std::size_t i = 0; i < caption.size(); ++i)
    if (usable(caption[i]) && i > 0 && usable(caption[i - 1])) candidates.push_back(i);
  std::size_t at = std::string::npos;
  for (std::size_t i : candidates) {
    const auto owner = taken.find(folded(caption[i]));
    if (owner == taken.end() || owner->second == control) {
      at = i;
      break;
    }
  }
  std::string shown;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (i == at) shown += '&';
    shown += caption[i];
    if (caption[i] == '&') shown += '&';
  }
  if (at != std::string::npos) {
    taken[folded(caption[at])] = control;
    letter_[key] = folded(caption[at]);
  }
  return shown;
}

}  // namespace tervalo
