#pragma once
// The behaviour of one window, without the window: its controls as data, its
// events and procedures. Views and the job runner drive it by control name.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "app/controls.h"
#include "app/job.h"

namespace tervalo {

class Program;
class Shell;

class FormModel {
 public:
  FormModel(Program& program, std::string name, std::string caption);
  virtual ~FormModel() = default;
  FormModel(const FormModel&) = delete;
  FormModel& operator=(const FormModel&) = delete;

  const std::string& name() const { return name_; }
  std::string caption;

  const std::vector<ControlEntry>& controls() const { return controls_; }

  // What the window says of a text box beside its text: its note, or for a
  // number field whose text is not a plain number what it is read as
  // ("Read as 12"), or for an empty required one that it reads 0. Empty
  // when there is nothing to say.
  std::string noteFor(const ControlEntry& entry) const;
  const ControlEntry* find(std::string_view control) const;

  // Events as a user causes them. Each runs its handler inside the fault
  // wrapper: a ProgramFault becomes its message box and the program's end.
  void change(std::string_view control);
  void lostFocus(std::string_view control);
  void click(std::string_view control);

  // What a user does at the window, events included: typing a text and
  // leaving the field (change when the text differs, then lost focus);
  // clicking a check box or option button so that it ends up `checked`;
  // choosing a combo's text.
  void typeText(std::string_view control, const std::string& text);
  // Typing without leaving the field (each keystroke): the change event only.
  void editText(std::string_view control, const std::string& text);
  // Picking a row of a list (its click event).
  void selectItem(std::string_view control, int row);
  void setChecked(std::string_view control, bool checked);

  // What a recovery job needs beyond the window's fields to give its state
  // back (the segments of a list built with Add, say), as job steps.
  virtual std::vector<JobStep> recoverySteps() const { return {}; }

  // A calculator window's inputs kept in a file of the user's: Save Inputs
  // writes them as a job (the program's document); Open Inputs fills the
  // window from one again, pressing no button. A file that is damaged, from
  // a newer program, for another calculator or naming unknown controls is
  // refused with a box naming the file and the fault, and changes nothing.
  Button btnSaveInputs{"Save Inputs..."};
  Button btnOpenInputs{"Open Inputs..."};
  void saveInputs();
  void openInputs();
  // Fills the window (and those of inputForms()) from a job of its calculator.
  void applyInputs(const Job& job);

  // Each time the window opens, before it is shown.
  virtual void opened() {}

  // Reads `file` (a file of this window's own kind) into the window, saying
  // in a box why not; true when it was read. For files opened from Recent or
  // handed to the program by the desktop. Nothing by default.
  virtual bool openPath(const std::string& file) {
    (void)file;
    return false;
  }

  // A window outside the calculators' jobs keeps what was typed in it in a
  // file of its own when it closes or the program ends; nothing by default.
  virtual void keepInputs() {}

  // What the runner's result carries of this window beyond its controls
  // (the section's "explain"); nothing by default.
  virtual void addToResult(nlohmann::ordered_json& result) const { (void)result; }

  // The control the window should put the cursor in after this event
  // (scrolled into sight), "" for none; the view takes it and clears it.
  std::string focusRequest;

  // Open while shown; a model closes itself with unload() (Return).
  bool isOpen() const { return open_; }
  void setOpen(bool open) {
    open_ = open;
    if (open) opened();
  }
  void unload() { open_ = false; }

 protected:
  Program& program() { return program_; }
  Shell& shell();

  // Control table rows, in screen order.
  ControlEntry& add(std::string name, TextBox& c);
  ControlEntry& add(std::string name, Label& c);
  ControlEntry& add(std::string name, Frame& c);
  ControlEntry& add(std::string name, CheckBox& c);
  ControlEntry& add(std::string name, OptionButton& c, std::string group);
  ControlEntry& add(std::string name, ComboBox& c);
  ControlEntry& add(std::string name, ListBox& c);
  ControlEntry& add(std::string name, Button& c);
  ControlEntry& add(std::string name, MenuItem& c);

  // Code that assigns a field's text raises its change event when the text
  // differs, as in the window.
  void setText(TextBox& box, const std::string& text);

  // Browse for an output file: the chosen name goes into `field` and
  // becomes the program's output name; a cancelled dialog changes nothing.
  void browseForOutput(TextBox& field);
  // The coordinate file dialog, starting from `current`; nothing when cancelled.
  std::optional<std::string> chooseSourceFile(const std::string& current);

  // Adds btnSaveInputs and btnOpenInputs to the control table.
  void addInputFileButtons();
  // The windows whose inputs the file holds: this one; the section form's
  // inputs include the main window's file names.
  virtual std::vector<FormModel*> inputForms() { return {this}; }
  // Buttons that rebuild inputs (a list built with Add), played on opening.
  virtual bool rebuildsInputs(std::string_view control) const {
    (void)control;
    return false;
  }
  // Empties what set steps cannot (a list), before inputs are opened.
  virtual void clearForInputs() {}

  // Runs an event handler inside the fault wrapper: a ProgramFault becomes
  // its message box and the program's end.
  void runEvent(const std::function<void()>& handler);

 private:
  ControlEntry& addEntry(std::string name, ControlRef control, std::string group = {});
  ControlEntry* findEntry(std::string_view control);
  void checkOption(ControlEntry& entry);

  Program& program_;
  std::string name_;
  std::vector<ControlEntry> controls_;
  bool open_ = false;
};

}  // namespace tervalo
