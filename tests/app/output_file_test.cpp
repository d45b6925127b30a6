// Output files are written whole, with CR LF, or not at all.

#include <gtest/gtest.h>
#include <algorithm>
#include <chrono>
#include <functional>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
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

TEST(OutputFile, LinesEndInCrLfAndAWriteReplacesTheFile) {
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

// A batch's files are whole in their temporary files until finish puts
// them all in place; a batch dropped unfinished, or one whose file cannot
// be written, leaves every earlier file as it was.
TEST(OutputFile, ABatchPutsItsFilesInPlaceOnlyWhenItFinishes) {
  TempDir dir;
  const auto report = dir.path() / "SecSub-14.rpt", geopak = dir.path() / "SecSub-14.inp";
  writeTextFile(report, {"earlier report"});
  {
    WriteBatch dropped;
    dropped.add({{report, {"new report"}}, {geopak, {"new geopak"}}});
    EXPECT_EQ(TempDir::read(report), "earlier report\r\n");
  }
  EXPECT_EQ(filesIn(dir.path()), 1u);  // no temporary file left behind

  WriteBatch batch;
  batch.add({{report, {"new report"}}, {geopak, {"new geopak"}}});
  EXPECT_FALSE(std::filesystem::exists(geopak));
  setWriteHook([](int, const char*, std::size_t) -> long {
    errno = ENOSPC;
    return -1;
  });
  EXPECT_THROW(batch.add({{dir.path() / "SecSub-15.rpt", {"full disk"}}}), RunTimeError);
  setWriteHook(nullptr);
  batch.finish();
  EXPECT_EQ(TempDir::read(report), "new report\r\n");
  EXPECT_EQ(TempDir::read(geopak), "new geopak\r\n");
  EXPECT_EQ(filesIn(dir.path()), 2u);
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

// What the output name points at decides how it may be written; nothing
// there is ever destroyed. Each case prepares the name, then checks after.
struct TargetCase {
  const char* fault;
  std::function<std::filesystem::path(const TempDir&)> prepare;
  const char* refusal;  // empty: written
  std::function<void(const TempDir&)> after;
};

TEST(OutputFile, TheTargetIsRespected) {
  namespace fs = std::filesystem;
  const TargetCase cases[] = {
      {"symlink_replaced_by_a_plain_file",
       [](const TempDir& d) {
         d.write("real.rpt", "earlier");
         fs::create_symlink("real.rpt", d.path() / "link.rpt");
         return d.path() / "link.rpt";
       },
       "",
       [](const TempDir& d) {
         EXPECT_TRUE(fs::is_symlink(d.path() / "link.rpt"));
         EXPECT_EQ(TempDir::read(d.path() / "real.rpt"), "new\r\n");
       }},
      {"dangling_symlink_not_followed",
       [](const TempDir& d) {
         fs::create_symlink("made.rpt", d.path() / "link.rpt");
         return d.path() / "link.rpt";
       },
       "", [](const TempDir& d) { EXPECT_EQ(TempDir::read(d.path() / "made.rpt"), "new\r\n"); }},
      {"read_only_file_replaced",
       [](const TempDir& d) {
         const auto f = d.write("kept.rpt", "earlier");
         fs::permissions(f, fs::perms::owner_read | fs::perms::group_read);
         return f;
       },
       "Permission denied", [](const TempDir& d) { EXPECT_EQ(TempDir::read(d.path() / "kept.rpt"), "earlier"); }},
      {"fifo_replaced_by_a_file",
       [](const TempDir& d) {
         ::mkfifo((d.path() / "pipe").c_str(), 0644);
         return d.path() / "pipe";
       },
       "not a regular file", [](const TempDir& d) { EXPECT_TRUE(fs::is_fifo(d.path() / "pipe")); }},
      {"device_replaced_by_a_file", [](const TempDir&) { return fs::path("/dev/null"); }, "not a regular file",
       [](const TempDir&) { EXPECT_TRUE(fs::is_character_file("/dev/null")); }},
      {"folder_as_output_name",
       [](const TempDir& d) {
         fs::create_directory(d.path() / "folder");
         return d.path() / "folder";
       },
       "is a folder", [](const TempDir& d) { EXPECT_TRUE(fs::is_directory(d.path() / "folder")); }},
      {"hard_link_split_from_its_other_name",
       [](const TempDir& d) {
         const auto f = d.write("one.rpt", "earlier");
         fs::create_hard_link(f, d.path() / "two.rpt");
         return f;
       },
       "",
       [](const TempDir& d) {
         EXPECT_EQ(TempDir::read(d.path() / "two.rpt"), "new\r\n");
         EXPECT_EQ(fs::hard_link_count(d.path() / "one.rpt"), 2u);
       }},
      {"name_at_the_length_limit_pushed_over_by_the_temporary_name",
       [](const TempDir& d) { return d.path() / (std::string(251, 'n') + ".rpt"); }, "",
       [](const TempDir& d) { EXPECT_EQ(TempDir::read(d.path() / (std::string(251, 'n') + ".rpt")), "new\r\n"); }},
      {"permissions_of_an_existing_file_lost",
       [](const TempDir& d) {
         const auto f = d.write("shared.rpt", "earlier");
         fs::permissions(f, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
         return f;
       },
       "",
       [](const TempDir& d) {
         EXPECT_EQ(fs::status(d.path() / "shared.rpt").permissions(),
                   fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
       }},
  };
  for (const TargetCase& c : cases) {
    SCOPED_TRACE(c.fault);
    TempDir dir;
    const fs::path name = c.prepare(dir);
    const std::size_t before = filesIn(dir.path());
    try {
      writeTextFile(name, {"new"});
      EXPECT_STREQ(c.refusal, "");
    } catch (const RunTimeError& e) {
      EXPECT_NE(std::string(e.what()).find(c.refusal), std::string::npos) << e.what();
      EXPECT_STRNE(c.refusal, "") << e.what();
    }
    c.after(dir);
    EXPECT_LE(filesIn(dir.path()), before + 1);  // no temporary file left behind
  }
}

// The path an open file descriptor writes to.
std::filesystem::path fdPath(int fd) {
  std::error_code ec;
  return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd), ec);
}

TEST(OutputFile, AHardLinkedFileOnAFullDiskKeepsItsOldTextUnderEveryName) {
  TempDir dir;
  const auto one = dir.write("Section14.csv", "earlier");
  std::filesystem::create_hard_link(one, dir.path() / "copy.csv");
  // The disk fills up five bytes into rewriting the shared file in place;
  // putting the old text back ("earlier") still fits where it was.
  bool rewriting = false;
  const auto shared = std::filesystem::canonical(one);
  setWriteHook([&](int fd, const char* data, std::size_t size) -> long {
    if (fdPath(fd) == shared && data[0] != 'e') {
      if (rewriting) {
        errno = ENOSPC;
        return -1;
      }
      rewriting = true;
      size = std::min<std::size_t>(size, 5);
    }
    return ::write(fd, data, size);
  });
  try {
    writeTextFile(one, std::vector<std::string>(50, "NEW CORNER LINE"));
    ADD_FAILURE() << "written";
  } catch (const RunTimeError& e) {
    EXPECT_NE(std::string(e.what()).find("No space left on device"), std::string::npos) << e.what();
  }
  setWriteHook({});
  EXPECT_EQ(TempDir::read(one), "earlier");
  EXPECT_EQ(TempDir::read(dir.path() / "copy.csv"), "earlier");
  EXPECT_EQ(filesIn(dir.path()), 2u);  // nothing aside left behind
}

TEST(OutputFile, TemporaryFilesOfAKilledRunGoAtTheNextWriteAndOthersOverADayOld) {
  namespace fs = std::filesystem;
  TempDir dir;
  const auto stale = dir.write(".tervalo-Ab12Cd", "half a file");
  fs::last_write_time(stale, fs::file_time_type::clock::now() - std::chrono::hours(25));
  const auto fresh = dir.write(".tervalo-Ef34Gh", "kept old text of a failed rewrite");
  const auto kept = dir.write(".tervalo-notes.txt", "the user's own");
  // A run killed a moment ago: its process is gone, so its files go at once.
  const pid_t killed = ::fork();
  if (killed == 0) ::_exit(0);
  ::waitpid(killed, nullptr, 0);
  const auto killedRuns = dir.write(".tervalo-" + std::to_string(killed) + "-Ij56Kl", "half a file");
  const auto living = dir.write(".tervalo-1-Mn78Op", "another program's file in progress");  // init lives
  writeTextFile(dir.path() / "out.txt", {"x"});
  EXPECT_FALSE(fs::exists(stale));
  EXPECT_FALSE(fs::exists(killedRuns));
  EXPECT_TRUE(fs::exists(fresh));
  EXPECT_TRUE(fs::exists(living));
  EXPECT_TRUE(fs::exists(kept));
}

TEST(OutputFile, FilesThatBelongTogetherSayWhichIsNewWhenTheSecondCannotBePutInPlace) {
  TempDir dir;
  const auto report = dir.write("SecSub.rpt", "earlier report");
  // A running program's file cannot be opened for writing, even by root; as a hard
  // link it is rewritten in place, so it fails only after the report is in place.
  const auto busy = dir.path() / "busy";
  std::filesystem::copy_file("/bin/sleep", busy);
  std::filesystem::create_hard_link(busy, dir.path() / "busy-too");
  const pid_t child = ::fork();
  if (child == 0) {
    ::execl(busy.c_str(), "busy", "30", static_cast<char*>(nullptr));
    ::_exit(127);
  }
  ::usleep(200000);
  try {
    writeTextFiles({{report, {"new report"}}, {busy, {"new points"}}});
    ADD_FAILURE() << "written";
  } catch (const RunTimeError& e) {
    EXPECT_EQ(std::string(e.what()), "Cannot write the file \"" + busy.string() + "\": Text file busy. \"" + report.string() +
                                         "\" holds the new results. \"" + busy.string() + "\" is not replaced.");
  }
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(TempDir::read(report), "new report\r\n");
  EXPECT_EQ(TempDir::read(busy), TempDir::read("/bin/sleep"));
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

TEST_F(DataFolder, IsMadeOneLevelUnderAppData) {
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
