#include "secsub/frm_sec_sub.h"
#include "export/map_export.h"
#include "secsub_out/evidence_page.h"

#include "restore/frm_restore.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sstream>

#include "app/forms_misc.h"
#include "app/frm_main.h"
#include "app/program.h"
#include "app/shell.h"
#include "app/output_file.h"
#include "export/export_file.h"
#include "export/landxml.h"
#include "export/section_dxf.h"
#include "export/gis_file.h"
#include "export/section_points.h"
#include "secsub/corners.h"
#include "secsub_out/drawing.h"
#include "secsub_out/geopak.h"
#include "secsub_out/report.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

std::string coordinateText(double v) { return Format(v, "#######0.0000"); }

// An output name without a folder lands in the data folder; an emptied
// field takes its default name there again, written back into the field.
std::filesystem::path outputPath(TextBox& field, const std::string& dataFolder, const char* defaultName) {
  if (field.text.empty()) field.text = dataFolder + defaultName;
  const std::filesystem::path path(field.text);
  return path.has_parent_path() ? path : std::filesystem::path(dataFolder) / path;
}

}  // namespace

frmSecSub::frmSecSub(Program& program) : FormModel(program, "frmSecSub", "Section Subdivision") {
  add("Frame24", Frame24);
  add("lblSection", lblSection);
  add("txtSection", txtSection).numeric().lostFocus([this] { txtSection_LostFocus(); });
  add("lblTownship", lblTownship);
  add("txtTwp", txtTwp).numeric().lostFocus([this] { applyTownshipRules(); });
  add("lblRange", lblRange);
  add("txtRange", txtRange).numeric().lostFocus([this] { applyTownshipRules(); });
  add("optEast", optEast, "direction");
  add("optWest", optWest, "direction");
  add("lblPM", lblPM);
  add("txtPM", txtPM).numeric();
  add("chk1", chk1);
  add("chk2", chk2);
  add("chk4", chk4);
  add("chk5", chk5);
  add("chkAddHeader", chkAddHeader).click([this] { chkAddHeader_Click(); });
  add("chkDefaults", chkDefaults).click([this] { chkDefaults_Click(); });
  add("FrameAPN", FrameAPN);
  add("optIncr", optIncr, "numbering");
  add("txtIncr", txtIncr);
  add("optUnique", optUnique, "numbering");
  add("frmSection", frmSection);
  for (int s = 0; s < slot::count; ++s) {
    SlotFields& f = slots[static_cast<std::size_t>(s)];
    const std::string n = "txt" + std::to_string(s);
    const auto left = [this, s] { lastSlot = s; };
    add(n + "pn", f.pn).change([this, s] { pointNumberChanged(s); }).lostFocus([this, s] {
      lastSlot = s;
      pointNumberLeft(s);
    });
    add(n + "xc", f.xc).numeric().lostFocus(left);
    add(n + "yc", f.yc).numeric().lostFocus(left);
    add(n + "pf", f.pf).lostFocus(left);
    add(n + "pd", f.pd).lostFocus(left);
  }
  for (std::size_t i = 0; i < chains.size(); ++i) {
    ChainField& c = chains[i];
    c.name = kChainFields[i].stem;
    c.caption.caption = kChainFields[i].caption;
    add(std::string("lbl") + c.name + "chain", c.caption);
    // Typing over the regular 20 makes it the user's own value.
    add(std::string("txt") + c.name + "chain", c.text).numeric(true).change([&c] { c.defaulted = false; });
  }
  add("lblNotice", lblNotice);
  add("btnContinue", btnContinue).click([this] { Main(); });
  add("btnReturn", btnReturn).click([this] { unload(); });
  add("btnClear", btnClear).click([this] { btnClear_Click(); });
  addInputFileButtons();
  add("chkLengths", chkLengths);
  add("chkWhy", chkWhy);
  add("chkGround", chkGround);
  add("chkEvidence", chkEvidence);
  add("btnSaveDrawing", btnSaveDrawing).click([this] { btnSaveDrawing_Click(); });
  add("btnExport", btnExport).click([this] { btnExport_Click(); });
  add("lblCrs", lblCrs);
  add("btnCrs", btnCrs).click([this] {
    shell().showModal(this->program().form("frmCrs"));
    showCrs();
  });
  add("btnRestoreCorner", btnRestoreCorner).click([this] {
    if (lastSlot >= 0) {
      restoreSlot(lastSlot);
    } else {
      shell().msgBox("Corner Restoration", "Put the cursor in the slot of the lost corner first, then Restore Corner.",
                     Icon::Information);
    }
  });
  add("btnPrint", btnPrint).click([this] {
    if (hasRun) shell().print({"Section Subdivision Report", report, drawing()});
  });
}

