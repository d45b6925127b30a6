// Any bytes as the recent list and as the recovery job a data folder holds
// at start-up: the program starts, the recent list is read or started
// afresh, and the recovery job is taken or set aside, never a crash.

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/program.h"
#include "app/recovery.h"
#include "app/shell.h"
#include "scratch.h"

namespace {

namespace fs = std::filesystem;

struct QuietShell : tervalo::Shell {
  tervalo::Answer msgBox(const std::string&, const std::string&, tervalo::Icon, tervalo::Buttons) override {
    return tervalo::Answer::Ok;
  }
  void showModal(tervalo::FormModel&) override {}
  std::optional<std::string> chooseFile(tervalo::FileDialog, const std::string&, const std::string&,
                                        const std::vector<std::string>&) override {
    return std::nullopt;
  }
  void openInEditor(const fs::path&) override {}
  tervalo::Date today() override { return {2026, 11, 21}; }
};

std::string prepareScratch() { return scratchFolder(false).string() + "/"; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string folder = prepareScratch();
  std::error_code ec;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) fs::remove_all(it->path(), ec);
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  std::ofstream(folder + "recent.json", std::ios::binary) << bytes;
  std::ofstream(tervalo::recoveryFile(folder), std::ios::binary) << bytes;
  QuietShell shell;
  tervalo::Program program(shell, folder);  // reads the recent list
  const auto found = tervalo::takeRecoveryJob(folder, tervalo::allForms());
  // Taken or set aside: never left to be met again at the next start.
  if (fs::exists(tervalo::recoveryFile(folder)) && found.setAside.find("They stay in") == std::string::npos) std::abort();
  if (found.job.has_value() == !found.setAside.empty()) std::abort();
  return 0;
}
