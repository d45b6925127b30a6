#include "text/input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tervalo {
namespace {

using Kind = InputFileError::Kind;

// What the file is, from its status: a refusal, or nothing when it may be read.
void check(const struct stat& st) {
  if (S_ISDIR(st.st_mode)) throw InputFileError(Kind::Folder, "is a folder, not a file");
  if (!S_ISREG(st.st_mode)) throw InputFileError(Kind::NotRegular, "is not a regular file (a pipe, a device or a socket)");
  if (static_cast<std::uintmax_t>(st.st_size) > kMaxInputFileBytes)
    throw InputFileError(Kind::TooLarge, "is larger than 64 MB (" + std::to_string(st.st_size / (1024 * 1024)) +
                                             " MB), too large to be what it claims to be");
}

[[noreturn]] void unreadable(int error) {
  throw InputFileError(Kind::Unreadable, std::string("cannot be read (") + std::strerror(error) + ")");
}

}  // namespace

void checkInputFile(const std::filesystem::path& file) {
  struct stat st {};
  if (::stat(file.c_str(), &st) != 0) unreadable(errno);
  check(st);
}

std::string readInputFile(const std::filesystem::path& file) {
  // Looked at before it is opened: a pipe is never opened, so nothing blocks.
  checkInputFile(file);
  struct stat st {};
  const int fd = ::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) unreadable(errno);
  std::string bytes;
  try {
    // The same file still, should another have taken its name meanwhile.
    if (::fstat(fd, &st) != 0) unreadable(errno);
    check(st);
    bytes.reserve(static_cast<std::size_t>(st.st_size));
    char buffer[65536];
    for (;;) {
      const ssize_t n = ::read(fd, buffer, sizeof buffer);
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) unreadable(errno);
      if (n == 0) break;
      bytes.append(buffer, static_cast<std::size_t>(n));
      if (bytes.size() > kMaxInputFileBytes) throw InputFileError(Kind::TooLarge, "is larger than 64 MB");
    }
  } catch (...) {
    ::close(fd);
    throw;
  }
  ::close(fd);
  return bytes;
}

}  // namespace tervalo