ChainField& frmSecSub::chain(const std::string& name) {
  return *std::find_if(chains.begin(), chains.end(), [&name](const ChainField& c) { return name == c.name; });
}

void frmSecSub::pointNumberChanged(int s) {
  pointFound = false;
  SlotFields& fields = slots[static_cast<std::size_t>(s)];
  const std::string wanted = upper(fields.pn.text);
  // Said at once, in the slot, when the number is not in the list.
  fields.pn.note = fields.xc.note = "";
  const auto sayNotFound = [&] {
    if (wanted.empty()) return;
    const bool empty = std::none_of(program().points.records.begin(), program().points.records.end(),
                                    [](const PointRecord& p) { return !p.name.empty(); });
    fields.pn.note = "Point " + wanted + " is not in the point list" +
                     (empty ? " (the list is empty: read the source file again; a run empties it)" : "") +
                     ": type its X and Y, or keep the number to name a corner the run computes.";
    fields.xc.note = wanted + " not in the point list";
  };
  const PointList& list = program().points;
  // Up to and including the loaded count, within the list's 151 records.
  const int last = std::min<int>(list.pointCount, PointList::kSourceCapacity - 1);
  for (int i = 0; i <= last; ++i) {
    const PointRecord& p = list.records[static_cast<std::size_t>(i)];
    if (p.name != wanted) continue;
    CornerSlot& c = record.slots[static_cast<std::size_t>(s)];
    c.pointNumber = p.name;
    c.x = p.x;
    c.y = p.y;
    c.feature = p.feature;
    c.description = p.description;
    SlotFields& f = slots[static_cast<std::size_t>(s)];
    f.xc.text = coordinateText(p.x);
    f.yc.text = coordinateText(p.y);
    f.pf.text = p.feature;
    f.pd.text = p.description;
    lookups[static_cast<std::size_t>(s)] = std::array<std::string, 3>{p.name, f.xc.text, f.yc.text};
    pointFound = true;
    return;
  }
  sayNotFound();
}

void frmSecSub::pointNumberLeft(int s) {
  SlotFields& f = slots[static_cast<std::size_t>(s)];
  f.pn.text = upper(f.pn.text);
  if (f.pn.text.empty()) {
    f.xc.text.clear();
    f.yc.text.clear();
  }
}

void frmSecSub::txtSection_LostFocus() {
  if (!txtSection.text.empty()) {
    const double section = Val(txtSection.text);
    if (section != 0 && !(section >= 1 && section <= 36)) {
      shell().msgBox("Invalid Number", "Valid Section numbers are 1-36.", Icon::Information);
      focusRequest = "txtSection";  // the cursor waits there to mend it
    }
  }
  applyTownshipRules();
}

