#include "app/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "text/errors.h"

namespace tervalo {
namespace {

[[noreturn]] void cannotWrite(const std::filesystem::path& file, int error) {
  throw RunTimeError("Cannot write the file \"" + file.string() + "\": " + std::strerror(error) + ".");
}

bool writeAll(int fd, const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    done += static_cast<std::size_t>(n);
  }
  return true;
}

std::filesystem::path writableTarget(const std::filesystem::path& file) {
  if (file.empty()) throw RunTimeError("Bad file name: no output file is named.");
  const std::filesystem::path target = std::filesystem::absolute(file);
  std::error_code ec;
  if (std::filesystem::is_directory(target, ec)) cannotWrite(target, EISDIR);
  return target;
}

}  // namespace

void writeFileWith(const std::filesystem::path& file, const std::function<bool(const std::filesystem::path&)>& write) {
  const std::filesystem::path target = writableTarget(file);
  std::string temp = (target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string();
  const int fd = ::mkstemp(temp.data());
  if (fd < 0) cannotWrite(target, errno);
  ::close(fd);
  bool written = false;
  try {
    written = write(temp);
  } catch (...) {
    ::unlink(temp.c_str());
    throw;
  }
  if (!written) {
    ::unlink(temp.c_str());
    cannotWrite(target, EIO);
  }
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::chmod(temp.c_str(), static_cast<mode_t>(0666 & ~mask));
  if (std::rename(temp.c_str(), target.c_str()) != 0) {
    const int renameError = errno;
    ::unlink(temp.c_str());
    cannotWrite(target, renameError);
  }
}

void writeTextFile(const std::filesystem::path& file, const std::vector<std::string>& lines) {
  const std::filesystem::path target = writableTarget(file);

  std::string bytes;
  for (const auto& line : lines) {
    bytes += line;
    bytes += "\r\n";
  }

  std::string temp = (target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string();
  const int fd = ::mkstemp(temp.data());
  if (fd < 0) cannotWrite(target, errno);
  // mkstemp makes the file private; give it the mode a new file would get.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(fd, static_cast<mode_t>(0666 & ~mask));

  const bool written = writeAll(fd, bytes) && ::fsync(fd) == 0;
  const int writeError = errno;
  if (::close(fd) != 0 || !written) {
    ::unlink(temp.c_str());
    cannotWrite(target, written ? errno : writeError);
  }
  if (std::rename(temp.c_str(), target.c_str()) != 0) {
    const int renameError = errno;
    ::unlink(temp.c_str());
    cannotWrite(target, renameError);
  }
}

}  // namespace tervalo
