#include "parcels/frm_mapcheck.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <sstream>

#include "app/json_text.h"
#include "app/output_file.h"
#include "app/program.h"
#include "app/shell.h"
#include "cogo/cogo.h"
#include "export/export_file.h"
#include "export/landxml.h"
#include "export/map_system.h"
#include "parcels/legal.h"
#include "parcels/plat_file.h"
#include "project/point_import.h"
#include "project/project_session.h"
#include "text/date.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/input_file.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

constexpr const char* kTitle = "Mapcheck";

std::string length(double v) { return Format(v, "0.00"); }

// The words of a description in lines a list shows whole.
std::vector<std::string> wrappedLines(const std::string& text, std::size_t width) {
  std::vector<std::string> lines;
  std::string line;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t end = text.find(' ', at);
    const std::string word = text.substr(at, end == std::string::npos ? std::string::npos : end - at);
    if (!line.empty() && line.size() + 1 + word.size() > width) {
      lines.push_back(line);
      line.clear();
    }
    line += (line.empty() ? "" : " ") + word;
    if (end == std::string::npos) break;
    at = end + 1;
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

// A bearing typed in a cell, a paste or a field; `what` names it for the refusal.
double bearingOf(const std::string& text, const std::string& what) {
  const auto a = cogoBearing(text);
  if (!a) throw DeedError(what + ": \"" + text + "\" is no bearing (N45-30-15E or N 45-30-15 E)");
  return *a;
}

double numberOf(const std::string& text, const std::string& what) {
  const auto v = finiteNumber(text);
  if (!v) throw DeedError(what + ": \"" + text + "\" is not a number");
  return *v;
}

}  // namespace

frmMapcheck::frmMapcheck(Program& program) : FormModel(program, "frmMapcheck", "Mapcheck"), rows(1) {
  add("lblName", lblName);
  add("txtName", txtName).change([this] { changed(); });
  add("lblStartPoint", lblStartPoint);
  add("txtStartPoint", txtStartPoint).change([this] { changed(); });
  add("lblStartN", lblStartN);
  add("txtStartN", txtStartN).change([this] { changed(); });
  add("lblStartE", lblStartE);
  add("txtStartE", txtStartE).change([this] { changed(); });
  add("lblCommence", lblCommence);
  add("txtCommence", txtCommence).change([this] { changed(); });
  add("lblTieBearing", lblTieBearing);
  add("txtTieBearing", txtTieBearing).change([this] { changed(); });
  add("lblTieDistance", lblTieDistance);
  add("txtTieDistance", txtTieDistance).change([this] { changed(); });
  add("lblBasis", lblBasis);
  add("txtBasis", txtBasis).change([this] { changed(); });
  add("lblCalls", lblCalls);
  add("btnAddCall", btnAddCall).click([this] {
    const auto at = currentRow >= 0 && currentRow < static_cast<int>(rows.size()) ? rows.begin() + currentRow + 1 : rows.end();
    currentRow = static_cast<int>(rows.insert(at, CallRow{}) - rows.begin());
    ++tableVersion;
    changed();
  });
  add("btnRemoveCall", btnRemoveCall).click([this] {
    if (currentRow < 0 || currentRow >= static_cast<int>(rows.size())) return;
    rows.erase(rows.begin() + currentRow);
    if (rows.empty()) rows.emplace_back();
    currentRow = std::min(currentRow, static_cast<int>(rows.size()) - 1);
    ++tableVersion;
    changed();
  });
  add("btnPasteCalls", btnPasteCalls).click([this] {
    try {
      pasteCalls(shell().clipboardText());
    } catch (const DeedError& e) {
      shell().msgBox(kTitle, std::string("The calls cannot be pasted: ") + e.what() + ".", Icon::Exclamation);
    }
  });
  add("btnCheck", btnCheck).click([this] { btnCheck_Click(); });
  add("lblResult", lblResult);
  add("lstReport", lstReport);
  add("lblFirst", lblFirst);
  add("txtFirst", txtFirst);
  add("btnStore", btnStore).click([this] { store(); });
  add("btnExport", btnExport).click([this] { exportLandXml(); });
  add("lblSheet", lblSheet);
  add("cmbSheet", cmbSheet);
  add("btnPlat", btnPlat).click([this] { plat(); });
  add("btnSaveReport", btnSaveReport).click([this] {
    const auto chosen = shell().chooseFile(FileDialog::Save, "Save the Mapcheck", this->program().userAppData + "mapcheck.txt", {"Text (*.txt)"});
    if (!chosen || chosen->empty()) return;
    try {
      this->program().writeOutputFile(*chosen, lstReport.items);
      lblResult.caption = "The report is saved as " + *chosen + ".";
    } catch (const RunTimeError& e) {
      shell().msgBox(kTitle, e.what(), Icon::Exclamation);
    }
  });
  add("btnReturn", btnReturn).click([this] { unload(); });
}

