#pragma once
// The Coordinate System window: none (local coordinates), or a projected
// system by its EPSG code or picked from PROJ's database by searching its
// name; the foot of the coordinates where the system is in metres; the
// mean project elevation for ground distances. Sets the program's system
// for exports, reports and saved inputs.

#include "app/form_model.h"

namespace tervalo {

class frmCrs : public FormModel {
 public:
  explicit frmCrs(Program& program);

  OptionButton optNone{true, "None (local coordinates)"};
  OptionButton optSystem{false, "A projected system:"};
  Label lblSearch{"Search PROJ's database (name or code):"};
  TextBox txtSearch;
  ListBox lstSystems;
  Label lblEpsg{"EPSG code:"};
  TextBox txtEpsg;
  Label lblSystem;  // the system the code names, or why it is none
  Frame fraFoot{"Coordinates in"};
  OptionButton optSystemUnit{true, "The system's own unit"};
  OptionButton optUsFoot{false, "US survey feet"};
  OptionButton optIntlFoot{false, "International feet"};
  Label lblElevation{"Mean project elevation, above the ellipsoid (for ground lengths):"};
  TextBox txtElevation;
  Button btnOK{"OK"};
  Button btnCancel{"Cancel"};

  void opened() override;
  void btnOK_Click();

 private:
  void search();
  void showSystem();
  std::vector<int> listed_;  // the codes of lstSystems' rows
};

}  // namespace tervalo
