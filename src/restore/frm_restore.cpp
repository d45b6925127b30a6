#include "restore/frm_restore.h"

#include "project/point_import.h"
#include "project/project_session.h"

#include <cmath>
#include <filesystem>
#include <tuple>

#include "app/output_file.h"
#include "app/program.h"
#include "app/shell.h"
#include "export/export_file.h"
#include "text/angle.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/number.h"

namespace tervalo {
namespace {

constexpr const char* kDirections[] = {"North", "South", "East", "West"};

std::optional<GivenControl>& controlOf(CornerEntry& c, std::size_t k) {
  return k == 0 ? c.north : k == 1 ? c.south : k == 2 ? c.east : c.west;
}

std::optional<Control>& controlOf(LostCorner& c, std::size_t k) {
  return k == 0 ? c.north : k == 1 ? c.south : k == 2 ? c.east : c.west;
}

std::string shown(double v) { return CStr(v); }

}  // namespace

frmRestore::frmRestore(Program& program) : FormModel(program, "frmRestore", "Corner Restoration") {
  add("lblSource", lblSource);
  add("txtSource", txtSource).change([this] { file_.source = txtSource.text; });
  add("btnSource", btnSource).click([this] {
    if (const auto chosen = chooseSourceFile(txtSource.text)) setText(txtSource, *chosen);
  });
  add("optFeet", optFeet, "units").click([this] { file_.units = "ft"; });
  add("optMetres", optMetres, "units").click([this] { file_.units = "m"; });
  add("lblBasis", lblBasis);
  add("txtBasis", txtBasis).numeric().change([this] { file_.basis = angleFromText(txtBasis.text).value_or(0); });
  add("chkTrueNorth", chkTrueNorth).click([this] {
    file_.basisTrueNorth = chkTrueNorth.checked;
    run_.reset();
    showBasis();
  });
  add("lblCrs", lblCrs);
  add("btnCrs", btnCrs).click([this] {
    shell().showModal(this->program().form("frmCrs"));
    file_.crs = this->program().crs;
    run_.reset();
    showBasis();
  });
  add("lblCorners", lblCorners);
  add("lstCorners", lstCorners).click([this] { selectCorner(lstCorners.selected); });
  add("btnAddCorner", btnAddCorner).click([this] {
    file_.corners.push_back(CornerEntry{"Corner " + std::to_string(file_.corners.size() + 1)});
    selectCorner(static_cast<int>(file_.corners.size()) - 1);
    focusRequest = "txtName";
  });
  add("btnRemoveCorner", btnRemoveCorner).click([this] {
    if (current < 0) return;
    file_.corners.erase(file_.corners.begin() + current);
    run_.reset();
    selectCorner(std::min(current, static_cast<int>(file_.corners.size()) - 1));
  });
  add("fraCorner", fraCorner);
  const auto edited = [this] { fieldsToCorner(); };
  add("lblName", lblName);
  add("txtName", txtName).change(edited);
  add("lblMethod", lblMethod);
  add("cmbMethod", cmbMethod).change(edited);
  add("lblIndex", lblIndex);
  add("txtIndex", txtIndex).numeric(true).change(edited);
  add("lblAzimuth", lblAzimuth);
  add("txtAzimuth", txtAzimuth).change(edited);
  add("lblPointCaption", lblPointCaption);
  add("lblXCaption", lblXCaption);
  add("lblYCaption", lblYCaption);
  add("lblRecordCaption", lblRecordCaption);
  for (std::size_t k = 0; k < controlFields.size(); ++k) {
    ControlFields& f = controlFields[k];
    f.direction = kDirections[k];
    f.caption.caption = f.direction;
    add("lbl" + f.direction, f.caption);
    add("txt" + f.direction + "Point", f.point).change(edited);
    add("txt" + f.direction + "X", f.x).numeric().change(edited);
    add("txt" + f.direction + "Y", f.y).numeric().change(edited);
    add("txt" + f.direction + "Record", f.record).numeric().change(edited);
  }
  add("btnRestore", btnRestore).click([this] { btnRestore_Click(); });
  add("lblResult", lblResult);
  add("btnOpenInputs", btnOpenInputs).click([this] { openFile(); });
  add("btnSaveInputs", btnSaveInputs).click([this] { saveFile(); });
  add("btnWriteReport", btnWriteReport).click([this] { btnWriteReport_Click(); });
  add("btnStore", btnStore).click([this] { btnStore_Click(); });
  add("btnReturn", btnReturn).click([this] { unload(); });
  file_.corners.push_back(CornerEntry{"Corner 1"});
  file_.crs = program.crs;
  showBasis();
  selectCorner(0);
}

void frmRestore::showBasis() {
  chkTrueNorth.checked = file_.basisTrueNorth;
  txtBasis.enabled = !file_.basisTrueNorth;
  lblCrs.caption = "Coordinate system: " + crsTitle(file_.crs);
}

void frmRestore::setFile(RestorationFile file) {
  file_ = std::move(file);
  run_.reset();
  txtSource.text = file_.source;
  optFeet.checked = file_.units != "m";
  optMetres.checked = file_.units == "m";
  txtBasis.text = shown(file_.basis);
  showBasis();
  selectCorner(file_.corners.empty() ? -1 : 0);
}

void frmRestore::openForCorner(const std::string& name, const std::string& source) {
  RestorationFile file;
  file.source = source;
  file.crs = program().crs;
  file.corners.push_back(CornerEntry{name});
  setFile(std::move(file));
}

void frmRestore::selectCorner(int row) {
  current = row >= 0 && row < static_cast<int>(file_.corners.size()) ? row : -1;
  showCornerList();
  const CornerEntry blank;
  const CornerEntry& c = current >= 0 ? file_.corners[static_cast<std::size_t>(current)] : blank;
  txtName.text = c.name;
  cmbMethod.text = methodName(c.method);
  txtIndex.text = shown(c.index);
  txtAzimuth.text = c.azimuth ? shown(*c.azimuth) : "";
  for (std::size_t k = 0; k < controlFields.size(); ++k) {
    const auto& given = controlOf(const_cast<CornerEntry&>(c), k);
    ControlFields& f = controlFields[k];
    f.point.text = given ? given->point : "";
    f.x.enabled = f.y.enabled = true;
    f.x.text = given && given->at ? shown(given->at->x) : "";
    f.y.text = given && given->at ? shown(given->at->y) : "";
    f.record.text = given ? shown(given->record) : "";
  }
  fraCorner.caption = current >= 0 ? "Corner " + std::to_string(current + 1) : "Corner";
  showResult();
}

// What the fields say, kept as the corner: a control is given by a point
// number, or by X and Y, with its record chains.
void frmRestore::fieldsToCorner() {
  if (current < 0) return;
  CornerEntry& c = file_.corners[static_cast<std::size_t>(current)];
  c.name = txtName.text;
  c.method = methodNamed(cmbMethod.text).value_or(RestoreMethod::Auto);
  c.index = Val(txtIndex.text);
  c.azimuth = txtAzimuth.text.empty() ? std::nullopt : angleFromText(txtAzimuth.text);
  for (std::size_t k = 0; k < controlFields.size(); ++k) {
    ControlFields& f = controlFields[k];
    auto& control = controlOf(c, k);
    // X and Y shown greyed are what the last Restore looked up for the point:
    // another point number makes them stale, and they are never typed ones.
    if (!f.x.enabled && f.point.text != (control ? control->point : "")) {
      f.x.text.clear();
      f.y.text.clear();
      f.x.enabled = f.y.enabled = true;
    }
    if (f.point.text.empty() && f.x.text.empty() && f.y.text.empty() && f.record.text.empty()) {
      control.reset();
      continue;
    }
    control = GivenControl{f.point.text, std::nullopt, Val(f.record.text)};
    if (f.x.enabled && (!f.x.text.empty() || !f.y.text.empty())) control->at = Position{Val(f.x.text), Val(f.y.text)};
  }
  showCornerList();
}

void frmRestore::showCornerList() {
  lstCorners.items.clear();
  for (std::size_t i = 0; i < file_.corners.size(); ++i) {
    std::string status;
    if (run_ && i < run_->corners.size())
      status = run_->corners[i].restored ? std::string("  ") + methodName(run_->corners[i].restored->method) : "  refused";
    lstCorners.items.push_back(file_.corners[i].name + status);
  }
  lstCorners.selected = current;
  btnRemoveCorner.enabled = current >= 0;
}

void frmRestore::btnRestore_Click() {
  fieldsToCorner();
  if (file_.corners.empty()) {
    shell().msgBox("Corner Restoration", "Add the lost corners to restore first.", Icon::Information);
    return;
  }
  for (const CornerEntry& c : file_.corners)
    for (std::size_t k = 0; k < 4; ++k)
      if (const auto& control = controlOf(const_cast<CornerEntry&>(c), k); control && control->point.empty() && !control->at) {
        shell().msgBox("Corner Restoration",
                       "The " + std::string(kDirections[k]) + " control of " + c.name + " has record chains but no point number or X and Y.",
                       Icon::Exclamation);
        return;
      }
  if (file_.basisTrueNorth && file_.crs.none()) {
    shell().msgBox("Corner Restoration",
                   "True north at each corner needs the coordinate system of the coordinates: choose it with Coordinate System... first.",
                   Icon::Exclamation);
    return;
  }
  try {
    run_ = runRestoration(file_, formatShortDate(shell().today()));
  } catch (const RestorationFileError& e) {
    shell().msgBox("Corner Restoration", e.what(), Icon::Exclamation);
    return;
  }
  showCornerList();
  showResult();
}

void frmRestore::showResult() {
  lblResult.caption.clear();
  if (!run_ || current < 0 || current >= static_cast<int>(run_->corners.size())) return;
  const CornerOutcome& o = run_->corners[static_cast<std::size_t>(current)];
  lblResult.caption = o.restored ? "Restored at X " + Format(o.restored->at.x, "0.0000") + "  Y " +
                                       Format(o.restored->at.y, "0.0000") + "\nBy " + o.restored->text + "." +
                                       (file_.basisTrueNorth ? "\nBasis " + decimalToDmsCarried(o.basis) + " to true north at its controls." : "")
                                 : "Not restored: " + o.refused + ".";
  // A control given by point number shows the X and Y the source file gave it, greyed.
  CornerEntry& entry = file_.corners[static_cast<std::size_t>(current)];
  LostCorner used = o.corner;
  for (std::size_t k = 0; k < controlFields.size(); ++k) {
    const auto& given = controlOf(entry, k);
    const auto& found = controlOf(used, k);
    if (!given || given->point.empty() || given->at || !found) continue;
    ControlFields& f = controlFields[k];
    f.x.text = Format(found->at.x, "0.0000");
    f.y.text = Format(found->at.y, "0.0000");
    f.x.enabled = f.y.enabled = false;
  }
}

std::optional<Restored> frmRestore::restoredCorner() const {
  if (!run_ || run_->corners.empty()) return std::nullopt;
  return run_->corners.front().restored;
}

void frmRestore::opened() { btnStore.enabled = program().project != nullptr; }

void frmRestore::btnStore_Click() {
  if (!program().project) return;
  if (!run_) btnRestore_Click();
  if (!run_) return;
  const std::string file = std::filesystem::path(txtSource.text).filename().string();
  const std::string said = storeFromTool(*program().project, shell(), restoredPoints(*run_, "restoration" + (file.empty() ? "" : " " + file)),
                                         "restoration", "Store the restored corners");
  if (!said.empty()) lblResult.caption += (lblResult.caption.empty() ? "" : "\n") + said;
}

void frmRestore::btnWriteReport_Click() {
  if (!run_) btnRestore_Click();
  if (!run_) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Write the Restoration Report",
                                         program().userAppData + "restoration-restored.rpt", {"Reports (*.rpt *.txt)"});
  if (!chosen || chosen->empty()) return;
  // The report as named, the restored corners beside it as a coordinate file.
  const std::filesystem::path report(*chosen);
  std::filesystem::path points = report;
  points.replace_extension(".txt");
  if (points == report) points = report.parent_path() / (report.stem().string() + "-points.txt");
  std::vector<std::pair<std::filesystem::path, std::vector<std::string>>> files{{report, run_->report}};
  if (!run_->points.empty()) files.emplace_back(points, run_->points);
  try {
    writeTextFiles(files);
  } catch (const RunTimeError& e) {
    shell().msgBox("Write the Restoration Report", e.what(), Icon::Critical);
    return;
  }
  for (const auto& [file, lines] : files) shell().fileWritten(std::filesystem::absolute(file));
  shell().openInEditor(report);
}

