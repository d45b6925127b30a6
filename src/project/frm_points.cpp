#include "project/frm_points.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <sstream>
#include <unordered_set>

#include "app/program.h"
#include "app/shell.h"
#include "export/map_export.h"
#include "project/point_import.h"
#include "project/project_session.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/input_file.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

constexpr long long kPage = 256;
constexpr std::size_t kPagesKept = 200;
constexpr const char* kTitle = "Points";
constexpr const char* kSource = "Points window";

std::string trimmed(std::string text) {
  text.erase(0, text.find_first_not_of(" \t"));
  text.erase(text.find_last_not_of(" \t") + 1);
  return text;
}

std::optional<long long> wholeOf(const std::string& text) {
  const std::string t = trimmed(text);
  long long v = 0;
  const char* first = t.data() + (t.starts_with('+') ? 1 : 0);
  const auto [end, ec] = std::from_chars(first, t.data() + t.size(), v);
  if (t.empty() || ec != std::errc() || end != t.data() + t.size()) return std::nullopt;
  return v;
}

// A coordinate as it is held, to the last digit that tells: what goes to a spreadsheet comes back the same.
std::string exact(double v) {
  char text[64];
  const auto [end, ec] = std::to_chars(text, text + sizeof text, v);
  return ec == std::errc() ? std::string(text, end) : Format(v, "0.0000");
}

// "12, 13, 14 and 2 more" for a box.
std::string someNumbers(const std::vector<std::string>& numbers) {
  std::string out;
  const std::size_t shown = std::min<std::size_t>(numbers.size(), 5);
  for (std::size_t i = 0; i < shown; ++i) out += (i ? ", " : "") + numbers[i];
  if (numbers.size() > shown) out += " and " + std::to_string(numbers.size() - shown) + " more";
  return out;
}

std::string points(long long n) { return grouped(n) + (n == 1 ? " point" : " points"); }

}  // namespace

frmPoints::frmPoints(Program& program) : FormModel(program, "frmPoints", "Points") {
  add("lblProject", lblProject);
  add("lblFrom", lblFrom);
  add("txtFrom", txtFrom);
  add("lblTo", lblTo);
  add("txtTo", txtTo);
  add("lblDescription", lblDescription);
  add("txtDescription", txtDescription);
  add("lblFeature", lblFeature);
  add("cmbFeature", cmbFeature);
  add("lblEvidence", lblEvidence);
  add("cmbEvidence", cmbEvidence);
  add("btnShow", btnShow).click([this] { applyFilter(false); });
  add("btnShowAll", btnShowAll).click([this] { applyFilter(true); });
  add("lblFind", lblFind);
  add("txtFind", txtFind);
  add("btnFind", btnFind).click([this] { find(); });
  add("lblShown", lblShown);
  add("lblNew", lblNew);
  add("txtNewNumber", txtNewNumber);
  add("lblNewNorthing", lblNewNorthing);
  add("txtNewNorthing", txtNewNorthing);
  add("lblNewEasting", lblNewEasting);
  add("txtNewEasting", txtNewEasting);
  add("lblNewElevation", lblNewElevation);
  add("txtNewElevation", txtNewElevation);
  add("lblNewDescription", lblNewDescription);
  add("txtNewDescription", txtNewDescription);
  add("btnAdd", btnAdd).click([this] { addPoint(); });
  add("btnDelete", btnDelete).click([this] { deletePoints(); });
  add("lblOffset", lblOffset);
  add("txtOffset", txtOffset);
  add("btnRenumber", btnRenumber).click([this] { renumber(); });
  add("btnUndo", btnUndo).click([this] { undo(); });
  add("btnRedo", btnRedo).click([this] { redo(); });
  add("btnCopy", btnCopy).click([this] { copy(); });
  add("btnPaste", btnPaste).click([this] { paste(); });
  add("lblColumns", lblColumns);
  add("txtColumns", txtColumns);
  add("lblDuplicate", lblDuplicate);
  add("cmbDuplicate", cmbDuplicate);
  add("btnImport", btnImport).click([this] { import(); });
  add("btnExport", btnExport).click([this] { exportPoints(); });
  add("btnReturn", btnReturn).click([this] { unload(); });
  add("lblResult", lblResult);
  showState();
}

ProjectSession* frmPoints::session() { return program().project.get(); }

void frmPoints::opened() {
  lblResult.caption.clear();
  refresh();
}

