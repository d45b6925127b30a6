#pragma once
// A text file read line by line, as the coordinate readers see it: CR LF,
// LF or CR end a line, a UTF-8 byte-order mark is dropped, a last line
// without its end still counts. A file that is not UTF-8 is read as
// Windows-1252, so every line is valid UTF-8.

#include <filesystem>
#include <string>
#include <vector>

namespace tervalo {

class LineReader {
 public:
  // Reads the whole file; a file that cannot be opened is a RunTimeError.
  explicit LineReader(const std::filesystem::path& path);

  bool atEnd() const { return next_ >= lines_.size(); }
  // The next line; reading past the end is a RunTimeError.
  const std::string& next();
  // 1-based number of the line last returned by next().
  std::size_t lineNumber() const { return next_; }

  // A RunTimeError whose text names the fault, the file and the line.
  [[noreturn]] void fail(const std::string& what) const;

 private:
  std::filesystem::path path_;
  std::vector<std::string> lines_;
  std::size_t next_ = 0;
};

}  // namespace tervalo
