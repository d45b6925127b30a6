#pragma once
// The desktop program's Shell: real modal boxes, windows, file dialogs and
// the user's editor.

#include <QDialog>
#include <QMessageBox>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/job.h"
#include "app/shell.h"

namespace tervalo {

class Program;

// A message box made wide enough that its title is never cut, and centred
// on its window.
void fitBoxToItsTitle(QMessageBox& box);

class QtShell : public Shell {
 public:
  using ViewFactory = std::function<QDialog*(FormModel&, QtShell&, QWidget* parent)>;

  void addView(const std::string& form, ViewFactory make) { views_[form] = std::move(make); }
  bool hasView(const std::string& form) const { return views_.count(form) != 0; }
  QDialog* makeView(FormModel& form, QWidget* parent);

  void setProgram(Program& program) { program_ = &program; }
  void setMainWindow(QWidget* main, FormModel& model);

  Answer msgBox(const std::string& title, const std::string& text, Icon icon, Buttons buttons) override;
  // Keeps what the user typed in every open window as a recovery job, then ends.
  [[noreturn]] void endProgram() override;
  void showModal(FormModel& form) override;
  std::optional<std::string> chooseFile(FileDialog kind, const std::string& title, const std::string& initial,
                                        const std::vector<std::string>& filters) override;
  void openInEditor(const std::filesystem::path& file) override;
  void openInEditor(const std::vector<std::filesystem::path>& files) override;
  void openFolder(const std::filesystem::path& folder) override;
  void savePicture(const Picture& picture, const std::filesystem::path& file) override;
  // The print dialog; a fault of the chosen file is said in a box.
  void print(const PrintJob& job) override;
  void savePdf(const PrintJob& job, const std::filesystem::path& file) override;
  Date today() override;
  std::string clipboardText() override;
  void setClipboardText(const std::string& text) override;

  // Reopens the recovery job's calculator with its inputs, in the windows a
  // user sees (the steps naming each window are played when it opens).
  void replay(const Job& job);
  void reopen(const Job& job) override { replay(job); }

  // Keeps the inputs of the calculator window open now (or closing) as the
  // previous inputs, which the main window's Recent menu reopens.
  void keepPreviousInputs();
  void keepOwnInputs();  // each open window's keepInputs()

  // After a program end has been shown and kept: ends the process (status 3).
  void programEnded() { terminate(3); }
  std::function<void(int)> terminate;

  const std::vector<FormModel*>& openForms() const { return open_; }

  // For rendering windows with example data: boxes are answered with their
  // default (OK, Yes) and windows opened without being shown, and no editor
  // is started.
  bool unattended = false;
  // Unattended, the files the next file dialogs choose, in order (then cancelled).
  std::deque<std::string> unattendedFiles;

 protected:
  // Shows a window modally; returns when it has closed.
  virtual void runDialog(QDialog& dialog) { dialog.exec(); }
  // Shows the print dialog and prints; the file written, if it went to one.
  virtual std::optional<std::filesystem::path> runPrintDialog(const PrintJob& job);
  // Starts the editor on the files in one call where it can; false when it cannot.
  virtual bool startEditor(const std::vector<std::filesystem::path>& files);
  QWidget* activeWindow() const;

 private:
  void playPending(FormModel& form);

  std::map<std::string, ViewFactory> views_;
  Program* program_ = nullptr;
  QWidget* main_ = nullptr;
  bool ending_ = false;
  std::vector<FormModel*> open_;
  std::deque<JobStep> pending_;
};

}  // namespace tervalo