void frmPoints::refresh() {
  ProjectSession* s = session();
  if (s != seenSession_) {
    // Another project: its rows, unfiltered.
    seenSession_ = s;
    query_ = {};
    sortColumn_ = -1;
    for (TextBox* t : {&txtFrom, &txtTo, &txtDescription, &txtFind}) t->text.clear();
    cmbFeature.text.clear();
    cmbEvidence.text.clear();
  }
  reload();
}

void frmPoints::reload() {
  pages_.clear();
  map_.reset();
  selected.clear();
  currentRow = -1;
  ++rowsVersion;
  ProjectSession* s = session();
  ids_.reset();
  count_ = 0;
  if (s) {
    seenVersion_ = s->version();
    try {
      if (query_.all())
        count_ = s->file().count();
      else
        ids_ = s->file().select(query_);
      cmbFeature.items = s->file().values("feature", 500);
      cmbEvidence.items = s->file().values("evidence", 500);
    } catch (const ProjectError& e) {
      shell().msgBox(kTitle, e.what(), Icon::Exclamation);
    }
    cmbFeature.items.insert(cmbFeature.items.begin(), "");
    cmbEvidence.items.insert(cmbEvidence.items.begin(), "");
  }
  showState();
}

void frmPoints::showState() {
  ProjectSession* s = session();
  lblProject.caption = s ? s->status() : "No project is open: make or open one from the main window's Project menu.";
  const long long shown = ids_ ? static_cast<long long>(ids_->size()) : count_;
  lblShown.caption = s ? (query_.filters() ? points(shown) + " shown by the filter" : points(shown)) : "";
  const bool any = s != nullptr;
  for (Button* b : {&btnShow, &btnShowAll, &btnFind, &btnAdd, &btnPaste, &btnImport, &btnExport}) b->enabled = any;
  btnDelete.enabled = btnRenumber.enabled = btnCopy.enabled = any && !selected.empty();
  btnUndo.enabled = any && s->canUndo();
  btnRedo.enabled = any && s->canRedo();
}

long long frmPoints::rowCount() {
  if (session() != seenSession_ || (session() && session()->version() != seenVersion_)) refresh();
  return ids_ ? static_cast<long long>(ids_->size()) : count_;
}

const ProjectPoint* frmPoints::row(long long r) {
  if (r < 0 || r >= rowCount()) return nullptr;
  const long long page = r / kPage;
  auto it = pages_.find(page);
  if (it == pages_.end()) {
    if (pages_.size() >= kPagesKept) pages_.clear();
    std::vector<ProjectPoint> rows;
    try {
      if (ids_) {
        const auto first = ids_->begin() + page * kPage;
        rows = session()->file().byIds({first, first + std::min<long long>(kPage, static_cast<long long>(ids_->size()) - page * kPage)});
      } else {
        rows = session()->file().page(page * kPage, static_cast<int>(kPage));
      }
    } catch (const ProjectError&) {
      return nullptr;  // a project changed under the window: it reads it again when told
    }
    it = pages_.emplace(page, std::move(rows)).first;
  }
  const auto at = static_cast<std::size_t>(r - page * kPage);
  return at < it->second.size() ? &it->second[at] : nullptr;
}

std::string frmPoints::cell(long long r, int column) {
  const ProjectPoint* p = row(r);
  if (!p) return "";
  switch (column) {
    case 0: return p->number;
    case 1: return Format(p->northing, "0.0000");
    case 2: return Format(p->easting, "0.0000");
    case 3: return p->elevation ? Format(*p->elevation, "0.000") : "";
    case 4: return p->description;
    case 5: return p->feature;
    case 6: return p->evidence;
    case 7: return p->source;
    case 8: return p->modified;
    default: return "";
  }
}

bool frmPoints::editRows(const ProjectEdit& edit, const std::string& what) {
  try {
    session()->edit(edit, what, kSource);
  } catch (const ProjectConflict& e) {
    // Another user's change stands; the rows are read again to show it.
    shell().msgBox(kTitle, std::string(e.what()) + ". The window shows the points as they are now.", Icon::Exclamation);
    reload();
    return false;
  } catch (const ProjectError& e) {
    shell().msgBox(kTitle, e.what(), Icon::Exclamation);
    return false;
  }
  lblResult.caption = what + ".";
  return true;
}