std::vector<std::pair<const char*, TextBox*>> frmMapcheck::texts() {
  return {{"txtName", &txtName},           {"txtStartPoint", &txtStartPoint}, {"txtStartN", &txtStartN},
          {"txtStartE", &txtStartE},       {"txtCommence", &txtCommence},     {"txtTieBearing", &txtTieBearing},
          {"txtTieDistance", &txtTieDistance}, {"txtBasis", &txtBasis},       {"txtFirst", &txtFirst}};
}

std::string frmMapcheck::cell(int row, int column) const {
  if (row < 0 || row >= static_cast<int>(rows.size()) || column < 0 || column >= static_cast<int>(kColumns.size())) return "";
  return rows[static_cast<std::size_t>(row)].cells[static_cast<std::size_t>(column)];
}

void frmMapcheck::setCell(int row, int column, const std::string& text) {
  if (row < 0 || column < 0 || column >= static_cast<int>(kColumns.size())) return;
  while (static_cast<int>(rows.size()) <= row) rows.emplace_back();
  rows[static_cast<std::size_t>(row)].cells[static_cast<std::size_t>(column)] = text;
  changed();
}

void frmMapcheck::changed() {
  courses_.clear();
  for (Button* b : {&btnStore, &btnExport, &btnPlat, &btnSaveReport}) b->enabled = false;
}

void frmMapcheck::pasteCalls(const std::string& text) {
  std::vector<CallRow> pasted;
  std::size_t number = 0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    ++number;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const std::string where = "line " + std::to_string(number);
    CallRow row;
    if (line.find('\t') != std::string::npos) {
      std::size_t at = 0, column = 0;
      while (column < kColumns.size()) {
        const std::size_t tab = line.find('\t', at);
        row.cells[column++] = stripBlanks(line.substr(at, tab == std::string::npos ? std::string::npos : tab - at));
        if (tab == std::string::npos) break;
        at = tab + 1;
      }
      pasted.push_back(row);
      continue;
    }
    std::vector<std::string> words;
    try {
      words = cogoWords(line);
    } catch (const CogoError& e) {
      throw DeedError(where + ": " + e.what());
    }
    if (words.empty()) continue;
    const std::string kind = upper(words[0]);
    // The words up to the next keyword, joined: a bearing may be written with blanks.
    std::size_t at = 1;
    const auto until = [&](std::initializer_list<const char*> stops) {
      std::string joined;
      while (at < words.size() && std::none_of(stops.begin(), stops.end(), [&](const char* s) { return upper(words[at]) == s; }))
        joined += words[at++];
      return joined;
    };
    if (kind == "LINE") {
      if (words.size() < 3) throw DeedError(where + ": a LINE wants a bearing and a distance");
      row.cells[1] = words.back();
      words.pop_back();
      row.cells[0] = until({});
    } else if (kind == "CURVE") {
      if (words.size() < 6) throw DeedError(where + ": a CURVE wants L or R, RADIUS r and ARC, CHORD or DELTA");
      row.cells[2] = upper(words[1]);
      if (upper(words[2]) != "RADIUS") throw DeedError(where + ": a CURVE wants RADIUS after its turn");
      row.cells[3] = words[3];
      const std::string by = upper(words[4]);
      const int column = by == "ARC" ? 4 : by == "CHORD" ? 5 : by == "DELTA" ? 6 : -1;
      if (column < 0) throw DeedError(where + ": a CURVE wants ARC, CHORD or DELTA, not \"" + words[4] + "\"");
      row.cells[static_cast<std::size_t>(column)] = words[5];
      at = 6;
      while (at < words.size()) {
        const std::string key = upper(words[at++]);
        if (key == "CHORDBEARING") row.cells[7] = until({"RADIAL"});
        else if (key == "RADIAL") row.cells[8] = until({"CHORDBEARING"});
        else throw DeedError(where + ": a CURVE does not take \"" + key + "\"");
      }
    } else if (kind == "MAPCHECK" || kind == "END") {
      continue;  // a COGO MAPCHECK block pastes whole
    } else {
      // A bearing and a distance, as a deed writes a call.
      if (words.size() < 2) throw DeedError(where + ": \"" + line + "\" is no call");
      row.cells[1] = words.back();
      words.pop_back();
      at = 0;
      row.cells[0] = until({});
    }
    pasted.push_back(row);
  }
  if (pasted.empty()) throw DeedError("the clipboard holds no call");
  // The pasted calls follow the typed ones; an empty first row is replaced.
  if (rows.size() == 1 && std::all_of(rows[0].cells.begin(), rows[0].cells.end(), [](const std::string& c) { return c.empty(); })) rows.clear();
  rows.insert(rows.end(), pasted.begin(), pasted.end());
  ++tableVersion;
  changed();
}

