#pragma once
// Keyboard mnemonics (Alt+letter) for captions that the program gives
// without one: within a window, and within each menu, no two controls
// share a letter. The captions themselves are not changed; the view shows
// each with its marker.

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tervalo {

// One control and its caption, in the order of preference (the controls
// that matter most first).
using Captioned = std::vector<std::pair<std::string, std::string>>;

// Each caption marked with "&" before its letter: as many controls as the
// letters allow get one (a maximum matching of controls to letters), each
// preferring the initials of its words, then its other letters; a caption
// that marks its own letter keeps it, and a literal "&" is doubled.
std::map<std::string, std::string> markMnemonics(const Captioned& controls);

}  // namespace tervalo