void frmPoints::setCell(long long r, int column, const std::string& text) {
  const ProjectPoint* found = row(r);
  if (!found || !editable(column)) return;
  const ProjectPoint old = *found;
  ProjectPoint p = old;  // with its key: it keeps its row
  p.modified.clear();
  p.source = kSource;
  const std::string t = trimmed(text);
  ProjectEdit edit;
  edit.expect[old.number] = old.version;
  std::string what = "Edit point " + old.number;
  if (column == 0) {
    const std::string number = upper(t);
    if (number == old.number) return;
    if (const std::string fault = numberFault(number); !fault.empty()) {
      shell().msgBox(kTitle, "Point " + old.number + " keeps its number: " + fault + ".", Icon::Exclamation);
      return;
    }
    if (session()->file().find(number)) {
      shell().msgBox(kTitle, "Point " + old.number + " keeps its number: the project holds a point " + number + " already.", Icon::Exclamation);
      return;
    }
    p.number = number;
    edit.remove.push_back(old.number);
    edit.expect[number] = 0;
    what = "Renumber point " + old.number + " to " + number;
  } else if (column <= 3) {
    const std::optional<double> v = finiteNumber(t);
    if (!v && !(column == 3 && t.empty())) {
      shell().msgBox(kTitle, "The " + std::string(column == 1 ? "northing" : column == 2 ? "easting" : "elevation") + " of point " + old.number +
                                 " must be a number" + (column == 3 ? " or empty" : "") + ", not \"" + t + "\".",
                     Icon::Exclamation);
      return;
    }
    if (column == 1) p.northing = *v;
    if (column == 2) p.easting = *v;
    if (column == 3) p.elevation = v;
  } else {
    (column == 4 ? p.description : column == 5 ? p.feature : p.evidence) = t;
  }
  edit.put.push_back(p);
  if (editRows(edit, what)) {
    const long long keep = r;
    reload();
    select({std::min(keep, rowCount() - 1)});
  }
}

void frmPoints::sortBy(int column, bool descending) {
  sortColumn_ = column >= 0 && column < static_cast<int>(kColumns.size()) ? column : -1;
  query_.order = static_cast<PointQuery::Column>(sortColumn_ + 1);
  query_.descending = sortColumn_ >= 0 && descending;
  reload();
}

void frmPoints::applyFilter(bool all) {
  if (all) {
    txtFrom.text = txtTo.text = txtDescription.text = cmbFeature.text = cmbEvidence.text = "";
  }
  PointQuery q;
  q.order = query_.order;
  q.descending = query_.descending;
  for (auto [box, bound] : {std::pair{&txtFrom, &q.fromNumber}, std::pair{&txtTo, &q.toNumber}}) {
    if (trimmed(box->text).empty()) continue;
    const std::optional<long long> v = wholeOf(box->text);
    if (!v || *v < 0) {
      shell().msgBox(kTitle, "A range of numbers is of whole numbers: \"" + box->text + "\" is none.", Icon::Exclamation);
      focusRequest = box == &txtFrom ? "txtFrom" : "txtTo";
      return;
    }
    *bound = v;
  }
  q.description = trimmed(txtDescription.text);
  q.feature = trimmed(cmbFeature.text);
  q.evidence = trimmed(cmbEvidence.text);
  query_ = q;
  reload();
}

void frmPoints::select(std::vector<long long> rows) {
  const long long n = rowCount();
  std::erase_if(rows, [n](long long r) { return r < 0 || r >= n; });
  selected = std::move(rows);
  currentRow = selected.empty() ? -1 : selected.front();
  showState();
}

std::vector<ProjectPoint> frmPoints::selectedPoints() {
  std::vector<ProjectPoint> out;
  for (long long r : selected)
    if (const ProjectPoint* p = row(r)) out.push_back(*p);
  return out;
}

Picture frmPoints::map() {
  ProjectSession* s = session();
  const long long n = rowCount();
  if (!map_) {
    Picture m;
    if (!s) {
      m.hint = "No project is open.";
    } else if (n == 0) {
      m.hint = query_.filters() ? "No point passes the filter." : "The project holds no point yet: import a file or add one.";
    } else if (n > kMapMost) {
      m.hint = "The map draws up to " + points(kMapMost) + ": filter the table to fewer than the " + points(n) + " shown.";
    } else {
      m.mapUnits = s->file().settings().unit;
      for (long long r = 0; r < n; ++r) {
        const ProjectPoint* p = row(r);
        if (!p) continue;
        PictureMark mark = markAt({p->easting, p->northing});
        mark.radius = 3;
        mark.tip = "Point " + p->number + (p->description.empty() ? "" : ": " + p->description);
        m.marks.push_back(mark);
        PictureText label;
        label.at = mark.at;
        label.text = p->number;
        label.place = Place::AboveRight;
        label.ifRoom = true;
        m.texts.push_back(std::move(label));
      }
      m.caption = s->name() + ": " + points(n) + (query_.filters() ? " shown by the filter" : "");
    }
    map_ = std::move(m);
  }
  Picture out = *map_;
  // The selection over the points, in the colour of what to look at.
  if (n <= kMapMost)
    for (long long r : selected)
      if (const ProjectPoint* p = row(r)) {
        PictureMark mark = markAt({p->easting, p->northing}, Ink::Accent);
        mark.filled = true;
        mark.radius = 5;
        mark.tip = "Point " + p->number + " (selected)";
        out.marks.push_back(mark);
      }
  return out;
}

