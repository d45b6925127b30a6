#include "app/frm_main.h"

#include <filesystem>
#include <span>

#include "app/job.h"
#include "app/program.h"
#include "text/input_file.h"
#include "app/recovery.h"
#include "app/shell.h"
#include "points/readers.h"
#include "project/frm_points.h"
#include "project/frm_shared_project.h"
#include "project/project_session.h"

namespace tervalo {

frmMain::frmMain(Program& program)
    : FormModel(program, "frmMain", " Ardel Coordinate Geometry Program  (Tervalo32)") {
  add("Label1", Label1);
  add("txtInFile", txtInFile);
  add("btnInFile", btnInFile).click([this] { btnInFile_Click(); });
  add("Label2", Label2);
  add("txtOutInp", txtOutInp);
  add("btnOut1", btnOut1).click([this] { chooseOutput(txtOutInp); });
  add("Label3", Label3);
  add("txtReport", txtReport);
  add("btnOut2", btnOut2).click([this] { chooseOutput(txtReport); });
  add("btnContinue", btnContinue).click([this] { btnContinue_Click(); });
  add("lblNotice", lblNotice);
  add("lblProject", lblProject);
  add("mnuSecSub", mnuSecSub).click([this] { mnuSecSub_Click(); });
  add("mnuCurve", mnuCurve);
  // A calculator may save or open inputs: the recent list is shown afresh after it.
  auto openCalculator = [this](const char* menu) {
    return [this, menu] {
      this->program().openCalculator(menu);
      showRecent();
    };
  };
  add("mnuChorz", mnuChorz).click(openCalculator("mnuChorz"));
  add("mnuCvert", mnuCvert).click(openCalculator("mnuCvert"));
  add("mnuMisc", mnuMisc);
  add("mnuMgrade", mnuMgrade).click(openCalculator("mnuMgrade"));
  add("mnuMprop", mnuMprop).click(openCalculator("mnuMprop"));
  add("mnuHelp", mnuHelp).click([this] {
    if (this->program().registry().hasForm("frmAbout")) shell().showModal(this->program().form("frmAbout"));
  });
  add("mnuExit", mnuExit).click([this] { unload(); });
  // The windows beside the calculators; what they saved shows in Recent after.
  const auto window = [this](const char* form) {
    return [this, form] {
      if (this->program().registry().hasForm(form)) shell().showModal(this->program().form(form));
      showRecent();
    };
  };
  add("mnuTownship", mnuTownship).click(window("frmTownship"));
  add("mnuTraverse", mnuTraverse).click(window("frmTraverse"));
  add("mnuRestore", mnuRestore).click(window("frmRestore"));
  add("mnuProject", mnuProject);
  add("mnuProjectNew", mnuProjectNew).click([this] { newProject(); });
  add("mnuProjectOpen", mnuProjectOpen).click([this] {
    const auto chosen = shell().chooseFile(FileDialog::Open, "Open Project", "", {"Tervalo projects (*.gpkg)", "All files (*)"});
    if (chosen && !chosen->empty()) openProjectFile(*chosen);
  });
  add("mnuProjectShared", mnuProjectShared).click([this] { sharedProject(); });
  add("mnuProjectRecent", mnuProjectRecent);
  for (std::size_t i = 0; i < mnuProjectRecentFiles.size(); ++i) {
    mnuProjectRecentFiles[i].parent = "mnuProjectRecent";
    add("mnuProjectRecent" + std::to_string(i + 1), mnuProjectRecentFiles[i]).click([this, i] {
      const auto& files = this->program().recentProjects.files();
      if (i < files.size()) openProjectFile(files[i]);
    });
  }
  const auto points = [this](void (frmPoints::*act)()) {
    return [this, act] {
      if (!this->program().project) return;
      (this->program().form<frmPoints>("frmPoints").*act)();
      showProject();
      showRecent();
    };
  };
  add("mnuProjectImport", mnuProjectImport).click(points(&frmPoints::import));
  add("mnuProjectExport", mnuProjectExport).click(points(&frmPoints::exportPoints));
  add("mnuProjectPoints", mnuProjectPoints).click([this] {
    if (this->program().project) shell().showModal(this->program().form("frmPoints"));
    showProject();
    showRecent();
  });
  add("mnuProjectCogo", mnuProjectCogo).click([this] {
    if (this->program().project && this->program().registry().hasForm("frmCogo")) shell().showModal(this->program().form("frmCogo"));
    showProject();
  });
  add("mnuProjectMapcheck", mnuProjectMapcheck).click([this] {
    if (this->program().registry().hasForm("frmMapcheck")) shell().showModal(this->program().form("frmMapcheck"));
    showProject();
  });
  add("mnuProjectNetwork", mnuProjectNetwork).click([this] {
    if (this->program().registry().hasForm("frmNetwork")) shell().showModal(this->program().form("frmNetwork"));
    showProject();
  });
  add("mnuProjectAlignment", mnuProjectAlignment).click([this] {
    if (this->program().registry().hasForm("frmAlignment")) shell().showModal(this->program().form("frmAlignment"));
    showProject();
  });
  add("mnuProjectSurveyor", mnuProjectSurveyor).click([this] {
    if (this->program().project && this->program().registry().hasForm("frmSurveyor")) shell().showModal(this->program().form("frmSurveyor"));
  });
  add("mnuProjectClose", mnuProjectClose).click([this] { closeProject(); });
  add("mnuOptions", mnuOptions).click([this] { shell().showModal(this->program().form("frmSetOptions")); });
  add("mnuRecent", mnuRecent);
  for (std::size_t i = 0; i < mnuRecentFiles.size(); ++i) {
    mnuRecentFiles[i].parent = "mnuRecent";
    add("mnuRecent" + std::to_string(i + 1), mnuRecentFiles[i]).click([this, i] { openRecent(i); });
  }
  add("mnuPrevious", mnuPrevious).click([this] {
    mnuPrevious_Click();
    showRecent();
  });
  add("mnuHistory", mnuHistory);
  for (std::size_t i = 0; i < mnuHistoryFiles.size(); ++i) {
    mnuHistoryFiles[i].parent = "mnuHistory";
    add("mnuHistory" + std::to_string(i + 1), mnuHistoryFiles[i]).click([this, i] { openKept(i); });
  }
  add("mnuHistoryFolder", mnuHistoryFolder).click([this] { shell().openFolder(this->program().history().folder()); });
  add("mnuHistoryKeep", mnuHistoryKeep).click([this] {
    shell().showModal(this->program().form("frmHistory"));
    showRecent();
  });
  showRecent();
  enableMenus();
  // Proposed from the start, so that Continue always has files to write.
  proposeOutputNames();
}

namespace {

// Entries naming files, the first of them numbered 1 to 0 for the keyboard.
void listFiles(std::span<MenuItem> items, const std::vector<std::string>& files) {
  for (std::size_t i = 0; i < items.size(); ++i) {
    MenuItem& item = items[i];
    item.visible = i < files.size();
    // "&" would mark a mnemonic: a file name shows its own.
    std::string name = i < files.size() ? files[i] : "";
    for (std::size_t at = name.find('&'); at != std::string::npos; at = name.find('&', at + 2)) name.insert(at, "&");
    item.caption = item.visible ? "&" + std::to_string((i + 1) % 10) + "  " + name : "";
  }
}

}  // namespace

void frmMain::showRecent() {
  listFiles(mnuRecentFiles, program().recent.files());
  listFiles(mnuProjectRecentFiles, program().recentProjects.files());
  mnuProjectRecent.enabled = !program().recentProjects.files().empty();
  std::vector<std::string> kept;
  if (program().keepsHistory)
    for (const auto& file : program().history().files()) kept.push_back(file.filename().string());
  if (kept.size() > mnuHistoryFiles.size()) kept.resize(mnuHistoryFiles.size());
  listFiles(mnuHistoryFiles, kept);
  mnuHistory.visible = program().keepsHistory;
}

void frmMain::showProject() {
  ProjectSession* project = program().project.get();
  try {
    lblProject.caption = project ? project->status() : "No project is open.";
  } catch (const ProjectError& e) {
    lblProject.caption = "Project: " + project->name() + " (" + e.what() + ")";
  }
  for (MenuItem* item : {&mnuProjectImport, &mnuProjectExport, &mnuProjectPoints, &mnuProjectCogo, &mnuProjectSurveyor, &mnuProjectClose})
    item->enabled = project != nullptr;
}

bool frmMain::openProjectFile(const std::string& file) {
  try {
    auto opened = std::make_unique<ProjectSession>(openProject(file));
    program().project = std::move(opened);
  } catch (const ProjectError& e) {
    shell().msgBox("Open Project", std::string(e.what()) + ".", Icon::Exclamation);
    return false;
  }
  useProject(file);
  return true;
}

void frmMain::useProject(const std::string& file) {
  // The project's coordinate system is every tool's while it is open.
  const CrsChoice& crs = program().project->file().settings().crs;
  program().crs.epsg = crs.epsg;
  program().crs.foot = crs.foot;
  program().recentProjects.add(file);
  showProject();
  showRecent();
}

void frmMain::reopenLastProject() {
  const auto& files = program().recentProjects.files();
  std::error_code ec;
  if (program().project || files.empty() || !std::filesystem::is_regular_file(files.front(), ec)) return;
  openProjectFile(files.front());
}

void frmMain::sharedProject() {
  if (!program().registry().hasForm("frmSharedProject")) return;
  auto& form = program().form<frmSharedProject>("frmSharedProject");
  shell().showModal(form);
  if (form.chosen.empty()) return;
  if (form.makeNew)
    newProject(form.chosen);
  else
    openProjectFile(form.chosen);
}

void frmMain::newProject(std::string file) {
  if (file.empty()) {
    const auto chosen = shell().chooseFile(FileDialog::Save, "New Project", "", {"Tervalo projects (*.gpkg)"});
    if (!chosen || chosen->empty()) return;
    file = *chosen;
    if (!file.ends_with(".gpkg")) file += ".gpkg";
  }
  // The project's coordinate system, chosen in the Coordinate System window (none: local coordinates).
  if (program().registry().hasForm("frmCrs")) shell().showModal(program().form("frmCrs"));
  ProjectSettings settings;
  settings.crs = program().crs;
  if (settings.crs.none())
    settings.unit = shell().msgBox("New Project",
                                   "The project has no coordinate system: nothing places it on the earth. Are its coordinates in feet? No: in metres.",
                                   Icon::Question, Buttons::YesNo) == Answer::Yes
                        ? "ft"
                        : "m";
  try {
    program().project = std::make_unique<ProjectSession>(createProject(file, settings));
  } catch (const ProjectError& e) {
    shell().msgBox("New Project", std::string(e.what()) + ".", Icon::Exclamation);
    return;
  }
  useProject(file);
}

void frmMain::closeProject() {
  program().project.reset();
  showProject();
}

void frmMain::openKept(std::size_t index) {
  const auto files = program().history().files();
  if (index < files.size()) shell().openInEditor(files[index]);
}

void frmMain::openRecent(std::size_t index) {
  const auto& files = program().recent.files();
  if (index < files.size()) openFile(files[index]);
}

void frmMain::openFile(const std::string& file) {
  // A file of a window's own kind, by its name's ending, opens that window with it.
  const std::pair<const char*, const char*> kinds[] = {{".traverse.json", "frmTraverse"}, {".rw5", "frmTraverse"},
                                                       {".restore.json", "frmRestore"}, {".plan.json", "frmTownship"}};
  std::string lower = file;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const auto& [ending, window] : kinds)
    if (lower.ends_with(ending) && program().registry().hasForm(window)) {
      FormModel& form = program().form(window);
      if (form.openPath(file)) shell().showModal(form);
      showRecent();
      return;
    }
  if (lower.ends_with(".gpkg")) {
    openProjectFile(file);
  } else if (lower.ends_with(".json")) {
    reopenJobFile(file);
  } else {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(file, ec)) {
      shell().msgBox("Input File Error!", "File does not exist.", Icon::Critical);
      return;
    }
    useSourceFile(file);
  }
  showRecent();
}

