// Any bytes as a coordinate file: recognised and read, or refused with the
// program's own fault, never a crash. Every field read is valid UTF-8.

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "points/readers.h"
#include "text/encoding.h"
#include "text/errors.h"

namespace {

const std::filesystem::path& scratchFile() {
  static const std::filesystem::path file = [] {
    std::string folder = (std::filesystem::temp_directory_path() / "tervalo-fuzz-XXXXXX").string();
    if (!::mkdtemp(folder.data())) std::abort();
    static std::string made;
    made = folder;
    std::atexit([] {
      std::error_code ec;
      std::filesystem::remove_all(made, ec);
    });
    return std::filesystem::path(folder) / "points.txt";
  }();
  return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  {
    std::ofstream out(scratchFile(), std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  tervalo::FormatFlags flags;
  tervalo::PointList points;
  try {
    tervalo::getFileFormat(scratchFile(), flags);
    tervalo::readFile(scratchFile(), flags, points);
  } catch (const tervalo::ProgramFault&) {
    return 0;  // the program's own box
  }
  for (const auto& p : points.records)
    for (const std::string* text : {&p.name, &p.feature, &p.description, p.evidence ? &*p.evidence : &p.name})
      if (!tervalo::isValidUtf8(*text)) std::abort();
  return 0;
}
