#pragma once
// What an outside program (one of PROJ's, GDAL's) prints for `input` on its
// standard input: the tests check the program's numbers against them.

#include <array>
#include <cstdio>
#include <memory>
#include <string>

namespace tervalo::testing {

inline std::string programOutput(const std::string& command, const std::string& input) {
  const std::string line = "echo '" + input + "' | " + command;
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(line.c_str(), "r"), ::pclose);
  std::string out;
  std::array<char, 256> buffer{};
  while (pipe && std::fgets(buffer.data(), buffer.size(), pipe.get())) out += buffer.data();
  return out;
}

}  // namespace tervalo::testing
