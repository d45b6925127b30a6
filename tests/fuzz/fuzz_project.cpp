// Any bytes as a project file (the example project the seed): opened and
// read through as the Points window reads it, or refused with the
// program's own word, never a crash.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "crs/project_store.h"
#include "scratch.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::filesystem::path folder = scratchFolder(false);
  const std::filesystem::path file = folder / "fuzz.gpkg";
  std::ofstream(file, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  try {
    auto project = tervalo::openProject(file);
    project->count();
    std::vector<long long> ids;
    for (const tervalo::ProjectPoint& p : project->page(0, 50)) ids.push_back(p.id);
    project->byIds(ids);
    project->find("1001");
    tervalo::PointQuery q;
    q.order = tervalo::PointQuery::Column::Number;
    q.fromNumber = 1000;
    project->select(q);
    project->values("feature", 10);
  } catch (const tervalo::ProjectError&) {
  }
  // An older project is brought up to date beside its copy: the next input starts afresh.
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ec)) std::filesystem::remove(entry.path(), ec);
  return 0;
}
