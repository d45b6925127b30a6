#pragma once
// The source files and saved inputs a user worked with last, most recent
// first, kept in the data folder so that they outlive the program's run.

#include <string>
#include <vector>

namespace tervalo {

class RecentWork {
 public:
  static constexpr std::size_t kMost = 10;

  // Reads the list kept in `dataFolder`; none there (or no folder) is an empty list.
  explicit RecentWork(std::string dataFolder);

  const std::vector<std::string>& files() const { return files_; }

  // Puts `file` first (once), keeps the ten most recent and writes the list.
  // A list that cannot be written is kept for this run only: it is no output.
  void add(const std::string& file);

 private:
  std::string folder_;
  std::vector<std::string> files_;
};

}  // namespace tervalo
