#pragma once
// Names of parameterised cases that a reader of the test list understands:
// a case's own words, with what a test name cannot hold spelled out.

#include <cctype>
#include <string>

namespace tervalo::testing {

inline std::string readableName(const std::string& text) {
  std::string name;
  for (char c : text) {
    if (std::isalnum(static_cast<unsigned char>(c)))
      name += c;
    else if (c == '+')
      name += "plus";
    else if (c == '-')
      name += name.empty() || name.back() == '_' ? "minus" : "_";
    else
      name += '_';
  }
  return name.empty() ? "empty" : name;
}

}  // namespace tervalo::testing
