#pragma once
// The per-user data folder, default place of every output file.

#include <string>

namespace tervalo {

// The data folder for this user: $APPDATA/KvAppsData/ where APPDATA is set;
// otherwise KvAppsData/ in the application's per-user data location, as the
// desktop's standard paths give it ($XDG_DATA_HOME, else ~/.local/share,
// then the organisation and application names), never the root of the file
// system. Made when missing (one level below APPDATA, which must exist).
// Returns the folder's text ending with "/"; RunTimeError when it cannot be
// made.
std::string prepareDataFolder();

// The same for a folder named on the command line (made when missing).
std::string prepareDataFolder(const std::string& folder);

}  // namespace tervalo
