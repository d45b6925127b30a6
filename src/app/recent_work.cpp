#include "app/recent_work.h"

#include <algorithm>
#include <filesystem>

#include <nlohmann/json.hpp>

#include "app/json_text.h"
#include "app/output_file.h"
#include "crs/project_store.h"
#include "text/errors.h"
#include "text/input_file.h"

namespace tervalo {
RecentWork::RecentWork(std::string dataFolder, std::string listName) : folder_(std::move(dataFolder)), listName_(std::move(listName)) {}

const std::vector<std::string>& RecentWork::files() const {
  load();
  return files_;
}

void RecentWork::load() const {
  if (loaded_) return;
  loaded_ = true;
  if (folder_.empty()) return;
  // A damaged list (not JSON, nested too deep, or no regular file at all)
  // is started afresh: the program always starts.
  nlohmann::ordered_json json;
  try {
    json = parseStrictJson(readInputFile(folder_ + listName_));
  } catch (const std::runtime_error&) {
    return;
  }
  if (!json.is_array()) return;
  for (const auto& f : json)
    if (f.is_string() && files_.size() < kMost) files_.push_back(f.get<std::string>());
}

void RecentWork::add(const std::string& file) {
  // A shared project's connection is kept as named (it never holds a password: the project refuses one).
  const std::string path = sharedProject(file) ? file : std::filesystem::absolute(file).lexically_normal().string();
  load();
  if (!files_.empty() && files_.front() == path) return;  // first already: nothing to write
  files_.erase(std::remove(files_.begin(), files_.end(), path), files_.end());
  files_.insert(files_.begin(), path);
  if (files_.size() > kMost) files_.resize(kMost);
  if (folder_.empty()) return;
  try {
    writeTextFile(folder_ + listName_, {jsonText(nlohmann::ordered_json(files_))});
  } catch (const RunTimeError&) {
  }
}

}  // namespace tervalo
