#pragma once
// Tervalo's own modules: libraries that only some work needs (PROJ and GDAL,
// printing and SVG drawings), loaded the first time that work is asked for,
// so that none of them costs anything at start.

#include <string>

namespace tervalo {

// The entry `symbol` of the module `file` (libtervalo_*.so): beside the program
// (the build folder) or in the package's module folder, or where the
// environment variable `chosen` says. nullptr when none loads, with `tried`
// listing each place and why it failed.
void* moduleEntry(const std::string& file, const char* chosen, const char* symbol, std::string& tried);

}  // namespace tervalo
