// Times COGO commands on a project, as scripts/bench-cogo runs it: each
// command's points looked up by number through the project's index, the
// answer made. Not a test: a figure for people, in milliseconds a command.

#include <chrono>
#include <cstdio>
#include <iostream>
#include <string>

#include "cogo/cogo.h"

int main(int argc, char** argv) {
  using namespace tervalo;
  if (argc != 4) {
    std::cerr << "usage: tervalo_cogo_speed PROJECT.gpkg FIRST-NUMBER COUNT\n";
    return 2;
  }
  auto project = openProject(argv[1]);
  const long long first = std::stoll(argv[2]), count = std::stoll(argv[3]);
  CogoEngine engine([&project](const std::string& n) { return project->find(n); }, cogoOptionsOf(project->settings()));
  const auto time = [&](const char* what, auto command) {
    constexpr int kRuns = 2000;
    const auto start = std::chrono::steady_clock::now();
    int refused = 0;
    for (int i = 0; i < kRuns; ++i) {
      try {
        engine.run(command(first + (i * 7919LL + 1) % count, first + (i * 104729LL + 5) % count), i + 1);
      } catch (const CogoError&) {
        ++refused;  // two points that do not make the figure: timed all the same
      }
      engine.clearMade();
    }
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count() / kRuns;
    std::printf("%-44s %.3f ms a command (%d refused)\n", what, ms, refused);
  };
  time("INVERSE a b", [](long long a, long long b) { return "INVERSE " + std::to_string(a) + " " + std::to_string(b); });
  time("LOCATE n FROM a BACKSIGHT b ANGLE ... DISTANCE", [](long long a, long long b) {
    return "LOCATE NEW FROM " + std::to_string(a) + " BACKSIGHT " + std::to_string(b) + " ANGLE 90-00-00 DISTANCE 100";
  });
  time("INTERSECT n DISTANCE a d DISTANCE b d", [](long long a, long long b) {
    return "INTERSECT NEW DISTANCE " + std::to_string(a) + " 5000 DISTANCE " + std::to_string(b) + " 5000 NEAR " + std::to_string(a);
  });
  return 0;
}