void frmPoints::mapClicked(PicturePoint at, double tolerance) {
  const long long n = rowCount();
  if (n > kMapMost) return;
  long long best = -1;
  double nearest = tolerance;
  for (long long r = 0; r < n; ++r)
    if (const ProjectPoint* p = row(r)) {
      const double d = std::hypot(p->easting - at.x, p->northing - at.y);
      if (d <= nearest) nearest = d, best = r;
    }
  if (best >= 0) select({best});
}

void frmPoints::find() {
  ProjectSession* s = session();
  const std::string number = upper(trimmed(txtFind.text));
  if (!s || number.empty()) return;
  try {
    const std::optional<ProjectPoint> p = s->file().find(number);
    if (!p) {
      shell().msgBox(kTitle, "Point " + number + " is not in the project.", Icon::Information);
      return;
    }
    rowCount();
    long long r = -1;
    if (ids_) {
      const auto at = std::find(ids_->begin(), ids_->end(), p->id);
      if (at == ids_->end()) {
        shell().msgBox(kTitle, "Point " + number + " is in the project, but the filter hides it: Show All shows it.", Icon::Information);
        return;
      }
      r = at - ids_->begin();
    } else {
      r = s->file().rank(p->id);
    }
    select({r});
  } catch (const ProjectError& e) {
    shell().msgBox(kTitle, e.what(), Icon::Exclamation);
  }
}

void frmPoints::addPoint() {
  ProjectSession* s = session();
  if (!s) return;
  ProjectPoint p;
  p.number = upper(trimmed(txtNewNumber.text));
  const auto refuse = [this](const std::string& text, const char* field) {
    shell().msgBox(kTitle, text, Icon::Exclamation);
    focusRequest = field;
  };
  if (const std::string fault = numberFault(p.number); !fault.empty()) return refuse("The new point cannot be added: " + fault + ".", "txtNewNumber");
  const std::optional<double> n = finiteNumber(txtNewNorthing.text), e = finiteNumber(txtNewEasting.text);
  if (!n) return refuse("The new point's northing must be a number.", "txtNewNorthing");
  if (!e) return refuse("The new point's easting must be a number.", "txtNewEasting");
  if (!trimmed(txtNewElevation.text).empty()) {
    p.elevation = finiteNumber(txtNewElevation.text);
    if (!p.elevation) return refuse("The new point's elevation must be a number, or empty where it is unknown.", "txtNewElevation");
  }
  p.northing = *n;
  p.easting = *e;
  p.description = trimmed(txtNewDescription.text);
  p.source = kSource;
  if (s->file().find(p.number)) return refuse("The project holds a point " + p.number + " already.", "txtNewNumber");
  if (!editRows({{}, {p}, {{p.number, 0}}}, "Add point " + p.number)) return;
  for (TextBox* t : {&txtNewNumber, &txtNewNorthing, &txtNewEasting, &txtNewElevation, &txtNewDescription}) t->text.clear();
  reload();
  txtFind.text = p.number;
  find();
  focusRequest = "txtNewNumber";
}

void frmPoints::deletePoints() {
  const std::vector<ProjectPoint> chosen = selectedPoints();
  if (chosen.empty()) return;
  std::vector<std::string> numbers;
  std::map<std::string, long long> readAt;
  for (const ProjectPoint& p : chosen) {
    numbers.push_back(p.number);
    readAt[p.number] = p.version;
  }
  if (shell().msgBox(kTitle, "Delete " + points(static_cast<long long>(numbers.size())) + " (" + someNumbers(numbers) + ") from the project?",
                     Icon::Question, Buttons::YesNo) != Answer::Yes)
    return;
  if (editRows({numbers, {}, readAt}, "Delete " + points(static_cast<long long>(numbers.size())))) reload();
}