void frmSecSub::applyTownshipRules() {
  int range = txtRange.text.empty() ? 0 : toInt16(Val(txtRange.text));
  if (optEast.checked) range = -1;  // any east range counts alike here
  const TownshipRules rules = townshipRules(toInt16(Val(txtTwp.text)), range, toInt16(Val(txtSection.text)));
  txtPM.text = rules.meridian;
  CheckBox* boxes[] = {&chk1, &chk2, &chk4, &chk5};
  for (std::size_t i = 0; i < 4; ++i) {
    boxes[i]->checked = rules.boxes[i].checked;
    boxes[i]->visible = rules.boxes[i].visible;
    boxes[i]->caption = rules.boxes[i].caption;
  }
  applyChainDefaults();
}

// A quarter-mile the section does not need is regular: an empty field there
// takes "20", since empty reads 0 chains and would put its sixteenth corner
// on the section corner. A field the section needs is left for the user to
// type (so the run still warns), and a 20 put there by an earlier pass is
// taken back. Nothing that changes the computation is hidden: a field is
// shown when needed or when it holds anything but 20, and all eight are
// shown without the defaults.
void frmSecSub::applyChainDefaults() {
  const auto required = requiredChains(toInt16(Val(txtSection.text)));
  for (ChainField& c : chains) {
    const bool needed = std::find(required.begin(), required.end(), c.name) != required.end();
    if (needed && c.defaulted) {
      c.text.text.clear();
      c.defaulted = false;
    } else if (!needed && c.text.text.empty()) {
      c.text.text = "20";
      c.defaulted = true;
    }
    c.text.visible = c.caption.visible = needed || c.text.text != "20" || !chkDefaults.checked;
  }
}

void frmSecSub::chkDefaults_Click() {
  for (CheckBox* box : {&chk1, &chk2, &chk4, &chk5}) box->visible = !chkDefaults.checked;
  if (!chkDefaults.checked)
    for (ChainField& c : chains) c.text.visible = c.caption.visible = true;
}

void frmSecSub::chkAddHeader_Click() {
  if (chkAddHeader.checked)
    program().form<frmHeader>("frmHeader").showForHeaderData();
  else
    chkAddHeader.checked = false;  // unchecking keeps the stored header data
}

void frmSecSub::btnClear_Click() {
  for (SlotFields& f : slots)
    for (TextBox* box : {&f.pn, &f.xc, &f.yc, &f.pf, &f.pd}) box->text.clear();
  for (TextBox* box : {&txtSection, &txtTwp, &txtRange, &txtPM}) box->text.clear();
  for (ChainField& c : chains) {
    c.text.text.clear();
    c.text.visible = c.caption.visible = false;
    c.defaulted = false;
  }
  computed = {};
  placedBy = {};
  origins = {};
  lookups = {};
  restorations = {};
  notices = {};
  writtenFiles.clear();
  showNotices({});
  hasRun = false;
  btnSaveDrawing.enabled = btnExport.enabled = btnPrint.enabled = false;
  report.clear();
}

std::string frmSecSub::drawingTitle() const {
  return "Section " + CStr(record.section) + ", T" + CStr(record.township) + "N, R" +
         CStr(record.range < 0 ? -record.range : record.range) + record.direction;
}

CornerMap frmSecSub::runMap(bool uniqueNames) const {
  CornerMap map = sectionMap(record, computed, runNaming, uniqueNames);
  for (MapPoint& p : map.points) {
    const CornerOrigin& o = origins[static_cast<std::size_t>(p.slot)];
    if (o.kind == CornerOrigin::Kind::Restored) p.status = "restored";
    p.rule = why(p.slot);
  }
  return map;
}

std::string frmSecSub::why(int s) const {
  if (!hasRun) return "";
  return explainCorner(record, origins, s);
}

