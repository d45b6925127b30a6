#pragma once
// Keyboard mnemonics (Alt+letter) for captions that the program gives
// without one: each window, and each menu, gets letters that do not clash.
// The caption itself is not changed; the view shows it with its marker.

#include <map>
#include <string>

namespace tervalo {

class Mnemonics {
 public:
  // The caption with "&" before the letter kept for `control` in `scope`
  // (a window's buttons and menu bar share one scope, each menu has its
  // own): the letter it had if the caption still holds it, else the first
  // free initial of a word, else any free letter or digit, else none. A
  // caption that marks its own letter keeps it; a literal "&" is doubled.
  std::string marked(const std::string& scope, const std::string& control, const std::string& caption);

 private:
  std::map<std::string, std::map<char, std::string>> taken_;  // scope -> letter -> control
  std::map<std::string, char> letter_;                          // scope + control -> letter
};

}  // namespace tervalo
