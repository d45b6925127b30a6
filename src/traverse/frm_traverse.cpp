#include "traverse/frm_traverse.h"

#include "project/point_import.h"
#include "project/project_session.h"

#include <algorithm>
#include <cmath>

#include "app/json_text.h"
#include "app/output_file.h"
#include "app/program.h"
#include "app/shell.h"
#include "export/export_file.h"
#include "export/map_export.h"
#include "export/map_system.h"
#include "text/angle.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/input_file.h"
#include "text/number.h"
#include "traverse/traverse_file.h"

namespace tervalo {
namespace {

constexpr const char* kRules[] = {"None", "Compass rule", "Transit rule", "Crandall's method", "Least squares"};
constexpr AdjustRule kRuleOf[] = {AdjustRule::None, AdjustRule::Compass, AdjustRule::Transit, AdjustRule::Crandall,
                                  AdjustRule::LeastSquares};

}  // namespace

frmTraverse::frmTraverse(Program& program) : FormModel(program, "frmTraverse", "Traverse") {
  const auto edited = [this] { changed(); };
  add("lblSource", lblSource);
  add("txtSource", txtSource).change(edited);
  add("btnSource", btnSource).click([this] {
    if (const auto chosen = chooseSourceFile(txtSource.text)) setText(txtSource, *chosen);
  });
  add("optFeet", optFeet, "units").click(edited);
  add("optMetres", optMetres, "units").click(edited);
  add("chkGround", chkGround).click(edited);
  add("lblCrs", lblCrs);
  add("btnCrs", btnCrs).click([this] {
    shell().showModal(this->program().form("frmCrs"));
    crs_ = this->program().crs;
    showCrs();
    changed();
  });
  for (auto [name, label] : {std::pair{"lblStart", &lblStart}, {"lblStartX", &lblStartX}, {"lblStartY", &lblStartY},
                             {"lblBacksight", &lblBacksight}, {"lblBackX", &lblBackX}, {"lblBackY", &lblBackY},
                             {"lblBackAzimuth", &lblBackAzimuth}, {"lblCourses", &lblCourses},
                             {"lblClose", &lblClose}, {"lblCloseX", &lblCloseX}, {"lblCloseY", &lblCloseY},
                             {"lblCloseAzimuth", &lblCloseAzimuth}, {"lblCloseAngle", &lblCloseAngle}, {"lblAdjust", &lblAdjust},
                             {"lblSigmaAngle", &lblSigmaAngle}, {"lblSigmaDistance", &lblSigmaDistance}, {"lblPpm", &lblPpm},
                             {"lblAllowPrecision", &lblAllowPrecision}, {"lblAllowAngular", &lblAllowAngular},
                             {"lblSideShots", &lblSideShots}, {"lblResult", &lblResult}})
    add(name, *label);
  add("txtStart", txtStart).change(edited);
  add("txtStartX", txtStartX).numeric().change(edited);
  add("txtStartY", txtStartY).numeric().change(edited);
  add("txtBacksight", txtBacksight).change(edited);
  add("txtBackX", txtBackX).numeric().change(edited);
  add("txtBackY", txtBackY).numeric().change(edited);
  add("txtBackAzimuth", txtBackAzimuth).change(edited);
  add("btnAddCourse", btnAddCourse).click([this] {
    rows.push_back({});
    currentRow = static_cast<int>(rows.size()) - 1;
    ++tableVersion;
    changed();
  });
  add("btnRemoveCourse", btnRemoveCourse).click([this] {
    if (currentRow < 0 || currentRow >= static_cast<int>(rows.size())) return;
    rows.erase(rows.begin() + currentRow);
    currentRow = std::min(currentRow, static_cast<int>(rows.size()) - 1);
    ++tableVersion;
    changed();
  });
  add("txtClose", txtClose).change(edited);
  add("txtCloseX", txtCloseX).numeric().change(edited);
  add("txtCloseY", txtCloseY).numeric().change(edited);
  add("txtCloseAzimuth", txtCloseAzimuth).change(edited);
  add("txtCloseAngle", txtCloseAngle).change(edited);
  add("cmbAdjust", cmbAdjust).change([this] {
    showWeights();
    changed();
  });
  add("txtSigmaAngle", txtSigmaAngle).numeric().change(edited);
  add("txtSigmaDistance", txtSigmaDistance).numeric().change(edited);
  add("txtPpm", txtPpm).numeric().change(edited);
  add("txtAllowPrecision", txtAllowPrecision).numeric().change(edited);
  add("txtAllowAngular", txtAllowAngular).numeric().change(edited);
  showWeights();
  add("btnOpenRaw", btnOpenRaw).click([this] { openRaw(); });
  add("btnOpenInputs", btnOpenInputs).click([this] { openFile(); });
  add("btnSaveInputs", btnSaveInputs).click([this] { saveFile(); });
  add("btnAdjust", btnAdjust).click([this] { btnAdjust_Click(); });
  add("btnWriteReport", btnWriteReport).click([this] { btnWriteReport_Click(); });
  add("btnExport", btnExport).click([this] { btnExport_Click(); });
  add("btnStore", btnStore).click([this] { btnStore_Click(); });
  add("btnReturn", btnReturn).click([this] { unload(); });
  add("lstReport", lstReport);
  rows.resize(1);
  currentRow = 0;
  crs_ = program.crs;
  showCrs();
}

std::vector<std::pair<const char*, TextBox*>> frmTraverse::texts() {
  return {{"txtSource", &txtSource}, {"txtStart", &txtStart}, {"txtStartX", &txtStartX}, {"txtStartY", &txtStartY},
          {"txtBacksight", &txtBacksight}, {"txtBackX", &txtBackX}, {"txtBackY", &txtBackY}, {"txtBackAzimuth", &txtBackAzimuth},
          {"txtClose", &txtClose}, {"txtCloseX", &txtCloseX}, {"txtCloseY", &txtCloseY}, {"txtCloseAzimuth", &txtCloseAzimuth},
          {"txtCloseAngle", &txtCloseAngle}, {"txtSigmaAngle", &txtSigmaAngle}, {"txtSigmaDistance", &txtSigmaDistance},
          {"txtPpm", &txtPpm}, {"txtAllowPrecision", &txtAllowPrecision}, {"txtAllowAngular", &txtAllowAngular}};
}

std::filesystem::path frmTraverse::keptFile(const std::string& dataFolder) {
  return std::filesystem::path(dataFolder) / "traverse.kept.json";
}

void frmTraverse::keepInputs() {
  nlohmann::ordered_json kept{{"version", 1}};
  for (const auto& [name, box] : texts()) kept["fields"][name] = box->text;
  kept["fields"]["cmbAdjust"] = cmbAdjust.text;
  kept["metres"] = optMetres.checked;
  kept["ground"] = chkGround.checked;
  kept["rows"] = nlohmann::ordered_json::array();
  for (const CourseRow& row : rows) kept["rows"].push_back(row.cells);
  kept["side_shots"] = nlohmann::ordered_json::array();
  for (const SideShot& shot : sideShots_)
    kept["side_shots"].push_back({shot.from, shot.to, shot.angleRight, shot.distance, shot.note});
  kept["notes"] = notes_;
  kept["crs"] = crsToJson(crs_);
  writeTextFile(keptFile(program().userAppData), {jsonText(kept)});
}

void frmTraverse::opened() {
  btnStore.enabled = program().project != nullptr;
  if (keptTaken_) return;
  keptTaken_ = true;
  // Read once, by the window's first opening: a kept file that is damaged is left where it is, unread.
  try {
    const auto kept = parseStrictJson(readInputFile(keptFile(program().userAppData)));
    for (const auto& [name, box] : texts()) box->text = kept.at("fields").at(name).get<std::string>();
    cmbAdjust.text = kept.at("fields").at("cmbAdjust").get<std::string>();
    optMetres.checked = kept.at("metres").get<bool>();
    optFeet.checked = !optMetres.checked;
    chkGround.checked = kept.at("ground").get<bool>();
    std::vector<CourseRow> keptRows;
    for (const auto& row : kept.at("rows")) keptRows.push_back({row.get<std::array<std::string, 6>>()});
    std::vector<SideShot> shots;
    for (const auto& s : kept.at("side_shots"))
      shots.push_back({s.at(0).get<std::string>(), s.at(1).get<std::string>(), s.at(2).get<double>(), s.at(3).get<double>(),
                       s.at(4).get<std::string>()});
    crs_ = crsFromJson(kept.at("crs"));
    rows = keptRows.empty() ? std::vector<CourseRow>(1) : keptRows;
    sideShots_ = shots;
    notes_ = kept.at("notes").get<std::vector<std::string>>();
  } catch (const std::exception&) {
    return;
  }
  currentRow = 0;
  ++tableVersion;
  showWeights();
  showSideShots();
  showCrs();
}

// The standard errors weigh the observations of a least-squares adjustment only.
void frmTraverse::showWeights() { txtSigmaAngle.enabled = txtSigmaDistance.enabled = txtPpm.enabled = cmbAdjust.text == kRules[4]; }

void frmTraverse::showSideShots() {
  lblSideShots.caption = sideShots_.empty() ? "" : std::to_string(sideShots_.size()) + " side shots from the raw file";
  for (const std::string& note : notes_) lblSideShots.caption += (lblSideShots.caption.empty() ? "" : "\n") + note;
}

void frmTraverse::showCrs() { lblCrs.caption = "Coordinate system: " + crsTitle(crs_); }

std::string frmTraverse::cell(int row, int column) const {
  return rows.at(static_cast<std::size_t>(row)).cells.at(static_cast<std::size_t>(column));
}

void frmTraverse::setCell(int row, int column, const std::string& text) {
  std::string& cell = rows.at(static_cast<std::size_t>(row)).cells.at(static_cast<std::size_t>(column));
  if (cell == text) return;
  cell = text;
  changed();
}

void frmTraverse::changed() {
  if (!run_) return;
  run_.reset();
  adjusted_.reset();
  lstReport.items.clear();
  lblResult.caption = "Changed since the last Adjust.";
  btnWriteReport.enabled = btnExport.enabled = false;
}

TraverseInput frmTraverse::input() const {
  TraverseInput in;
  in.units = optMetres.checked ? "m" : "ft";
  in.source = txtSource.text;
  const auto number = [](const std::string& text, const std::string& where) {
    if (text.empty()) throw TraverseFileError(where + " is empty");
    const auto v = strictNumber(text);
    if (!v || !std::isfinite(*v)) throw TraverseFileError(where + ": \"" + text + "\" is not a number");
    return *v;
  };
  const auto angle = [](const std::string& text, const std::string& where) {
    const auto v = angleFromText(text);
    if (!v) throw TraverseFileError(where + ": \"" + text + "\" is not an angle (45-30-15 or 45.504)");
    return *v;
  };
  const auto known = [&number](const std::string& point, const std::string& x, const std::string& y, const std::string& where) {
    KnownStation k{point};
    if (!x.empty() || !y.empty()) {
      if (x.empty() || y.empty()) throw TraverseFileError(where + ": give both X and Y, or neither (then the source file gives it)");
      k.at = PlanePosition{number(x, where + " X"), number(y, where + " Y")};
    }
    return k;
  };
  in.start = known(txtStart.text, txtStartX.text, txtStartY.text, "Start point");
  if (!txtBacksight.text.empty() || !txtBackX.text.empty() || !txtBackY.text.empty())
    in.backsightPoint = known(txtBacksight.text, txtBackX.text, txtBackY.text, "Backsight point");
  if (!txtBackAzimuth.text.empty()) {
    in.backsightAzimuth = bearingAzimuth(txtBackAzimuth.text);
    if (!in.backsightAzimuth) in.backsightAzimuth = angle(txtBackAzimuth.text, "Backsight azimuth");
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto& c = rows[i].cells;
    if (c[0].empty() && c[2].empty() && c[3].empty() && c[4].empty() && c[5].empty()) continue;  // a row left empty
    const std::string where = "Course " + std::to_string(i + 1) + (c[0].empty() ? "" : " (to " + c[0] + ")");
    CourseEntry course;
    course.to = c[0];
    const auto turn = std::find(kTurns.begin(), kTurns.end(), c[1]);
    course.turn = turn == kTurns.end() ? Turn::AngleRight : static_cast<Turn>(turn - kTurns.begin());
    switch (course.turn) {
      case Turn::Bearing: {
        const auto azimuth = bearingAzimuth(c[2]);
        if (!azimuth) throw TraverseFileError(where + ": \"" + c[2] + "\" is not a bearing (S 10-20-00 W)");
        course.angle = *azimuth;
        break;
      }
      case Turn::Deflection: {
        const auto deflection = deflectionAngle(c[2]);
        if (!deflection) throw TraverseFileError(where + ": \"" + c[2] + "\" is not a deflection (12-30-00 L or R)");
        course.angle = *deflection;
        break;
      }
      default:
        course.angle = angle(c[2], where);
    }
    if (!c[3].empty()) {
      course.distance = number(c[3], where + " distance");
    } else if (!c[4].empty() || !c[5].empty()) {
      course.slope = number(c[4], where + " slope distance");
      course.zenith = angle(c[5], where + " zenith");
    }
    in.courses.push_back(course);
  }
  in.close = known(txtClose.text, txtCloseX.text, txtCloseY.text, "Close on point");
  if (!txtCloseAzimuth.text.empty()) {
    in.closeAzimuth = bearingAzimuth(txtCloseAzimuth.text);
    if (!in.closeAzimuth) in.closeAzimuth = angle(txtCloseAzimuth.text, "Closing azimuth");
  }
  if (!txtCloseAngle.text.empty()) in.closeAngle = angle(txtCloseAngle.text, "Closing angle");
  const auto rule = std::find(std::begin(kRules), std::end(kRules), cmbAdjust.text);
  in.adjust = rule == std::end(kRules) ? AdjustRule::Compass : kRuleOf[rule - std::begin(kRules)];
  in.sigmaAngle = number(txtSigmaAngle.text, "Angle standard error");
  in.sigmaDistance = number(txtSigmaDistance.text, "Distance standard error");
  in.ppm = number(txtPpm.text, "Parts per million");
  in.allowablePrecision = number(txtAllowPrecision.text, "Allowable precision");
  if (in.allowablePrecision < 1) throw TraverseFileError("Allowable precision must be 1 or more (1:N)");
  in.allowableAngular = number(txtAllowAngular.text, "Allowable angular k");
  if (in.allowableAngular < 0) throw TraverseFileError("Allowable angular k must not be negative");
  in.sideShots = sideShots_;
  in.notes = notes_;
  in.crs = crs_;
  in.ground = chkGround.checked;
  return in;
}

void frmTraverse::setInput(const TraverseInput& in) {
  keptTaken_ = true;  // what is read replaces what was kept
  run_.reset();
  adjusted_.reset();
  const auto coordinate = [](const std::optional<PlanePosition>& at, bool x) { return at ? CStr(x ? at->x : at->y) : std::string(); };
  // A measured length to the ten-thousandth, as a field shows it.
  const auto measured = [](double v) { return CStr(std::round(v * 1e4) / 1e4); };
  txtSource.text = in.source;
  optFeet.checked = in.units != "m";
  optMetres.checked = in.units == "m";
  txtStart.text = in.start.point;
  txtStartX.text = coordinate(in.start.at, true);
  txtStartY.text = coordinate(in.start.at, false);
  txtBacksight.text = in.backsightPoint ? in.backsightPoint->point : "";
  txtBackX.text = coordinate(in.backsightPoint ? in.backsightPoint->at : std::nullopt, true);
  txtBackY.text = coordinate(in.backsightPoint ? in.backsightPoint->at : std::nullopt, false);
  txtBackAzimuth.text = in.backsightAzimuth ? angleText(*in.backsightAzimuth) : "";
  rows.clear();
  for (const CourseEntry& c : in.courses) {
    CourseRow row;
    row.cells[0] = c.to;
    row.cells[1] = kTurns[static_cast<std::size_t>(c.turn)];
    const std::string given = directionText(c);  // "Az 45-30-15", "S 10-20-00 W", "AR 95-10-30", "12-30-00 L"
    row.cells[2] = c.turn == Turn::Azimuth || c.turn == Turn::AngleRight ? angleText(c.angle) : given;
    if (c.distance) row.cells[3] = measured(*c.distance);
    if (c.slope) row.cells[4] = measured(*c.slope);
    if (c.zenith) row.cells[5] = angleText(*c.zenith);
    rows.push_back(row);
  }
  currentRow = rows.empty() ? -1 : 0;
  ++tableVersion;
  txtClose.text = in.close.point;
  txtCloseX.text = coordinate(in.close.at, true);
  txtCloseY.text = coordinate(in.close.at, false);
  txtCloseAzimuth.text = in.closeAzimuth ? angleText(*in.closeAzimuth) : "";
  txtCloseAngle.text = in.closeAngle ? angleText(*in.closeAngle) : "";
  cmbAdjust.text = kRules[std::find(std::begin(kRuleOf), std::end(kRuleOf), in.adjust) - std::begin(kRuleOf)];
  txtSigmaAngle.text = CStr(in.sigmaAngle);
  txtSigmaDistance.text = CStr(in.sigmaDistance);
  txtPpm.text = CStr(in.ppm);
  txtAllowPrecision.text = CStr(in.allowablePrecision);
  txtAllowAngular.text = CStr(in.allowableAngular);
  showWeights();
  sideShots_ = in.sideShots;
  notes_ = in.notes;
  crs_ = in.crs.none() ? program().crs : in.crs;  // a raw file names no system: the one chosen stands
  chkGround.checked = in.ground;
  showCrs();
  showSideShots();
  lstReport.items.clear();
  lblResult.caption.clear();
  btnWriteReport.enabled = btnExport.enabled = false;
}

std::optional<TraverseInput> frmTraverse::checkedInput(const std::string& title) {
  try {
    return input();
  } catch (const TraverseFileError& e) {
    shell().msgBox(title, std::string(e.what()) + ".", Icon::Exclamation);
    return std::nullopt;
  }
}

void frmTraverse::btnAdjust_Click() {
  const auto in = checkedInput("Traverse");
  if (!in) return;
  try {
    run_ = runTraverse(*in, formatShortDate(shell().today()));
  } catch (const TraverseError& e) {
    shell().msgBox("Traverse", std::string("The traverse cannot be computed: ") + e.what() + ".", Icon::Exclamation);
    return;
  } catch (const TraverseFileError& e) {
    shell().msgBox("Traverse", std::string(e.what()) + ".", Icon::Exclamation);
    return;
  } catch (const CrsError& e) {
    shell().msgBox("Traverse", e.what(), Icon::Exclamation);
    return;
  }
  adjusted_ = *in;
  lstReport.items = run_->report;
  lblResult.caption = closureSummary(*in, run_->result);
  btnWriteReport.enabled = btnExport.enabled = true;
  // Beyond the allowable, a failed test or a blunder: said loudly, the adjustment shown all the same.
  if (!run_->failing.empty()) {
    std::string said;
    for (const std::string& f : run_->failing) said += (said.empty() ? "" : "\n") + f;
    lblResult.caption += "\nFAILING: " + run_->failing.front();
    shell().msgBox("Traverse", said, Icon::Critical);
  }
}

void frmTraverse::btnWriteReport_Click() {
  if (!run_) btnAdjust_Click();
  if (!run_) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Write the Traverse Report", program().userAppData + "traverse.rpt",
                                         {"Reports (*.rpt *.txt)"});
  if (!chosen || chosen->empty()) return;
  // The report as named, the adjusted points beside it as a coordinate file.
  const std::filesystem::path report(*chosen);
  const std::filesystem::path points = report.parent_path() / (report.stem().string() + "-adjusted.txt");
  try {
    writeTextFiles({{report, run_->report}, {points, run_->points}});
  } catch (const RunTimeError& e) {
    shell().msgBox("Write the Traverse Report", e.what(), Icon::Critical);
    return;
  }
  for (const auto& file : {report, points}) shell().fileWritten(std::filesystem::absolute(file));
  shell().openInEditor(report);
}

