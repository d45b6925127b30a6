#include "text/errors.h"

#include <unistd.h>

namespace tervalo {

std::string fileSystemFault(const std::filesystem::filesystem_error& e) {
  const std::filesystem::path& name = e.path1();
  // A relative name is taken from the working folder; when that folder has
  // been removed under the program, say so rather than "no such file".
  if (name.is_relative() || name.empty()) {
    char probe[1];
    if (::getcwd(probe, sizeof probe) == nullptr && errno == ENOENT)
      return "The working folder no longer exists, so \"" + name.string() + "\" cannot be found.";
  }
  std::string text = "Path/File access error: " + e.code().message();
  if (!name.empty()) text += " (\"" + name.string() + "\")";
  return text + ".";
}

}  // namespace tervalo
