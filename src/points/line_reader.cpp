#include "points/line_reader.h"


#include "text/encoding.h"
#include "text/errors.h"
#include "text/input_file.h"

namespace tervalo {

LineReader::LineReader(const std::filesystem::path& path) : path_(path) {
  std::string raw;
  try {
    raw = readInputFile(path);
  } catch (const InputFileError& e) {
    const std::string why = "\"" + path.string() + "\" " + e.what() + ".";
    throw RunTimeError(e.kind() == InputFileError::Kind::Unreadable ? "File not found or not readable: " + why
                                                                     : "Bad file name: " + why);
  }
  // Other programs write their reports in the Windows code page as often as in UTF-8.
  const std::string bytes = decodeText(raw);

  std::size_t i = bytes.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0;
  std::string line;
  bool open = false;  // a line has begun and not yet ended
  for (; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (c == '\r' || c == '\n') {
      lines_.push_back(std::move(line));
      line.clear();
      open = false;
      if (c == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') ++i;
    } else {
      line.push_back(c);
      open = true;
    }
  }
  if (open) lines_.push_back(std::move(line));
}

const std::string& LineReader::next() {
  if (atEnd()) {
    ++next_;
    fail("Input past end of file");
  }
  return lines_[next_++];
}

void LineReader::fail(const std::string& what) const {
  throw RunTimeError(what + "\nFile: " + path_.string() + "\nLine: " + std::to_string(next_));
}

}  // namespace tervalo