DeedCall frmMapcheck::call(int i) const {
  const auto& c = rows[static_cast<std::size_t>(i)].cells;
  const std::string where = "call " + std::to_string(i + 1);
  DeedCall d;
  if (stripBlanks(c[3]).empty()) {
    if (stripBlanks(c[0]).empty()) throw DeedError(where + " has no bearing");
    if (stripBlanks(c[1]).empty()) throw DeedError(where + " has no distance");
    d.azimuth = bearingOf(c[0], where);
    d.distance = numberOf(c[1], where);
    return d;
  }
  d.curve = true;
  const std::string turn = upper(stripBlanks(c[2]));
  if (turn != "L" && turn != "R") throw DeedError(where + " is a curve: its turn is L or R, not \"" + c[2] + "\"");
  d.right = turn == "R";
  d.radius = numberOf(c[3], where);
  int given = 0;
  if (!stripBlanks(c[4]).empty()) d.by = DeedCall::By::Arc, d.value = numberOf(c[4], where), ++given;
  if (!stripBlanks(c[5]).empty()) d.by = DeedCall::By::Chord, d.value = numberOf(c[5], where), ++given;
  if (!stripBlanks(c[6]).empty()) {
    const auto delta = cogoAngle(stripBlanks(c[6]));
    if (!delta) throw DeedError(where + ": \"" + c[6] + "\" is no angle (45-30-15)");
    d.by = DeedCall::By::Delta, d.value = *delta, ++given;
  }
  if (given != 1) throw DeedError(where + " is a curve: give one of its arc, chord or delta");
  if (!stripBlanks(c[7]).empty()) d.chordAzimuth = bearingOf(c[7], where);
  if (!stripBlanks(c[8]).empty()) d.radialAzimuth = bearingOf(c[8], where);
  return d;
}