void frmSecSub::addToResult(nlohmann::ordered_json& result) const {
  if (!hasRun) return;
  auto explain = nlohmann::ordered_json::array();
  for (int s = 0; s < slot::count; ++s) {
    const auto i = static_cast<std::size_t>(s);
    const CornerOrigin& o = origins[i];
    if (o.kind == CornerOrigin::Kind::Absent) continue;
    nlohmann::ordered_json entry{{"slot", s}, {"corner", kSlotTitles[i]}, {"point", record.slots[i].pointNumber},
                                 {"rule", originName(o)}};
    if (o.kind == CornerOrigin::Kind::LookedUp) entry["from_file"] = o.point;
    if (o.kind == CornerOrigin::Kind::Restored) entry["restored_by"] = o.restoredBy;
    if (o.kind == CornerOrigin::Kind::Computed && o.rule.kind == CornerRule::Kind::Intersection) {
      entry["lines"] = {{o.rule.ends[0], o.rule.ends[1]}, {o.rule.ends[2], o.rule.ends[3]}};
    } else if (o.kind == CornerOrigin::Kind::Computed) {
      entry["from"] = o.rule.nearSlot;
      entry["toward"] = o.rule.farSlot;
      entry["chains"] = o.rule.chains;
      entry["factor"] = o.rule.factor();
      entry["along"] = o.rule.halfMile;
    }
    entry["text"] = why(s);
    explain.push_back(std::move(entry));
  }
  result["explain"] = std::move(explain);
  if (ground) {
    auto corners = nlohmann::ordered_json::array(), lines = nlohmann::ordered_json::array();
    for (const GroundCorner& c : ground->corners)
      corners.push_back({{"slot", c.slot},
                         {"point", c.name},
                         {"latitude", c.at.latitude},
                         {"longitude", c.at.longitude},
                         {"scale", c.grid.scale},
                         {"convergence", c.grid.convergence},
                         {"elevation_factor", c.elevationFactor},
                         {"combined", c.combined}});
    for (const GroundLine& l : ground->lines)
      lines.push_back({{"from", l.from}, {"to", l.to}, {"grid", l.grid}, {"factor", l.factor}, {"ground", l.ground}});
    result["ground"] = {{"system", ground->system}, {"datum", ground->datum}, {"corners", corners}, {"lines", lines}};
    if (ground->elevation) result["ground"]["elevation"] = *ground->elevation;
  }
}

Picture frmSecSub::drawing() const {
  std::array<std::string, slot::count> labels;
  for (int s = 0; s < slot::count; ++s) labels[static_cast<std::size_t>(s)] = record.slots[static_cast<std::size_t>(s)].pointNumber;
  if (!hasRun) {
    Picture empty;
    empty.hint = "The drawing of the section appears here after Continue.";
    return empty;
  }
  std::array<std::string, slot::count> tips;
  // Resting on a corner: its number and title, where it is and why.
  for (int s = 0; s < slot::count; ++s) {
    const auto i = static_cast<std::size_t>(s);
    tips[i] = labels[i] + " (" + kSlotTitles[i] + ")\nX " + coordinateText(record.slots[i].x) + "  Y " +
              coordinateText(record.slots[i].y) + "\n" + why(s);
  }
  return sectionDrawing({.record = record,
                         .computed = computed,
                         .labels = labels,
                         .tips = tips,
                         .coincidences = notices.coincidences,
                         .title = drawingTitle(),
                         .lengths = chkLengths.checked});
}

void frmSecSub::btnSaveDrawing_Click() {
  if (!hasRun) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Save the Drawing",
                                         program().userAppData + "Section" + CStr(record.section) + ".svg",
                                         {"SVG drawing (*.svg)", "PNG picture (*.png)", "PDF document (*.pdf)"});
  if (!chosen || chosen->empty()) return;
  const std::filesystem::path file(*chosen);
  const Picture picture = drawing();
  const auto save = [&] { shell().savePicture(picture, file); };
  sayWritten(exportFile(shell(), "Save the Drawing", file, {{".svg", save}, {".png", save}, {".pdf", save}}));
}

