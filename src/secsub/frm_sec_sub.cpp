#include "secsub/frm_sec_sub.h"

#include <algorithm>
#include <cctype>

#include "app/forms_misc.h"
#include "app/frm_main.h"
#include "app/program.h"
#include "app/shell.h"
#include "project/point_import.h"
#include "project/project_session.h"
#include "restore/frm_restore.h"
#include "secsub/corners.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"

// The section form's fields and their events: the slots' point numbers and
// coordinates, the township rules, the chain defaults, Clear, and the checks
// made before a run.

namespace tervalo {

std::string frmSecSub::coordinateText(double v) { return Format(v, "#######0.0000"); }

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
  add("btnStore", btnStore).click([this] { btnStore_Click(); });
  add("btnPlat", btnPlat).click([this] { btnPlat_Click(); });
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
    fields.pn.note = "Point " + wanted + (program().project ? " is not in the project or the point list" : " is not in the point list") +
                     (empty ? " (the list is empty: read the source file again; a run empties it)" : "") +
                     ": type its X and Y, or keep the number to name a corner the run computes.";
    fields.xc.note = wanted + " not in the point list";
  };
  // An open project is looked in first, by its index on numbers; the source file's list after it.
  std::optional<PointRecord> inProject;
  if (program().project && !wanted.empty()) {
    try {
      if (const auto q = program().project->file().find(wanted)) inProject = pointRecordOf(*q);
    } catch (const ProjectError& e) {
      fields.pn.note = std::string("The project cannot be read: ") + e.what();
    }
  }
  const PointList& list = program().points;
  // Up to and including the loaded count, within the list's 151 records.
  const int last = std::min<int>(list.pointCount, PointList::kSourceCapacity - 1);
  for (int i = inProject ? -1 : 0; i <= last; ++i) {
    const PointRecord& p = i < 0 ? *inProject : list.records[static_cast<std::size_t>(i)];
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
    lookups[static_cast<std::size_t>(s)] = Lookup{p.name, f.xc.text, f.yc.text, p.evidence};
    pointFound = true;
    return;
  }
  sayNotFound();
}

bool frmSecSub::lookedUp(int s) const {
  const auto i = static_cast<std::size_t>(s);
  return lookups[i] && lookups[i]->x == slots[i].xc.text && lookups[i]->y == slots[i].yc.text;
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

// A quarter-mile that is regular in this section takes "20" when empty,
// since empty reads 0 chains and would put its sixteenth corner on the
// section corner. A field the section needs, and every fractional
// quarter-mile of the north and west tiers, is shown empty for the user to
// type (a 20 put there by an earlier pass is taken back): the run warns of
// a required one and says of any other that it took 20 chains. Nothing that
// changes the computation is hidden: a field is also shown whenever it
// holds anything but 20, and all eight are shown without the defaults.
void frmSecSub::applyChainDefaults() {
  const int section = toInt16(Val(txtSection.text));
  const auto required = requiredChains(section), fractional = fractionalChains(section);
  const auto among = [](const std::vector<std::string>& names, const char* name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  };
  for (ChainField& c : chains) {
    const bool shown = among(required, c.name) || among(fractional, c.name);
    if (shown && c.defaulted) {
      c.text.text.clear();
      c.defaulted = false;
    } else if (!shown && c.text.text.empty()) {
      c.text.text = "20";
      c.defaulted = true;
    }
    c.text.visible = c.caption.visible = shown || c.text.text != "20" || !chkDefaults.checked;
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
  btnSaveDrawing.enabled = btnExport.enabled = btnPrint.enabled = btnPlat.enabled = false;
  report.clear();
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
    // The file's own evidence column, where the slot still holds what it gave.
    if (lookedUp(s) && lookups[static_cast<std::size_t>(s)]->evidence) c.evidence = *lookups[static_cast<std::size_t>(s)]->evidence;
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


}  // namespace tervalo
