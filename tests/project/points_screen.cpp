// Times the Points window's model on a project, as scripts/bench-project
// runs it: the project opened and the first screen of the table read, a
// sort by number, a filter by description, a number found, a row far down.
// Not a test: figures for people, printed in milliseconds.

#include <chrono>
#include <cstdio>
#include <functional>
#include <iostream>

#include "project/frm_points.h"
#include "project/project_session.h"
#include "support/bench.h"

int main(int argc, char** argv) {
  using namespace tervalo;
  if (argc != 2) {
    std::cerr << "usage: tervalo_points_screen PROJECT.gpkg\n";
    return 2;
  }
  testing::Bench b;
  const auto ms = [](const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  };
  auto& form = b.program.form<frmPoints>("frmPoints");
  // One screen of a 1366 by 768 display: about 30 rows of 9 columns.
  const auto screen = [&form](long long first) {
    for (long long r = first; r < first + 30 && r < form.rowCount(); ++r)
      for (int c = 0; c < 9; ++c) form.cell(r, c);
  };
  const double open = ms([&] {
    b.program.project = std::make_unique<ProjectSession>(openProject(argv[1]));
    form.setOpen(true);
    screen(0);
  });
  const long long rows = form.rowCount();
  const double far = ms([&] { screen(rows / 2); });
  const double sort = ms([&] {
    form.sortBy(0, true);
    screen(0);
  });
  const double filter = ms([&] {
    form.txtDescription.text = "SHOT 7";
    form.click("btnShow");
    screen(0);
  });
  const double find = ms([&] {
    form.txtFind.text = std::to_string(100000 + rows / 3);
    form.click("btnFind");
  });
  std::printf("rows %lld\nopen and first screen %.0f ms\nscreen at the middle %.0f ms\nsort by number %.0f ms\n"
              "filter by description %.0f ms (%lld rows)\nfind a number %.0f ms\n",
              rows, open, far, sort, filter, form.rowCount(), find);
  return 0;
}
