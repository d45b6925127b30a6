#pragma once
// A shell for tests: records every box, answers Yes/No from a script, and
// lets a test act in a modal window while it is open.

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "app/form_model.h"
#include "app/shell.h"

namespace tervalo::testing {

struct Box {
  std::string title;
  std::string text;
  Icon icon = Icon::Information;
  Buttons buttons = Buttons::Ok;
};

// Records boxes and answers Yes/No questions from a script (then Yes).
struct BoxScript {
  std::vector<Box> boxes;
  std::deque<Answer> answers;

  Answer record(const std::string& title, const std::string& text, Icon icon, Buttons buttons) {
    boxes.push_back({title, text, icon, buttons});
    if (buttons == Buttons::Ok) return Answer::Ok;
    if (answers.empty()) return Answer::Yes;
    const Answer a = answers.front();
    answers.pop_front();
    return a;
  }
};

class RecordingShell : public Shell, public BoxScript {
 public:
  std::deque<std::string> chosenFiles;     // for file dialogs; then cancel
  std::vector<std::string> dialogTitles;
  std::vector<std::string> modalForms;     // names, in the order shown
  std::vector<std::filesystem::path> editorFiles;
  std::vector<std::filesystem::path> writtenFiles;
  std::function<void(FormModel&)> onModal;  // acts in the window; it closes after
  Date date{2026, 11, 21};

  Answer msgBox(const std::string& title, const std::string& text, Icon icon, Buttons buttons) override {
    return record(title, text, icon, buttons);
  }
  void showModal(FormModel& form) override {
    modalForms.push_back(form.name());
    form.setOpen(true);
    if (onModal) onModal(form);
    form.setOpen(false);
  }
  std::optional<std::string> chooseFile(FileDialog, const std::string& title, const std::string&,
                                        const std::vector<std::string>&) override {
    dialogTitles.push_back(title);
    if (chosenFiles.empty()) return std::nullopt;
    std::string f = chosenFiles.front();
    chosenFiles.pop_front();
    return f;
  }
  void openInEditor(const std::filesystem::path& file) override { editorFiles.push_back(file); }
  void fileWritten(const std::filesystem::path& file) override { writtenFiles.push_back(file); }
  void print(const PrintJob& job) override { printed.push_back(job); }
  void savePdf(const PrintJob& job, const std::filesystem::path& file) override { pdfs.push_back({job, file}); }
  std::vector<std::pair<PrintJob, std::filesystem::path>> pdfs;
  std::vector<PrintJob> printed;
  Date today() override { return date; }
};

}  // namespace tervalo::testing
