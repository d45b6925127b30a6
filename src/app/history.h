#pragma once
// Earlier output files, kept when a run replaces them: the section run's
// SecSub.inp and SecSub.rpt, the curve and grading files, each calculator's
// output. They go into the data folder's History folder, named by what
// they held and when they were written ("SecSub 14-115-22W 2026-11-23
// 0942.rpt"), the newest `keep` of them kept.

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tervalo {

class History {
 public:
  static constexpr int kDefaultKeep = 200;

  // The History folder lies in `dataFolder` (ending with "/"). Nothing is
  // read before it is needed.
  explicit History(std::string dataFolder);

  std::filesystem::path folder() const;

  // How many kept files stay (1 to 100000); changed by the user, kept in
  // the folder's history.json.
  int keep();
  void setKeep(int files);

  // Before `file` is replaced: a copy of it kept in the folder, when it is
  // a regular file; the copy's name, or nothing. A copy that cannot be
  // made is a RunTimeError, so that nothing is replaced unkept.
  std::optional<std::filesystem::path> keepEarlier(const std::filesystem::path& file);
  // After `file` was written holding `holds` (the section, a station, ...):
  // the name its copy will take should it be replaced.
  void written(const std::filesystem::path& file, const std::string& holds);

  // The kept files, newest first.
  std::vector<std::filesystem::path> files() const;

 private:
  void load();
  void save();
  void prune();

  std::string dataFolder_;
  bool loaded_ = false;
  int keep_ = kDefaultKeep;
  std::map<std::string, std::string> holds_;  // output file -> what it held when last written
};

}  // namespace tervalo
