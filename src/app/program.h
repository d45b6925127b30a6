#pragma once
// What one run of the program shares between its windows: the data folder,
// the point list, the file names of the main window, and one model of each
// window, made when first opened and kept until the program ends.

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/header_data.h"
#include "app/output_file.h"
#include "crs/crs.h"
#include "app/history.h"
#include "app/recent_work.h"
#include "points/point_list.h"
#include "points/readers.h"

namespace tervalo {

class FormModel;
class Program;
class ProjectSession;
class Shell;

// A calculator as the main window's menu and the job runner know it.
struct CalculatorInfo {
  std::string job;   // "hcurve": the name a job file uses
  std::string menu;  // "mnuChorz": the main window's menu entry
  std::string form;  // "frmHorzCurve": the calculator's own window
  // What the menu entry does; empty where the main window does it itself.
  std::function<void(Program&)> openFromMenu;
};

// Every window and calculator the program has. Each calculator adds its own
// windows here; the main window, the runner and the views look them up.
class FormRegistry {
 public:
  using Factory = std::function<std::unique_ptr<FormModel>(Program&)>;

  void addForm(std::string name, Factory make);
  void addCalculator(CalculatorInfo info);

  bool hasForm(std::string_view name) const;
  std::unique_ptr<FormModel> make(std::string_view name, Program& program) const;
  std::vector<std::string> formNames() const;

  const CalculatorInfo* calculatorByJob(std::string_view job) const;
  const CalculatorInfo* calculatorByMenu(std::string_view menu) const;
  // The calculator whose own window `form` is; none for the other windows.
  const CalculatorInfo* calculatorByForm(std::string_view form) const;
  const std::vector<CalculatorInfo>& calculators() const { return calculators_; }

 private:
  std::map<std::string, Factory, std::less<>> forms_;
  std::vector<CalculatorInfo> calculators_;
};

// The registry of every window the program has (see forms.cpp).
const FormRegistry& allForms();

class Program {
 public:
  // `dataFolder` ends with a separator; every default output name lies in it.
  Program(Shell& shell, std::string dataFolder, const FormRegistry& registry = allForms());
  ~Program();

  Shell& shell() { return shell_; }
  const FormRegistry& registry() const { return registry_; }

  const std::string userAppData;  // the data folder, ending with "/"
  const double pi;                // 4·atan(1), for every angle conversion

  PointList points;
  FormatFlags formats;
  std::string inputFileName;   // the source coordinate file
  std::string outputFileName;  // the current calculator's output file
  HeaderData header;           // for the section report, kept for the whole run
  // What reading the source file noticed (coordinates cut at a second
  // comma), shown by the main window and again by the section form that
  // opens over it; empty when there is nothing to say.
  std::string sourceNotice;
  // Reads the source file into the point list in place of recognising and
  // reading it whole, when set: a township run gives each section only the
  // points it names from a source read once.
  std::function<ReadNotes(const std::string& file, FormatFlags& formats, PointList& points)> readSource;
  RecentWork recent;  // source files and saved inputs, for the main window's Recent menu
  // The survey projects opened, the last one first: reopened at start.
  RecentWork recentProjects;
  // The project every tool reads its points from and stores them in; none open: the tools read files.
  std::unique_ptr<ProjectSession> project;

  // The one model of that window for this run, made on first use.
  FormModel& form(std::string_view name);
  template <class T>
  T& form(std::string_view name) {
    return dynamic_cast<T&>(form(name));
  }
  // Windows made so far, in the order they were first made.
  const std::vector<FormModel*>& madeForms() const { return order_; }

  // The calculator behind a main-window menu entry: prepares and opens it.
  void openCalculator(std::string_view menu);

  // Writes an output file whole (CRLF lines) and tells the shell;
  // RunTimeError when it cannot be written. `holds` says what it holds
  // ("14-115-22W"), for the name its copy takes in the history.
  void writeOutputFile(const std::filesystem::path& file, const std::vector<std::string>& lines, const std::string& holds = "");
  // Files that belong together, put in place only when all are complete.
  void writeOutputFiles(const std::vector<std::pair<std::filesystem::path, std::vector<std::string>>>& files,
                        const std::string& holds = "");

  // The desktop program keeps every output file a run replaces in the
  // history (the runner, whose jobs repeat, does not).
  bool keepsHistory = false;
  // Where output files go when a caller writes many runs' files as one
  // batch (a township): made whole now, put in place when it finishes.
  WriteBatch* outputBatch = nullptr;
  // The coordinate system of the job's coordinates (none: local), with the
  // mean elevation of the project for ground distances.
  CrsChoice crs;
  History& history() { return history_; }
  // The earlier files the last write kept in the history: each replaced
  // file and its copy.
  std::vector<std::pair<std::filesystem::path, std::filesystem::path>> lastKept;

 private:
  Shell& shell_;
  const FormRegistry& registry_;
  History history_;
  std::map<std::string, std::unique_ptr<FormModel>, std::less<>> forms_;
  std::vector<FormModel*> order_;
};

}  // namespace tervalo
