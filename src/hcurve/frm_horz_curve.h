#pragma once
// The horizontal curve form: two elements and an optional station in; every
// element and PC, PI, PT out, and a small text file.

#include <string>

#include "app/form_model.h"
#include "app/picture.h"
#include "hcurve/curve.h"

namespace tervalo {

class frmHorzCurve : public FormModel {
 public:
  explicit frmHorzCurve(Program& program);

  Label lblDeltaAngle{"Delta Angle"};
  TextBox txtDelta;
  Label lblDeltaDeg{"(ddd.mmssss)"};
  Label lblDegree{"Degree of Curve"};
  TextBox txtDegree;
  Label lblCurveDeg{"(ddd.mmssss)"};
  Label lblTanLength{"Tangent Length"};
  TextBox txtTanLength;
  Label lblCurveLength{"Length of Curve"};
  TextBox txtCurveLength;
  Label lblRadius{"Radius"};
  TextBox txtRadius;
  Label lblExternal{"External"};
  TextBox txtExternal;
  Label lblMidOrd{"Mid Ordinate"};
  TextBox txtMidOrd;
  Label lblChord{"Chord"};
  TextBox txtChord;
  Frame frameAngle{"Angle Entry"};
  OptionButton optDec{false, "Decimal Deg"};
  OptionButton optHms{true, " Deg Min Sec"};
  CheckBox chkMetric{false, "Metric Units"};
  CheckBox chkChordDef{false, "Chord Definition"};
  Frame frmData{"Station"};
  OptionButton optPI{true, "PI Station"};
  OptionButton optPC{false, "PC Station"};
  OptionButton optPT{false, "PT Station"};
  TextBox txtCurvePt;
  Frame frameResults{"Results"};
  Label lblDel, lblDeg, lblDef{"Arc Def."}, lblTan, lblLen, lblRad, lblExt, lblMid, lblCh;
  Label lblPcTitle{"PC:"}, lblPC, lblPiTitle{"PI:"}, lblPI, lblPtTitle{"PT:"}, lblPT;
  Button btnCalculate{"Calculate"};
  Button btnClear{"Clear"};
  Button btnReturn{"Return"};
  Label lblOut{"Output file:"};
  TextBox txtOut;
  Button btnOut{"Browse"};
  Button btnOutput{"Save"};
  Button btnPrint{"Print..."};  // the file's lines, on paper or in a PDF
  // The curve's PC, PT and center into the open project, placed from a PI
  // the project holds and the back tangent; enabled while a project is open.
  Frame fraProject{"Points in the project"};
  Label lblPiPoint{"PI point:"};
  TextBox txtPiPoint;
  Label lblBackTangent{"Back tangent:"};
  TextBox txtBackTangent;  // an azimuth (45-30-15) or a bearing (N 45-30-15 E), the way into the PI
  OptionButton optRight{true, "Turns right"};
  OptionButton optLeft{false, "Turns left"};
  Label lblFirstNumber{"PC, PT, center from number:"};
  TextBox txtFirstNumber;
  Button btnStore{"Store in Project", true, false};
  void btnStore_Click();
  void opened() override;

  // The program's procedures, in the order Main runs them.
  void Main();
  // The lines Save writes, from the results shown.
  std::vector<std::string> houtLines() const;
  bool tooManyOrFew();
  void verifyData();
  bool readInput();
  void checkStation();
  void formatLabels();
  void fillResults();
  void createHoutFile();

  void btnClear_Click();
  void optHms_Click();
  void optDec_Click();
  void chkMetric_Click();
  void chkChordDef_Click();

  // The curve to scale after a Calculate; empty, with a hint, before one and after Clear.
  Picture sketch() const;

  // What the calculation works with, kept between its procedures.
  CurveElements elements;
  CurveStations stations;

 private:
  bool metric = false;
  bool chordDefinition = false;
  std::string stationText;
};

}  // namespace tervalo
