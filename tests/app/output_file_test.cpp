// Output files are written whole, with CR LF, or not at all.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include "app/data_folder.h"
#include "app/output_file.h"
#include "support/temp_dir.h"
#include "text/errors.h"

namespace tervalo {
namespace {

using testing::TempDir;

std::size_t filesIn(const std::filesystem::path& folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

TEST(OutputFile, CrLfLinesAndOverwrite) {
  TempDir dir;
  const auto file = dir.path() / "out.txt";
  writeTextFile(file, {"  first ", "", "last"});
  EXPECT_EQ(TempDir::read(file), "  first \r\n\r\nlast\r\n");
  writeTextFile(file, {"again"});
  EXPECT_EQ(TempDir::read(file), "again\r\n");
  writeTextFile(file, {});
  EXPECT_EQ(TempDir::read(file), "");
  EXPECT_EQ(filesIn(dir.path()), 1u);  // no temporary file left behind
}

TEST(OutputFile, AFailedWriteLeavesTheEarlierFileIntact) {
  TempDir dir;
  const auto file = dir.path() / "SecSub.rpt";
  writeTextFile(file, {"earlier report"});

  // A file-size limit makes the write fail part way, even for root.
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  const auto oldHandler = signal(SIGXFSZ, SIG_IGN);
  rlimit small = old;
  small.rlim_cur = 64;
  setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_THROW(writeTextFile(file, std::vector<std::string>(100, "a line longer than the limit allows")), RunTimeError);
  setrlimit(RLIMIT_FSIZE, &old);
  signal(SIGXFSZ, oldHandler);

  EXPECT_EQ(TempDir::read(file), "earlier report\r\n");
  EXPECT_EQ(filesIn(dir.path()), 1u);
}

TEST(OutputFile, ReadOnlyFolderAndMissingFolderAreRunTimeErrors) {
  TempDir dir;
  try {
    writeTextFile(dir.path() / "no" / "such" / "folder.txt", {"x"});
    FAIL();
  } catch (const RunTimeError& e) {
    EXPECT_NE(std::string(e.what()).find("folder.txt"), std::string::npos);
  }
  if (geteuid() == 0) GTEST_SKIP() << "root writes into read-only folders";
  const auto file = dir.path() / "out.txt";
  writeTextFile(file, {"earlier"});
  std::filesystem::permissions(dir.path(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  EXPECT_THROW(writeTextFile(file, {"later"}), RunTimeError);
  std::filesystem::permissions(dir.path(), std::filesystem::perms::owner_all);
  EXPECT_EQ(TempDir::read(file), "earlier\r\n");
}

class DataFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"APPDATA", "XDG_DATA_HOME", "HOME"}) {
      const char* v = std::getenv(name);
      saved_.emplace_back(name, v ? std::optional<std::string>(v) : std::nullopt);
    }
  }
  void TearDown() override {
    for (const auto& [name, value] : saved_) {
      if (value)
        setenv(name.c_str(), value->c_str(), 1);
      else
        unsetenv(name.c_str());
    }
  }
  TempDir dir;

 private:
  std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

TEST_F(DataFolder, UnderAppDataOneLevel) {
  setenv("APPDATA", dir.path().c_str(), 1);
  EXPECT_EQ(prepareDataFolder(), dir.folder() + "KvAppsData/");
  EXPECT_TRUE(std::filesystem::is_directory(dir.path() / "KvAppsData"));
  EXPECT_EQ(prepareDataFolder(), dir.folder() + "KvAppsData/");  // already there

  setenv("APPDATA", (dir.path() / "missing").c_str(), 1);
  EXPECT_THROW(prepareDataFolder(), RunTimeError);
}

TEST_F(DataFolder, PerUserDataLocationWithoutAppData) {
  unsetenv("APPDATA");
  setenv("XDG_DATA_HOME", (dir.path() / "xdg").c_str(), 1);
  EXPECT_EQ(prepareDataFolder(), dir.folder() + "xdg/TervaloProject/Tervalo/KvAppsData/");
  unsetenv("XDG_DATA_HOME");
  setenv("HOME", dir.path().c_str(), 1);
  EXPECT_EQ(prepareDataFolder(), dir.folder() + ".local/share/TervaloProject/Tervalo/KvAppsData/");
}

}  // namespace
}  // namespace tervalo
