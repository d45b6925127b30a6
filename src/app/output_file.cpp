#include "app/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <optional>
#include <set>
#include <csignal>
#include <charconv>

#include "text/errors.h"

namespace fs = std::filesystem;

namespace tervalo {
namespace {

[[noreturn]] void cannotWrite(const fs::path& file, const std::string& why) {
  throw RunTimeError("Cannot write the file \"" + file.string() + "\": " + why + ".");
}

[[noreturn]] void cannotWrite(const fs::path& file, int error) { cannotWrite(file, std::strerror(error)); }

WriteHook& writeHook() {
  static WriteHook hook;
  return hook;
}

// Every write of the writers, so that a test can make one fail.
ssize_t writeSome(int fd, const char* data, std::size_t size) {
  return writeHook() ? writeHook()(fd, data, size) : ::write(fd, data, size);
}

// Writes all of `bytes` at the file's current offset; the error number, or 0.
int writeAll(int fd, const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = writeSome(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    if (n == 0) return EIO;
    done += static_cast<std::size_t>(n);
  }
  return 0;
}

// Writes `bytes` to `file` (created or emptied) and, with `durable`, makes
// them so; the error number when anything fails, else 0.
int writeBytes(const fs::path& file, const std::string& bytes, bool durable = true) {
  const int fd = ::open(file.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
  if (fd < 0) return errno;
  int error = writeAll(fd, bytes);
  if (error == 0 && durable && ::fsync(fd) != 0) error = errno;
  if (::close(fd) != 0 && error == 0) error = errno;
  return error;
}

// Rewrites the file open as `fd` in place to hold `bytes`: every name of
// it sees the new text. Room is reserved first, so that a full disk stops
// the rewrite before the old text is touched where the file system can
// say so; the error number, or 0.
int rewriteInPlace(int fd, const std::string& bytes) {
  const auto size = static_cast<off_t>(bytes.size());
  if (size > 0 && ::fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, size) != 0 && errno != EOPNOTSUPP && errno != ENOSYS)
    return errno;
  if (::lseek(fd, 0, SEEK_SET) < 0) return errno;
  if (const int error = writeAll(fd, bytes)) return error;
  if (::ftruncate(fd, size) != 0 || ::fsync(fd) != 0) return errno;
  return 0;
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

// A program killed while writing leaves its hidden temporary files behind.
// Each is named after the process writing it (".tervalo-PID-XXXXXX"), so
// the first write into a folder removes at once those whose process is
// gone, and any other over a day old (the kept old text of a failed
// rewrite, ".tervalo-XXXXXX"; a name of a process that lives again).
// Once per folder a run.
std::optional<pid_t> writerOf(const std::string& name) {
  const std::size_t dash = name.find('-', 9);
  if (dash == std::string::npos || dash == 9 || name.size() != dash + 7) return std::nullopt;
  pid_t pid = 0;
  const auto [end, fault] = std::from_chars(name.data() + 9, name.data() + dash, pid);
  if (fault != std::errc() || end != name.data() + dash || pid <= 0) return std::nullopt;
  return pid;
}

void sweepLeftovers(const fs::path& folder) {
  static std::set<std::string> swept;
  if (!swept.insert(folder.string()).second) return;
  std::error_code ec;
  const auto dayAgo = fs::file_time_type::clock::now() - std::chrono::hours(24);
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = it->path().filename().string();
    if (name.rfind(".tervalo-", 0) != 0) continue;
    const auto writer = writerOf(name);
    if (!writer && name.size() != 15) continue;
    std::error_code statError;
    if (!it->is_regular_file(statError) || statError) continue;
    const bool writerGone = writer && *writer != ::getpid() && ::kill(*writer, 0) != 0 && errno == ESRCH;
    if (!writerGone && (it->last_write_time(statError) >= dayAgo || statError)) continue;
    fs::remove(it->path(), statError);
  }
}

// One file on its way: a temporary file beside the target, put in place by
// commit(); dropped unless committed.
class PendingFile {
 public:
  explicit PendingFile(const fs::path& file) : named_(file), target_(resolveTarget(file)) {
    sweepLeftovers(target_.path.parent_path());
    // A short name of its own, so a target name at the file system's limit stays legal.
    std::string temp = (target_.path.parent_path() / (".tervalo-" + std::to_string(::getpid()) + "-XXXXXX")).string();
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
    if (target_.existing && target_.existing->st_nlink > 1) return commitInPlace();
    if (std::rename(temp_.c_str(), target_.path.c_str()) != 0) return errno;
    temp_.clear();
    return 0;
  }

  // Set when an in-place rewrite failed and its old text could not be put
  // back: where that text is kept.
  fs::path keptOld;

 private:
  // Other names share this file: it is rewritten where it is, so they all
  // see the new text. The new text is whole in the temporary file already;
  // the old one is copied aside first and put back should the rewrite fail,
  // so no name is ever left with half a file.
  int commitInPlace() {
    std::string fresh, old;
    if (const int error = readBytes(temp_, fresh)) return error;
    if (const int error = readBytes(target_.path, old)) return error;
    std::string aside = (target_.path.parent_path() / ".tervalo-XXXXXX").string();
    const int asideFd = ::mkstemp(aside.data());
    if (asideFd < 0) return errno;
    int error = writeAll(asideFd, old);
    if (error == 0 && ::fsync(asideFd) != 0) error = errno;
    ::close(asideFd);
    if (error != 0) {
      ::unlink(aside.c_str());
      return error;
    }
    const int fd = ::open(target_.path.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd < 0) {
      error = errno;
      ::unlink(aside.c_str());
      return error;
    }
    error = rewriteInPlace(fd, fresh);
    if (error != 0 && rewriteInPlace(fd, old) != 0) keptOld = aside;  // the old text stays aside, named in the message
    ::close(fd);
    if (keptOld.empty()) ::unlink(aside.c_str());
    return error;
  }

