// The whole-file writer under injected faults: the bytes choose the target
// (new, existing, or with a second hard link), the new text, which write
// fails and how (a full disk, an I/O fault, a short write). Whatever fails,
// every name of the target holds either its old text or the new text whole,
// and nothing temporary is left in the folder.

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "app/output_file.h"
#include "text/errors.h"
#include "scratch.h"

namespace {

namespace fs = std::filesystem;

std::string prepareScratch() { return scratchFolder(false).string(); }

std::string read(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fs::path folder = prepareScratch();
  if (size < 4) return -1;
  std::error_code ec;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) fs::remove_all(it->path(), ec);
  const int shape = data[0] % 3;            // 0 new, 1 existing, 2 existing with a second hard link
  const unsigned failAt = data[1] % 8;      // which write call fails (7: none)
  const int fault = data[2] % 3;            // ENOSPC, EIO, or a short write followed by ENOSPC
  const std::string text(reinterpret_cast<const char*>(data + 3), size - 3);
  const fs::path target = folder / "out.txt", other = folder / "link.txt";
  const std::string old = "the earlier text\r\n";
  if (shape >= 1) std::ofstream(target, std::ios::binary) << old;
  if (shape == 2) fs::create_hard_link(target, other);

  unsigned calls = 0;
  tervalo::setWriteHook([&](int fd, const char* bytes, std::size_t n) -> long {
    if (calls++ == failAt) {
      if (fault == 2 && n > 1) return ::write(fd, bytes, n / 2);
      errno = fault == 1 ? EIO : ENOSPC;
      return -1;
    }
    return ::write(fd, bytes, n);
  });
  bool written = true;
  try {
    tervalo::writeTextFile(target, {text});
  } catch (const tervalo::RunTimeError&) {
    written = false;
  }
  tervalo::setWriteHook({});

  const std::string fresh = text + "\r\n";
  for (const fs::path& name : shape == 2 ? std::vector<fs::path>{target, other} : std::vector<fs::path>{target}) {
    if (!fs::exists(name)) {
      if (written || shape != 0) std::abort();
      continue;
    }
    const std::string now = read(name);
    if (written ? now != fresh : (shape != 0 && now != old)) std::abort();
  }
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec))
    if (it->path().filename().string().rfind(".tervalo-", 0) == 0) std::abort();
  return 0;
}
