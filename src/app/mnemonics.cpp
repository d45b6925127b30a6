#include "app/mnemonics.h"

#include <cctype>
#include <functional>
#include <set>

namespace tervalo {
namespace {

char folded(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }
bool usable(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

// The letters a caption may be marked with, by position, in order of preference.
std::vector<std::size_t> candidates(const std::string& caption) {
  std::vector<std::size_t> at;
  std::set<char> seen;
  auto consider = [&](std::size_t i) {
    if (seen.insert(folded(caption[i])).second) at.push_back(i);
  };
  for (std::size_t i = 0; i < caption.size(); ++i)
    if (usable(caption[i]) && (i == 0 || !usable(caption[i - 1]))) consider(i);
  for (std::size_t i = 0; i < caption.size(); ++i)
    if (usable(caption[i])) consider(i);
  return at;
}

// The caption's own marker, if it has one ("&1  file").
std::size_t ownMarker(const std::string& caption) {
  for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != '&') continue;
    if (caption[i + 1] == '&') {
      ++i;
      continue;
    }
    if (usable(caption[i + 1])) return i + 1;
  }
  return std::string::npos;
}

}  // namespace

std::map<std::string, std::string> markMnemonics(const Captioned& controls) {
  std::map<char, std::size_t> owner;  // letter -> control index
  std::vector<std::size_t> chosen(controls.size(), std::string::npos);
  std::vector<std::vector<std::size_t>> options(controls.size());
  for (std::size_t k = 0; k < controls.size(); ++k) {
    const std::string& caption = controls[k].second;
    if (const std::size_t own = ownMarker(caption); own != std::string::npos) {
      owner[folded(caption[own])] = k;
      chosen[k] = own;
    } else {
      options[k] = candidates(caption);
    }
  }
  // Kuhn's augmenting paths: a control takes a free letter, or one whose
  // holder can move to another of its letters.
  std::function<bool(std::size_t, std::set<char>&)> place = [&](std::size_t k, std::set<char>& visited) {
    for (std::size_t at : options[k])  // a free letter first, in the control's own order
      if (!owner.count(folded(controls[k].second[at]))) {
        owner[folded(controls[k].second[at])] = k;
        chosen[k] = at;
        return true;
      }
    for (std::size_t at : options[k]) {
      const char letter = folded(controls[k].second[at]);
      if (!visited.insert(letter).second) continue;
      const auto held = owner.find(letter);
      if (held == owner.end() || (!options[held->second].empty() && place(held->second, visited))) {
        owner[letter] = k;
        chosen[k] = at;
        return true;
      }
    }
    return false;
  };
  for (std::size_t k = 0; k < controls.size(); ++k) {
    if (options[k].empty()) continue;
    std::set<char> visited;
    place(k, visited);
  }

  std::map<std::string, std::string> marked;
  for (std::size_t k = 0; k < controls.size(); ++k) {
    const std::string& caption = controls[k].second;
    if (ownMarker(caption) != std::string::npos) {
      marked[controls[k].first] = caption;
      continue;
    }
    std::string shown;
    for (std::size_t i = 0; i < caption.size(); ++i) {
      if (i == chosen[k]) shown += '&';
      shown += caption[i];
      if (caption[i] == '&') shown += '&';
    }
    marked[controls[k].first] = shown;
  }
  return marked;
}

}  // namespace tervalo
