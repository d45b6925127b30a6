#include "cli/traverse_command.h"

#include <filesystem>
#include <ostream>

#include "app/json_text.h"
#include "cli/file_answer.h"
#include "app/output_file.h"
#include "app/runner.h"
#include "export/map_export.h"
#include "export/map_system.h"
#include "text/errors.h"
#include "traverse/traverse_file.h"
#include "traverse/traverse_report.h"

namespace tervalo {

int traverseCommand(const std::string& name, const std::vector<std::string>& exports, bool json, const std::string& dataFolder,
                    const Date& today, std::ostream& out, std::ostream& err) {
  TraverseInput input;
  try {
    input = readTraverseFile(name);
  } catch (const TraverseFileError& e) {
    err << "tervalo-cli: " << name << ": " << e.what() << "\n";
    return kExitUsage;
  }
  nlohmann::ordered_json messages = nlohmann::ordered_json::array(), files = nlohmann::ordered_json::array();
  TraverseRun run;
  try {
    // A misnamed export is refused before anything is written.
    for (const std::string& wanted : exports) checkMapFileName(wanted);
    run = runTraverse(input, formatShortDate(today));
    // "loop.traverse.json" writes "loop-traverse.rpt" and "loop-adjusted.txt".
    std::string stem = std::filesystem::path(name).stem().string();
    if (stem.ends_with(".traverse")) stem.erase(stem.size() - 9);
    const auto [report, points] = traverseOutputs(dataFolder, stem);
    const std::vector<std::pair<std::filesystem::path, std::vector<std::string>>> written{{report, run.report}, {points, run.points}};
    writeTextFiles(written);
    for (const auto& [path, lines] : written) files.push_back(std::filesystem::absolute(path).lexically_normal().string());
    if (!exports.empty()) {
      CornerMap map = traverseMap(input, run.result);
      map.system = mapSystem(input.crs);
      for (const std::string& wanted : exports) {
        std::filesystem::path file(wanted);
        if (!file.has_parent_path()) file = std::filesystem::path(dataFolder) / file;
        writeMapFile(map, file, today);
        files.push_back(std::filesystem::absolute(file).lexically_normal().string());
      }
    }
  } catch (const ExportError& e) {
    messages.push_back(e.what());
  } catch (const CrsError& e) {
    messages.push_back(e.what());
  } catch (const TraverseError& e) {
    messages.push_back(std::string("The traverse cannot be computed: ") + e.what() + ".");
  } catch (const TraverseFileError& e) {
    messages.push_back(e.what());
  } catch (const RunTimeError& e) {
    messages.push_back(std::string("Run-time Error: ") + e.what());
  }
  printFileAnswer(out, err, json, run.json, run.report, messages, files);
  return messages.empty() ? 0 : kExitEnded;
}

}  // namespace tervalo
