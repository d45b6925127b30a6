#include "app/module.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

namespace tervalo {

void* moduleEntry(const std::string& file, const char* chosen, const char* symbol, std::string& tried) {
  std::vector<std::filesystem::path> candidates;
  if (const char* path = chosen ? std::getenv(chosen) : nullptr) candidates.emplace_back(path);
  std::error_code ec;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (!ec) {
    candidates.push_back(self.parent_path() / file);
    candidates.push_back(self.parent_path().parent_path() / TERVALO_MODULE_DIR / file);
  }
  for (const auto& candidate : candidates) {
    if (!std::filesystem::exists(candidate, ec)) {
      tried += "\n  " + candidate.string() + " (not there)";
      continue;
    }
    void* handle = ::dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
      tried += "\n  " + candidate.string() + " (" + ::dlerror() + ")";
      continue;
    }
    if (void* entry = ::dlsym(handle, symbol)) return entry;
    tried += "\n  " + candidate.string() + " (not the module Tervalo looks for)";
  }
  return nullptr;
}

}  // namespace tervalo