void frmPoints::renumber() {
  const std::vector<ProjectPoint> chosen = selectedPoints();
  if (chosen.empty()) return;
  const std::optional<long long> offset = wholeOf(txtOffset.text);
  if (!offset || *offset == 0 || std::llabs(*offset) > 999999999) {
    shell().msgBox(kTitle, "Renumber by a whole number, such as 1000 or -100.", Icon::Exclamation);
    focusRequest = "txtOffset";
    return;
  }
  ProjectEdit edit;
  std::unordered_set<std::string> moving;
  for (const ProjectPoint& p : chosen) {
    const std::optional<long long> n = wholeOf(p.number);
    if (!n || p.number.find_first_not_of("0123456789") != std::string::npos) {
      shell().msgBox(kTitle, "Point " + p.number + " has no whole number to add " + std::to_string(*offset) + " to: renumber such points one by one.",
                     Icon::Exclamation);
      return;
    }
    if (*n + *offset < 1) {
      shell().msgBox(kTitle, "Point " + p.number + " would be numbered " + std::to_string(*n + *offset) + ": numbers start at 1.", Icon::Exclamation);
      return;
    }
    moving.insert(p.number);
    edit.remove.push_back(p.number);
    edit.expect[p.number] = p.version;
    ProjectPoint q = p;
    q.modified.clear();
    q.source = kSource;
    q.number = std::to_string(*n + *offset);
    edit.put.push_back(q);
    edit.expect.emplace(q.number, 0);
  }
  std::vector<std::string> wanted;
  for (const ProjectPoint& q : edit.put) wanted.push_back(q.number);
  std::vector<std::string> taken;
  for (const ProjectPoint& held : session()->file().findAll(wanted))
    if (!moving.count(held.number)) taken.push_back(held.number);
  if (!taken.empty()) {
    shell().msgBox(kTitle, "Nothing is renumbered: the project holds " + someNumbers(taken) + " already, which the renumbered points would take.",
                   Icon::Exclamation);
    return;
  }
  const std::string by = (*offset > 0 ? "+" : "") + std::to_string(*offset);
  if (editRows(edit, "Renumber " + points(static_cast<long long>(chosen.size())) + " by " + by)) reload();
}

bool frmPoints::poll() {
  ProjectSession* s = session();
  if (!s || s != seenSession_ || !s->poll()) return false;
  const long long keep = currentRow;
  reload();
  if (keep >= 0 && rowCount() > 0) select({std::min(keep, rowCount() - 1)});
  lblResult.caption = "Another user changed the points (" + stampNow().substr(11, 8) + " UTC): they are shown as they are now.";
  return true;
}

void frmPoints::undo() { step(true); }

void frmPoints::redo() { step(false); }

void frmPoints::step(bool back) {
  ProjectSession* s = session();
  if (!s || !(back ? s->canUndo() : s->canRedo())) return;
  const std::string what = back ? s->undoText() : s->redoText();
  try {
    back ? s->undo() : s->redo();
    lblResult.caption = (back ? "Undone: " : "Done again: ") + what + ".";
  } catch (const ProjectError& e) {
    shell().msgBox(kTitle, e.what(), Icon::Exclamation);
  }
  reload();
}

void frmPoints::copy() {
  std::string text = "Number\tNorthing\tEasting\tElevation\tDescription\tFeature\tEvidence\n";
  for (const ProjectPoint& p : selectedPoints())
    text += p.number + "\t" + exact(p.northing) + "\t" + exact(p.easting) + "\t" + (p.elevation ? exact(*p.elevation) : "") + "\t" + p.description +
            "\t" + p.feature + "\t" + p.evidence + "\n";
  shell().setClipboardText(text);
  lblResult.caption = "Copied " + points(static_cast<long long>(selected.size())) + " as tab-separated text.";
}

