#include "app/data_folder.h"

#include <cstdlib>
#include <filesystem>

#include "app/identity.h"
#include "text/errors.h"

namespace fs = std::filesystem;

namespace tervalo {
namespace {

std::string withSeparator(std::string folder) {
  if (folder.empty() || folder.back() != '/') folder += '/';
  return folder;
}

void makeFolder(const fs::path& folder, bool withParents) {
  std::error_code ec;
  if (fs::is_directory(folder, ec)) return;
  if (withParents)
    fs::create_directories(folder, ec);
  else
    fs::create_directory(folder, ec);
  if (ec || !fs::is_directory(folder))
    throw RunTimeError("Path not found: the data folder \"" + folder.string() + "\" cannot be made (" +
                       (ec ? ec.message() : std::string("not a folder")) + ").");
}

}  // namespace

std::string prepareDataFolder() {
  if (const char* appData = std::getenv("APPDATA"); appData && *appData) {
    const fs::path folder = fs::path(appData) / "KvAppsData";
    makeFolder(folder, false);
    return withSeparator(folder.string());
  }
  fs::path base;
  if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg) {
    base = xdg;
  } else if (const char* home = std::getenv("HOME"); home && *home) {
    base = fs::path(home) / ".local" / "share";
  } else {
    base = fs::temp_directory_path();
  }
  // The application's own data location, made as every desktop program does.
  base = base / kOrganization / kApplication;
  makeFolder(base, true);
  const fs::path folder = base / "KvAppsData";
  makeFolder(folder, false);
  return withSeparator(folder.string());
}

std::string prepareDataFolder(const std::string& folder) {
  std::error_code ec;
  const fs::path path = fs::absolute(folder, ec);
  if (ec) throw RunTimeError(fileSystemFault(fs::filesystem_error("the data folder", folder, ec)));
  makeFolder(path, false);
  return withSeparator(path.string());
}

}  // namespace tervalo
