#pragma once
// The COGO window: a command line (INVERSE 101 102 answers at once), the
// same commands as small forms of fields, and a map of the project's
// points on which a click picks a point's number into the field or line
// being typed. Every command and its answer go to the log, which is saved
// and printed as a report; the points a command makes go into the project
// as one step of its Undo.

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/form_model.h"
#include "app/picture.h"

namespace tervalo {

class frmCogo : public FormModel {
 public:
  explicit frmCogo(Program& program);

  Label lblProject;
  Label lblCommand{"Command:"};
  TextBox txtCommand;
  Button btnRun{"Run"};
  Label lblForm{"Or fill in:"};
  ComboBox cmbForm;
  static constexpr std::size_t kFields = 6;
  std::array<Label, kFields> lblFields;
  std::array<TextBox, kFields> txtFields;
  Button btnFormRun{"Compute"};
  Label lblSeconds{"Seconds shown to:"};
  ComboBox cmbSeconds{"1\"", {"1\"", "0.1\"", "0.01\"", "0.001\""}};
  ListBox lstLog;
  Label lblResult;
  Button btnUndo{"Undo"};
  Button btnClearLog{"Clear Log"};
  Button btnSaveLog{"Save Log..."};
  Button btnPrint{"Print..."};
  Button btnReturn{"Return"};

  // Runs `line` as the command line does: its answer or its refusal into the log.
  void runCommand(const std::string& line);
  // The command the chosen form's fields make, run.
  void runForm();
  void chooseForm(const std::string& name);
  // The command the fields make as they stand ("" while a field is missing).
  std::string formCommand() const;

  // The project's points (up to the Points window's limit), the last
  // command's points and lines marked.
  Picture map();
  // A click on the map: the point there goes into the field last typed in,
  // or onto the end of the command line.
  void mapClicked(PicturePoint at, double tolerance);
  // The field the cursor is in, by control name, for the map's picks.
  std::string pickInto = "txtCommand";

  void opened() override;

 private:
  void showState();
  void log(const std::string& line) { lstLog.items.push_back(line); lstLog.selected = static_cast<int>(lstLog.items.size()) - 1; }
  int formIndex() const;
  struct State;
  std::shared_ptr<State> state_;  // the engine, alive from command to command (a MAPCHECK spans lines)
  std::vector<std::pair<double, double>> lastPoints_;  // northing, easting of what the last command touched
  int mapVersion_ = -1;
  std::optional<Picture> map_;
};

}  // namespace tervalo
