// The station and offset of points on a long alignment, timed by
// scripts/bench-alignment (no test): a zigzag of PIS PIs, every curve with
// spirals, so about three elements a PI; COUNT points near it, each
// projected and its answers counted. Prints microseconds a point.

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "alignment/alignment.h"

int main(int argc, char** argv) {
  using namespace tervalo;
  const int pis = argc > 1 ? std::atoi(argv[1]) : 334;
  const int count = argc > 2 ? std::atoi(argv[2]) : 20000;
  AlignmentInput in;
  for (int i = 0; i < pis; ++i) {
    AlignmentPi p{1000.0 * i, i % 2 ? 600.0 : 0.0, {}, 0, 0};
    if (i > 0 && i + 1 < pis) p.radius = 700, p.spiralIn = p.spiralOut = 100;
    in.pis.push_back(p);
  }
  const Alignment a(in);
  std::mt19937 random(7);
  std::uniform_real_distribution<double> along(0, a.length()), offset(-50, 50);
  std::vector<Pose> points;
  for (int i = 0; i < count; ++i) points.push_back(a.at(along(random), offset(random)));
  std::size_t answers = 0;
  const auto start = std::chrono::steady_clock::now();
  for (const Pose& p : points) answers += a.project(p.northing, p.easting).size();
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf("elements: %zu, points: %d, answers: %zu\n%.1f microseconds a point (the figure to meet: under 100)\n", a.elements().size(), count,
              answers, seconds / count * 1e6);
  return 0;
}