void frmTraverse::btnStore_Click() {
  if (!program().project) return;
  if (!run_) btnAdjust_Click();
  if (!run_) return;
  const std::string file = std::filesystem::path(txtSource.text).filename().string();
  const std::string source = "traverse " + (file.empty() ? std::string("typed") : file) + " adjusted by " + run_->json["rule"].get<std::string>();
  const std::string said = storeFromTool(*program().project, shell(), traversePoints(run_->json["points"], source, false), source,
                                         "Store the traverse");
  if (!said.empty()) lblResult.caption = closureSummary(*adjusted_, run_->result) + "\n" + said;
}

void frmTraverse::btnExport_Click() {
  if (!run_ || !adjusted_) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Export the Traverse", program().userAppData + "traverse.csv",
                                         mapExportFilters());
  if (!chosen || chosen->empty()) return;
  CornerMap map = traverseMap(*adjusted_, run_->result);
  try {
    map.system = mapSystem(crs_);
  } catch (const CrsError& e) {
    shell().msgBox("Export the Traverse", e.what(), Icon::Exclamation);
    return;
  }
  exportMap(shell(), "Export the Traverse", *chosen, map);
}

void frmTraverse::openRaw() {
  open("Open Raw File", {"Raw data files (*.rw5)", "All files (*)"});
}

