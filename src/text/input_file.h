#pragma once
// Reading a file the user names (a coordinate file, a job, a plan, the
// program's own lists) whole, without ever opening what is not a regular
// file: a pipe or a device named by mistake would block or never end.

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace tervalo {

// No file the program reads is anywhere near this; a larger one is not
// what it claims to be.
inline constexpr std::uintmax_t kMaxInputFileBytes = 64ull * 1024 * 1024;

class InputFileError : public std::runtime_error {
 public:
  enum class Kind { Folder, NotRegular, TooLarge, Unreadable };
  InputFileError(Kind kind, const std::string& why) : std::runtime_error(why), kind_(kind) {}
  Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

// The file's bytes. InputFileError, its text a phrase to follow the file's
// name: "is a folder, not a file", "is not a regular file (a pipe, a device
// or a socket)", "is larger than 64 MB", "cannot be read (No such file or
// directory)".
std::string readInputFile(const std::filesystem::path& file);

// The same refusals without reading: what the file is, from its status.
void checkInputFile(const std::filesystem::path& file);

}  // namespace tervalo
