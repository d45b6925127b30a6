#pragma once
// The Traverse window: a traverse's start and backsight, its courses as a
// table (the station reached, how its direction is given, the direction,
// the distance or slope distance and zenith), the point it closes on, the
// adjustment; Adjust shows the report and a sketch with the misclosure.
// The traverse is opened from and saved as a traverse file, or read from a
// data collector's raw file; the report and the adjusted points are written
// on request, and the points exported like a section's corners.

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/form_model.h"
#include "app/picture.h"
#include "traverse/traverse_report.h"

namespace tervalo {

class frmTraverse : public FormModel {
 public:
  explicit frmTraverse(Program& program);

  Label lblSource{"Source file:"};
  TextBox txtSource;
  Button btnSource{"Browse"};
  OptionButton optFeet{true, "Feet"};
  OptionButton optMetres{false, "Metres"};
  CheckBox chkGround{false, "Reduce ground distances to the grid"};
  Label lblCrs{"Coordinate system: local coordinates"};
  Button btnCrs{"Coordinate System..."};
  Label lblStart{"Start point:"};
  TextBox txtStart;
  Label lblStartX{"X"};
  TextBox txtStartX;
  Label lblStartY{"Y"};
  TextBox txtStartY;
  Label lblBacksight{"Backsight point:"};
  TextBox txtBacksight;
  Label lblBackX{"X"};
  TextBox txtBackX;
  Label lblBackY{"Y"};
  TextBox txtBackY;
  Label lblBackAzimuth{"or azimuth:"};
  TextBox txtBackAzimuth;
  Label lblCourses{"Courses:"};
  Button btnAddCourse{"Add Course"};
  Button btnRemoveCourse{"Remove Course"};
  Label lblClose{"Close on point:"};
  TextBox txtClose;
  Label lblCloseX{"X"};
  TextBox txtCloseX;
  Label lblCloseY{"Y"};
  TextBox txtCloseY;
  Label lblCloseAzimuth{"Closing azimuth:"};
  TextBox txtCloseAzimuth;
  Label lblCloseAngle{"Closing angle right:"};
  TextBox txtCloseAngle;
  Label lblAdjust{"Adjustment:"};
  ComboBox cmbAdjust{"Compass rule", {"None", "Compass rule", "Transit rule", "Crandall's method", "Least squares"}};
  Label lblSigmaAngle{"Angle s.e. (\"):"};
  TextBox txtSigmaAngle{"5"};
  Label lblSigmaDistance{"Distance s.e.:"};
  TextBox txtSigmaDistance{"0.01"};
  Label lblPpm{"+ ppm:"};
  TextBox txtPpm{"0"};
  // The allowable closure: a precision of 1:N, and k seconds times the root of the angles.
  Label lblAllowPrecision{"Allowable closure: precision 1:"};
  TextBox txtAllowPrecision{"5000"};
  Label lblAllowAngular{"angular (k√n seconds), k:"};
  TextBox txtAllowAngular{"10"};
  Label lblSideShots;  // the side shots and raw notes the traverse carries from a raw file
  Button btnOpenRaw{"Open Raw File..."};
  Button btnAdjust{"Adjust"};
  Button btnWriteReport{"Write Report...", true, false};
  Button btnExport{"Export...", true, false};
  // The computed points into the open project, as one step of its Undo; enabled while a project is open.
  Button btnStore{"Store in Project", true, false};
  Button btnReturn{"Return"};
  Label lblResult;
  ListBox lstReport;

  // The course table, as typed: one row per course.
  static constexpr std::array<const char*, 6> kColumns{"To", "Direction", "Angle or bearing", "Distance", "Slope", "Zenith"};
  static constexpr std::array<const char*, 4> kTurns{"Azimuth", "Bearing", "Angle right", "Deflection"};
  struct CourseRow {
    std::array<std::string, 6> cells{"", "Angle right", "", "", "", ""};
  };
  std::vector<CourseRow> rows;
  int currentRow = -1;
  int tableVersion = 0;  // changes whenever rows come or go, so the view rebuilds its table
  std::string cell(int row, int column) const;
  void setCell(int row, int column, const std::string& text);

  // The traverse the fields and table give; TraverseFileError naming the
  // field or row that is not what it must be.
  TraverseInput input() const;
  void setInput(const TraverseInput& input);

  void btnAdjust_Click();
  void btnWriteReport_Click();
  void btnExport_Click();
  void btnStore_Click();
  bool openPath(const std::string& file) override;
  void openRaw();
  void openFile();
  void saveFile();

  // What was typed, kept in the data folder when the window closes or the
  // program ends, and given back the next time it opens empty; the file
  // holds the texts as typed, faults and all.
  void keepInputs() override;
  void opened() override;
  static std::filesystem::path keptFile(const std::string& dataFolder);

  // The last Adjust's traverse as adjusted, or a hint before one.
  Picture sketch() const;
  const std::optional<TraverseRun>& run() const { return run_; }

 private:
  // Reads a traverse or raw file the user chooses into the window.
  void open(const std::string& title, const std::vector<std::string>& filters);
  bool read(const std::string& title, const std::string& file);
  void showCrs();
  void showSideShots();
  void showWeights();
  std::vector<std::pair<const char*, TextBox*>> texts();
  bool keptTaken_ = false;
  void changed();  // a field or cell changed: the last result no longer stands
  std::optional<TraverseInput> checkedInput(const std::string& title);
  std::vector<SideShot> sideShots_;
  std::vector<std::string> notes_;
  CrsChoice crs_;
  std::optional<TraverseInput> adjusted_;  // what the last Adjust computed
  std::optional<TraverseRun> run_;
};

}  // namespace tervalo
