#include "cli/restore_command.h"

#include <filesystem>
#include <ostream>

#include "app/json_text.h"
#include "cli/file_answer.h"
#include "app/output_file.h"
#include "app/runner.h"
#include "crs/project_store.h"
#include "project/point_import.h"
#include "restore/restoration_file.h"
#include "text/justify.h"
#include "text/errors.h"

namespace tervalo {

int restoreCommand(const std::string& name, bool json, const std::string& dataFolder, const Date& today, std::ostream& out,
                   std::ostream& err) {
  RestorationFile file;
  try {
    file = readRestorationFile(name);
  } catch (const RestorationFileError& e) {
    err << "tervalo-cli: " << name << ": " << e.what() << "\n";
    return kExitUsage;
  }
  nlohmann::ordered_json messages = nlohmann::ordered_json::array(), files = nlohmann::ordered_json::array();
  RestorationRun run;
  try {
    run = runRestoration(file, formatShortDate(today));
    // "section14.restore.json" writes "section14-restored.rpt" and ".txt".
    std::string stem = std::filesystem::path(name).stem().string();
    if (stem.ends_with(".restore")) stem.erase(stem.size() - 8);
    const auto [report, points] = restorationOutputs(dataFolder, stem);
    std::vector<std::pair<std::filesystem::path, std::vector<std::string>>> written{{report, run.report}};
    if (!run.points.empty()) written.emplace_back(points, run.points);
    writeTextFiles(written);
    for (const auto& [path, lines] : written) files.push_back(std::filesystem::absolute(path).lexically_normal().string());
    if (!file.project.empty()) {
      // The restored corners into the project, each with the rule that placed it.
      const std::vector<ProjectPoint> restored = restoredPoints(run, "restoration " + std::filesystem::path(name).filename().string());
      try {
        const StoreCounts stored = openProject(file.project)->store(restored, OnDuplicate::Replace, "restoration");
        if (!json) out << "Stored " << stored.stored << " restored corners in " << file.project << "\n";
      } catch (const ProjectError& e) {
        messages.push_back(std::string("The restored corners are not stored: ") + e.what() + ".");
      }
    }
  } catch (const RestorationFileError& e) {
    messages.push_back(e.what());
  } catch (const RunTimeError& e) {
    messages.push_back(std::string("Run-time Error: ") + e.what());
  }
  printFileAnswer(out, err, json, run.result, run.report, messages, files);
  return messages.empty() && run.allRestored() ? 0 : kExitEnded;
}

}  // namespace tervalo
