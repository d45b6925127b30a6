// tervalo: the desktop program.

#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <QSocketNotifier>
#include <QTimer>
#include <csignal>
#include <unistd.h>
#include <chrono>
#include <cstdlib>
#include <iostream>

#include "app/data_folder.h"
#include "app/frm_main.h"
#include "app/identity.h"
#include "app/program.h"
#include "qt/binder.h"
#include "qt/program_icon.h"
#include "qt/qt_shell.h"
#include "qt/recovery_offer.h"
#include "qt/render.h"
#include "qt/views.h"
#include "app/version.h"
#include "text/errors.h"

namespace {

int signalPipe[2] = {-1, -1};

void signalled(int) {
  const char byte = 1;
  [[maybe_unused]] const auto written = ::write(signalPipe[1], &byte, 1);
}

// A terminate, hang-up or interrupt signal quits the program as Exit does,
// through the event loop (a signal handler may do no more than write a byte).
void quitOnSignals(QApplication& app) {
  if (::pipe(signalPipe) != 0) return;
  struct sigaction action {};
  action.sa_handler = signalled;
  sigemptyset(&action.sa_mask);
  for (int signal : {SIGTERM, SIGHUP, SIGINT}) ::sigaction(signal, &action, nullptr);
  auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, &app);
  QObject::connect(notifier, &QSocketNotifier::activated, &app, [] {
    char byte = 0;
    [[maybe_unused]] const auto read = ::read(signalPipe[0], &byte, 1);
    QApplication::quit();
  });
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setOrganizationName(tervalo::kOrganization);
  QApplication::setApplicationName(tervalo::kApplication);
  // The desktop matches the windows to the launcher and its icon by this name.
  QGuiApplication::setDesktopFileName(tervalo::kApplicationId);
  QApplication::setApplicationVersion(QString("%1.%2.%3")
                                          .arg(tervalo::kVersionMajor)
                                          .arg(tervalo::kVersionMinor)
                                          .arg(tervalo::kVersionPatch));
  QCommandLineParser options;
  options.setApplicationDescription("Tervalo coordinate geometry for highway and land surveyors.");
  options.addHelpOption();
  options.addVersionOption();
  options.addOption({"render-windows", "Render every window with example data to PNG files in <folder>.", "folder"});
  options.addOption({"startup-probe", "Print the time at which the main window is shown, then quit."});
  options.addOption({"data-dir", "Use <folder> as the data folder.", "folder"});
  options.addPositionalArgument("files", "Files to open: a traverse (.traverse.json), raw (.rw5), restoration (.restore.json) "
                                         "or plan (.plan.json) file in its window, saved inputs (.tervalo.json) in their "
                                         "calculator, a coordinate file as the source file.",
                                "[files...]");
  options.process(app);

  QApplication::setWindowIcon(tervalo::programIcon());  // every window carries it

  tervalo::QtShell shell;
  tervalo::registerViews(shell);
  shell.terminate = [](int code) { std::exit(code); };

  std::string folder;
  try {
    folder = options.isSet("data-dir") ? tervalo::prepareDataFolder(options.value("data-dir").toStdString())
                                       : tervalo::prepareDataFolder();
  } catch (const tervalo::RunTimeError& e) {
    QMessageBox::critical(nullptr, "Run-time Error", QString::fromStdString(e.what()));
    return 3;
  } catch (const std::filesystem::filesystem_error& e) {
    QMessageBox::critical(nullptr, "Run-time Error", QString::fromStdString(tervalo::fileSystemFault(e)));
    return 3;
  }
  tervalo::Program program(shell, folder);
  program.keepsHistory = true;  // every output file a run replaces is kept
  shell.setProgram(program);
  auto& mainModel = program.form<tervalo::frmMain>("frmMain");
  mainModel.setOpen(true);
  tervalo::MainWindow window(program, shell);
  shell.setMainWindow(&window, mainModel);

  if (options.isSet("render-windows"))
    return tervalo::renderWindows(program, shell, window, options.value("render-windows"));

  window.restoreLayout();
  window.show();
  if (options.isSet("startup-probe")) {
    QTimer::singleShot(0, [] {
      const auto now = std::chrono::system_clock::now().time_since_epoch();
      std::cout << std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() << std::endl;
      QApplication::quit();
    });
    return app.exec();
  }
  // However the program ends (Exit, the session closing, a terminate
  // signal), an open calculator's inputs are kept as the previous inputs.
  QObject::connect(&app, &QCoreApplication::aboutToQuit, [&shell] { shell.keepPreviousInputs(); });
  quitOnSignals(app);
  QTimer::singleShot(0, [&] {
    // Nothing may leave a Qt event: a fault here is said, and the program goes on without the kept inputs.
    try {
      tervalo::offerRecovery(program, shell, window);
    } catch (const std::exception& e) {
      QMessageBox::warning(&window, "Tervalo", QString::fromStdString(std::string("The kept entries cannot be offered: ") + e.what()));
    }
    // The last project, opened once the window shows: GDAL loads then, never before the window.
    window.binder().run([&mainModel] { mainModel.reopenLastProject(); });
    // The files the desktop hands over (a double-click in a file manager), each where it belongs.
    for (const QString& file : options.positionalArguments())
      window.binder().run([&mainModel, file] { mainModel.openFile(file.toStdString()); });
  });
  return app.exec();
}
