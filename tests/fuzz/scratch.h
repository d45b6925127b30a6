#pragma once
// A fuzz target's scratch folder, made once and removed when the fuzzer
// ends; with `examples`, holding a copy of the examples and an empty "data".

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <string>

inline std::filesystem::path scratchFolder(bool examples) {
  namespace fs = std::filesystem;
  std::string folder = (fs::temp_directory_path() / "tervalo-fuzz-XXXXXX").string();
  if (!::mkdtemp(folder.data())) std::abort();
  if (examples) {
    fs::copy(TERVALO_SOURCE_DIR "/examples", fs::path(folder) / "examples", fs::copy_options::recursive);
    fs::create_directory(fs::path(folder) / "data");
  }
  static std::string made;
  made = folder;
  std::atexit([] {
    std::error_code ec;
    fs::remove_all(made, ec);
  });
  return folder;
}
