// Any text as a township plan: refused with the plan reader's own error, or
// run section by section to its summary, never a crash. Plans run in a
// scratch folder holding a copy of the examples; the source is always the
// example's, so the fuzzer never reads or writes where it should not.

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "app/program.h"
#include "app/runner.h"
#include "township/plan.h"
#include "township/township.h"
#include "scratch.h"

namespace {

namespace fs = std::filesystem;

std::string prepareScratch() { return scratchFolder(true).string() + "/"; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string scratch = prepareScratch();
  tervalo::TownshipPlan plan;
  try {
    plan = tervalo::parsePlan(std::string(reinterpret_cast<const char*>(data), size));
  } catch (const tervalo::PlanError&) {
    return 0;
  }
  if (plan.sections.size() > 8) return -1;  // a run's worth is enough; not kept
  // Plan text never becomes a path: every file the run names lies in the data folder.
  for (const auto& s : plan.sections) {
    const std::string stem = tervalo::sectionFileStem(plan, s);
    if (stem.find('/') != std::string::npos || stem.find("..") != std::string::npos) std::abort();
  }
  plan.source = scratch + "examples/township.csv";
  const auto outcome = tervalo::runTownship(plan, tervalo::RunOptions{scratch + "data/", tervalo::Date{2026, 11, 21}},
                                            tervalo::allForms());
  if (outcome.exitCode != 0 && outcome.exitCode != tervalo::kExitEnded && outcome.exitCode != tervalo::kExitCriticalBox)
    std::abort();
  for (const auto& file : outcome.result["files"])
    if (fs::path(file.get<std::string>()).parent_path() != fs::path(scratch + "data")) std::abort();
  return 0;
}
