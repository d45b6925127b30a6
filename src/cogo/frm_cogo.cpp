#include "cogo/frm_cogo.h"

#include <cmath>
#include <filesystem>
#include <memory>
#include <sstream>

#include "app/output_file.h"
#include "app/print_job.h"
#include "app/program.h"
#include "app/shell.h"
#include "cogo/cogo.h"
#include "project/project_session.h"
#include "text/errors.h"
#include "text/justify.h"

namespace tervalo {
namespace {

constexpr const char* kTitle = "COGO";

// A small form: its fields' captions, and the command they make (each
// field's text in place of its {n}). A field may be left empty where the
// command leaves its part out ({n?}: with the words before it).
struct CogoForm {
  const char* name;
  std::vector<const char*> captions;
  std::vector<const char*> parts;  // words, and "{n}" for field n, "{n?WORD}" for WORD and field n when it is given
};

const std::vector<CogoForm>& forms() {
  static const std::vector<CogoForm> all{
      {"Inverse", {"From point:", "To point:"}, {"INVERSE", "{0}", "{1}"}},
      {"Locate by bearing or azimuth",
       {"New point:", "From point:", "Bearing or azimuth:", "Distance:"},
       {"LOCATE", "{0}", "FROM", "{1}", "{2:direction}", "DISTANCE", "{3}"}},
      {"Locate by angle right",
       {"New point:", "Occupied point:", "Backsight point:", "Angle right:", "Distance:"},
       {"LOCATE", "{0}", "FROM", "{1}", "BACKSIGHT", "{2}", "ANGLE", "{3}", "DISTANCE", "{4}"}},
      {"Intersect two bearings",
       {"New point:", "First point:", "Its bearing:", "Second point:", "Its bearing:"},
       {"INTERSECT", "{0}", "BEARING", "{1}", "{2}", "BEARING", "{3}", "{4}"}},
      {"Intersect a bearing and a distance",
       {"New point:", "Point of the bearing:", "Bearing:", "Point of the distance:", "Distance:", "Nearer to point:"},
       {"INTERSECT", "{0}", "BEARING", "{1}", "{2}", "DISTANCE", "{3}", "{4}", "{5?NEAR}"}},
      {"Intersect two distances",
       {"New point:", "First point:", "Its distance:", "Second point:", "Its distance:", "Nearer to point:"},
       {"INTERSECT", "{0}", "DISTANCE", "{1}", "{2}", "DISTANCE", "{3}", "{4}", "{5?NEAR}"}},
      {"Station and offset", {"Point:", "Line from point:", "Line to point:"}, {"STATION", "{0}", "FROM", "{1}", "TO", "{2}"}},
      {"Point at a station and offset",
       {"New point:", "Line from point:", "Line to point:", "Station:", "Offset (right +):"},
       {"POINTAT", "{0}", "FROM", "{1}", "TO", "{2}", "STATION", "{3}", "{4?OFFSET}"}},
      {"Divide a line", {"From point:", "To point:", "Equal parts:", "First new number:"}, {"DIVIDE", "{0}", "{1}", "{2}", "FIRST", "{3}"}},
      {"Area", {"Corners in order:"}, {"AREA", "{0}"}},
  };
  return all;
}

}  // namespace

struct frmCogo::State {
  std::unique_ptr<CogoEngine> engine;
  ProjectSession* session = nullptr;
  int places = 0;
};

frmCogo::frmCogo(Program& program) : FormModel(program, "frmCogo", "COGO"), state_(std::make_shared<State>()) {
  add("lblProject", lblProject);
  add("lblCommand", lblCommand);
  add("txtCommand", txtCommand);
  add("btnRun", btnRun).click([this] {
    const std::string line = txtCommand.text;
    runCommand(line);
  });
  add("lblForm", lblForm);
  for (const CogoForm& f : forms()) cmbForm.items.push_back(f.name);
  cmbForm.text = cmbForm.items.front();
  add("cmbForm", cmbForm).change([this] { chooseForm(cmbForm.text); });
  for (std::size_t i = 0; i < kFields; ++i) {
    add("lblField" + std::to_string(i + 1), lblFields[i]);
    add("txtField" + std::to_string(i + 1), txtFields[i]);
  }
  add("btnFormRun", btnFormRun).click([this] { runForm(); });
  add("lblSeconds", lblSeconds);
  add("cmbSeconds", cmbSeconds);
  add("lstLog", lstLog);
  add("lblResult", lblResult);
  add("btnUndo", btnUndo).click([this] {
    ProjectSession* s = this->program().project.get();
    if (!s || !s->canUndo()) return;
    const std::string what = s->undoText();
    try {
      s->undo();
      log("# undone: " + what);
    } catch (const ProjectError& e) {
      shell().msgBox(kTitle, e.what(), Icon::Exclamation);
    }
    showState();
  });
  add("btnClearLog", btnClearLog).click([this] { lstLog.items.clear(); });
  add("btnSaveLog", btnSaveLog).click([this] {
    const auto chosen = shell().chooseFile(FileDialog::Save, "Save the COGO Log", this->program().userAppData + "cogo-log.txt", {"Text (*.txt)"});
    if (!chosen || chosen->empty()) return;
    try {
      this->program().writeOutputFile(*chosen, lstLog.items);
      lblResult.caption = "The log is saved as " + *chosen + ".";
    } catch (const RunTimeError& e) {
      shell().msgBox(kTitle, e.what(), Icon::Exclamation);
    }
  });
  add("btnPrint", btnPrint).click([this] { shell().print({"COGO", lstLog.items, {}}); });
  add("btnReturn", btnReturn).click([this] { unload(); });
  chooseForm(cmbForm.text);
  showState();
}

void frmCogo::opened() {
  lblResult.caption.clear();
  map_.reset();
  showState();
}

void frmCogo::showState() {
  ProjectSession* s = program().project.get();
  try {
    lblProject.caption = s ? s->status() : "No project is open: make or open one from the main window's Project menu.";
  } catch (const ProjectError& e) {
    lblProject.caption = e.what();
  }
  for (Button* b : {&btnRun, &btnFormRun}) b->enabled = s != nullptr;
  btnUndo.enabled = s && s->canUndo();
}

int frmCogo::formIndex() const {
  for (std::size_t i = 0; i < forms().size(); ++i)
    if (cmbForm.text == forms()[i].name) return static_cast<int>(i);
  return 0;
}

void frmCogo::chooseForm(const std::string& name) {
  cmbForm.text = name;
  const CogoForm& f = forms()[static_cast<std::size_t>(formIndex())];
  for (std::size_t i = 0; i < kFields; ++i) {
    const bool used = i < f.captions.size();
    lblFields[i].caption = used ? f.captions[i] : "";
    lblFields[i].visible = txtFields[i].visible = used;
  }
}

std::string frmCogo::formCommand() const {
  const CogoForm& f = forms()[static_cast<std::size_t>(formIndex())];
  std::string out;
  for (std::string part : f.parts) {
    if (part.front() == '{') {
      const std::size_t field = static_cast<std::size_t>(part[1] - '0');
      std::string text = txtFields[field].text;
      text.erase(0, text.find_first_not_of(" \t"));
      text.erase(text.find_last_not_of(" \t") + 1);
      const auto question = part.find('?');
      if (text.empty()) {
        if (question != std::string::npos) continue;  // a part the command may leave out
        return "";
      }
      if (question != std::string::npos) text = part.substr(question + 1, part.size() - question - 2) + " " + text;
      // A direction field takes a bearing (N 45-30-15 E) or an azimuth.
      if (part.find(":direction") != std::string::npos) text = (cogoBearing(text) ? "BEARING " : "AZIMUTH ") + text;
      part = text;
    }
    out += (out.empty() ? "" : " ") + part;
  }
  return out;
}

void frmCogo::runForm() {
  const std::string command = formCommand();
  if (command.empty()) {
    shell().msgBox(kTitle, "Fill in every field the form asks for (only \"Nearer to point\" and \"Offset\" may be left empty).", Icon::Information);
    return;
  }
  runCommand(command);
}

void frmCogo::runCommand(const std::string& line) {
  ProjectSession* s = program().project.get();
  if (!s) return;
  State& state = *state_;
  const int places = std::max(0, static_cast<int>(std::find(cmbSeconds.items.begin(), cmbSeconds.items.end(), cmbSeconds.text) - cmbSeconds.items.begin()));
  if (!state.engine || state.session != s || state.places != places) {
    CogoOptions options;
    try {
      options = cogoOptionsOf(s->file().settings());
    } catch (const CrsError& e) {
      shell().msgBox(kTitle, e.what(), Icon::Exclamation);
      return;
    }
    options.secondsPlaces = places > 3 ? 3 : places;
    state.engine = std::make_unique<CogoEngine>([s](const std::string& n) { return s->file().find(n); }, options);
    state.session = s;
    state.places = places;
  }
  std::string first;
  std::istringstream(line) >> first;
  if (first.empty() || first.front() == '#') return;
  log(line);
  lastPoints_.clear();
  try {
    const auto result = state.engine->run(line, static_cast<int>(lstLog.items.size()));
    for (const std::string& a : state.engine->answer()) log(a);
    const std::vector<ProjectPoint> made = state.engine->made();
    if (!made.empty()) {
      state.engine->clearMade();
      const StoreCounts c = s->store(made, OnDuplicate::Skip, "COGO", upper(first) + " " + made.front().number);
      log("  stored " + std::to_string(c.stored) + (c.stored == 1 ? " point" : " points") + " in " + s->name());
    }
    for (const ProjectPoint& p : made) lastPoints_.emplace_back(p.northing, p.easting);
    if (result && (*result).contains("legs"))
      for (const auto& leg : (*result)["legs"])
        for (const char* end : {"from", "to"})
          if (const auto p = s->file().find(leg[end].get<std::string>())) lastPoints_.emplace_back(p->northing, p->easting);
    lblResult.caption = result ? "" : "MAPCHECK: give its LINE and CURVE calls, then END.";
    txtCommand.text.clear();
  } catch (const CogoError& e) {
    log("  ! " + std::string(e.what()));
    lblResult.caption = std::string(e.what()) + ".";
  } catch (const ProjectError& e) {
    log("  ! " + std::string(e.what()));
    lblResult.caption = std::string(e.what()) + ".";
  }
  map_.reset();
  showState();
}

Picture frmCogo::map() {
  ProjectSession* s = program().project.get();
  if (!map_ || !s || s->version() != mapVersion_) {
    Picture m;
    if (!s) {
      m.hint = "No project is open.";
    } else {
      mapVersion_ = s->version();
      const long long n = s->file().count();
      if (n > 20000) {
        m.hint = "The map draws a project of up to 20,000 points.";
      } else if (n == 0) {
        m.hint = "The project holds no point yet.";
      } else {
        m.mapUnits = s->file().settings().unit;
        for (const ProjectPoint& p : s->file().page(0, 20000)) {
          PictureMark mark = markAt({p.easting, p.northing});
          mark.radius = 3;
          mark.tip = "Point " + p.number + (p.description.empty() ? "" : ": " + p.description);
          m.marks.push_back(mark);
          PictureText label;
          label.at = mark.at;
          label.text = p.number;
          label.place = Place::AboveRight;
          label.ifRoom = true;
          m.texts.push_back(std::move(label));
        }
        m.caption = s->name() + ": a click on a point picks its number";
      }
    }
    map_ = std::move(m);
  }
  Picture out = *map_;
  if (lastPoints_.size() > 1 && !out.marks.empty()) {
    PictureLine line;
    line.ink = Ink::Accent;
    for (const auto& [n, e] : lastPoints_) line.points.push_back({e, n});
    out.lines.push_back(std::move(line));
  }
  for (const auto& [n, e] : lastPoints_) {
    PictureMark mark = markAt({e, n}, Ink::Accent);
    mark.filled = true;
    mark.radius = 5;
    if (!out.marks.empty()) out.marks.push_back(mark);
  }
  return out;
}

void frmCogo::mapClicked(PicturePoint at, double tolerance) {
  const Picture m = map();
  const PictureText* best = nullptr;
  double nearest = tolerance;
  for (const PictureText& t : m.texts) {
    const double d = std::hypot(t.at.x - at.x, t.at.y - at.y);
    if (d <= nearest) nearest = d, best = &t;
  }
  if (!best) return;
  for (std::size_t i = 0; i < kFields; ++i)
    if (pickInto == "txtField" + std::to_string(i + 1)) {
      TextBox& field = txtFields[i];
      // The corners of an area gather one after another.
      field.text = formIndex() == static_cast<int>(forms().size()) - 1 && !field.text.empty() ? field.text + " " + best->text : best->text;
      return;
    }
  txtCommand.text += (txtCommand.text.empty() || txtCommand.text.back() == ' ' ? "" : " ") + best->text;
  focusRequest = "txtCommand";
}

}  // namespace tervalo
