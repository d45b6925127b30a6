#include "app/history.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>

#include <nlohmann/json.hpp>

#include "app/json_text.h"
#include "app/output_file.h"
#include "text/errors.h"
#include "text/input_file.h"

namespace tervalo {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// What a name may hold: no folder separators or other characters that file
// managers and other systems refuse.
std::string nameSafe(const std::string& text) {
  std::string safe;
  for (char c : text) safe += std::string("/\\:*?\"<>|").find(c) == std::string::npos && static_cast<unsigned char>(c) >= ' ' ? c : '-';
  return safe;
}

// When a file was last written, as a name shows it: "2026-11-23 0942".
std::string stamp(const fs::path& file) {
  std::error_code ec;
  const auto written = fs::last_write_time(file, ec);
  const std::time_t t =
      ec ? std::time(nullptr)
         : std::chrono::system_clock::to_time_t(std::chrono::file_clock::to_sys(written));
  std::tm local{};
  localtime_r(&t, &local);
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d%02d", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                local.tm_hour, local.tm_min);
  return text;
}

std::string key(const fs::path& file) {
  std::error_code ec;
  return fs::weakly_canonical(fs::absolute(file), ec).string();
}

}  // namespace

History::History(std::string dataFolder) : dataFolder_(std::move(dataFolder)) {}

fs::path History::folder() const { return fs::path(dataFolder_) / "History"; }

void History::load() {
  if (loaded_) return;
  loaded_ = true;
  try {
    const Json json = parseStrictJson(readInputFile(folder() / "history.json"));
    if (json.contains("keep") && json["keep"].is_number_integer()) keep_ = std::clamp(json["keep"].get<int>(), 1, 100000);
    if (json.contains("holds") && json["holds"].is_object())
      for (const auto& [file, holds] : json["holds"].items())
        if (holds.is_string()) holds_[file] = holds.get<std::string>();
  } catch (const std::exception&) {  // none yet, or damaged: started afresh
  }
}

void History::save() {
  std::error_code ec;
  fs::create_directories(folder(), ec);
  Json holds = Json::object();
  for (const auto& [file, what] : holds_) holds[file] = what;
  writeTextFile(folder() / "history.json", {jsonText(Json{{"version", 1}, {"keep", keep_}, {"holds", holds}})});
}

int History::keep() {
  load();
  return keep_;
}

void History::setKeep(int files) {
  load();
  keep_ = std::clamp(files, 1, 100000);
  save();
  prune();
}

std::optional<fs::path> History::keepEarlier(const fs::path& file) {
  std::error_code ec;
  if (!fs::is_regular_file(file, ec)) return std::nullopt;
  load();
  fs::create_directories(folder(), ec);
  if (ec) throw RunTimeError("The earlier \"" + file.string() + "\" cannot be kept in \"" + folder().string() + "\": " + ec.message() + ".");
  const auto holds = holds_.find(key(file));
  const std::string base = nameSafe(file.stem().string() + (holds == holds_.end() || holds->second.empty() ? "" : " " + holds->second) +
                                    " " + stamp(file));
  fs::path copy = folder() / (base + file.extension().string());
  for (int n = 2; fs::exists(copy, ec); ++n) copy = folder() / (base + " (" + std::to_string(n) + ")" + file.extension().string());
  fs::copy_file(file, copy, ec);
  if (ec) throw RunTimeError("The earlier \"" + file.string() + "\" cannot be kept as \"" + copy.string() + "\": " + ec.message() + ".");
  fs::last_write_time(copy, fs::last_write_time(file, ec), ec);  // it shows when it was written, not kept
  prune();
  return copy;
}

void History::written(const fs::path& file, const std::string& holds) {
  load();
  holds_[key(file)] = holds;
  try {
    save();
  } catch (const RunTimeError&) {  // the file was written; only its copy's name will be plainer
  }
}

std::vector<fs::path> History::files() const {
  std::vector<std::pair<fs::file_time_type, fs::path>> found;
  std::error_code ec;
  for (fs::directory_iterator it(folder(), ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = it->path().filename().string();
    if (name == "history.json" || name.front() == '.' || !it->is_regular_file(ec)) continue;
    found.emplace_back(it->last_write_time(ec), it->path());
  }
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first != b.first ? a.first > b.first : a.second > b.second; });
  std::vector<fs::path> out;
  for (auto& f : found) out.push_back(std::move(f.second));
  return out;
}

void History::prune() {
  const auto kept = files();
  std::error_code ec;
  for (std::size_t i = static_cast<std::size_t>(keep_); i < kept.size(); ++i) fs::remove(kept[i], ec);
}

}  // namespace tervalo
