// Window tests: offscreen, with a watchdog so that nothing can hang the run.

#include <QApplication>
#include <QStandardPaths>
#include <QTest>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

int runShellWindowTests(int argc, char** argv);
int runSecSubWindowTests(int argc, char** argv);
int runCurveWindowTests(int argc, char** argv);
int runKeyboardTests(int argc, char** argv);

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  // Settings of the tests' own, never the user's.
  QStandardPaths::setTestModeEnabled(true);
  QApplication::setOrganizationName("TervaloTests");
  QApplication::setApplicationName("Tervalo");
  std::thread([] {
    std::this_thread::sleep_for(std::chrono::seconds(120));
    std::fputs("watchdog: a window test hung\n", stderr);
    std::_Exit(1);
  }).detach();
  return runShellWindowTests(argc, argv) | runSecSubWindowTests(argc, argv) | runCurveWindowTests(argc, argv) | runKeyboardTests(argc, argv);
}
