#pragma once
// The section subdivision form: the known corners of one section, typed or
// looked up by point number, its location and record chains; Continue
// computes every missing corner and writes the report and the GEOPAK file.

#include <array>
#include <optional>
#include <string>

#include "app/form_model.h"
#include "app/picture.h"
#include "export/corner_map.h"
#include "secsub_out/corner_record.h"
#include "secsub_out/grid_ground.h"
#include "secsub/notices.h"
#include "secsub/section_record.h"
#include "secsub/township_rules.h"
#include "secsub_out/names.h"

namespace tervalo {

// The five fields of one corner slot.
struct SlotFields {
  TextBox pn;  // point number
  TextBox xc;  // X
  TextBox yc;  // Y
  TextBox pf;  // feature code
  TextBox pd;  // description
};

// One irregular quarter-mile's record length and its caption, hidden
// until the section's location shows it.
struct ChainField {
  const char* name = "";  // "NofW": the controls are txtNofWchain and lblNofWchain
  TextBox text{"", false, true, ""};
  Label caption{"", false, true};
  // Holds the regular "20" that a township-rule pass put there, untouched since.
  bool defaulted = false;
};

class frmSecSub : public FormModel {
 public:
  explicit frmSecSub(Program& program);

  Frame Frame24{"Enter Section Data"};
  Label lblSection{"Section"};
  TextBox txtSection;
  Label lblTownship{"Township"};
  TextBox txtTwp;
  Label lblRange{"Range"};
  TextBox txtRange;
  OptionButton optEast{false, "East"};
  OptionButton optWest{true, "West"};
  Label lblPM{"P.M."};
  TextBox txtPM;
  CheckBox chk1{false, "South Section Line is on a Correction Line", false};
  CheckBox chk2{false, "North Section Line is on a Correction Line", false};
  CheckBox chk4{false, "West Section Line is on the Principal Meridian", false};
  CheckBox chk5{false, "East Section Line is on the Principal Meridian", false};
  CheckBox chkAddHeader{false, "Add Header Data"};
  CheckBox chkDefaults{true, "Use KV PLS Defaults"};
  Frame FrameAPN{"Automatic Point Numbering"};
  OptionButton optIncr{true, "Increment Numbers of All Unedited Points Beginning With:"};
  TextBox txtIncr;
  OptionButton optUnique{false, "Assign Unique Numbers for All Points"};
  Frame frmSection{"Enter point numbers or X,Y coordinates in the fields below."};
  std::array<SlotFields, slot::count> slots;
  // In the order of kChainFields: W line, E line, N line, S line.
  std::array<ChainField, 8> chains;
  // After a run: what it did that its numbers alone do not show (a corner
  // on another corner, a corner without a number). Hidden when empty.
  Label lblNotice{"", false};
  Button btnContinue{"Continue"};
  Button btnReturn{"Return"};
  Button btnClear{"Clear"};
  CheckBox chkLengths{false, "Show Line Lengths"};       // each line's length along it in the drawing
  CheckBox chkWhy{false, "Write Corner Record"};         // a third file: why each corner is where it is
  // In the chosen coordinate system: a later report page, the corner record
  // and Tervalo points give latitudes, longitudes, grid and ground.
  CheckBox chkGround{false, "Add Latitudes and Grid to Ground"};
  CheckBox chkEvidence{false, "Add Corner Evidence Page"};  // a later report page: what was found at each corner
  Button btnSaveDrawing{"Save Drawing...", true, false};  // once there is a drawing
  Button btnExport{"Export...", true, false};            // once there are corners to export
  Button btnPrint{"Print Report...", true, false};       // the report, then the drawing on its own page
  Button btnStore{"Store in Project", true, false};      // the corners into the open project, after a run
  Button btnPlat{"Plat...", true, false};                // the plat sheet of the aliquot parts, after a run
  Button btnRestoreCorner{"Restore Corner..."};  // the slot the cursor was last in, as a lost corner
  // The coordinate system of the coordinates, for the exports and the report's later pages.
  Label lblCrs{"Coordinate system: local coordinates"};
  Button btnCrs{"Coordinate System..."};