void frmSecSub::restoreSlot(int s) {
  if (s < 0 || s >= slot::count || !program().registry().hasForm("frmRestore")) return;
  auto& restore = program().form<frmRestore>("frmRestore");
  std::string name = std::string(kSlotTitles[static_cast<std::size_t>(s)]);
  if (!txtSection.text.empty()) name += " SEC " + txtSection.text;
  restore.openForCorner(name, program().inputFileName);
  shell().showModal(restore);
  const auto restored = restore.restoredCorner();
  if (!restored) return;
  SlotFields& f = slots[static_cast<std::size_t>(s)];
  setText(f.xc, coordinateText(restored->at.x));
  setText(f.yc, coordinateText(restored->at.y));
  restorations[static_cast<std::size_t>(s)] = std::array<std::string, 3>{restored->text, f.xc.text, f.yc.text};
  focusRequest = "txt" + std::to_string(s) + "xc";
}

std::vector<FormModel*> frmSecSub::inputForms() { return {&program().form("frmMain"), this}; }

void frmSecSub::btnExport_Click() {
  if (!hasRun) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Export the Corners",
                                         program().userAppData + "Section" + CStr(record.section) + ".csv", mapExportFilters());
  if (!chosen || chosen->empty()) return;
  CornerMap map = runMap();
  try {
    map.system = mapSystem(program().crs);
  } catch (const CrsError& e) {
    shell().msgBox("Export the Corners", e.what(), Icon::Exclamation);
    return;
  }
  sayWritten(exportMap(shell(), "Export the Corners", *chosen, map, ground.has_value()));
}

bool frmSecSub::checkHeld16ths() {
  const bool held = std::any_of(slot::others.begin(), slot::others.end(),
                                [this](int s) { return !slots[static_cast<std::size_t>(s)].xc.text.empty(); });
  if (!held) return true;
  if (shell().msgBox("Entered 1/16 Corner Coordinates",
                     "This summary report may not be entirely correct because of entered sixteenth corner coordinates.  "
                     "Continue anyway?",
                     Icon::Question, Buttons::YesNo) == Answer::No)
    shell().endProgram();  // No ends the whole program, as it always has
  return true;
}

bool frmSecSub::getFormValues() {
  record.present = {};
  const int section = toInt16(Val(txtSection.text));
  const int township = toInt16(Val(txtTwp.text));
  const int range = toInt16(Val(txtRange.text));
  // After the box the cursor waits in the field to mend.
  auto refuse = [this](const char* title, const char* text, const std::string& field) {
    shell().msgBox(title, text, Icon::Information);
    focusRequest = field;
    return false;
  };
  // Names and descriptions exist for sections 1 to 36 only.
  if (section < 1 || section > 36) return refuse("Invalid Number", "Valid Section numbers are 1-36.", "txtSection");
  if (township < 1) return refuse("Missing Data", "Township number is a required field.", "txtTwp");
  if (range < 1) return refuse("Missing Data", "Range number is a required field.", "txtRange");

  // Val, then back to text: 4.7 stays 4.7 and is refused below.
  double meridian = Val(txtPM.text);
  if (chkDefaults.checked) {
    meridian = meridianDefault(township, range, optEast.checked, optWest.checked, meridian);
    if (meridian == 0) {
      shell().msgBox("Invalid PM?", "This location may be incorrect for Kestovia.  Continue processing?", Icon::Question,
                     Buttons::YesNo);
      shell().endProgram();  // whatever the answer, as it always has
    }
  }
  txtPM.text = CStr(meridian);
  if (meridian != 4 && meridian != 5) return refuse("Invalid Number", "Valid Principal Meridian numbers are 4 or 5.", "txtPM");

  for (int quarter : {slot::N4, slot::W4, slot::E4, slot::S4})
    if (slots[static_cast<std::size_t>(quarter)].xc.text.empty() && slots[slot::C].xc.text.empty())
      return refuse("Missing Quarter Corner", "Enter all four quarter corners or hold the center.",
                    "txt" + std::to_string(quarter) + "pn");

  record.section = static_cast<std::int16_t>(section);
  record.township = static_cast<std::int16_t>(township);
  record.meridian = txtPM.text;
  record.direction = optEast.checked ? "E" : "W";
  record.range = static_cast<std::int16_t>(optEast.checked ? -range : range);
  setChecked(optEast.checked ? "optEast" : "optWest", true);

  for (int s = 0; s < slot::count; ++s) {
    const SlotFields& f = slots[static_cast<std::size_t>(s)];
    CornerSlot& c = record.slots[static_cast<std::size_t>(s)];
    // The fields are what counts: a slot emptied since the last run is blank.
    c.x = c.y = 0;
    c.pointNumber = c.description = c.evidence = c.feature = "";
    if (f.xc.text.empty()) continue;
    CornerPresence& p = record.present;
    switch (s) {
      case slot::NW: p.nw = true; break;
      case slot::NE: p.ne = true; break;
      case slot::SE: p.se = true; break;
      case slot::SW: p.sw = true; break;
      case slot::N4: p.n4 = true; break;
      case slot::W4: p.w4 = true; break;
      case slot::E4: p.e4 = true; break;
      case slot::S4: p.s4 = true; break;
      // A sixteenth corner typed on the south line marks the N 1/4 present: as it always has.
      case 21: case 23: p.n4 = true; break;
      default: break;
    }
    c.x = Val(f.xc.text);
    c.y = Val(f.yc.text);
    c.pointNumber = upper(f.pn.text);
    c.description = c.evidence = f.pd.text;
    c.feature = f.pf.text;
  }
  for (std::size_t i = 0; i < chains.size(); ++i) record.chains.*kChainFields[i].text = chains[i].text.text;
  return true;
}

