#include "app/form_model.h"

#include "app/output_file.h"
#include "text/number.h"

#include "app/json_text.h"
#include "app/program.h"
#include "app/recovery.h"

#include <algorithm>
#include "app/shell.h"
#include "text/errors.h"

namespace tervalo {

FormModel::FormModel(Program& program, std::string name, std::string caption_)
    : caption(std::move(caption_)), program_(program), name_(std::move(name)) {}

Shell& FormModel::shell() { return program_.shell(); }

const ControlEntry* FormModel::find(std::string_view control) const {
  for (const auto& e : controls_)
    if (e.name == control) return &e;
  return nullptr;
}

ControlEntry* FormModel::findEntry(std::string_view control) {
  return const_cast<ControlEntry*>(std::as_const(*this).find(control));
}

ControlEntry& FormModel::addEntry(std::string name, ControlRef control, std::string group) {
  controls_.push_back(ControlEntry{std::move(name), control, std::move(group), {}, {}, {}});
  return controls_.back();
}

ControlEntry& FormModel::add(std::string name, TextBox& c) { return addEntry(std::move(name), &c); }
ControlEntry& FormModel::add(std::string name, Label& c) { return addEntry(std::move(name), &c); }
ControlEntry& FormModel::add(std::string name, Frame& c) { return addEntry(std::move(name), &c); }
ControlEntry& FormModel::add(std::string name, CheckBox& c) { return addEntry(std::move(name), &c); }
ControlEntry& FormModel::add(std::string name, OptionButton& c, std::string group) {
  return addEntry(std::move(name), &c, std::move(group));
}
ControlEntry& FormModel::add(std::string name, ComboBox& c) { return addEntry(std::move(name), &c); }
ControlEntry& FormModel::add(std::string name, ListBox& c) { return addEntry(std::move(name), &c); }
ControlEntry& FormModel::add(std::string name, Button& c) { return addEntry(std::move(name), &c); }
ControlEntry& FormModel::add(std::string name, MenuItem& c) { return addEntry(std::move(name), &c); }

void FormModel::runEvent(const std::function<void()>& handler) {
  if (!handler) return;
  try {
    handler();
  } catch (const ProgramFault& fault) {
    shell().msgBox(fault.title(), fault.what(), Icon::Critical, Buttons::Ok);
    shell().endProgram();
  } catch (const ProgramEnd&) {
    throw;
  } catch (const std::filesystem::filesystem_error& e) {
    shell().msgBox("Run-time Error", fileSystemFault(e), Icon::Critical, Buttons::Ok);
    shell().endProgram();
  } catch (const nlohmann::json::exception& e) {
    shell().msgBox("Run-time Error", std::string("Invalid data: ") + e.what(), Icon::Critical, Buttons::Ok);
    shell().endProgram();
  } catch (const std::exception& e) {
    // Anything else is a fault of this program: said plainly, never a crash.
    shell().msgBox("Run-time Error", std::string("Internal error: ") + e.what(), Icon::Critical, Buttons::Ok);
    shell().endProgram();
  }
}

void FormModel::change(std::string_view control) {
  if (auto* e = findEntry(control)) runEvent(e->onChange);
}

void FormModel::lostFocus(std::string_view control) {
  if (auto* e = findEntry(control)) runEvent(e->onLostFocus);
}

void FormModel::click(std::string_view control) {
  if (auto* e = findEntry(control)) runEvent(e->onClick);
}

void FormModel::browseForOutput(TextBox& field) {
  const auto chosen = shell().chooseFile(FileDialog::Save, "Select the Output File", field.text,
                                         {"Reports (*.txt *.rpt)", "All files (*)"});
  if (!chosen || chosen->empty()) return;
  program_.outputFileName = *chosen;
  field.text = *chosen;
}

std::optional<std::string> FormModel::chooseSourceFile(const std::string& current) {
  auto chosen = shell().chooseFile(FileDialog::Open, "Select the File For Input", current,
                                   {"Coordinate files (*.txt *.csv *.sdms *.rpt)", "All files (*)"});
  if (chosen && chosen->empty()) chosen.reset();
  return chosen;
}

void FormModel::addInputFileButtons() {
  add("btnOpenInputs", btnOpenInputs).click([this] { openInputs(); });
  add("btnSaveInputs", btnSaveInputs).click([this] { saveInputs(); });
}

namespace {

// The calculator a window belongs to, as job files name it ("secsub").
std::string calculatorOf(const FormModel& form, const FormRegistry& registry) {
  const CalculatorInfo* c = registry.calculatorByForm(form.name());
  return c ? c->job : "";
}

}  // namespace

std::string FormModel::noteFor(const ControlEntry& entry) const {
  const auto* const* box = std::get_if<TextBox*>(&entry.control);
  if (!box) return "";
  if (!(*box)->note.empty()) return (*box)->note;
  if (!entry.number) return "";
  const std::string& text = (*box)->text;
  if (text.find_first_not_of(" \t") == std::string::npos) return entry.required ? "Empty: read as 0" : "";
  try {
    if (strictNumber(text)) return "";
    return "Not a plain number: read as " + CStr(Val(text));
  } catch (const RunTimeError& e) {  // beyond a double: the field's own Overflow when it is used
    return "Not a number the program can hold: " + std::string(e.what());
  }
}

void FormModel::saveInputs() {
  const std::string calculator = calculatorOf(*this, program_.registry());
  const auto chosen = shell().chooseFile(FileDialog::Save, "Save Inputs", program_.userAppData + calculator + ".tervalo.json",
                                         {"Tervalo inputs (*.tervalo.json)"});
  if (!chosen || chosen->empty()) return;
  // The user's own document, named by the user: written whole, not kept in the history.
  writeTextFile(*chosen, {jsonText(savedInputsJob(inputForms(), program_.registry(), program_.crs))});
  shell().fileWritten(std::filesystem::absolute(*chosen));
  program_.recent.add(*chosen);
}

void FormModel::openInputs() {
  const auto chosen = shell().chooseFile(FileDialog::Open, "Open Inputs", program_.userAppData,
                                         {"Tervalo inputs (*.tervalo.json)", "All files (*)"});
  if (!chosen || chosen->empty()) return;
  Job job;
  try {
    job = readJobFile(*chosen, program_.registry());
    const std::string calculator = calculatorOf(*this, program_.registry());
    if (job.calculator != calculator)
      throw JobError("it holds the inputs of \"" + job.calculator + "\", not of this window (\"" + calculator + "\")");
  } catch (const JobError& e) {
    shell().msgBox("Open Inputs", "The file " + *chosen + " cannot be opened: " + e.what() + ".", Icon::Exclamation,
                   Buttons::Ok);
    return;
  }
  applyInputs(job);
  program_.recent.add(*chosen);
}

void FormModel::applyInputs(const Job& job) {
  program_.crs = job.crs;
  const std::vector<FormModel*> forms = inputForms();
  clearForInputs();
  for (const JobStep& step : job.steps) {
    const auto form = std::find_if(forms.begin(), forms.end(), [&step](const FormModel* f) { return f->name() == step.form; });
    if (form == forms.end()) continue;
    JobStep inputs = step;
    // Only what fills fields: no Calculate, Continue or Save is pressed.
    std::erase_if(inputs.click, [this](const std::string& c) { return !rebuildsInputs(c); });
    playStep(**form, inputs);
  }
}

void FormModel::setText(TextBox& box, const std::string& text) {
  if (box.text == text) return;
  box.text = text;
  for (auto& e : controls_)
    if (e.control == ControlRef(&box)) runEvent(e.onChange);
}

void FormModel::checkOption(ControlEntry& entry) {
  for (auto& other : controls_)
    if (auto** o = std::get_if<OptionButton*>(&other.control); o && other.group == entry.group) (*o)->checked = false;
  std::get<OptionButton*>(entry.control)->checked = true;
}

void FormModel::typeText(std::string_view control, const std::string& text) {
  editText(control, text);
  if (ControlEntry* e = findEntry(control); e && std::holds_alternative<TextBox*>(e->control)) runEvent(e->onLostFocus);
}

void FormModel::selectItem(std::string_view control, int row) {
  ControlEntry* e = findEntry(control);
  if (!e) return;
  if (auto** list = std::get_if<ListBox*>(&e->control)) {
    (*list)->selected = row;
    runEvent(e->onClick);
  }
}

void FormModel::editText(std::string_view control, const std::string& text) {
  ControlEntry* e = findEntry(control);
  if (!e) return;
  if (auto** box = std::get_if<TextBox*>(&e->control)) {
    if ((*box)->text != text) {
      (*box)->text = text;
      runEvent(e->onChange);
    }
  } else if (auto** combo = std::get_if<ComboBox*>(&e->control)) {
    if ((*combo)->text != text) {
      (*combo)->text = text;
      runEvent(e->onChange);
    }
  }
}

void FormModel::setChecked(std::string_view control, bool checked) {
  ControlEntry* e = findEntry(control);
  if (!e) return;
  if (auto** box = std::get_if<CheckBox*>(&e->control)) {
    if ((*box)->checked == checked) return;
    (*box)->checked = checked;
    runEvent(e->onClick);
  } else if (auto** option = std::get_if<OptionButton*>(&e->control)) {
    if ((*option)->checked == checked) return;
    // An option button cannot be clicked off; clearing one is what choosing
    // another of its group does, without an event of its own.
    if (!checked) {
      (*option)->checked = false;
      return;
    }
    checkOption(*e);
    runEvent(e->onClick);
  }
}

}  // namespace tervalo
