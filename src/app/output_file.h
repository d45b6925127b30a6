#pragma once
// Output files are written whole or not at all, and never at the cost of
// what the name points at.

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tervalo {

// Writes each line followed by CR LF to a temporary file in the target's
// folder and puts it in place when complete, so a failed write leaves any
// earlier file untouched. The target is respected: a symbolic link is written
// through to the file it names; a read-only file is refused ("Permission
// denied"), as is a name that is not a regular file (a folder, a pipe, a
// device); a file with other hard links is rewritten in place so every name
// sees the new text, its old text kept aside and put back should the
// rewrite fail (a full disk), so no name is left with half a file; an
// existing file keeps its permissions. A file that cannot be written is a
// RunTimeError naming the file and the reason ("No space left on device").
// Temporary files a killed program left in the folder (".tervalo-XXXXXX")
// over a day old are removed by the first write into it.
void writeTextFile(const std::filesystem::path& file, const std::vector<std::string>& lines);

// The same for a file that a library writes by name: `write` writes the
// temporary file it is given and returns whether it wrote it completely;
// only then does it replace the target. Anything it throws, or false, leaves
// the target untouched.
void writeFileWith(const std::filesystem::path& file, const std::function<bool(const std::filesystem::path&)>& write);
// Whether the disk that holds `temp` is full: a library that failed there
// (returning false from `write` then) failed for want of space, whatever
// its own words were.
bool diskFullAt(const std::filesystem::path& temp);

// Writes `bytes` as they stand (no line-end changes), whole or not at all,
// with the same respect for the target.
void writeBytesFile(const std::filesystem::path& file, const std::string& bytes);

// Files that belong together (a report and its GEOPAK file): every one is
// written to its temporary file first, and they are put in place only when
// all are complete. Should putting one in place fail after another was, the
// RunTimeError names both and says which is new.
void writeTextFiles(const std::vector<std::pair<std::filesystem::path, std::vector<std::string>>>& files);

// Many files at once (a township's sections): add() makes each whole in its
// temporary file only; finish() then makes them all durable with one sync
// of their file system and puts them in place in the order added. One sync
// instead of one a file, each file still whole or not at all. A batch
// dropped unfinished puts nothing in place.
class WriteBatch {
 public:
  WriteBatch();
  ~WriteBatch();
  WriteBatch(const WriteBatch&) = delete;
  WriteBatch& operator=(const WriteBatch&) = delete;
  // As writeTextFiles, but put in place by finish(). RunTimeError for a file
  // that cannot be written.
  void add(const std::vector<std::pair<std::filesystem::path, std::vector<std::string>>>& files);
  // RunTimeError when the sync fails (nothing put in place) or naming each
  // file that could not be put in place, after trying every one.
  void finish();

 private:
  struct Files;
  std::unique_ptr<Files> files_;
};

// Whether two names reach one file: the same path once links and "." and
// ".." are followed, or two hard links of one existing file.
bool sameFile(const std::filesystem::path& a, const std::filesystem::path& b);

// For tests: while set, every write the writers make goes through `hook`,
// which answers as write(2) does (-1 and errno for a fault).
using WriteHook = std::function<long(int fd, const char* data, std::size_t size)>;
void setWriteHook(WriteHook hook);

}  // namespace tervalo
