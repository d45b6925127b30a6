// Window tests: offscreen, with a watchdog so that nothing can hang the run.

#include <QApplication>
#include <QTest>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

int runShellWindowTests(int argc, char** argv);
int runSecSubWindowTests(int argc, char** argv);
int runCurveWindowTests(int argc, char** argv);

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  std::thread([] {
    std::this_thread::sleep_for(std::chrono::seconds(120));
    std::fputs("watchdog: a window test hung\n", stderr);
    std::_Exit(1);
  }).detach();
  return runShellWindowTests(argc, argv) | runSecSubWindowTests(argc, argv) | runCurveWindowTests(argc, argv);
}