void frmSecSub::checkForMissingChainData() {
  for (const std::string& name : requiredChains(record.section)) {
    if (chain(name).text.text.empty()) {
      // Warned once; the empty field counts as 0 and the run goes on.
      shell().msgBox("Missing Data", "Number of chains is a required field.", Icon::Information);
      return;
    }
  }
}

void frmSecSub::writeSlotFields(int s) {
  const CornerSlot& c = record.slots[static_cast<std::size_t>(s)];
  slots[static_cast<std::size_t>(s)].xc.text = coordinateText(c.x);
  slots[static_cast<std::size_t>(s)].yc.text = coordinateText(c.y);
  computed[static_cast<std::size_t>(s)] = true;
}

void frmSecSub::labelBlankPts(const CornerNaming& naming) {
  txtIncr.text = upper(txtIncr.text);
  const auto digit = txtIncr.text.find_first_of("0123456789");
  const std::string prefix = txtIncr.text.substr(0, digit);
  double number = digit == std::string::npos ? 0 : Val(txtIncr.text.substr(digit));
  if (number == 0) number = 1;
  for (int s : slot::others) {
    SlotFields& f = slots[static_cast<std::size_t>(s)];
    if (!f.pn.text.empty() || f.xc.text.empty()) continue;
    // Set without a lookup: a new number names the computed corner, it
    // does not fetch a point of the same number from the source file.
    f.pn.text = prefix + CStr(number);
    record.slots[static_cast<std::size_t>(s)].pointNumber = f.pn.text;
    number += 1;
  }
  if (optUnique.checked)
    for (int s = 0; s < slot::count; ++s)
      record.slots[static_cast<std::size_t>(s)].pointNumber = naming.pointNames[static_cast<std::size_t>(s)];
}

// The files name each position from its name box, or by the run's numbering
// or unique names, and take its feature code from its feature box: a number
// or code typed for a position the run computed never reached the record
// (the record copy takes only slots with an X). A present position is never
// left without a name: a corner typed by coordinates alone takes its corner
// name, as unique numbering would give it.
std::vector<int> frmSecSub::nameOutputPositions(const CornerNaming& naming) {
  std::vector<int> unnamed;
  for (int s = 0; s < slot::count; ++s) {
    const auto i = static_cast<std::size_t>(s);
    CornerSlot& c = record.slots[i];
    if (c.x == 0) continue;
    if (!optUnique.checked) c.pointNumber = upper(slots[i].pn.text);
    c.feature = slots[i].pf.text;
    if (c.pointNumber.empty()) {
      c.pointNumber = naming.pointNames[i];
      unnamed.push_back(s);
    }
  }
  return unnamed;
}

