#include "cli/cogo_command.h"

#include <sstream>

#include "app/json_text.h"
#include "app/runner.h"
#include "cogo/cogo.h"
#include "crs/project_store.h"
#include "text/input_file.h"

namespace tervalo {

int cogoCommand(const std::string& project, const std::string& file, bool json, int secondsPlaces, std::ostream& out, std::ostream& err) {
  using Json = nlohmann::ordered_json;
  std::string text;
  try {
    text = readInputFile(file);
  } catch (const InputFileError& e) {
    err << "tervalo-cli: \"" << file << "\" " << e.what() << "\n";
    return kExitUsage;
  }
  std::unique_ptr<ProjectFile> p;
  CogoOptions options;
  try {
    p = openProject(project);
    options = cogoOptionsOf(p->settings());
    options.secondsPlaces = secondsPlaces;
  } catch (const ProjectError& e) {
    err << "tervalo-cli: " << e.what() << "\n";
    return kExitUsage;
  } catch (const CrsError& e) {
    err << "tervalo-cli: " << project << ": " << e.what() << "\n";
    return kExitUsage;
  }
  CogoEngine engine([&p](const std::string& number) { return p->find(number); }, options);
  Json results = Json::array();
  std::string answers;
  std::istringstream lines(text);
  int number = 0;
  try {
    for (std::string line; std::getline(lines, line);) {
      ++number;
      const auto result = engine.run(line, number);
      // Each command as written, its answer under it (a MAPCHECK's under its END).
      std::string written = line.substr(0, line.find('#'));
      written.erase(written.find_last_not_of(" \t\r") + 1);
      if (written.find_first_not_of(" \t") != std::string::npos) answers += written + "\n";
      if (result) {
        results.push_back(*result);
        for (const std::string& a : engine.answer()) answers += a + "\n";
      }
    }
    engine.finish();
  } catch (const CogoError& e) {
    err << "tervalo-cli: " << file << " line " << number << ": " << e.what() << "; nothing is stored\n";
    return kExitUsage;
  } catch (const ProjectError& e) {
    err << "tervalo-cli: " << e.what() << "\n";
    return kExitUsage;
  }
  Json stored = Json::array();
  try {
    if (!engine.made().empty()) {
      const StoreCounts c = p->store(engine.made(), OnDuplicate::Skip, "COGO " + std::filesystem::path(file).filename().string());
      if (c.skipped > 0) {
        err << "tervalo-cli: another program stored " << c.skipped << " of the new numbers meanwhile; those points are not stored\n";
      }
      for (const std::string& n : c.added) stored.push_back(n);
    }
  } catch (const ProjectError& e) {
    err << "tervalo-cli: " << e.what() << "; nothing is stored\n";
    return kExitUsage;
  }
  if (json) {
    out << jsonText(Json{{"results", std::move(results)}, {"stored", std::move(stored)}}) << "\n";
  } else {
    out << answers;
    out << "Stored " << stored.size() << (stored.size() == 1 ? " point" : " points") << " in " << project << "\n";
  }
  return 0;
}

}  // namespace tervalo
