#pragma once
// The one way a window's model reaches the outside world: message boxes,
// other windows, file dialogs, the editor, today's date.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/picture.h"
#include "app/print_job.h"
#include "text/date.h"

namespace tervalo {

struct Job;

class FormModel;

enum class Icon { Critical, Exclamation, Information, Question };
enum class Buttons { Ok, YesNo };
enum class Answer { Ok, Yes, No };
enum class FileDialog { Open, Save };

const char* iconName(Icon icon);  // "critical", "exclamation", ...

class Shell {
 public:
  virtual ~Shell() = default;

  // A modal message box; returns the button pressed.
  virtual Answer msgBox(const std::string& title, const std::string& text, Icon icon, Buttons buttons = Buttons::Ok) = 0;

  // Ends the whole program after a fatal message: throws ProgramEnd, which
  // only the outermost layer catches. Implementations may first keep what
  // the user typed.
  [[noreturn]] virtual void endProgram();

  // Opens another window over the current one; returns when it has closed.
  virtual void showModal(FormModel& form) = 0;

  // A file dialog; nothing when the user cancels. `filters` are the file
  // kinds offered ("LandXML (*.xml)"), none for any file; a name chosen
  // without an ending takes the chosen kind's.
  virtual std::optional<std::string> chooseFile(FileDialog kind, const std::string& title, const std::string& initial,
                                                const std::vector<std::string>& filters) = 0;

  // Hands a saved file to the user's text editor.
  virtual void openInEditor(const std::filesystem::path& file) = 0;
  // Hands the files a run wrote to the editor together: one editor call,
  // where the desktop allows, and one word at most when it cannot start.
  virtual void openInEditor(const std::vector<std::filesystem::path>& files) {
    for (const auto& f : files) openInEditor(f);
  }

  // Writes a picture as an SVG, PNG or PDF file, by the name's ending,
  // whole. Pictures are painted by the desktop program; the headless
  // runner says so with a RunTimeError.
  virtual void savePicture(const Picture& picture, const std::filesystem::path& file);

  // Prints a text (and its picture) as it stands, through the print dialog,
  // which also offers a PDF file; the headless runner says it cannot.
  virtual void print(const PrintJob& job);

  // Writes a text (and its picture) as a PDF file, whole, as printing into
  // a PDF would; the headless runner says it cannot.
  virtual void savePdf(const PrintJob& job, const std::filesystem::path& file);

  // Opens a calculator again with a job's inputs, in the windows a user
  // sees, as the desktop program does for a saved or previous job; the
  // runner and tests have no windows to reopen.
  virtual void reopen(const Job& job) { (void)job; }

  // Shows a folder in the desktop's file manager (the history, the folder
  // of a file just written); the runner and tests have none.
  virtual void openFolder(const std::filesystem::path& folder) { (void)folder; }

  // Told of every output file written whole.
  virtual void fileWritten(const std::filesystem::path& file) { (void)file; }

  virtual Date today() = 0;

  // The desktop's clipboard, as text (a spreadsheet's cells are tab-separated
  // lines); the runner and tests keep their own.
  virtual std::string clipboardText() { return clipboard_; }
  virtual void setClipboardText(const std::string& text) { clipboard_ = text; }

 private:
  std::string clipboard_;
};

}  // namespace tervalo