// The source file's notice first, then the run's, then the files written since.
void frmSecSub::showNotices(const std::vector<std::string>& lines) {
  lblNotice.caption = program().sourceNotice;
  for (const std::string& line : lines) lblNotice.caption += (lblNotice.caption.empty() ? "" : "\n") + line;
  for (const std::string& file : writtenFiles) lblNotice.caption += (lblNotice.caption.empty() ? "" : "\n") + std::string("Written: ") + file;
  lblNotice.links = writtenFiles;
  lblNotice.visible = !lblNotice.caption.empty();
}

void frmSecSub::showCrs() { lblCrs.caption = "Coordinate system: " + crsTitle(program().crs); }

void frmSecSub::sayWritten(const std::optional<std::filesystem::path>& file) {
  if (!file) return;  // refused: its box said why
  writtenFiles.push_back(file->string());
  showNotices(notices.lines);
}

std::optional<std::vector<std::filesystem::path>> frmSecSub::runOutputFiles() {
  auto& main = program().form<frmMain>("frmMain");
  std::vector<std::filesystem::path> files{outputPath(main.txtOutInp, program().userAppData, kGeopakFileName),
                                           outputPath(main.txtReport, program().userAppData, kReportFileName)};
  // The corner record, on demand, beside the report and written with it.
  if (chkWhy.checked) files.push_back(files[1].parent_path() / (files[1].stem().string() + ".why.txt"));
  const char* what[] = {"GEOPAK input", "report", "corner record"};
  for (std::size_t a = 0; a < files.size(); ++a)
    for (std::size_t b = a + 1; b < files.size(); ++b)
      if (sameFile(files[a], files[b])) {
        shell().msgBox("Output Files",
                       std::string("The ") + what[a] + " \"" + files[a].string() + "\" and the " + what[b] + " \"" +
                           files[b].string() + "\" are one file. Give each its own name; nothing was written.",
                       Icon::Exclamation);
        return std::nullopt;
      }
  return files;
}

