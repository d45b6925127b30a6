#pragma once
// What every form's test starts from: the program on a fresh data folder of
// its own, every box it shows recorded.

#include "app/program.h"
#include "support/recording_shell.h"
#include "support/temp_dir.h"

namespace tervalo::testing {

struct Bench {
  TempDir dir;
  RecordingShell shell;
  Program program{shell, dir.folder()};
};

}  // namespace tervalo::testing
