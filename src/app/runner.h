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
};

struct RunOutcome {
  nlohmann::ordered_json result;  // messages, ended, forms, files, opened, skipped
  int exitCode = 0;               // 0 ran to its end, 3 the program ended
};

// Plays the job: opens its calculator as the main window's menu entry does,
// then applies the steps in order. Each box is also written to `boxLog`
// (when given) as it appears.
RunOutcome runJob(const Job& job, const RunOptions& options, const FormRegistry& registry, std::ostream* boxLog = nullptr);

// The result as the readable summary printed without --json.
std::string summarize(const nlohmann::ordered_json& result);

}  // namespace tervalo
