#pragma once
// A GEOPAK file the COGO package accepts names every point it stores and
// both ends of every line: the lines that break that rule, for a test's
// message (none when the file is sound).

#include <sstream>
#include <string>
#include <vector>

namespace tervalo::testing {

inline std::vector<std::string> unnamedGeopakLines(const std::string& geopak) {
  std::vector<std::string> bad;
  std::istringstream in(geopak);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    // "STO POI name  X ..." and "STO LIN segment from TO to": single blanks around each name.
    const bool point = line.rfind("STO POI ", 0) == 0 && (line.size() < 9 || line[8] == ' ');
    bool segment = false;
    if (line.rfind("STO LIN ", 0) == 0) {
      std::istringstream words(line);
      std::vector<std::string> w;
      for (std::string word; std::getline(words, word, ' ');) w.push_back(word);
      segment = w.size() != 6 || w[4] != "TO";
      for (const std::string& word : w) segment = segment || word.empty();
    }
    if (point || segment) bad.push_back(line);
  }
  return bad;
}

}  // namespace tervalo::testing
