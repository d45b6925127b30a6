#include "app/job.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/form_model.h"
#include "app/json_fields.h"
#include "app/json_text.h"
#include "app/program.h"
#include "crs/project_store.h"
#include "text/input_file.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

// A shell for checking jobs: windows are made to read their control tables,
// never shown.
class NoShell : public Shell {
 public:
  Answer msgBox(const std::string&, const std::string&, Icon, Buttons) override { return Answer::Ok; }
  void showModal(FormModel&) override {}
  std::optional<std::string> chooseFile(FileDialog, const std::string&, const std::string&,
                                        const std::vector<std::string>&) override {
    return {};
  }
  void openInEditor(const std::filesystem::path&) override {}
  Date today() override { return {}; }
};

using Fields = JsonFields<JobError>;

bool settableWith(const ControlRef& control, bool isText) {
  if (std::holds_alternative<TextBox*>(control) || std::holds_alternative<ComboBox*>(control)) return isText;
  if (std::holds_alternative<CheckBox*>(control) || std::holds_alternative<OptionButton*>(control)) return !isText;
  return false;
}

}  // namespace

Job parseJob(const std::string& jsonText, const FormRegistry& registry) {
  Json json;
  try {
    json = parseStrictJson(jsonText);
  } catch (const JsonTextError& e) {
    throw JobError(std::string("the job file is not valid JSON: ") + e.what());
  }
  if (!json.is_object()) throw JobError("the job file must hold one JSON object");
  Fields::refuseUnknown(json, {"version", "calculator", "steps", "answers", "files", "crs", "project"}, "job");

  Job job;
  if (json.contains("version")) {
    const Json& version = json["version"];
    // Unsigned: a whole number from 1 up (the library reads 0 and up as unsigned).
    if (!version.is_number_unsigned() || version.get<std::uint64_t>() < 1)
      throw JobError("job: \"version\" must be a whole number from 1 up");
    if (version.get<std::uint64_t>() > static_cast<std::uint64_t>(kJobVersion))
      throw JobError("the job was written by a newer Tervalo (job version " + version.dump() +
                     "); this Tervalo reads job version " + std::to_string(kJobVersion) + " and older");
    job.version = static_cast<int>(version.get<std::uint64_t>());
  }
  if (json.contains("crs")) {
    try {
      job.crs = usableCrsFromJson(json["crs"]);
    } catch (const CrsError& e) {
      throw JobError(std::string("job: ") + e.what());
    }
  }
  if (json.contains("project")) {
    if (!json["project"].is_string() || json["project"].get<std::string>().empty())
      throw JobError("job: \"project\" must name a project file (NAME.gpkg)");
    job.project = json["project"].get<std::string>();
  }
  if (!json.contains("calculator") || !json["calculator"].is_string()) throw JobError("job: \"calculator\" must be a text");
  job.calculator = json["calculator"].get<std::string>();
  const CalculatorInfo* calculator = registry.calculatorByJob(job.calculator);
  if (!calculator) {
    std::string known;
    for (const auto& c : registry.calculators()) known += (known.empty() ? "" : ", ") + c.job;
    throw JobError("unknown calculator \"" + job.calculator + "\" (known: " + known + ")");
  }

  NoShell shell;
  Program scratch(shell, "", registry);
  const Json steps = json.value("steps", Json::array());
  if (!steps.is_array()) throw JobError("job: \"steps\" must be a list");
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const std::string where = "step " + std::to_string(i + 1);
    const Json& s = steps[i];
    if (!s.is_object()) throw JobError(where + ": must be an object");
    Fields::refuseUnknown(s, {"form", "set", "click"}, where);
    JobStep step;
    step.form = calculator->form;
    if (s.contains("form")) {
      if (!s["form"].is_string()) throw JobError(where + ": \"form\" must be a text");
      step.form = s["form"].get<std::string>();
    }
    if (!registry.hasForm(step.form)) throw JobError(where + ": unknown form \"" + step.form + "\"");
    const FormModel& form = scratch.form(step.form);

    if (s.contains("set")) {
      if (!s["set"].is_object()) throw JobError(where + ": \"set\" must be an object of control names and values");
      for (const auto& [name, value] : s["set"].items()) {
        const ControlEntry* entry = form.find(name);
        if (!entry) throw JobError(where + ": " + step.form + " has no control \"" + name + "\"");
        if (!value.is_string() && !value.is_boolean())
          throw JobError(where + ": the value of " + name + " must be a text or true/false");
        if (!settableWith(entry->control, value.is_string()))
          throw JobError(where + ": " + name + " is a " + controlKindName(entry->control) + " and cannot be set to " +
                         (value.is_string() ? "a text" : "true/false"));
        if (value.is_string())
          step.set.emplace_back(name, value.get<std::string>());
        else
          step.set.emplace_back(name, value.get<bool>());
      }
    }
    if (s.contains("click")) {
      const Json clicks = s["click"].is_array() ? s["click"] : Json::array({s["click"]});
      for (const Json& c : clicks) {
        if (!c.is_string()) throw JobError(where + ": \"click\" names buttons or menu entries as texts");
        const std::string name = c.get<std::string>();
        const ControlEntry* entry = form.find(name);
        if (!entry) throw JobError(where + ": " + step.form + " has no control \"" + name + "\"");
        if (!std::holds_alternative<Button*>(entry->control) && !std::holds_alternative<MenuItem*>(entry->control))
          throw JobError(where + ": " + name + " is a " + controlKindName(entry->control) + ", not a button or menu entry");
        step.click.push_back(name);
      }
    }
    job.steps.push_back(std::move(step));
  }

  const Json answers = json.value("answers", Json::array());
  if (!answers.is_array()) throw JobError("job: \"answers\" must be a list of \"yes\" and \"no\"");
  for (const Json& a : answers) {
    const std::string text = a.is_string() ? a.get<std::string>() : "";
    if (text == "yes")
      job.answers.push_back(Answer::Yes);
    else if (text == "no")
      job.answers.push_back(Answer::No);
    else
      throw JobError("job: every answer must be \"yes\" or \"no\"");
  }

  const Json files = json.value("files", Json::array());
  if (!files.is_array()) throw JobError("job: \"files\" must be a list of file names");
  for (const Json& f : files) {
    if (!f.is_string() || f.get<std::string>().empty()) throw JobError("job: every entry of \"files\" must be a file name");
    job.files.push_back(f.get<std::string>());
  }
  return job;
}

