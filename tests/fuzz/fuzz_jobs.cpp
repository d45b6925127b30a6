// Any text as a job: refused with the runner's own error, or played through
// the program's windows to its end or to a program end, never a crash, and
// every file it wrote whole. Run with a large -max_len, so that nesting far
// deeper than the program takes is tried too.
// Jobs play in a scratch folder holding a copy of the examples; a job that
// names a file outside it (an absolute name, "..") is not played, so the
// fuzzer never writes where it should not.

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "app/job.h"
#include "app/program.h"
#include "app/runner.h"
#include "scratch.h"

namespace {

namespace fs = std::filesystem;

std::string prepareScratch() {
  const fs::path folder = scratchFolder(true);
  if (::chdir(folder.c_str()) != 0) std::abort();
  return folder.string() + "/data/";
}

bool staysInScratch(const std::string& name) {
  return !name.empty() ? name.front() != '/' && name.find("..") == std::string::npos : true;
}

bool confined(const tervalo::Job& job) {
  for (const auto& step : job.steps)
    for (const auto& [control, value] : step.set)
      if (const auto* text = std::get_if<std::string>(&value); text && !staysInScratch(*text)) return false;
  for (const auto& file : job.files)
    if (!staysInScratch(file)) return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string dataFolder = prepareScratch();
  static const tervalo::FormRegistry& forms = tervalo::allForms();
  std::string text(reinterpret_cast<const char*>(data), size);
  // The golden jobs name the examples by a placeholder.
  for (auto at = text.find("@EXAMPLES@"); at != std::string::npos; at = text.find("@EXAMPLES@"))
    text.replace(at, 10, "examples");
  tervalo::Job job;
  try {
    job = tervalo::parseJob(text, forms);
  } catch (const tervalo::JobError&) {
    return 0;
  }
  if (!confined(job)) return -1;  // not kept in the corpus
  const auto outcome = tervalo::runJob(job, tervalo::RunOptions{dataFolder, tervalo::Date{2026, 11, 21}}, forms);
  if (outcome.exitCode != 0 && outcome.exitCode != tervalo::kExitEnded && outcome.exitCode != tervalo::kExitCriticalBox)
    std::abort();
  // Every file the job wrote is there, a regular file, and whole: no
  // temporary file is left beside it.
  for (const auto& file : outcome.result["files"]) {
    const fs::path written(file.get<std::string>());
    std::error_code ec;
    if (!fs::is_regular_file(written, ec)) std::abort();
    for (fs::directory_iterator it(written.parent_path(), ec), end; !ec && it != end; it.increment(ec))
      if (it->path().filename().string().rfind(".tervalo-", 0) == 0) std::abort();
  }
  return 0;
}
