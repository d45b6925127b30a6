#pragma once
// The source files and saved inputs a user worked with last, most recent
// first, kept in the data folder so that they outlive the program's run.

#include <string>
#include <vector>

namespace tervalo {

class RecentWork {
 public:
  static constexpr std::size_t kMost = 10;

  // The list kept in `dataFolder`, read when first asked for (the program
  // starts without it); none there (or no folder) is an empty list.
  explicit RecentWork(std::string dataFolder, std::string listName = "recent.json");

  const std::vector<std::string>& files() const;

  // Puts `file` first (once), keeps the ten most recent and writes the list
  // when that changed it. A list that cannot be written is kept for this
  // run only: it is no output.
  void add(const std::string& file);

 private:
  void load() const;
  std::string folder_, listName_;
  mutable bool loaded_ = false;
  mutable std::vector<std::string> files_;
};

}  // namespace tervalo