namespace {

// The fields that name a file the program reads.
bool readsFile(const std::string& form, const std::string& control) { return form == "frmMain" && control == "txtInFile"; }

}  // namespace

Job readJobFile(const std::string& file, const FormRegistry& registry) {
  std::string text;
  try {
    text = readInputFile(file);
  } catch (const InputFileError& e) {
    throw JobError(e.kind() == InputFileError::Kind::Folder ? std::string("it is a folder, not a job file")
                                                            : std::string("it ") + e.what());
  }
  Job job = parseJob(text, registry);
  // A file the job reads is where the job lies, as a plan's source is, so a
  // job runs the same from any working folder. Names of files it writes
  // keep their own rule (the data folder).
  const std::filesystem::path folder = std::filesystem::absolute(std::filesystem::path(file)).parent_path();
  job.project = projectBeside(job.project, folder);
  for (JobStep& step : job.steps)
    for (auto& [control, value] : step.set) {
      auto* name = std::get_if<std::string>(&value);
      if (!name || name->empty() || !readsFile(step.form, control)) continue;
      if (const std::filesystem::path path(*name); path.is_relative()) *name = (folder / path).lexically_normal().string();
    }
  return job;
}

void playStep(FormModel& form, const JobStep& step) {
  for (const auto& [control, value] : step.set) {
    if (!form.isOpen()) return;
    if (const auto* text = std::get_if<std::string>(&value))
      form.typeText(control, *text);
    else
      form.setChecked(control, std::get<bool>(value));
  }
  for (const auto& control : step.click) {
    if (!form.isOpen()) return;
    form.click(control);
  }
}

}  // namespace tervalo
