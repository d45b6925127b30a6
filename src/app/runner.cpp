#include "app/runner.h"

#include <algorithm>
#include <ostream>
#include <sstream>

#include "app/form_model.h"
#include "app/frm_main.h"
#include "app/program.h"
#include "app/shell.h"
#include "project/point_import.h"
#include "project/project_session.h"
#include "secsub/frm_sec_sub.h"
#include "text/errors.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

Json controlJson(const ControlRef& control) {
  Json j;
  if (!std::holds_alternative<ListBox*>(control)) j["text"] = controlText(control);
  std::visit(
      [&j](const auto* c) {
        using T = std::decay_t<decltype(*c)>;
        if constexpr (std::is_same_v<T, CheckBox> || std::is_same_v<T, OptionButton>) j["checked"] = c->checked;
        if constexpr (std::is_same_v<T, ComboBox> || std::is_same_v<T, ListBox>) j["items"] = c->items;
        j["visible"] = c->visible;
        j["enabled"] = c->enabled;
      },
      control);
  return j;
}

Json formJson(const FormModel& form) {
  // Control names are unique in a window: appended in order, not looked up one by one.
  Json controls = Json::object();
  auto& byName = controls.get_ref<Json::object_t&>();
  byName.reserve(form.controls().size());
  for (const auto& entry : form.controls()) {
    Json control = controlJson(entry.control);
    // What the window says beside a field (what a number reads as, a point not found).
    if (const std::string note = form.noteFor(entry); !note.empty()) control["note"] = note;
    byName.emplace_back(entry.name, std::move(control));
  }
  return Json{{"caption", form.caption}, {"controls", std::move(controls)}};
}

// Answers boxes from the job, records everything, and plays the steps that
// name a window while it is shown modally.
class RunnerShell : public Shell {
 public:
  RunnerShell(const Job& job, const RunOptions& options, std::ostream* boxLog)
      : job_(job), options_(options), boxLog_(boxLog) {}

  Json messages = Json::array();
  Json files = Json::array();
  Json opened = Json::array();
  Json skipped = Json::array();

  Answer msgBox(const std::string& title, const std::string& text, Icon icon, Buttons buttons) override {
    Answer answer = Answer::Ok;
    if (buttons == Buttons::YesNo) answer = nextAnswer_ < job_.answers.size() ? job_.answers[nextAnswer_++] : Answer::Yes;
    const std::string form = stack_.empty() ? "" : stack_.back()->name();
    Json answerJson = buttons == Buttons::Ok ? Json(nullptr) : Json(answer == Answer::Yes ? "yes" : "no");
    messages.push_back(Json{{"form", form},
                            {"title", title},
                            {"text", text},
                            {"icon", iconName(icon)},
                            {"buttons", buttons == Buttons::Ok ? "ok" : "yesno"},
                            {"answer", answerJson}});
    if (boxLog_) {
      *boxLog_ << "[" << form << "] " << iconName(icon) << " box \"" << title << "\": " << text;
      if (buttons == Buttons::YesNo) *boxLog_ << " -> " << (answer == Answer::Yes ? "yes" : "no");
      *boxLog_ << "\n";
    }
    return answer;
  }

  void showModal(FormModel& form) override {
    form.setOpen(true);
    stack_.push_back(&form);
    playWhileOpen(form);
    stack_.pop_back();
    form.setOpen(false);
  }

  // The job's files answer the dialogs in order; then a dialog is cancelled.
  // A bare or relative name lies in the data folder, where the dialogs start.
  std::optional<std::string> chooseFile(FileDialog, const std::string&, const std::string&,
                                        const std::vector<std::string>&) override {
    if (nextFile_ >= job_.files.size()) return std::nullopt;
    const std::filesystem::path file(job_.files[nextFile_++]);
    return file.is_absolute() ? file.string() : (std::filesystem::path(options_.dataFolder) / file).string();
  }
  void openInEditor(const std::filesystem::path& file) override { opened.push_back(file.string()); }
  void fileWritten(const std::filesystem::path& file) override { files.push_back(file.string()); }
  Date today() override { return options_.today ? *options_.today : localToday(); }

  // The main window's part: steps naming it are played, others skipped.
  void playTopLevel(frmMain& main) {
    stack_.push_back(&main);
    while (nextStep_ < job_.steps.size() && main.isOpen()) {
      const JobStep& step = job_.steps[nextStep_];
      if (step.form == main.name()) {
        ++nextStep_;
        playStep(main, step);
      } else {
        skip();
      }
    }
    while (nextStep_ < job_.steps.size()) skip();
  }

 private:
  bool isOpen(const std::string& form) const {
    return std::any_of(stack_.begin(), stack_.end(), [&](const FormModel* f) { return f->name() == form; });
  }

