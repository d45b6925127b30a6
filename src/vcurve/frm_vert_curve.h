#pragma once
// The vertical curve entry form and its results form.

#include <array>
#include <string>

#include "app/form_model.h"
#include "app/picture.h"
#include "vcurve/listing.h"
#include "vcurve/vertical_curve.h"

namespace tervalo {

class frmVCResults : public FormModel {
 public:
  explicit frmVCResults(Program& program);

  Frame frameCurve{"Curve Data"};
  Label lblPVCstaTitle{"PVC Station:"}, lblPVCsta;
  Label lblPVIstaTitle{"PVI Station:"}, lblPVIsta;
  Label lblPVTstaTitle{"PVT Station:"}, lblPVTsta;
  Label lblPVCelevTitle{"PVC Elevation:"}, lblPVCelev;
  Label lblPVIelevTitle{"PVI Elevation:"}, lblPVIelev;
  Label lblPVTelevTitle{"PVT Elevation:"}, lblPVTelev;
  Label lblEntryTitle{"Entry Grade:"}, lblEntry;
  Label lblExitTitle{"Exit Grade:"}, lblExit;
  Label lblCurLenTitle{"Curve Length:"}, lblCurLen;
  Label lblMinMaxSta{"Min. Station:", false}, lblSta;
  Label lblMinMaxElev{"Min. Elevation:", false}, lblElev;
  Label lblHeadings;
  ListBox lstResults;
  Label lblOut{"Output file:"};
  TextBox txtOut;
  Button btnOut{"Browse"};
  Button btnOutput{"Save"};
  Button btnExport{"Export..."};
  Button btnReturn{"Return"};

  // What Calculate left for the exports.
  VerticalCurve curve;
  bool metric = false;
  std::array<double, 3> profiles{};
  std::vector<ListingRow> listingRows;
  std::optional<std::pair<double, double>> equation;

  // The profile of what Calculate left, drawn beside the list.
  Picture sketch() const;

  void createVoutFile();
  // The profile as LandXML or the listing as CSV, as the chosen name's ending says.
  void btnExport_Click();
};

class frmVertCurve : public FormModel {
 public:
  explicit frmVertCurve(Program& program);

  Label lblEntryGrade{"Entry Grade %"};
  TextBox txtEntryGrade;
  Label lblExitGrade{"Exit Grade %"};
  TextBox txtExitGrade;
  Label lblStation{"Station"};
  TextBox txtStation;
  OptionButton optPI{true, "PVI"};
  OptionButton optPC{false, "PVC"};
  OptionButton optPT{false, "PVT"};
  Label lblElevation{"Elevation"};
  TextBox txtElevation;
  Label lblLength{"Length"};
  TextBox txtLength;
  Label lblStartStation{"Single Station"};
  Label lblStartStation2{"or Starting Station"};
  TextBox txtStartStation;
  Label lblEndStation{"to Ending Station"};
  TextBox txtEndStation;
  Label lblIncrement{"@ Increment"};
  TextBox txtIncrement{"", true, false, ""};
  CheckBox chkExact{false, "Exact", true, false};
  Frame frameUnits{"Units"};
  CheckBox chkMetric{false, "Metric"};
  Label lblProfiles{"Parallel Profiles"};
  TextBox txtProfile1, txtProfile2, txtProfile3;
  Label lblEquationIn{"Station Equation IN"};
  TextBox txtEquationIn;
  Label lblEquationOut{"Station Equation OUT"};
  TextBox txtEquationOut;
  Button btnCalculate{"Calculate"};
  Button btnReturn{"Return"};
  Button btnClear{"Clear"};

  void Main();
  void readInput();
  // The station text checked: a text without "+" ends the program; one
  // without "." gains ".000". Returns the normalised text.
  std::string checkStation(std::string text);
  void txtEndStation_Change();
  void btnClear_Click();

  VerticalCurve curve;  // the last calculation's
};

}  // namespace tervalo
