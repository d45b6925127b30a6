#pragma once
// The Corner Restoration window: a restoration file's lost corners, each
// with its controls (by point number from the source file or typed X and
// Y) and record chains, restored on request with the rule in words and a
// picture; the file saved and opened, the report and the restored corners
// written on request. Opened from the main window's menu, or from a slot of
// the section window, whose corner it restores and gives back.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "app/form_model.h"
#include "app/picture.h"
#include "restore/restoration_file.h"

namespace tervalo {

class frmRestore : public FormModel {
 public:
  explicit frmRestore(Program& program);

  Label lblSource{"Source file:"};
  TextBox txtSource;
  Button btnSource{"Browse"};
  OptionButton optFeet{true, "Feet"};
  OptionButton optMetres{false, "Metres"};
  Label lblBasis{"Basis (true north from grid north, degrees):"};
  TextBox txtBasis{"0"};
  // Each corner's basis from the coordinate system's convergence at its controls.
  CheckBox chkTrueNorth{false, "True north at each corner, from the coordinate system"};
  Label lblCrs{"Coordinate system: local coordinates"};
  Button btnCrs{"Coordinate System..."};
  Label lblCorners{"Lost corners:"};
  ListBox lstCorners;
  Button btnAddCorner{"Add Corner"};
  Button btnRemoveCorner{"Remove Corner"};

  Frame fraCorner{"Corner"};
  Label lblName{"Name"};
  TextBox txtName;
  Label lblMethod{"Method"};
  ComboBox cmbMethod{"auto", {"auto", "single", "double", "three-point", "two-point", "one-point"}};
  Label lblIndex{"Chain index"};
  TextBox txtIndex{"1"};
  Label lblAzimuth{"Record azimuth (one-point)"};
  TextBox txtAzimuth;
  // The four controls: point number, X, Y, record chains.
  struct ControlFields {
    std::string direction;  // "North": txtNorthPoint, txtNorthX, ...
    Label caption;
    TextBox point, x, y, record;
  };
  std::array<ControlFields, 4> controlFields;
  Label lblPointCaption{"Point"}, lblXCaption{"X"}, lblYCaption{"Y"}, lblRecordCaption{"Record ch"};

  Button btnRestore{"Restore"};
  Label lblResult;
  Button btnWriteReport{"Write Report..."};
  // The computed points into the open project, as one step of its Undo; enabled while a project is open.
  Button btnStore{"Store in Project", true, false};
  Button btnReturn{"Return"};

  // The corner the fields show; -1 for none.
  int current = -1;
  void selectCorner(int row);

  void btnRestore_Click();
  void btnWriteReport_Click();
  void btnStore_Click();
  void opened() override;

  // The window's file, as the fields stand.
  RestorationFile file() const { return file_; }
  void setFile(RestorationFile file);

  // Opened for one corner of the section window: the corner named, the
  // section's source file; the restored position, if Restore gave one.
  void openForCorner(const std::string& name, const std::string& source);
  std::optional<Restored> restoredCorner() const;

  // The picture of the shown corner: its controls, the temporary points and
  // the restored corner.
  Picture sketch() const;

  // Save Inputs and Open Inputs keep the restoration file.
  void saveFile();
  bool openPath(const std::string& file) override;
  void openFile();

 private:
  void fieldsToCorner();
  void showCornerList();
  void showResult();
  void showBasis();
  RestorationFile file_;
  std::optional<RestorationRun> run_;  // the last Restore
};

}  // namespace tervalo
