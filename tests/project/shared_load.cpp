// tervalo_shared_load PROJECT SECONDS [WRITERS] [POINTS]: writers, each
// with its own connection, edit overlapping points of a shared project for
// SECONDS: each reads a point, adds one to the count its description holds
// and stores it as read. A refused edit is told to its writer, who reads
// again and tries again. At the end every point's count must be the sum of
// the edits stored of it: no update lost; and no edit may fail otherwise
// (a deadlock would). Run by scripts/bench-shared.

#include <atomic>
#include <chrono>
#include <iostream>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include "crs/project_store.h"

using namespace tervalo;

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: tervalo_shared_load PROJECT SECONDS [WRITERS] [POINTS]\n";
    return 2;
  }
  const std::string where = argv[1];
  const int seconds = std::atoi(argv[2]), writers = argc > 3 ? std::atoi(argv[3]) : 8, count = argc > 4 ? std::atoi(argv[4]) : 12;
  {
    auto p = createProject(where, {});
    std::vector<ProjectPoint> points;
    for (int i = 1; i <= count; ++i) {
      ProjectPoint q;
      q.number = std::to_string(i);
      q.description = "0";
      points.push_back(q);
    }
    p->store(points, OnDuplicate::Skip, "load");
  }
  std::vector<std::vector<long long>> stored(writers, std::vector<long long>(count + 1));
  std::vector<long long> refused(writers), failed(writers);
  std::mutex said;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  std::vector<std::thread> crews;
  for (int w = 0; w < writers; ++w)
    crews.emplace_back([&, w] {
      std::mt19937 random(static_cast<unsigned>(w) * 7919u + 1u);
      auto p = openProject(where);
      while (std::chrono::steady_clock::now() < end) {
        const int n = static_cast<int>(random() % static_cast<unsigned>(count)) + 1;
        try {
          ProjectPoint q = *p->find(std::to_string(n));
          const long long version = q.version;
          q.description = std::to_string(std::stoll(q.description) + 1);
          q.modified.clear();
          q.source.clear();
          std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));  // the user thinks
          p->apply({{}, {q}, {{q.number, version}}}, "writer " + std::to_string(w));
          ++stored[static_cast<std::size_t>(w)][static_cast<std::size_t>(n)];
        } catch (const ProjectConflict&) {
          ++refused[static_cast<std::size_t>(w)];  // told to this writer, who reads again
        } catch (const ProjectError& e) {
          ++failed[static_cast<std::size_t>(w)];
          std::lock_guard<std::mutex> lock(said);
          std::cerr << "writer " << w << ": " << e.what() << "\n";
        }
      }
    });
  for (std::thread& t : crews) t.join();
  auto p = openProject(where);
  long long lost = 0, edits = 0, refusals = 0, faults = 0;
  for (int n = 1; n <= count; ++n) {
    long long expected = 0;
    for (int w = 0; w < writers; ++w) expected += stored[static_cast<std::size_t>(w)][static_cast<std::size_t>(n)];
    edits += expected;
    lost += std::llabs(expected - std::stoll(p->find(std::to_string(n))->description));
  }
  for (int w = 0; w < writers; ++w) {
    refusals += refused[static_cast<std::size_t>(w)];
    faults += failed[static_cast<std::size_t>(w)];
  }
  std::cout << "writers:                " << writers << " on " << count << " points for " << seconds << " s\n"
            << "edits stored:           " << edits << " (" << edits / std::max(1, seconds) << " a second)\n"
            << "edits refused, told:    " << refusals << "\n"
            << "updates lost:           " << lost << "\n"
            << "other faults:           " << faults << "\n";
  return lost == 0 && faults == 0 ? 0 : 1;
}
