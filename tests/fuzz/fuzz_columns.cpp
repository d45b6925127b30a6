// Any text as a delimited points file, in every column order the command
// takes and by its own header: points, or the program's own refusal naming
// the line, never a crash; every text it keeps is valid UTF-8.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "project/point_import.h"
#include "text/encoding.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  // The first byte picks the column order; the rest is the file.
  const char* orders[] = {"", "PNEZD", "PENZD", "PNE", "NEZDP", "DPEN", "PNNE", "X"};
  const std::string order = orders[data[0] % 8];
  const std::string text = tervalo::decodeText(std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
  try {
    for (const tervalo::ProjectPoint& p : tervalo::columnsFile("fuzz.csv", text, order))
      if (!tervalo::isValidUtf8(p.number) || !tervalo::isValidUtf8(p.description) || p.number.empty()) std::abort();
  } catch (const tervalo::ProjectError&) {
  }
  return 0;
}