 public:

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

// Puts one pending file in place, or says why not.
void commitOrSay(PendingFile& pending) {
  if (const int error = pending.commit()) {
    std::string why = std::strerror(error);
    if (!pending.keptOld.empty()) why += "; its earlier text could not be put back and is kept in \"" + pending.keptOld.string() + "\"";
    cannotWrite(pending.named(), why);
  }
}

// Why a library's writer failed on `temp`: a full disk is said as one (the
// libraries' streams keep no error number of their own), anything else as
// an input/output error.
int libraryWriteError(const fs::path& temp, int errorAfter) {
  if (errorAfter == ENOSPC || errorAfter == EDQUOT || errorAfter == EFBIG) return errorAfter;
  return diskFullAt(temp) ? ENOSPC : EIO;
}

// Each file written whole to its temporary file, durable when asked; none
// in place yet.
std::vector<PendingFile> writtenAside(const std::vector<std::pair<fs::path, std::vector<std::string>>>& files, bool durable) {
  std::vector<PendingFile> pending;
  pending.reserve(files.size());
  for (const auto& [file, lines] : files) {
    pending.emplace_back(file);
    if (const int error = writeBytes(pending.back().temp(), crLfText(lines), durable)) cannotWrite(file, error);
  }
  return pending;
}

}  // namespace

// The batch's files, written and waiting to be put in place; an unfinished
// batch's temporary files go with it.
struct WriteBatch::Files {
  std::vector<PendingFile> pending;
};

WriteBatch::WriteBatch() : files_(std::make_unique<Files>()) {}

WriteBatch::~WriteBatch() = default;

void WriteBatch::add(const std::vector<std::pair<fs::path, std::vector<std::string>>>& files) {
  for (PendingFile& p : writtenAside(files, false)) files_->pending.push_back(std::move(p));
}

void WriteBatch::finish() {
  std::vector<PendingFile> pending = std::move(files_->pending);
  files_->pending.clear();
  // One sync of each file system the files lie on, before any is put in place.
  std::set<dev_t> synced;
  for (const PendingFile& p : pending) {
    struct stat st {};
    if (::stat(p.temp().c_str(), &st) != 0) cannotWrite(p.named(), errno);
    if (!synced.insert(st.st_dev).second) continue;
    const int folder = ::open(p.temp().parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const int error = folder < 0 ? errno : (::syncfs(folder) == 0 ? 0 : errno);
    if (folder >= 0) ::close(folder);
    if (error != 0) cannotWrite(p.named(), error);
  }
  std::string faults;
  for (PendingFile& p : pending)
    if (const int error = p.commit()) faults += " \"" + p.named().string() + "\": " + std::strerror(error) + ".";
  if (!faults.empty()) throw RunTimeError("These files could not be put in place, their earlier text stands:" + faults);
}

void setWriteHook(WriteHook hook) { writeHook() = std::move(hook); }

bool sameFile(const fs::path& a, const fs::path& b) {
  std::error_code ea, eb;
  const fs::path ca = fs::weakly_canonical(fs::absolute(a, ea), ea), cb = fs::weakly_canonical(fs::absolute(b, eb), eb);
  if (!ea && !eb && ca == cb) return true;
  std::error_code ec;
  return fs::equivalent(a, b, ec) && !ec;
}

bool diskFullAt(const fs::path& temp) {
  struct statvfs fsInfo {};
  return ::statvfs(temp.parent_path().c_str(), &fsInfo) == 0 &&
         static_cast<unsigned long long>(fsInfo.f_bavail) * fsInfo.f_frsize < 64 * 1024;
}

void writeFileWith(const fs::path& file, const std::function<bool(const fs::path&)>& write) {
  PendingFile pending(file);
  errno = 0;
  if (!write(pending.temp())) cannotWrite(file, libraryWriteError(pending.temp(), errno));
  commitOrSay(pending);
}

void writeBytesFile(const fs::path& file, const std::string& bytes) {
  PendingFile pending(file);
  if (const int error = writeBytes(pending.temp(), bytes)) cannotWrite(file, error);
  commitOrSay(pending);
}

void writeTextFile(const fs::path& file, const std::vector<std::string>& lines) {
  writeTextFiles({{file, lines}});
}

void writeTextFiles(const std::vector<std::pair<fs::path, std::vector<std::string>>>& files) {
  std::vector<PendingFile> pending = writtenAside(files, true);
  for (std::size_t i = 0; i < pending.size(); ++i) {
    if (i == 0) {
      commitOrSay(pending[0]);  // nothing is in place yet
      continue;
    }
    const int error = pending[i].commit();
    if (error == 0) continue;
    std::string text = "Cannot write the file \"" + pending[i].named().string() + "\": " + std::strerror(error) + ".";
    if (!pending[i].keptOld.empty()) text += " Its earlier text is kept in \"" + pending[i].keptOld.string() + "\".";
    for (std::size_t k = 0; k < i; ++k) text += " \"" + pending[k].named().string() + "\" holds the new results.";
    for (std::size_t k = i; k < pending.size() && i > 0; ++k)
      text += " \"" + pending[k].named().string() + "\" is not replaced.";
    throw RunTimeError(text);
  }
}

}  // namespace tervalo
