#include "hcurve/frm_horz_curve.h"

#include "project/project_session.h"
#include "text/angle.h"
#include "text/justify.h"
#include "traverse/traverse.h"
#include "hcurve/curve_sketch.h"

#include "app/program.h"
#include "app/shell.h"
#include "text/angle.h"
#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"
#include "text/station.h"

namespace tervalo {

frmHorzCurve::frmHorzCurve(Program& program) : FormModel(program, "frmHorzCurve", "Horizontal Curve Solution") {
  add("lblDeltaAngle", lblDeltaAngle);
  add("txtDelta", txtDelta).numeric();
  add("lblDeltaDeg", lblDeltaDeg);
  add("lblDegree", lblDegree);
  add("txtDegree", txtDegree).numeric();
  add("lblCurveDeg", lblCurveDeg);
  add("lblTanLength", lblTanLength);
  add("txtTanLength", txtTanLength).numeric();
  add("lblCurveLength", lblCurveLength);
  add("txtCurveLength", txtCurveLength).numeric();
  add("lblRadius", lblRadius);
  add("txtRadius", txtRadius).numeric();
  add("lblExternal", lblExternal);
  add("txtExternal", txtExternal).numeric();
  add("lblMidOrd", lblMidOrd);
  add("txtMidOrd", txtMidOrd).numeric();
  add("lblChord", lblChord);
  add("txtChord", txtChord).numeric();
  add("frameAngle", frameAngle);
  add("optDec", optDec, "angle").click([this] { optDec_Click(); });
  add("optHms", optHms, "angle").click([this] { optHms_Click(); });
  add("chkMetric", chkMetric).click([this] { chkMetric_Click(); });
  add("chkChordDef", chkChordDef).click([this] { chkChordDef_Click(); });
  add("frmData", frmData);
  add("optPI", optPI, "station");
  add("optPC", optPC, "station");
  add("optPT", optPT, "station");
  add("txtCurvePt", txtCurvePt);
  add("frameResults", frameResults);
  for (auto& [name, label] : {std::pair{"lblDel", &lblDel}, {"lblDeg", &lblDeg}, {"lblDef", &lblDef}, {"lblTan", &lblTan},
                              {"lblLen", &lblLen}, {"lblRad", &lblRad}, {"lblExt", &lblExt}, {"lblMid", &lblMid},
                              {"lblCh", &lblCh}, {"lblPcTitle", &lblPcTitle}, {"lblPC", &lblPC}, {"lblPiTitle", &lblPiTitle},
                              {"lblPI", &lblPI}, {"lblPtTitle", &lblPtTitle}, {"lblPT", &lblPT}})
    add(name, *label);
  add("btnCalculate", btnCalculate).click([this] { Main(); });
  add("btnClear", btnClear).click([this] { btnClear_Click(); });
  add("btnReturn", btnReturn).click([this] { unload(); });
  addInputFileButtons();
  add("lblOut", lblOut);
  add("txtOut", txtOut);
  add("btnOut", btnOut).click([this] { browseForOutput(txtOut); });
  add("btnOutput", btnOutput).click([this] { createHoutFile(); });
  add("btnPrint", btnPrint).click([this] { shell().print({"Horizontal Curve", houtLines(), sketch()}); });
  add("fraProject", fraProject);
  add("lblPiPoint", lblPiPoint);
  add("txtPiPoint", txtPiPoint);
  add("lblBackTangent", lblBackTangent);
  add("txtBackTangent", txtBackTangent);
  add("optRight", optRight, "turn");
  add("optLeft", optLeft, "turn");
  add("lblFirstNumber", lblFirstNumber);
  add("txtFirstNumber", txtFirstNumber);
  add("btnStore", btnStore).click([this] { btnStore_Click(); });
}

void frmHorzCurve::opened() { btnStore.enabled = program().project != nullptr; }

void frmHorzCurve::btnStore_Click() {
  ProjectSession* project = program().project.get();
  if (!project) return;
  const std::string title = "Store in Project";
  const auto refuse = [this, &title](const std::string& text, const char* field) {
    shell().msgBox(title, text, Icon::Exclamation);
    focusRequest = field;
  };
  if (sketch().empty()) return refuse("Calculate the curve first.", "btnCalculate");
  if ((project->file().settings().unit == "m") != metric)
    return refuse(std::string("The project's coordinates are in ") + (metric ? "feet" : "metres") + ": the curve must be too (Metric Units).",
                  "chkMetric");
  const std::string pi = upper(txtPiPoint.text);
  std::optional<ProjectPoint> at;
  try {
    at = project->file().find(pi);
  } catch (const ProjectError& e) {
    return refuse(e.what(), "txtPiPoint");
  }
  if (!at) return refuse(pi.empty() ? "Give the number of the PI, a point of the project." : "Point " + pi + " is not in the project.", "txtPiPoint");
  std::optional<double> back = angleFromText(txtBackTangent.text);
  if (!back) back = bearingAzimuth(txtBackTangent.text);
  if (!back) return refuse("Give the back tangent as an azimuth (45-30-15) or a bearing (N 45-30-15 E).", "txtBackTangent");
  const std::string first = txtFirstNumber.text;
  if (first.empty() || first.size() > 9 || first.find_first_not_of("0123456789") != std::string::npos)
    return refuse("Give the whole number the PC takes; the PT and the center take the two after it.", "txtFirstNumber");
  const long n = std::stol(first);
  const CurveOnGround g = curveOnGround(elements, at->northing, at->easting, *back, optRight.checked);
  const std::string source = "horizontal curve from PI " + at->number;
  std::vector<ProjectPoint> points{{0, std::to_string(n), g.pcNorthing, g.pcEasting, std::nullopt, "PC STA " + lblPC.caption, "PC", "", source, ""},
                                   {0, std::to_string(n + 1), g.ptNorthing, g.ptEasting, std::nullopt, "PT STA " + lblPT.caption, "PT", "", source, ""},
                                   {0, std::to_string(n + 2), g.centreNorthing, g.centreEasting, std::nullopt, "CENTER R " + lblRad.caption, "CC", "", source, ""}};
  const std::string said = storeFromTool(*project, shell(), std::move(points), source, "Store the curve's PC, PT and center");
  if (!said.empty()) shell().msgBox(title, said, Icon::Information);
}

void frmHorzCurve::Main() {
  // A count message presses Return: the run stops there.
  if (!tooManyOrFew()) return;
  verifyData();
  if (!readInput()) return;
  checkStation();
  fillResults();
}

bool frmHorzCurve::tooManyOrFew() {
  elements = {Val(txtDelta.text),  Val(txtDegree.text),   Val(txtTanLength.text), Val(txtCurveLength.text),
              Val(txtRadius.text), Val(txtExternal.text), Val(txtMidOrd.text),    Val(txtChord.text)};
  metric = chkMetric.checked;
  chordDefinition = chkChordDef.checked;
  stationText = txtCurvePt.text;
  const int given = countGiven(elements);
  if (given == 2) return true;
  if (given < 2)
    shell().msgBox("Insufficient Data", "Must enter two elements to calculate the curve.", Icon::Exclamation);
  else
    shell().msgBox("Data Input Error", "Only two elements may be entered.", Icon::Exclamation);
  click("btnReturn");
  return false;
}

void frmHorzCurve::verifyData() {
  const std::string refusal = verifyPair(elements);
  if (refusal.empty()) return;
  shell().msgBox("Input Error!", refusal, Icon::Exclamation);
  shell().endProgram();  // not back to the form: as it always has
}

bool frmHorzCurve::readInput() {
  const CurveSolution s = solveCurve(elements, {chordDefinition, metric, optHms.checked, program().pi});
  elements = s.e;
  switch (s.fault) {
    case CurveFault::None:
      return true;
    case CurveFault::MetricDegree:
      shell().msgBox("Error!", "Degree of Curve is not defined for Metric units.", Icon::Critical);
      shell().endProgram();
      return false;
    case CurveFault::MidOrdinateOverExternal:
      shell().msgBox("Bad Data", "Mid Ordinate cannot be larger than External", Icon::Critical);
      shell().endProgram();
      return false;
    case CurveFault::ChordRadiusUnder50:
      // The misspelling is the program's own text.
      shell().msgBox("Input Error!", "The minimum radius for a chord-definintion curve is 50 feet.", Icon::Exclamation);
      click("btnClear");
      return false;
  }
  return false;
}

void frmHorzCurve::checkStation() {
  if (stationText.empty()) return;
  if (stationText.find('+') == std::string::npos) {
    // The icons differ between the unit systems on purpose.
    if (metric)
      shell().msgBox("Syntax Error!", "Station must be in the format n+nnn.nnn", Icon::Exclamation);
    else
      shell().msgBox("Syntax Error!", "Station must be in the format n+nn.nn", Icon::Critical);
    shell().endProgram();
  }
  if (stationText.find('.') == std::string::npos) stationText += ".000";
  const GivenPoint given = optPI.checked ? GivenPoint::PI : optPC.checked ? GivenPoint::PC : GivenPoint::PT;
  stations = placeStations(stationToNumber(stationText).number, given, elements.tangent, elements.length);
  formatLabels();
}

void frmHorzCurve::formatLabels() {
  const char* mask = metric ? "####+###.0000" : "####+##.0000";
  lblPC.caption = Format(stations.pc, mask);
  lblPI.caption = Format(stations.pi, mask);
  lblPT.caption = Format(stations.pt, mask);
}

void frmHorzCurve::fillResults() {
  lblDel.caption = decimalToDms(elements.delta);
  lblDeg.caption = decimalToDms(elements.degree);
  const std::pair<Label*, double> values[] = {{&lblTan, elements.tangent}, {&lblLen, elements.length},
                                              {&lblRad, elements.radius},  {&lblExt, elements.external},
                                              {&lblMid, elements.midOrdinate}, {&lblCh, elements.chord}};
  for (const auto& [label, value] : values) label->caption = Format(value, "#0.0000");
  lblDef.caption = chordDefinition ? "Chord Def." : "Arc Def.";
  const bool station = !txtCurvePt.text.empty();
  lblPcTitle.caption = station ? "PC:" : "";
  lblPiTitle.caption = station ? "PI:" : "";
  lblPtTitle.caption = station ? "PT:" : "";
}

void frmHorzCurve::createHoutFile() {
  program().outputFileName = txtOut.text;
  program().writeOutputFile(txtOut.text, houtLines(), lblPI.caption.empty() ? "" : "PI " + lblPI.caption);
  shell().openInEditor(txtOut.text);
}

std::vector<std::string> frmHorzCurve::houtLines() const {
  auto line = [](const char* title, const Label& value) { return std::string(title) + rightJustify(value.caption, 12); };
  return {"      HORIZONTAL CURVE",
                                       "   Del:   " + lblDel.caption,
                                       "   Deg:   " + lblDeg.caption + "  " + lblDef.caption,
                                       line("   Tan:  ", lblTan),
                                       line("   Len:  ", lblLen),
                                       line("   Rad:  ", lblRad),
                                       line("   Ext:  ", lblExt),
                                       line("   Mid:  ", lblMid),
                                       line("    Ch:  ", lblCh),
                                       line("    PC:  ", lblPC),
                                       line("    PI:  ", lblPI),
                                       line("    PT:  ", lblPT),
                                       "===============================",
                                       ""};
}

Picture frmHorzCurve::sketch() const {
  // The results' texts say whether a curve was solved since the last Clear.
  if (lblTan.caption.empty() || !(elements.radius > 0) || !(elements.delta > 0)) {
    Picture none;
    none.hint = "The curve is drawn here to scale after Calculate.";
    return none;
  }
  return curveSketch(elements, {lblPC.caption, lblPI.caption, lblPT.caption, lblDel.caption, lblRad.caption});
}

void frmHorzCurve::btnClear_Click() {
  for (TextBox* box : {&txtCurvePt, &txtDelta, &txtDegree, &txtTanLength, &txtCurveLength, &txtRadius, &txtExternal,
                       &txtMidOrd, &txtChord})
    box->text.clear();
  setChecked("chkMetric", false);
  setChecked("chkChordDef", false);
  for (Label* label : {&lblPC, &lblPI, &lblPT, &lblDel, &lblDeg, &lblTan, &lblLen, &lblRad, &lblExt, &lblMid, &lblCh})
    label->caption.clear();
}

// The captions of the two clicks differ from the start-up captions and from
// each other (a missing parenthesis, three m's, four d's): as they always have.
void frmHorzCurve::optHms_Click() {
  if (optHms.checked) {
    lblDeltaDeg.caption = "(ddd.mmmssss";
    lblCurveDeg.caption = "(ddd.mmmssss)";
  } else {
    lblDeltaDeg.caption = lblCurveDeg.caption = "(ddd.ddddddd)";
  }
}

void frmHorzCurve::optDec_Click() {
  if (optDec.checked) {
    lblDeltaDeg.caption = "(dddd.dddddd)";
    lblCurveDeg.caption = "(ddd.ddddddd)";
  } else {
    lblDeltaDeg.caption = lblCurveDeg.caption = "(ddd.mmmssss)";
  }
}

// A degree of curve has no meaning in metric units: its field is greyed.
void frmHorzCurve::chkMetric_Click() {
  if (chkMetric.checked) {
    chkChordDef.checked = false;
    chkChordDef.enabled = false;
    txtDegree.enabled = false;
  } else {
    chkChordDef.enabled = true;
    txtDegree.enabled = true;
  }
  lblDegree.enabled = txtDegree.enabled;
}

void frmHorzCurve::chkChordDef_Click() {
  if (chkMetric.checked) setChecked("chkMetric", false);
  lblDegree.enabled = txtDegree.enabled;
}

}  // namespace tervalo