void frmMapcheck::btnCheck_Click() {
  changed();
  lstReport.items.clear();
  lblResult.caption.clear();
  const std::string unit = program().project ? program().project->file().settings().unit : "ft";
  try {
    // The point of beginning: a project point, or the coordinates typed.
    double n = 0, e = 0;
    std::string startName;
    if (!stripBlanks(txtStartPoint.text).empty()) {
      if (!program().project) throw DeedError("no project is open to find point " + stripBlanks(txtStartPoint.text) + " in");
      const auto p = program().project->file().find(upper(stripBlanks(txtStartPoint.text)));
      if (!p) throw DeedError("point " + upper(stripBlanks(txtStartPoint.text)) + " is not in the project");
      n = p->northing, e = p->easting, startName = "point " + p->number;
    } else {
      n = numberOf(txtStartN.text, "the northing of the point of beginning");
      e = numberOf(txtStartE.text, "the easting of the point of beginning");
    }
    std::vector<Course> courses;
    std::vector<std::string> names;
    for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
      if (std::all_of(rows[static_cast<std::size_t>(i)].cells.begin(), rows[static_cast<std::size_t>(i)].cells.end(),
                      [](const std::string& c) { return stripBlanks(c).empty(); }))
        continue;  // an empty row is no call
      try {
        courses.push_back(follow(call(i), n, e, courses.empty() ? std::nullopt : std::optional(courses.back().tangentOut)));
      } catch (const DeedError& fault) {
        const std::string said = fault.what();
        throw DeedError(said.rfind("call ", 0) == 0 ? said : "call " + std::to_string(i + 1) + ": " + said);
      }
      n = courses.back().toN, e = courses.back().toE;
      names.push_back("call " + std::to_string(i + 1));
    }
    requireParcel(courses, names);
    std::vector<Course> tie;
    if (!stripBlanks(txtTieBearing.text).empty() || !stripBlanks(txtTieDistance.text).empty()) {
      DeedCall t;
      t.azimuth = bearingOf(txtTieBearing.text, "the tie");
      t.distance = numberOf(txtTieDistance.text, "the tie's distance");
      // Back from the point of beginning along the tie to the corner commenced at.
      const Course back = follow(DeedCall{false, std::fmod(t.azimuth + 180, 360), t.distance}, courses.front().fromN, courses.front().fromE, std::nullopt);
      tie.push_back(follow(t, back.toN, back.toE, std::nullopt));
    }
    courses_ = courses;
    tie_ = tie;
    closure_ = closureOf(courses);
  } catch (const DeedError& e) {
    lblResult.caption = std::string("Not checked: ") + e.what() + ".";
    shell().msgBox(kTitle, std::string("The deed cannot be checked: ") + e.what() + ".", Icon::Exclamation);
    courses_.clear();
    return;
  }
  const FigureClosure& c = closure_;
  const double perAcre = squareUnitsPerAcre(unit);
  lstReport.items.push_back("Mapcheck of " + txtName.text);
  lstReport.items.push_back("  Point of beginning  N " + Format(courses_.front().fromN, "0.0000") + "  E " + Format(courses_.front().fromE, "0.0000"));
  for (std::size_t i = 0; i < courses_.size(); ++i) {
    const Course& k = courses_[i];
    std::string line = "  " + std::to_string(i + 1) + "  ";
    if (k.curve)
      line += std::string("Curve ") + (k.right ? "right" : "left") + "  R " + length(k.radius) + "  L " + length(k.arc) + "  D " +
              angleText(k.delta, 0) + "  chord " + bearingWords(k.azimuth, 0) + " " + length(k.length);
    else
      line += "Line " + bearingWords(k.azimuth, 0) + "  " + length(k.length);
    lstReport.items.push_back(line + "   to N " + Format(k.toN, "0.0000") + "  E " + Format(k.toE, "0.0000"));
  }
  const std::string precision = c.precision ? "1:" + grouped(*c.precision) : "exact";
  lstReport.items.push_back("  Misclosure " + Format(c.distance, "0.0000") + (c.azimuth ? " " + bearingWords(*c.azimuth, 0) : "") + "  latitude " +
                            Format(c.latitude, "0.0000") + "  departure " + Format(c.departure, "0.0000"));
  lstReport.items.push_back("  Precision " + precision + "  perimeter " + length(c.perimeter) + "  area " + grouped(std::llround(c.area)) +
                            " sq " + unit + ", " + Format(c.area / perAcre, "0.0000") + " acres");
  MetesWords words;
  const Course& first = courses_.front();
  const std::string startPoint = upper(stripBlanks(txtStartPoint.text));
  words.commencing = !stripBlanks(txtCommence.text).empty() ? stripBlanks(txtCommence.text)
                     : !startPoint.empty()           ? "point " + startPoint
                                                     : "a point at N " + length(first.fromN) + ", E " + length(first.fromE);
  words.tie = tie_;
  words.unit = unit;
  words.basis = stripBlanks(txtBasis.text);
  description_ = metesAndBounds(courses_, c.area, words);
  lstReport.items.emplace_back("");
  for (const std::string& l : wrappedLines(description_, 78)) lstReport.items.push_back(l);
  lblResult.caption = "Misclosure " + Format(c.distance, "0.000") + " " + unit + ", precision " + precision + ", area " +
                      Format(c.area / perAcre, "0.0000") + " acres.";
  btnExport.enabled = btnPlat.enabled = btnSaveReport.enabled = true;
  btnStore.enabled = program().project != nullptr;
}