void frmSecSub::Main() {
  notices = {};
  writtenFiles.clear();
  showNotices({});
  const auto outputs = runOutputFiles();
  if (!outputs) return;
  if (chkGround.checked && program().crs.none()) {
    shell().msgBox("Coordinate System",
                   "Latitudes and grid to ground need the coordinate system of the coordinates: choose it with Coordinate "
                   "System..., or clear Add Latitudes and Grid to Ground.",
                   Icon::Exclamation);
    focusRequest = "btnCrs";
    return;
  }
  checkHeld16ths();
  if (!getFormValues()) return;
  checkForMissingChainData();
  const HalfMiles halfMiles = calculateChains(record.chains);
  const CornerNaming naming = setDescriptions(record.section, record.township, record.range,
                                              {chk1.visible, chk4.visible, chk5.visible, chkDefaults.visible});
  for (int s = 0; s < slot::count; ++s)
    record.slots[static_cast<std::size_t>(s)].description = naming.descriptions[static_cast<std::size_t>(s)];

  ReportInput input;
  if (chkAddHeader.checked) input.header = program().header;
  input.dataFile = program().inputFileName.empty() ? "" : std::filesystem::absolute(program().inputFileName).string();
  input.today = shell().today();
  input.chains = record.chains;
  std::vector<std::string> lines = printReportHeader(record, input);

  computed = {};
  placedBy = {};
  const SectionRecord entered = record;  // for the notices: what the chain fields moved
  const bool centerTyped = !slots[slot::C].xc.text.empty();
  computeMissingCorners(record, halfMiles, centerTyped, [this](int s, const CornerRule& rule) {
    writeSlotFields(s);
    placedBy[static_cast<std::size_t>(s)] = rule;
  });
  labelBlankPts(naming);
  const std::vector<int> unnamed = nameOutputPositions(naming);
  for (int s = 0; s < slot::count; ++s) {
    const auto i = static_cast<std::size_t>(s);
    CornerOrigin& o = origins[i];
    o = {};
    if (record.slots[i].x == 0) continue;
    if (computed[i] && placedBy[i]) {
      o.kind = CornerOrigin::Kind::Computed;
      o.rule = *placedBy[i];
    } else if (restorations[i] && (*restorations[i])[1] == slots[i].xc.text && (*restorations[i])[2] == slots[i].yc.text) {
      o.kind = CornerOrigin::Kind::Restored;
      o.restoredBy = (*restorations[i])[0];
    } else if (lookups[i] && (*lookups[i])[1] == slots[i].xc.text && (*lookups[i])[2] == slots[i].yc.text) {
      o.kind = CornerOrigin::Kind::LookedUp;
      o.point = (*lookups[i])[0];
    } else {
      o.kind = CornerOrigin::Kind::Typed;
    }
  }
  getLengthHor(record);
  getLengthVert(record);

  const std::vector<std::string> geopak = printPoints(record, naming);
  for (auto& page : {printReport(record, naming, computed), print3rdPage(record, input)})
    lines.insert(lines.end(), page.begin(), page.end());
  // Asked for, later pages after those the report always has: the evidence
  // found at each corner, latitudes and grid to ground.
  if (chkEvidence.checked) {
    const std::vector<std::string> page = evidencePage(record);
    lines.insert(lines.end(), page.begin(), page.end());
  }
  ground.reset();
  if (chkGround.checked) {
    try {
      ground = gridAndGround(record, program().crs);
    } catch (const CrsError& e) {
      shell().msgBox("Coordinate System", std::string(e.what()) + ". Nothing was written.", Icon::Exclamation);
      return;
    }
    const std::vector<std::string> page = gridGroundPage(record, *ground);
    lines.insert(lines.end(), page.begin(), page.end());
  }

  const std::filesystem::path& geopakFile = (*outputs)[0];
  const std::filesystem::path& reportFile = (*outputs)[1];
  std::vector<std::pair<std::filesystem::path, std::vector<std::string>>> files{{geopakFile, geopak}, {reportFile, lines}};
  if (outputs->size() > 2) files.emplace_back((*outputs)[2], cornerRecordLines(record, origins, drawingTitle(), ground ? &*ground : nullptr));
  program().writeOutputFiles(files, CStr(record.section) + "-" + CStr(record.township) + "-" +
                                        CStr(record.range < 0 ? -record.range : record.range) + record.direction);
  report = lines;
  hasRun = true;
  btnSaveDrawing.enabled = btnExport.enabled = btnPrint.enabled = true;
  runNaming = naming;
  notices = coincidenceNotices(record, computed, entered, centerTyped);
  // Nothing this run replaced is lost: say where the earlier files went.
  for (const auto& [replaced, kept] : program().lastKept)
    notices.lines.push_back("The earlier " + replaced.filename().string() + " is kept in the History folder as \"" +
                            kept.filename().string() + "\".");
  for (int s : unnamed)
    notices.lines.push_back("The corner " + std::to_string(s) + " (" + naming.descriptions[static_cast<std::size_t>(s)] +
                            ") has no point number; the files name it " + record.slots[static_cast<std::size_t>(s)].pointNumber + ".");
  showNotices(notices.lines);

  program().points.clearRecords(0, 25);
  shell().msgBox("Program Complete", "Created Files: " + geopakFile.string() + " and " + reportFile.string() + ".",
                 Icon::Information);
  shell().openInEditor(std::vector<std::filesystem::path>{reportFile, geopakFile});
}

}  // namespace tervalo
