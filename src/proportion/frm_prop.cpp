#include "proportion/frm_prop.h"

#include "app/forms_misc.h"
#include "app/program.h"
#include "app/shell.h"
#include "text/errors.h"
#include "text/number.h"
#include "text/station.h"

namespace tervalo {

frmProp::frmProp(Program& program) : FormModel(program, "frmProp", "Proportion Function") {
  add("frmInput", frmInput);
  add("lblBegSta", lblBegSta);
  add("txtBegSta", txtBegSta);
  add("lblBegValue", lblBegValue);
  add("txtBegValue", txtBegValue).numeric();
  add("lblEndSta", lblEndSta);
  add("txtEndSta", txtEndSta);
  add("lblEndValue", lblEndValue);
  add("txtEndValue", txtEndValue).numeric();
  add("chkBetween", chkBetween).click([this] { chkBetween_Click(); });
  add("lblStaIn", lblStaIn);
  add("txtStaIn", txtStaIn);
  add("lblStaOut", lblStaOut);
  add("txtStaOut", txtStaOut);
  add("chkMetric", chkMetric);
  add("frmStation", frmStation);
  add("lblValue", lblValue);
  // The two modes empty each other's fields.
  add("txtValue", txtValue).numeric().change([this] {
    if (txtValue.text.empty()) return;
    for (TextBox* box : {&txtFirst, &txtIncrement, &txtLast}) setText(*box, "");
  });
  add("frmValue", frmValue);
  auto rangeChanged = [this](TextBox& box) {
    return [this, &box] {
      if (!box.text.empty()) setText(txtValue, "");
    };
  };
  add("lblFirst", lblFirst);
  add("txtFirst", txtFirst).change(rangeChanged(txtFirst));
  add("lblLast", lblLast);
  add("txtLast", txtLast).change(rangeChanged(txtLast));
  add("lblIncrement", lblIncrement);
  add("txtIncrement", txtIncrement).numeric().change(rangeChanged(txtIncrement));
  add("chkRound", chkRound);
  add("frmCompute", frmCompute);
  add("btnCalc", btnCalc).click([this] { Main(); });
  add("btnClear", btnClear).click([this] { btnClear_Click(); });
  add("btnReturn", btnReturn).click([this] { unload(); });
  addInputFileButtons();
}

void frmProp::Main() {
  // Without stopping between them: the checks only warn.
  readInput();
  checkData1();
  convertStations();
  checkData2();
  auto& output = program().form<frmOutput>("frmOutput");
  output.lstOutput.items = writeFileTitle(input);
  const ProportionResult result = processData(input);
  if (!result.refusal.empty()) {
    shell().msgBox("Input Error!", result.refusal, Icon::Exclamation);
    return;
  }
  output.lstOutput.items.insert(output.lstOutput.items.end(), result.lines.begin(), result.lines.end());
  // The data folder ends with its separator already: the name holds two, as it always has.
  output.txtOut.text = program().userAppData + "/Proportion.txt";
  output.holds = txtBegSta.text.empty() ? "" : "Sta " + txtBegSta.text;
  shell().showModal(output);
}

void frmProp::readInput() {
  input.begValue = Val(txtBegValue.text);
  input.endValue = Val(txtEndValue.text);
  input.increment = Val(txtIncrement.text);
  input.value = Val(txtValue.text);
  input.between = chkBetween.checked;
  input.round = chkRound.checked;
  input.metric = chkMetric.checked;
}

void frmProp::warn(const char* text) { shell().msgBox("Input Error!", text, Icon::Exclamation); }

void frmProp::checkData1() {
  if (txtBegValue.text.empty()) warn("Begining Station Value cannot be blank.");
  if (txtEndValue.text.empty()) warn("Ending Offset Value cannot be blank.");
  if (txtBegSta.text.empty()) warn("Beginning station cannot be blank.");
  if (txtEndSta.text.empty()) warn("End station / Ratio cannot be blank.");
}

// A station text to its number; a text without "+" is an invalid argument
// (the program ends), a blank one is not given (0).
double frmProp::convert(const TextBox& field) {
  if (field.text.empty()) return 0;
  lastConverted_ = stationToNumber(field.text).number;
  return lastConverted_;
}

void frmProp::convertStations() {
  input.begSta = convert(txtBegSta);
  input.ratioGiven = txtEndSta.text.find(':') != std::string::npos;
  if (input.ratioGiven) {
    const auto colon = txtEndSta.text.find(':');
    const double s = Val(txtEndSta.text.substr(0, colon)), v = Val(txtEndSta.text.substr(colon + 1));
    if (s == 0) throw RunTimeError("Division by zero: the taper ratio \"" + txtEndSta.text + "\" has no stations (S)");
    input.ratio = v / s;
    input.ratioText = txtEndSta.text;
  } else {
    input.endSta = convert(txtEndSta);
  }
  if (txtValue.text.empty()) {
    input.first = convert(txtFirst);
    input.last = convert(txtLast);
  }
  // A blank equation field takes the station converted last before it, as it always has.
  input.eqIn = txtStaIn.text.empty() ? lastConverted_ : convert(txtStaIn);
  input.eqOut = txtStaOut.text.empty() ? lastConverted_ : convert(txtStaOut);
}

void frmProp::checkData2() {
  const ProportionInput& in = input;
  if (in.begSta > in.endSta && in.endSta != 0) warn("Start station is greater than end station.");
  if (in.last != 0 && in.first > in.last) warn("First station is greater than last station.");
  if (in.first != 0 && in.increment != 0 && in.last == 0) warn("An ending station is required for a range.");
  if (in.first != 0 && in.last != 0 && in.increment <= 0) warn("An increment is required for station range.");
  // The same condition as the third, so such input gets both messages: kept so.
  if (in.first != 0 && in.last == 0 && in.increment != 0) warn("Increment should be blank if last station is blank.");
  if (in.first == 0 && in.last == 0 && in.increment == 0 && in.value == 0)
    warn("Increment cannot be blank if no station range is specified.");
}

void frmProp::chkBetween_Click() {
  for (bool* visible : {&lblStaIn.visible, &txtStaIn.visible, &lblStaOut.visible, &txtStaOut.visible, &chkRound.visible})
    *visible = chkBetween.checked;
}

void frmProp::btnClear_Click() {
  for (TextBox* box : {&txtBegSta, &txtEndSta, &txtBegValue, &txtEndValue, &txtFirst, &txtLast, &txtIncrement, &txtValue})
    box->text.clear();
  setChecked("chkBetween", false);
  setChecked("chkMetric", false);
  setChecked("chkRound", false);
}

}  // namespace tervalo