void frmMain::reopenJobFile(const std::string& file) {
  Job job;
  try {
    job = readJobFile(file, program().registry());
  } catch (const JobError& e) {
    shell().msgBox("Open Inputs", "The file " + file + " cannot be opened: " + e.what() + ".", Icon::Exclamation);
    return;
  }
  if (file != previousInputsFile(program().userAppData).string()) program().recent.add(file);
  shell().reopen(job);
}

void frmMain::mnuPrevious_Click() {
  const std::string file = previousInputsFile(program().userAppData).string();
  std::error_code ec;
  if (!std::filesystem::is_regular_file(file, ec)) {
    shell().msgBox("Reopen Previous Inputs", "No inputs are kept yet: a calculator window keeps its inputs when it closes.",
                   Icon::Information);
    return;
  }
  reopenJobFile(file);
}

void frmMain::proposeOutputNames() {
  txtOutInp.text = program().userAppData + kGeopakFileName;
  txtReport.text = program().userAppData + kReportFileName;
}

// A calculator whose window is not part of this build has its entry greyed.
void frmMain::enableMenus() {
  const FormRegistry& registry = program().registry();
  mnuSecSub.enabled = registry.hasForm("frmSecSub");
  const std::pair<const char*, MenuItem*> calculators[] = {
      {"mnuChorz", &mnuChorz}, {"mnuCvert", &mnuCvert}, {"mnuMgrade", &mnuMgrade}, {"mnuMprop", &mnuMprop}};
  for (const auto& [menu, item] : calculators) {
    const CalculatorInfo* info = registry.calculatorByMenu(menu);
    item->enabled = info && info->openFromMenu && registry.hasForm(info->form);
  }
  mnuHelp.enabled = registry.hasForm("frmAbout");
}