  SectionRecord record;   // lives as long as the form
  std::vector<std::string> report;  // the last run's report, as written
  bool pointFound = false;  // whether the last point-number lookup matched
  // After a run: which slots the run computed (the rest were held).
  std::array<bool, slot::count> computed{};
  std::array<std::optional<CornerRule>, slot::count> placedBy;  // how the run placed each computed slot
  CornerOrigins origins;  // after a run: where every position came from
  // Each slot's last lookup in the point file: its name, the X and Y texts
  // it gave, and the evidence the file gave apart from the description.
  struct Lookup {
    std::string point, x, y;
    std::optional<std::string> evidence;
  };
  std::array<std::optional<Lookup>, slot::count> lookups;
  // Whether slot `s` still holds what its last lookup gave.
  bool lookedUp(int s) const;
  // Each slot's last restoration: the rule in words and the X and Y texts it gave.
  std::array<std::optional<std::array<std::string, 3>>, slot::count> restorations;
  // The slot the cursor was last in, for Restore Corner.
  int lastSlot = -1;
  RunNotices notices;
  CornerNaming runNaming;  // the last run's names and descriptions, for the exports
  std::optional<GridGround> ground;  // the last run's latitudes and factors, when asked for
  bool hasRun = false;

  ChainField& chain(const std::string& name);

  // Events.
  void pointNumberChanged(int s);
  void pointNumberLeft(int s);
  void txtSection_LostFocus();
  void applyTownshipRules();
  void chkDefaults_Click();
  void chkAddHeader_Click();
  void btnClear_Click();
  void btnSaveDrawing_Click();
  // Restores slot `s` as a lost corner in the Corner Restoration window;
  // a restored position comes back into the slot.
  void restoreSlot(int s);
  // The run's corners for another program: PNEZD or Tervalo points, LandXML
  // or DXF, as the chosen name's ending says.
  void btnExport_Click();
  void btnStore_Click();
  void btnPlat_Click();
  void Main();

  // The last run's corners and lines for the exports: each corner's status
  // (entered, computed or restored) and the rule that placed it.
  CornerMap runMap(bool uniqueNames = false) const;
  // Why slot `s` is where the last run left it; empty before a run.
  std::string why(int s) const;
  std::string drawingTitle() const;  // "Section 14, T115N, R22W"
  // "explain": for every present position of the last run, its rule and why in words.
  void addToResult(nlohmann::ordered_json& result) const override;

  // The drawing of the last run; empty (with a hint) before a run and after Clear.
  Picture drawing() const;

  // The run's procedures, in their order.
  bool checkHeld16ths();
  bool getFormValues();
  void checkForMissingChainData();
  void labelBlankPts(const CornerNaming& naming);
  // The section's inputs include the main window's source and output names.
  std::vector<FormModel*> inputForms() override;
  // Opening over the main window: the source file's notice comes along.
  void opened() override;
  // The names and feature codes the output files give each present
  // position; returns the positions that had no name and took their corner name.
  std::vector<int> nameOutputPositions(const CornerNaming& naming);

 private:
  static std::string coordinateText(double v);  // as the slots show a coordinate
  // The run's output files as named: the GEOPAK input, the report and, when
  // asked for, the corner record. Two that name one file refuse the run
  // before anything is computed or written, with the names.
  std::optional<std::vector<std::filesystem::path>> runOutputFiles();
  void writeSlotFields(int s);
  void applyChainDefaults();
  void showNotices(const std::vector<std::string>& lines);
  void showCrs();
  // Says in the notice which file an export or Save Drawing wrote, its name
  // a link to its folder.
  void sayWritten(const std::optional<std::filesystem::path>& file);
  std::vector<std::string> writtenFiles;  // since the last run
};

}  // namespace tervalo
