#pragma once
// Job files: a calculator's inputs and button presses, played by the
// headless runner exactly as a user at the window would.

#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "app/shell.h"
#include "crs/crs.h"

namespace tervalo {

class FormRegistry;

// A job that cannot be played: unknown calculator, window or control, a
// value of the wrong kind, malformed JSON. Nothing has run.
class JobError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct JobStep {
  std::string form;  // the window the step works in
  // Ordered: a text typed (then the field left), or a check box or option
  // button clicked so that it ends up true or false.
  std::vector<std::pair<std::string, std::variant<std::string, bool>>> set;
  std::vector<std::string> click;  // buttons and menu entries, pressed in order
};

// The job format this program writes and reads; a job of a higher version
// comes from a newer program and is refused.
inline constexpr int kJobVersion = 1;

struct Job {
  int version = kJobVersion;
  std::string calculator;  // "secsub", "hcurve", "vcurve", "grading", "proportion"
  std::vector<JobStep> steps;
  std::vector<Answer> answers;  // to Yes/No boxes, in order; then yes
  std::vector<std::string> files;  // to file dialogs, in order; then the dialog is cancelled
  CrsChoice crs;  // the coordinate system of its coordinates; none when the job names none
  // The survey project (NAME.gpkg) its point numbers are looked up in and its corners stored in; "" for none.
  std::string project;
};

// Parses and checks a job against the program's windows; JobError says
// what is wrong and where.
Job parseJob(const std::string& jsonText, const FormRegistry& registry);

// Reads and parses a job file; JobError when it cannot be read or played.
// A relative name of a file the job reads (the main window's source file)
// is taken from the job file's folder.
Job readJobFile(const std::string& file, const FormRegistry& registry);

class FormModel;

// Plays one step in its window as a user would: the sets in order, then the
// clicks, stopping when the window closes.
void playStep(FormModel& form, const JobStep& step);

}  // namespace tervalo