void frmMain::readInputFile() {
  showSourceNotice("");
  ReadNotes notes;
  if (program().readSource) {
    notes = program().readSource(program().inputFileName, program().formats, program().points);
  } else {
    getFileFormat(program().inputFileName, program().formats);
    notes = readFile(program().inputFileName, program().formats, program().points);
  }
  showSourceNotice(notes.message());
  // What the file gave, in the main window only.
  const std::string given = sourceGiven(std::filesystem::path(program().inputFileName).filename().string(),
                                        program().formats, program().points);
  lblNotice.caption = given + (lblNotice.caption.empty() ? "" : "\n" + lblNotice.caption);
  lblNotice.visible = true;
  program().recent.add(program().inputFileName);
  showRecent();
}

void frmMain::showSourceNotice(const std::string& text) {
  program().sourceNotice = text;
  lblNotice.caption = text;
  lblNotice.visible = !text.empty();
}

void frmMain::btnContinue_Click() {
  program().inputFileName = txtInFile.text;
  std::error_code ec;
  if (!std::filesystem::exists(program().inputFileName, ec)) {
    shell().msgBox("Input File Error!", "File does not exist.", Icon::Critical);
    return;
  }
  // A folder, a pipe or a device is never opened: said, and the window stays.
  try {
    checkInputFile(program().inputFileName);
  } catch (const InputFileError& e) {
    shell().msgBox("Input File Error!", "\"" + program().inputFileName + "\" " + e.what() + ".", Icon::Critical);
    return;
  }
  readInputFile();
  if (program().registry().hasForm("frmSecSub")) shell().showModal(program().form("frmSecSub"));
  showRecent();
}