Picture frmMapcheck::sketch() const {
  Picture p;
  if (courses_.empty()) {
    p.hint = "Type or paste the deed's calls and press Check.";
    return p;
  }
  p.mapUnits = "ft";
  for (const Course& c : courses_) {
    PictureLine l;
    l.heavy = true;
    for (const CoursePoint& q : tracedCourse(c, 32)) l.points.push_back({q.e, q.n});
    p.lines.push_back(l);
    p.marks.push_back(markAt({c.fromE, c.fromN}));
  }
  if (closure_.distance > 1e-6) {
    PictureLine gap;
    gap.points = {{courses_.back().toE, courses_.back().toN}, {courses_.front().fromE, courses_.front().fromN}};
    gap.ink = Ink::Alert;
    gap.dashed = true;
    gap.tip = "misclosure " + Format(closure_.distance, "0.000");
    p.lines.push_back(gap);
    p.marks.push_back(markAt({courses_.back().toE, courses_.back().toN}, Ink::Alert));
  }
  p.texts.push_back({{courses_.front().fromE, courses_.front().fromN}, "POB", Ink::Accent, Place::AboveRight});
  p.caption = lblResult.caption;
  return p;
}

void frmMapcheck::store() {
  if (!program().project || courses_.empty()) return;
  // The corners in order from the point of beginning (itself only where it is no project point), and the end where the deed misses it.
  std::vector<ProjectPoint> points;
  std::string number = upper(stripBlanks(txtFirst.text));
  const auto next = [&number]() {
    const std::string given = number;
    // The next number: the last run of digits counted up.
    std::size_t end = number.find_last_of("0123456789");
    if (end != std::string::npos) {
      std::size_t i = end + 1;
      while (i > 0) {
        char& d = number[i - 1];
        if (d < '0' || d > '9') {
          number.insert(i, "1");
          break;
        }
        if (d != '9') {
          ++d;
          break;
        }
        d = '0';
        if (--i == 0 || number[i - 1] < '0' || number[i - 1] > '9') {
          number.insert(i, "1");
          break;
        }
      }
    } else {
      number += "1";
    }
    return given;
  };
  const std::string source = "Mapcheck " + txtName.text;
  const auto add = [&](double n, double e, const std::string& what) {
    ProjectPoint p;
    p.number = next();
    p.northing = n;
    p.easting = e;
    p.description = txtName.text + " " + what;
    p.source = source;
    points.push_back(p);
  };
  if (const std::string fault = numberFault(number); !fault.empty()) {
    shell().msgBox(kTitle, fault, Icon::Exclamation);
    return;
  }
  if (stripBlanks(txtStartPoint.text).empty()) add(courses_.front().fromN, courses_.front().fromE, "POB");
  for (std::size_t i = 0; i + 1 < courses_.size(); ++i) add(courses_[i].toN, courses_[i].toE, "corner " + std::to_string(i + 2));
  if (closure_.distance > 1e-6) add(courses_.back().toN, courses_.back().toE, "end of the last call");
  const std::string said = storeFromTool(*program().project, shell(), points, source, "Store " + source);
  if (!said.empty()) shell().msgBox("Store in Project", said, Icon::Information);
}