void frmRestore::saveFile() {
  fieldsToCorner();
  const auto chosen = shell().chooseFile(FileDialog::Save, "Save Inputs", program().userAppData + "lost-corners.restore.json",
                                         {"Restoration files (*.restore.json)", "All files (*)"});
  if (!chosen || chosen->empty()) return;
  const std::filesystem::path file(*chosen);
  if (exportFile(shell(), "Save Inputs", file, {{exportKind(file), [&] { writeDocument(file, restorationText(file_)); }}}))
    program().recent.add(*chosen);
}

void frmRestore::openFile() {
  const auto chosen = shell().chooseFile(FileDialog::Open, "Open Inputs", program().userAppData,
                                         {"Restoration files (*.restore.json)", "All files (*)"});
  if (chosen && !chosen->empty()) openPath(*chosen);
}

bool frmRestore::openPath(const std::string& file) {
  try {
    setFile(readRestorationFile(file));
  } catch (const RestorationFileError& e) {
    shell().msgBox("Open Inputs", "The file " + file + " cannot be opened: " + e.what() + ".", Icon::Exclamation);
    return false;
  }
  program().recent.add(file);
  return true;
}

}  // namespace tervalo

namespace tervalo {

Picture frmRestore::sketch() const {
  Picture p;
  if (!run_ || current < 0 || current >= static_cast<int>(run_->corners.size())) {
    p.hint = "The controls and the restored corner are drawn here after Restore.";
    return p;
  }
  const CornerOutcome& o = run_->corners[static_cast<std::size_t>(current)];
  const LostCorner& c = o.corner;
  const auto at = [](Position q) { return PicturePoint{q.x, q.y}; };
  // The lines the proportions run on, between opposite controls.
  if (c.north && c.south) p.lines.push_back({{at(c.north->at), at(c.south->at)}, Ink::Quiet, true});
  if (c.east && c.west) p.lines.push_back({{at(c.east->at), at(c.west->at)}, Ink::Quiet, true});
  // Each control's label on its own side, away from the restored corner.
  const std::tuple<const std::optional<Control>*, const char*, Place> controls[] = {
      {&c.north, "N", Place::Above}, {&c.south, "S", Place::Below}, {&c.east, "E", Place::Below}, {&c.west, "W", Place::Above}};
  for (const auto& [control, direction, place] : controls) {
    if (!*control) continue;
    PictureMark m = cornerMark(at((*control)->at), CornerKind::Entered);
    m.tip = std::string("Found corner, ") + direction + " control, " + Format((*control)->record, "0.00") + " chains of record";
    p.marks.push_back(m);
    p.texts.push_back({at((*control)->at), std::string(direction) + ((*control)->point.empty() ? "" : " " + (*control)->point),
                       Ink::Main, place});
    if (o.restored) p.lines.push_back({{at((*control)->at), at(o.restored->at)}, Ink::Quiet, false});
  }
  if (o.restored) {
    for (const TemporaryPoint& t : o.restored->temporary) {
      PictureMark m = markAt(at(t.at), Ink::Quiet);
      m.radius = 3;
      m.tip = "Temporary point " + t.name;
      p.marks.push_back(m);
    }
    PictureMark restored = cornerMark(at(o.restored->at), CornerKind::Restored);
    restored.tip = "Restored corner: " + o.restored->text;
    p.marks.push_back(restored);
    p.texts.push_back({at(o.restored->at), c.name, Ink::Accent, Place::AboveRight});
  }
  p.mapUnits = file_.units == "m" ? "m" : "ft";
  p.caption = c.name + (o.restored ? std::string(", ") + methodName(o.restored->method) + " proportion" : ", not restored") +
              "\n\u25A0 control   \u25C6 restored   \u25CB temporary point";
  return p;
}

}  // namespace tervalo