void frmMain::btnInFile_Click() {
  if (const auto chosen = chooseSourceFile(txtInFile.text)) useSourceFile(*chosen);
}

void frmMain::useSourceFile(const std::string& file) {
  txtInFile.text = file;
  program().inputFileName = file;
  readInputFile();
}

void frmMain::chooseOutput(TextBox& field) {
  const auto chosen = shell().chooseFile(FileDialog::Save, "Select the Output File", field.text,
                                         &field == &txtOutInp ? std::vector<std::string>{"GEOPAK input (*.inp)", "All files (*)"}
                                                              : std::vector<std::string>{"Reports (*.txt *.rpt)", "All files (*)"});
  if (chosen && !chosen->empty()) field.text = *chosen;
}

void frmMain::mnuSecSub_Click() {
  program().points.clearRecords(0, PointList::kSourceCapacity - 1);
  showSourceNotice("");
  proposeOutputNames();
}

void frmMain::dropFiles(const std::string& control, const std::vector<std::string>& files) {
  if (files.empty()) return;
  if (control == "txtInFile") {
    runEvent([&] { useSourceFile(files.front()); });
  } else if (control == "txtOutInp") {
    txtOutInp.text = files.front();
  } else if (control == "txtReport") {
    txtReport.text = files.front();
  }
}

}  // namespace tervalo
