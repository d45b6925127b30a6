#pragma once
// The headless runner: plays a job through the same window models a user
// works, and reports every box, window, file and ending as JSON.

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "app/job.h"
#include "text/date.h"

namespace tervalo {

class FormRegistry;

class Program;

struct RunOptions {
  std::string dataFolder;     // ends with "/"
  std::optional<Date> today;  // the report date; today when not given
  // Looks at the program's windows once the job has been played, before
  // they go (the township run reads each section's corners this way).
  std::function<void(Program&)> inspect = {};
  // Prepares the program before the job is played (the township run gives
  // each section its points this way).
  std::function<void(Program&)> prepare = {};
  // The result's "forms" (every control) and what each window adds to it
  // ("explain"): left empty by a caller that shows only a summary (a
  // township run without --json), which saves building them for every section.
  bool windows = true;
};

// The exit statuses of the runner's commands.
inline constexpr int kExitCannotWriteResult = 1;  // the result could not be written to standard output
inline constexpr int kExitUsage = 2;              // a bad job, plan or file, or bad arguments
inline constexpr int kExitEnded = 3;              // the program ended (or a section of a plan did not run)
inline constexpr int kExitCriticalBox = 4;        // ran to its end, but showed a box with the critical icon

struct RunOutcome {
  nlohmann::ordered_json result;  // messages, ended, forms, files, opened, skipped
  int exitCode = 0;               // 0, kExitEnded or kExitCriticalBox
};

// Plays the job: opens its calculator as the main window's menu entry does,
// then applies the steps in order. Each box is also written to `boxLog`
// (when given) as it appears.
RunOutcome runJob(const Job& job, const RunOptions& options, const FormRegistry& registry, std::ostream* boxLog = nullptr);

// The result as the readable summary printed without --json.
std::string summarize(const nlohmann::ordered_json& result);

}  // namespace tervalo
