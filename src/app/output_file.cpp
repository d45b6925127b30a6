#include "app/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>

#include "text/errors.h"

namespace fs = std::filesystem;

namespace tervalo {
namespace {

[[noreturn]] void cannotWrite(const fs::path& file, const std::string& why) {
  throw RunTimeError("Cannot write the file \"" + file.string() + "\": " + why + ".");
}

[[noreturn]] void cannotWrite(const fs::path& file, int error) { cannotWrite(file, std::strerror(error)); }

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

// Writes `bytes` to `file` (created or emptied) and makes them durable; the
// error number when anything fails, else 0.
int writeBytes(const fs::path& file, const std::string& bytes) {
  const int fd = ::open(file.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
  if (fd < 0) return errno;
  const bool written = writeAll(fd, bytes) && ::fsync(fd) == 0;
  const int writeError = written ? 0 : errno;
  if (::close(fd) != 0 && written) return errno;
  return writeError;
}

int readBytes(const fs::path& file, std::string& bytes) {
  const int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return errno;
  char buffer[65536];
  for (;;) {
    const ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      const int error = errno;
      ::close(fd);
      return error;
    }
    if (n == 0) break;
    bytes.append(buffer, static_cast<std::size_t>(n));
  }
  ::close(fd);
  return 0;
}

// Where a write to `file` really goes: symbolic links followed to the file
// they name (which need not exist yet), and what is there checked.
struct Target {
  fs::path path;
  std::optional<struct stat> existing;
};

Target resolveTarget(const fs::path& file) {
  if (file.empty()) throw RunTimeError("Bad file name: no output file is named.");
  std::error_code ec;
  fs::path path = fs::absolute(file, ec);
  if (ec) throw RunTimeError(fileSystemFault(fs::filesystem_error("", file, ec)));
  for (int hops = 0;; ++hops) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0) {
      if (errno == ENOENT) return {path, std::nullopt};
      cannotWrite(file, errno);
    }
    if (!S_ISLNK(st.st_mode)) break;
    if (hops == 40) cannotWrite(file, ELOOP);
    const fs::path link = fs::read_symlink(path, ec);
    if (ec) cannotWrite(file, ec.value());
    path = (path.parent_path() / link).lexically_normal();
  }
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) cannotWrite(file, errno);
  if (S_ISDIR(st.st_mode)) cannotWrite(file, "it is a folder, not a file");
  if (!S_ISREG(st.st_mode)) cannotWrite(file, "it is not a regular file (a pipe, a device or a socket)");
  // Read-only is the owner's word that the file stays as it is, even to root.
  if ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0 || ::access(path.c_str(), W_OK) != 0) cannotWrite(file, EACCES);
  return {path, st};
}

// One file on its way: a temporary file beside the target, put in place by
// commit(); dropped unless committed.
class PendingFile {
 public:
  explicit PendingFile(const fs::path& file) : named_(file), target_(resolveTarget(file)) {
    // A short name of its own, so a target name at the file system's limit stays legal.
    std::string temp = (target_.path.parent_path() / ".tervalo-XXXXXX").string();
    const int fd = ::mkstemp(temp.data());
    if (fd < 0) cannotWrite(named_, errno);
    // An existing file keeps its permissions; a new one gets a new file's.
    mode_t mode = 0;
    if (target_.existing) {
      mode = target_.existing->st_mode & 07777;
    } else {
      const mode_t mask = ::umask(0);
      ::umask(mask);
      mode = 0666 & ~mask;
    }
    ::fchmod(fd, mode);
    ::close(fd);
    temp_ = temp;
  }
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;
  PendingFile(PendingFile&& other) noexcept
      : named_(std::move(other.named_)), target_(std::move(other.target_)), temp_(std::move(other.temp_)) {
    other.temp_.clear();
  }
  ~PendingFile() {
    if (!temp_.empty()) ::unlink(temp_.c_str());
  }

  const fs::path& temp() const { return temp_; }
  const fs::path& named() const { return named_; }

  // Puts the complete temporary file in place; the error number when that fails.
  int commit() {
    if (target_.existing && target_.existing->st_nlink > 1) {
      // Other names share this file: it is rewritten where it is, so they all see the new text.
      std::string bytes;
      if (const int error = readBytes(temp_, bytes)) return error;
      if (const int error = writeBytes(target_.path, bytes)) return error;
    } else if (std::rename(temp_.c_str(), target_.path.c_str()) != 0) {
      return errno;
    } else {
      temp_.clear();
    }
    return 0;
  }

 private:
  fs::path named_;
  Target target_;
  fs::path temp_;
};

std::string crLfText(const std::vector<std::string>& lines) {
  std::string bytes;
  for (const auto& line : lines) {
    bytes += line;
    bytes += "\r\n";
  }
  return bytes;
}

}  // namespace

void writeFileWith(const fs::path& file, const std::function<bool(const fs::path&)>& write) {
  PendingFile pending(file);
  if (!write(pending.temp())) cannotWrite(file, EIO);
  if (const int error = pending.commit()) cannotWrite(file, error);
}

void writeTextFile(const fs::path& file, const std::vector<std::string>& lines) {
  writeTextFiles({{file, lines}});
}

void writeTextFiles(const std::vector<std::pair<fs::path, std::vector<std::string>>>& files) {
  std::vector<PendingFile> pending;
  pending.reserve(files.size());
  for (const auto& [file, lines] : files) {
    pending.emplace_back(file);
    if (const int error = writeBytes(pending.back().temp(), crLfText(lines))) cannotWrite(file, error);
  }
  for (std::size_t i = 0; i < pending.size(); ++i) {
    const int error = pending[i].commit();
    if (error == 0) continue;
    std::string text = "Cannot write the file \"" + pending[i].named().string() + "\": " + std::strerror(error) + ".";
    for (std::size_t k = 0; k < i; ++k) text += " \"" + pending[k].named().string() + "\" holds the new results.";
    for (std::size_t k = i; k < pending.size() && i > 0; ++k)
      text += " \"" + pending[k].named().string() + "\" is not replaced.";
    throw RunTimeError(text);
  }
}

}  // namespace tervalo
