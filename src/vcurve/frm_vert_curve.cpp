#include "vcurve/frm_vert_curve.h"

#include "vcurve/profile_sketch.h"

#include "app/program.h"
#include "app/shell.h"
#include "app/version.h"
#include "app/forms_misc.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"
#include "text/station.h"
#include "vcurve/listing.h"
#include "app/output_file.h"
#include "export/export_file.h"
#include "export/landxml.h"

namespace tervalo {

frmVCResults::frmVCResults(Program& program) : FormModel(program, "frmVCResults", "Vertical Curve Results") {
  add("frameCurve", frameCurve);
  for (auto& [name, label] : std::initializer_list<std::pair<const char*, Label*>>{
           {"lblPVCstaTitle", &lblPVCstaTitle}, {"lblPVCsta", &lblPVCsta},   {"lblPVIstaTitle", &lblPVIstaTitle},
           {"lblPVIsta", &lblPVIsta},           {"lblPVTstaTitle", &lblPVTstaTitle}, {"lblPVTsta", &lblPVTsta},
           {"lblPVCelevTitle", &lblPVCelevTitle}, {"lblPVCelev", &lblPVCelev}, {"lblPVIelevTitle", &lblPVIelevTitle},
           {"lblPVIelev", &lblPVIelev},         {"lblPVTelevTitle", &lblPVTelevTitle}, {"lblPVTelev", &lblPVTelev},
           {"lblEntryTitle", &lblEntryTitle},   {"lblEntry", &lblEntry},     {"lblExitTitle", &lblExitTitle},
           {"lblExit", &lblExit},               {"lblCurLenTitle", &lblCurLenTitle}, {"lblCurLen", &lblCurLen},
           {"lblMinMaxSta", &lblMinMaxSta},     {"lblSta", &lblSta},         {"lblMinMaxElev", &lblMinMaxElev},
           {"lblElev", &lblElev},               {"lblHeadings", &lblHeadings}})
    add(name, *label);
  add("lstResults", lstResults);
  add("lblOut", lblOut);
  add("txtOut", txtOut);
  add("btnOut", btnOut).click([this] { browseForOutput(txtOut); });
  add("btnOutput", btnOutput).click([this] { createVoutFile(); });
  add("btnExport", btnExport).click([this] { btnExport_Click(); });
  add("btnReturn", btnReturn).click([this] { unload(); });
}

void frmVCResults::createVoutFile() {
  program().outputFileName = txtOut.text;
  const std::string rule(58, '=');
  // Lines 7 to 9 carry the station captions and 11 and 12 say "Min." for a
  // high point too: the report has always been laid out so.
  std::vector<std::string> lines{"                VERTICAL CURVE",
                                 " Entry Grade:   " + lblEntry.caption,
                                 "  Exit Grade:   " + lblExit.caption,
                                 " PVC Station:  " + lblPVCsta.caption,
                                 " PVI Station:  " + lblPVIsta.caption,
                                 " PVT Station:  " + lblPVTsta.caption,
                                 "    PVC Elev:  " + lblPVCsta.caption,
                                 "    PVI Elev:  " + lblPVIsta.caption,
                                 "    PVT Elev:  " + lblPVTsta.caption,
                                 "Curve Length:  " + lblCurLen.caption,
                                 "Min. Station:  " + lblSta.caption,
                                 "   Min. Elev:  " + lblElev.caption,
                                 rule,
                                 "",
                                 "  Station    C/T   Elevation   Profile   Profile   Profile ",
                                 ""};
  lines.insert(lines.end(), lstResults.items.begin(), lstResults.items.end());
  lines.push_back(rule);
  program().writeOutputFile(txtOut.text, lines, "PVI " + lblPVIsta.caption);
  shell().openInEditor(txtOut.text);
}

void frmVCResults::btnExport_Click() {
  const std::string name = std::filesystem::path(txtOut.text).stem().string();
  const auto chosen = shell().chooseFile(FileDialog::Save, "Export the Vertical Curve",
                                         program().userAppData + (name.empty() ? "outVfile" : name) + ".xml",
                                         {"LandXML 1.2 (*.xml)", "CSV listing (*.csv)"});
  if (!chosen || chosen->empty()) return;
  const std::filesystem::path file(*chosen);
  const std::string alignment = name.empty() ? file.stem().string() : name;
  exportFile(shell(), "Export the Vertical Curve", file,
             {{".xml", [&] { writeDocument(file, profileLandXml(curve, metric, alignment, stampOf(shell().today()))); }},
              {".csv", [&] { writeTextFile(file, listingCsv(listingRows, profiles)); }}});
}

frmVertCurve::frmVertCurve(Program& program)
    : FormModel(program, "frmVertCurve", "Vertical Curve Input           Version " + VersionInfo::numbers()) {
  add("lblEntryGrade", lblEntryGrade);
  add("txtEntryGrade", txtEntryGrade).numeric(true);
  add("lblExitGrade", lblExitGrade);
  add("txtExitGrade", txtExitGrade).numeric(true);
  add("lblStation", lblStation);
  add("txtStation", txtStation);
  add("optPI", optPI, "point");
  add("optPC", optPC, "point");
  add("optPT", optPT, "point");
  add("lblElevation", lblElevation);
  add("txtElevation", txtElevation).numeric(true);
  add("lblLength", lblLength);
  add("txtLength", txtLength).numeric();  // empty is refused with its own box
  add("lblStartStation", lblStartStation);
  add("lblStartStation2", lblStartStation2);
  add("txtStartStation", txtStartStation);
  add("lblEndStation", lblEndStation);
  add("txtEndStation", txtEndStation).change([this] { txtEndStation_Change(); });
  add("lblIncrement", lblIncrement);
  add("txtIncrement", txtIncrement).numeric();
  add("chkExact", chkExact);
  add("frameUnits", frameUnits);
  add("chkMetric", chkMetric);
  add("lblProfiles", lblProfiles);
  add("txtProfile1", txtProfile1).numeric();
  add("txtProfile2", txtProfile2).numeric();
  add("txtProfile3", txtProfile3).numeric();
  add("lblEquationIn", lblEquationIn);
  add("txtEquationIn", txtEquationIn);
  add("lblEquationOut", lblEquationOut);
  add("txtEquationOut", txtEquationOut);
  add("btnCalculate", btnCalculate).click([this] { Main(); });
  add("btnReturn", btnReturn).click([this] { unload(); });
  addInputFileButtons();
  add("btnClear", btnClear).click([this] { btnClear_Click(); });
}

void frmVertCurve::Main() { readInput(); }

std::string frmVertCurve::checkStation(std::string text) {
  if (text.find('+') == std::string::npos) {
    // Critical in English units, exclamation in metric: as it always was.
    if (chkMetric.checked)
      shell().msgBox("Syntax Error!", "Station must be in the format n+nnn.nnn", Icon::Exclamation);
    else
      shell().msgBox("Syntax Error!", "Station must be in the format n+nn.nnn", Icon::Critical);
    shell().endProgram();
  }
  if (text.find('.') == std::string::npos) text += ".000";
  return text;
}

void frmVertCurve::readInput() {
  auto missing = [this](const char* text) { shell().msgBox("Missing Data!", text, Icon::Critical); };
  const double g1 = Val(txtEntryGrade.text.empty() ? "0" : txtEntryGrade.text) / 100;
  const double g2 = Val(txtExitGrade.text.empty() ? "0" : txtExitGrade.text) / 100;
  if (txtStation.text.empty()) missing("A station must be entered.");
  const double given = stationToNumber(checkStation(txtStation.text)).number;
  const double length = Val(Format(Val(txtLength.text), "0.000"));
  if (length == 0) missing("A curve length must be entered.");
  const auto elevation = strictNumber(txtElevation.text);
  if (!elevation) throw RunTimeError("Type mismatch: the elevation \"" + txtElevation.text + "\" is not a number.");

  const KnownPoint known = optPI.checked ? KnownPoint::PVI : optPC.checked ? KnownPoint::PVC : KnownPoint::PVT;
  curve = makeCurve(g1, g2, length, known, given, *elevation);
  minMaxCalc(curve);

  // fillResults.
  auto& results = program().form<frmVCResults>("frmVCResults");
  const char* mask = stationMask(chkMetric.checked);
  results.lblPVCsta.caption = Format(curve.pvc, mask);
  results.lblPVIsta.caption = Format(curve.pvi, mask);
  results.lblPVTsta.caption = Format(curve.pvt, mask);
  results.lblPVCelev.caption = Format(curve.pvcElev, "####.000");
  results.lblPVIelev.caption = Format(curve.pviElev, "####.000");
  results.lblPVTelev.caption = Format(curve.pvtElev, "####.000");
  results.lblEntry.caption = CStr(g1 * 100) + "%";
  results.lblExit.caption = CStr(g2 * 100) + "%";
  results.lblCurLen.caption = Format(length, "0#.000");
  const bool turning = curve.hasMin || curve.hasMax;
  for (Label* l : {&results.lblMinMaxSta, &results.lblMinMaxElev, &results.lblSta, &results.lblElev}) l->visible = turning;
  results.lblMinMaxSta.caption = curve.hasMax ? "Max. Station:" : "Min. Station:";
  results.lblMinMaxElev.caption = curve.hasMax ? "Max. Elevation:" : "Min. Elevation:";
  results.lblSta.caption = turning ? Format(curve.turningStation, mask) : "";
  results.lblElev.caption = turning ? Format(curve.turningElev, "#####.000") : "";

  ListingInput listing;
  bool increments = false, startGiven = false;
  if (!txtStartStation.text.empty()) {
    startGiven = true;
    listing.start = stationToNumber(checkStation(txtStartStation.text)).number;
  }
  if (!txtEndStation.text.empty()) {
    if (txtIncrement.text.empty()) {
      missing("An increment must be specified.");
    } else {
      listing.increment = Val(txtIncrement.text);
      // A listing needs a step forward: a zero or negative one is no increment.
      if (listing.increment > 0)
        increments = true;
      else
        missing("An increment must be specified.");
    }
    listing.end = stationToNumber(checkStation(txtEndStation.text)).number;
    if (listing.end != 0 && listing.start >= listing.end)
      shell().msgBox("Invalid Data!", "End station is not larger than start station.", Icon::Critical);
  }
  listing.exact = chkExact.checked;
  listing.metric = chkMetric.checked;

  results.lblHeadings.caption = "     Station   C/T  Elevation  ";
  TextBox* profiles[] = {&txtProfile1, &txtProfile2, &txtProfile3};
  for (std::size_t k = 0; k < 3; ++k) {
    listing.profiles[k] = Val(profiles[k]->text);
    if (listing.profiles[k] != 0) results.lblHeadings.caption += k == 0 ? "Profile " : "  Profile ";
  }
  if (!txtEquationIn.text.empty()) {
    const double in = stationToNumber(checkStation(txtEquationIn.text)).number;
    const double out = stationToNumber(checkStation(txtEquationOut.text)).number;
    if (in != 0) listing.equation = std::pair{in, out};
  }

  results.txtOut.text = program().userAppData + "outVfile.txt";
  results.lstResults.items.clear();
  results.listingRows.clear();
  results.curve = curve;
  results.metric = chkMetric.checked;
  results.profiles = listing.profiles;
  results.equation = listing.equation;
  // After "End station is not larger than start station." the listing is made all the same.
  if (increments) {
    if (listing.start / listing.increment > 1e8) {
      shell().msgBox("Invalid Data!", "The increment is too small for these stations.", Icon::Critical);
    } else {
      const Listing list = processVincrements(curve, listing);
      results.lstResults.items = list.lines;
      results.listingRows = list.rows;
      if (list.cut)
        shell().msgBox("Invalid Data!",
                       "The listing stops after " + CStr(static_cast<double>(kMaxListedStations)) +
                           " stations; choose a larger increment.",
                       Icon::Information);
    }
  } else if (startGiven && txtEndStation.text.empty()) {
    // A single station: its elevation alone.
    const StationElevation e = calcCurveElev(curve, listing.start);
    const std::string station = Format(listing.start, mask), height = Format(e.elevation, "######.000");
    results.lstResults.items = {addItemTstr(station, e.mark, height, listing.profiles)};
    results.listingRows = {listingRow(station, e.mark, height, listing.profiles)};
  }
  shell().showModal(results);
}

Picture frmVCResults::sketch() const { return profileSketch({curve, metric, profiles, listingRows, equation}).picture; }

void frmVertCurve::txtEndStation_Change() {
  const bool listing = !txtEndStation.text.empty();
  txtIncrement.enabled = listing;
  chkExact.enabled = listing;
}

void frmVertCurve::btnClear_Click() {
  for (TextBox* box : {&txtEntryGrade, &txtExitGrade, &txtStation, &txtElevation, &txtLength, &txtStartStation,
                       &txtIncrement, &txtProfile1, &txtProfile2, &txtProfile3, &txtEquationIn, &txtEquationOut})
    box->text.clear();
  setText(txtEndStation, "");
  chkMetric.checked = false;
  chkExact.checked = false;
}

}  // namespace tervalo
