#pragma once
// A fresh folder for one test, removed afterwards.

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace tervalo::testing {

class TempDir {
 public:
  TempDir() {
    std::random_device rd;
    path_ = std::filesystem::temp_directory_path() / ("tervalo-test-" + std::to_string(rd()) + std::to_string(rd()));
    std::filesystem::create_directories(path_);
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, std::filesystem::perm_options::add, ec);
    std::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string folder() const { return path_.string() + "/"; }

  // Writes `bytes` exactly (no line-end translation) and returns the path.
  std::filesystem::path write(const std::string& name, const std::string& bytes) const {
    const auto p = path_ / name;
    std::ofstream(p, std::ios::binary) << bytes;
    return p;
  }
  static std::string read(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

 private:
  std::filesystem::path path_;
};

}  // namespace tervalo::testing