void frmTraverse::openFile() {
  open("Open Inputs", {"Traverse files (*.traverse.json)", "Raw data files (*.rw5)", "All files (*)"});
}

void frmTraverse::open(const std::string& title, const std::vector<std::string>& filters) {
  const auto chosen = shell().chooseFile(FileDialog::Open, title, program().userAppData, filters);
  if (chosen && !chosen->empty()) read(title, *chosen);
}

bool frmTraverse::openPath(const std::string& file) { return read("Open Inputs", file); }

bool frmTraverse::read(const std::string& title, const std::string& file) {
  try {
    setInput(readTraverseFile(file));
  } catch (const TraverseFileError& e) {
    shell().msgBox(title, "The file " + file + " cannot be read as a traverse: " + e.what() + ".", Icon::Exclamation);
    return false;
  }
  program().recent.add(file);
  return true;
}

void frmTraverse::saveFile() {
  const auto in = checkedInput("Save Inputs");
  if (!in) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Save Inputs", program().userAppData + "traverse.traverse.json",
                                         {"Traverse files (*.traverse.json)", "All files (*)"});
  if (!chosen || chosen->empty()) return;
  const std::filesystem::path file(*chosen);
  if (exportFile(shell(), "Save Inputs", file, {{exportKind(file), [&] { writeDocument(file, traverseText(*in)); }}}))
    program().recent.add(*chosen);
}

Picture frmTraverse::sketch() const {
  if (!run_ || !adjusted_) {
    Picture hint;
    hint.hint = "The traverse is drawn here after Adjust, its misclosure enlarged to be seen.";
    return hint;
  }
  return traverseSketch(*adjusted_, run_->result);
}

}  // namespace tervalo