  void skip() {
    const JobStep& step = job_.steps[nextStep_];
    skipped.push_back(Json{{"step", nextStep_ + 1}, {"form", step.form}});
    ++nextStep_;
  }

  // Steps naming the modal window are played until one closes it; a step
  // for a window beneath it closes it (as its close box would); a step for
  // a window that is not open is skipped.
  void playWhileOpen(FormModel& form) {
    while (nextStep_ < job_.steps.size() && form.isOpen()) {
      const JobStep& step = job_.steps[nextStep_];
      if (step.form == form.name()) {
        ++nextStep_;
        playStep(form, step);
      } else if (isOpen(step.form)) {
        return;
      } else {
        skip();
      }
    }
  }

  const Job& job_;
  const RunOptions& options_;
  std::ostream* boxLog_;
  std::vector<FormModel*> stack_;
  std::size_t nextStep_ = 0;
  std::size_t nextAnswer_ = 0;
  std::size_t nextFile_ = 0;
};

}  // namespace

RunOutcome runJob(const Job& job, const RunOptions& options, const FormRegistry& registry, std::ostream* boxLog) {
  RunnerShell shell(job, options, boxLog);
  Program program(shell, options.dataFolder, registry);
  program.crs = job.crs;
  if (options.prepare) options.prepare(program);
  bool ended = false;
  if (!job.project.empty()) {
    try {
      program.project = std::make_unique<ProjectSession>(openProject(job.project));
      if (program.crs.none()) program.crs = program.project->file().settings().crs;
    } catch (const ProjectError& e) {
      shell.msgBox("Project", std::string(e.what()) + ".", Icon::Critical, Buttons::Ok);
    }
  }
  try {
    if (!job.project.empty() && !program.project) throw ProgramEnd();
    auto& main = program.form<frmMain>("frmMain");
    main.setOpen(true);
    const CalculatorInfo* calculator = registry.calculatorByJob(job.calculator);
    main.click(calculator->menu);
    shell.playTopLevel(main);
    ended = !main.isOpen();  // Exit unloads the main window: the program has ended
  } catch (const ProgramEnd&) {
    ended = true;
  }

  Json forms = Json::object();
  if (options.windows)
    for (const FormModel* form : program.madeForms()) forms[form->name()] = formJson(*form);
  RunOutcome outcome;
  outcome.result = Json{{"messages", std::move(shell.messages)}, {"ended", ended},       {"forms", std::move(forms)},
                        {"files", std::move(shell.files)},       {"opened", std::move(shell.opened)},
                        {"skipped", std::move(shell.skipped)}};
  if (options.windows)
    for (const FormModel* form : program.madeForms()) form->addToResult(outcome.result);
  // The section's corners into the project the job names, in place of those of an earlier run.
  if (program.project && !ended && registry.hasForm("frmSecSub")) {
    const auto made = program.madeForms();
    const auto section = std::find_if(made.begin(), made.end(), [](const FormModel* f) { return f->name() == "frmSecSub"; });
    if (section != made.end() && static_cast<frmSecSub*>(*section)->hasRun) {
      const auto& form = *static_cast<frmSecSub*>(*section);
      try {
        const StoreCounts c = program.project->store(mapPoints(form.runMap(), form.drawingTitle(), &program.project->file()), OnDuplicate::Replace, form.drawingTitle(),
                                                     "Store " + form.drawingTitle());
        outcome.result["project"] = Json{{"file", job.project}, {"stored", c.stored}, {"replaced", c.replaced}};
      } catch (const ProjectError& e) {
        shell.msgBox("Project", std::string("The corners are not stored: ") + e.what() + ".", Icon::Critical, Buttons::Ok);
        outcome.result["messages"].push_back(shell.messages.back());
      }
    }
  }
  if (options.inspect) options.inspect(program);
  const bool critical = std::any_of(outcome.result["messages"].begin(), outcome.result["messages"].end(),
                                    [](const Json& m) { return m["icon"] == "critical"; });
  outcome.exitCode = ended ? kExitEnded : critical ? kExitCriticalBox : 0;
  return outcome;
}

std::string summarize(const Json& result) {
  std::ostringstream out;
  const auto list = [&out](const char* title, const Json& items) {
    out << title << (items.empty() ? " none\n" : "\n");
    for (const auto& item : items) out << "  " << (item.is_string() ? item.get<std::string>() : item.dump()) << "\n";
  };
  list("Files written:", result["files"]);
  list("Opened in the editor:", result["opened"]);
  if (!result["skipped"].empty()) list("Steps skipped (window not open):", result["skipped"]);
  out << "Message boxes: " << result["messages"].size() << "\n";
  if (result.contains("notices") && !result["notices"].empty()) list("Notices:", result["notices"]);
  out << (result["ended"].get<bool>() ? "The program ended.\n" : "The job ran to its end.\n");
  return out.str();
}

}  // namespace tervalo