void frmPoints::paste() {
  ProjectSession* s = session();
  if (!s) return;
  std::istringstream in(shell().clipboardText());
  std::vector<ProjectPoint> pasted;
  std::unordered_set<std::string> seen;
  int line = 0;
  for (std::string l; std::getline(in, l);) {
    ++line;
    if (!l.empty() && l.back() == '\r') l.pop_back();
    if (trimmed(l).empty()) continue;
    std::vector<std::string> cells;
    std::istringstream fields(l);
    for (std::string c; std::getline(fields, c, '\t');) cells.push_back(trimmed(c));
    if (pasted.empty() && !cells.empty() && upper(cells[0]) == "NUMBER") continue;  // the header line
    const auto refuse = [&](const std::string& why) {
      shell().msgBox(kTitle, "Nothing is pasted: line " + std::to_string(line) + " of the text " + why + ".", Icon::Exclamation);
    };
    cells.resize(std::max<std::size_t>(cells.size(), 7));
    ProjectPoint p;
    p.number = upper(cells[0]);
    if (const std::string fault = numberFault(p.number); !fault.empty()) return refuse("has " + fault.substr(4));
    if (!seen.insert(p.number).second) return refuse("gives point " + p.number + " a second time");
    const std::optional<double> n = finiteNumber(cells[1]), e = finiteNumber(cells[2]);
    if (!n || !e) return refuse("has no northing and easting (a spreadsheet's columns: number, northing, easting, elevation, description, feature, evidence)");
    p.northing = *n;
    p.easting = *e;
    if (!cells[3].empty()) {
      p.elevation = finiteNumber(cells[3]);
      if (!p.elevation) return refuse("has an elevation that is not a number: \"" + cells[3] + "\"");
    }
    p.description = cells[4];
    p.feature = cells[5];
    p.evidence = cells[6];
    p.source = "Points window paste";
    pasted.push_back(std::move(p));
  }
  if (pasted.empty()) {
    shell().msgBox(kTitle, "The clipboard holds no points: copy rows of number, northing, easting (and elevation, description, feature, evidence) from a spreadsheet.",
                   Icon::Information);
    return;
  }
  std::vector<std::string> numbers;
  for (const ProjectPoint& p : pasted) numbers.push_back(p.number);
  std::vector<std::string> held;
  std::map<std::string, long long> readAt;
  for (const std::string& n : numbers) readAt[n] = 0;
  for (const ProjectPoint& p : s->file().findAll(numbers)) {
    held.push_back(p.number);
    readAt[p.number] = p.version;
  }
  if (!held.empty() &&
      shell().msgBox(kTitle, points(static_cast<long long>(held.size())) + " pasted (" + someNumbers(held) +
                                 ") have numbers the project holds: replace those points? No pastes nothing.",
                     Icon::Question, Buttons::YesNo) != Answer::Yes)
    return;
  if (editRows({{}, pasted, readAt}, "Paste " + points(static_cast<long long>(pasted.size())))) reload();
}

void frmPoints::import() {
  ProjectSession* s = session();
  if (!s) return;
  const auto chosen = shell().chooseFile(FileDialog::Open, "Import Points", "",
                                         {"Point files (*.csv *.txt *.xml *.rw5)", "LandXML (*.xml)", "Raw files (*.rw5)", "All files (*)"});
  if (!chosen || chosen->empty()) return;
  const std::string file = *chosen;
  // The order a header line names, proposed: the user may change it and import again.
  if (const std::string proposed = headerColumns(file); !proposed.empty()) txtColumns.text = proposed;
  const std::string name = std::filesystem::path(file).filename().string();
  try {
    std::vector<ProjectPoint> found = pointsOfFile(file, upper(trimmed(txtColumns.text)), s->file().settings().crs);
    const OnDuplicate way = cmbDuplicate.text == cmbDuplicate.items[1]   ? OnDuplicate::Replace
                            : cmbDuplicate.text == cmbDuplicate.items[2] ? OnDuplicate::Renumber
                                                                         : OnDuplicate::Skip;
    const StoreCounts c = s->store(std::move(found), way, "import " + name, "Import " + name);
    lblResult.caption = "Read " + points(c.read) + " from " + name + ": " + std::to_string(c.stored) + " stored (" + std::to_string(c.replaced) +
                        " replacing a point, " + std::to_string(c.renumbered) + " renumbered), " + std::to_string(c.skipped) +
                        " skipped as the project holds their numbers.";
  } catch (const ProjectError& e) {
    shell().msgBox(kTitle, std::string(e.what()) + ". Nothing was imported.", Icon::Exclamation);
    return;
  }
  program().recent.add(file);
  reload();
}

void frmPoints::exportPoints() {
  ProjectSession* s = session();
  if (!s) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Export Points", "", mapExportFilters());
  if (!chosen || chosen->empty()) return;
  try {
    const CornerMap m = mapOfProject(s->file());
    if (const auto written = exportMap(shell(), "Export Points", *chosen, m))
      lblResult.caption = "Exported " + points(static_cast<long long>(m.points.size())) + " to " + written->string() + ".";
  } catch (const ProjectError& e) {
    shell().msgBox(kTitle, e.what(), Icon::Exclamation);
  }
}

}  // namespace tervalo