void frmMapcheck::exportLandXml() {
  if (courses_.empty()) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Export the Parcel", program().userAppData + "mapcheck.xml", {"LandXML 1.2 (*.xml)"});
  if (!chosen || chosen->empty()) return;
  MapParcel parcel{txtName.text, description_, courses_, {}, closure_.area, closure_.distance, closure_.azimuth};
  MapSystem system;
  if (program().project && program().project->file().settings().unit == "m") system.linearUnit = "meter";
  try {
    writeDocument(*chosen, parcelsLandXml({parcel}, txtName.text, system, stampOf(shell().today())));
    lblResult.caption = "The parcel is exported to " + *chosen + ".";
  } catch (const RunTimeError& e) {
    shell().msgBox(kTitle, e.what(), Icon::Exclamation);
  }
}

void frmMapcheck::plat() {
  if (courses_.empty()) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Plat of the Parcel", program().userAppData + "mapcheck-plat.pdf",
                                         {"PDF document (*.pdf)", "SVG drawing (*.svg)", "DXF drawing (*.dxf)"});
  if (!chosen || chosen->empty()) return;
  const std::string unit = program().project ? program().project->file().settings().unit : "ft";
  PlatInput input;
  input.title = "PLAT OF " + upper(txtName.text);
  input.unit = unit;
  input.courseBearings = true;
  const double perAcre = squareUnitsPerAcre(unit);
  input.parcels.push_back({upper(txtName.text), {Format(closure_.area / perAcre, "0.00") + " AC."}, courses_});
  for (const Course& c : courses_) input.corners.push_back({c.fromN, c.fromE, "", Monument::Computed});
  input.notes = {description_, "Misclosure " + Format(closure_.distance, "0.00") + (unit == "m" ? " m" : " ft") + ", precision " +
                                          (closure_.precision ? "1:" + grouped(*closure_.precision) : std::string("exact")) + "."};
  if (program().project) {
    const ProjectSettings& s = program().project->file().settings();
    input.surveyor = s.surveyor, input.license = s.license, input.firm = s.firm;
  }
  input.date = formatShortDate(shell().today());
  input.certificate = {"I hereby certify that this plat correctly represents the parcel described, as its calls close and as shown."};
  const SheetSize size = cmbSheet.text == "Tabloid" ? SheetSize::Tabloid : cmbSheet.text == "ARCH D" ? SheetSize::ArchD : SheetSize::Letter;
  try {
    writeSheetFile(drawPlat(input, PlatOptions{size, 0}), *chosen);
    lblResult.caption = "The plat is written to " + *chosen + ".";
  } catch (const DeedError& e) {
    shell().msgBox(kTitle, std::string("The plat cannot be drawn: ") + e.what() + ".", Icon::Exclamation);
  } catch (const RunTimeError& e) {
    shell().msgBox(kTitle, e.what(), Icon::Exclamation);
  }
}

std::filesystem::path frmMapcheck::keptFile(const std::string& dataFolder) { return std::filesystem::path(dataFolder) / "mapcheck.kept.json"; }

void frmMapcheck::keepInputs() {
  nlohmann::ordered_json kept{{"version", 1}};
  for (const auto& [name, box] : texts()) kept["fields"][name] = box->text;
  kept["sheet"] = cmbSheet.text;
  kept["rows"] = nlohmann::ordered_json::array();
  for (const CallRow& row : rows) kept["rows"].push_back(row.cells);
  writeTextFile(keptFile(program().userAppData), {jsonText(kept)});
}

void frmMapcheck::opened() {
  btnStore.enabled = program().project != nullptr && !courses_.empty();
  if (keptTaken_) return;
  keptTaken_ = true;
  // Read once, at the window's first opening; a damaged kept file is left unread.
  try {
    const auto kept = parseStrictJson(readInputFile(keptFile(program().userAppData)));
    std::vector<CallRow> keptRows;
    for (const auto& row : kept.at("rows")) keptRows.push_back({row.get<std::array<std::string, 9>>()});
    for (const auto& [name, box] : texts()) box->text = kept.at("fields").at(name).get<std::string>();
    cmbSheet.text = kept.at("sheet").get<std::string>();
    rows = keptRows.empty() ? std::vector<CallRow>(1) : keptRows;
    ++tableVersion;
  } catch (const std::exception&) {
  }
}

}  // namespace tervalo
