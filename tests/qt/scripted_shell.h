#pragma once
// The Qt shell with its blocking parts scripted: message boxes are recorded
// and answered, file dialogs return prepared names, a modal window is shown
// without its own event loop while the test acts in it, and a program end
// is recorded instead of ending the test run.

#include <QDialog>
#include <deque>
#include <functional>
#include <optional>

#include <memory>
#include <string>

#include "app/program.h"
#include "qt/printing.h"
#include "qt/qt_shell.h"
#include "qt/views.h"
#include "support/recording_shell.h"
#include "support/temp_dir.h"

namespace tervalo::testing {

class ScriptedShell : public QtShell, public BoxScript {
 public:
  ScriptedShell() {
    terminate = [this](int code) { endedWith = code; };
  }
  std::deque<std::string> chosenFiles;
  std::vector<std::filesystem::path> editorFiles;
  int editorCalls = 0;
  std::optional<int> endedWith;
  // Acts in a modal window while it is open; the window closes after.
  std::function<void(QDialog&)> inDialog;
  std::vector<PrintJob> printed;
  std::vector<std::filesystem::path> foldersOpened;

  Answer msgBox(const std::string& title, const std::string& text, Icon icon, Buttons buttons) override {
    return record(title, text, icon, buttons);
  }
  void openFolder(const std::filesystem::path& folder) override { foldersOpened.push_back(folder); }
  std::optional<std::string> chooseFile(FileDialog, const std::string&, const std::string&,
                                        const std::vector<std::string>&) override {
    if (chosenFiles.empty()) return std::nullopt;
    std::string f = chosenFiles.front();
    chosenFiles.pop_front();
    return f;
  }

 protected:
  void runDialog(QDialog& dialog) override {
    dialog.show();
    if (inDialog) inDialog(dialog);
    dialog.hide();
  }
  // The print dialog answered with the next chosen file as its PDF, or cancelled.
  std::optional<std::filesystem::path> runPrintDialog(const PrintJob& job) override {
    printed.push_back(job);
    const auto file = chooseFile(FileDialog::Save, "Print", "", {});
    if (file) writePrintPdf(job, *file);
    return file;
  }
  bool startEditor(const std::vector<std::filesystem::path>& files) override {
    editorFiles.insert(editorFiles.end(), files.begin(), files.end());
    ++editorCalls;
    return true;
  }
};

// The desktop program's state without its main window: the scripted shell
// with every view, and the program on `folder`.
struct Desktop {
  explicit Desktop(const std::string& folder) : program(shell, folder) {
    registerViews(shell);
    shell.setProgram(program);
  }
  ScriptedShell shell;
  Program program;
};

// A Qt test class's desktop, made afresh for each test (init: start(),
// cleanup: stop()); start(false) is the next start on the same data folder.
struct DesktopFixture {
  std::unique_ptr<TempDir> dir;
  std::unique_ptr<Desktop> desktop;
  ScriptedShell* shell = nullptr;
  Program* program = nullptr;

  void start(bool newFolder = true) {
    desktop.reset();
    if (newFolder || !dir) dir = std::make_unique<TempDir>();
    desktop = std::make_unique<Desktop>(dir->folder());
    shell = &desktop->shell;
    program = &desktop->program;
  }
  void stop() {
    desktop.reset();
    dir.reset();
    shell = nullptr;
    program = nullptr;
  }
};

}  // namespace tervalo::testing
