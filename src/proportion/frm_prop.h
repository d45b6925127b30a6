#pragma once
// The proportion form: a value interpolated along stationing, or the station
// of a value, written to the output preview.

#include "app/form_model.h"
#include "proportion/proportion.h"

namespace tervalo {

class frmProp : public FormModel {
 public:
  explicit frmProp(Program& program);

  Frame frmInput{"Input"};
  Label lblBegSta{"Beginning Station"};
  TextBox txtBegSta;
  Label lblBegValue{"Value at Beginning Station"};
  TextBox txtBegValue;
  Label lblEndSta{"Ending Station or Taper Ratio (S:V)"};
  TextBox txtEndSta;
  Label lblEndValue{"Value at Ending Station"};
  TextBox txtEndValue;
  CheckBox chkBetween{false, "Equation between beginning and ending stations."};
  Label lblStaIn{" Station In:", false};
  TextBox txtStaIn{"", false, true, ""};
  Label lblStaOut{"Out:", false};
  TextBox txtStaOut{"", false, true, ""};
  CheckBox chkMetric{false, "Use Metric Units"};
  Frame frmStation{"Station From Value"};
  Label lblValue{"Compute the Station at which this Value oocurs."};
  TextBox txtValue;
  Frame frmValue{"Value From Station"};
  Label lblFirst{"Single Station  or  First Station of a Range"};
  TextBox txtFirst;
  Label lblLast{"Last Station of a Range (Blank for Single Station)"};
  TextBox txtLast;
  Label lblIncrement{"Increment Distance Within a Range of Stationing"};
  TextBox txtIncrement;
  CheckBox chkRound{false, "Round stations after equation to multiples of increment distance.", false};
  Frame frmCompute{"Compute"};
  Button btnCalc{"Calculate"};
  Button btnClear{"Clear"};
  Button btnReturn{"Return"};

  // The program's procedures, in the order Main runs them.
  void Main();
  void readInput();
  void checkData1();
  void convertStations();
  void checkData2();

  void chkBetween_Click();
  void btnClear_Click();

  ProportionInput input;  // kept between calculations, as the program keeps it

 private:
  double convert(const TextBox& field);
  void warn(const char* text);
  double lastConverted_ = 0;
};

}  // namespace tervalo
