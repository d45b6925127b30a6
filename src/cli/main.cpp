// tervalo-cli: plays job files and shows what the program reads from a
// coordinate file, without a display.

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <sstream>

#include "app/data_folder.h"
#include "app/program.h"
#include "app/runner.h"
#include "cli/points_command.h"
#include "text/errors.h"

namespace {

struct RunOptionsCli {
  std::string job;
  bool json = false;
  std::string today;
  std::string dataDir;
};

int runCommand(const RunOptionsCli& o) {
  std::ifstream in(o.job, std::ios::binary);
  if (!in) {
    std::cerr << "tervalo-cli: cannot read the job file \"" << o.job << "\"\n";
    return 2;
  }
  std::stringstream text;
  text << in.rdbuf();

  tervalo::RunOptions options;
  if (!o.today.empty()) {
    options.today = tervalo::parseIsoDate(o.today);
    if (!options.today) {
      std::cerr << "tervalo-cli: --today takes a date as YYYY-MM-DD, not \"" << o.today << "\"\n";
      return 2;
    }
  }
  tervalo::Job job;
  try {
    job = tervalo::parseJob(text.str(), tervalo::allForms());
  } catch (const tervalo::JobError& e) {
    std::cerr << "tervalo-cli: " << o.job << ": " << e.what() << "\n";
    return 2;
  }
  try {
    options.dataFolder = o.dataDir.empty() ? tervalo::prepareDataFolder() : tervalo::prepareDataFolder(o.dataDir);
  } catch (const tervalo::RunTimeError& e) {
    std::cerr << "Run-time Error: " << e.what() << "\n";
    return 3;
  }

  const auto outcome = tervalo::runJob(job, options, tervalo::allForms(), o.json ? nullptr : &std::cerr);
  if (o.json)
    std::cout << outcome.result.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
  else
    std::cout << tervalo::summarize(outcome.result);
  return outcome.exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Tervalo coordinate geometry, without a display."};
  app.require_subcommand(1);

  RunOptionsCli run;
  auto* runCmd = app.add_subcommand("run", "Play a job file through the program's windows and report the result.");
  runCmd->add_option("job", run.job, "The job file (JSON)")->required();
  runCmd->add_flag("--json", run.json, "Print the whole result as JSON on standard output");
  runCmd->add_option("--today", run.today, "The date for reports, as YYYY-MM-DD");
  runCmd->add_option("--data-dir", run.dataDir, "The data folder for default output files");

  std::string pointsFile;
  auto* pointsCmd = app.add_subcommand("points", "Show the format recognised in a coordinate file and every point read.");
  pointsCmd->add_option("file", pointsFile, "The coordinate file")->required();

  CLI11_PARSE(app, argc, argv);
  if (runCmd->parsed()) return runCommand(run);
  if (pointsCmd->parsed()) return tervalo::pointsCommand(pointsFile, std::cout, std::cerr);
  return 2;
}
