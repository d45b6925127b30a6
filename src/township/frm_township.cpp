#include "township/frm_township.h"

#include "secsub/section_record.h"

#include <algorithm>

#include "app/program.h"
#include "export/export_file.h"
#include "text/errors.h"
#include "township/township.h"
#include "township/township_map.h"

namespace tervalo {

frmTownship::frmTownship(Program& program) : FormModel(program, "frmTownship", "Township") {
  add("lblSource", lblSource);
  add("txtSource", txtSource);
  add("btnSource", btnSource).click([this] {
    if (const auto chosen = chooseSourceFile(txtSource.text)) txtSource.text = *chosen;
  });
  add("btnOpenPlan", btnOpenPlan).click([this] { btnOpenPlan_Click(); });
  add("btnSavePlan", btnSavePlan).click([this] { btnSavePlan_Click(); });
  add("btnAddSection", btnAddSection).click([this] {
    SectionPlan row;
    // A new row takes the township of the row above, as the next section of it usually does.
    if (!plan.sections.empty()) {
      row.township = plan.sections.back().township;
      row.range = plan.sections.back().range;
      row.direction = plan.sections.back().direction;
    }
    plan.sections.push_back(row);
    selectRow(static_cast<int>(plan.sections.size()) - 1);
    ++tableVersion;
  });
  add("btnRemoveSection", btnRemoveSection).click([this] {
    if (currentRow < 0 || currentRow >= static_cast<int>(plan.sections.size())) return;
    plan.sections.erase(plan.sections.begin() + currentRow);
    selectRow(std::min(currentRow, static_cast<int>(plan.sections.size()) - 1));
    ++tableVersion;
  });
  add("btnRun", btnRun).click([this] { btnRun_Click(); });
  add("btnPrint", btnPrint).click([this] {
    if (outcome_) shell().print({"Township Summary", lstSummary.items, map()});
  });
  add("btnReturn", btnReturn).click([this] { unload(); });
  add("lblSummary", lblSummary);
  add("lstSummary", lstSummary);
  add("fraRow", fraRow);
  add("lblPM", lblPM);
  add("txtPM", txtPM).numeric().change([this] {
    if (SectionPlan* row = selected()) row->meridian = txtPM.text;
  });
  for (std::size_t i = 0; i < rowChains.size(); ++i) {
    RowChain& c = rowChains[i];
    c.stem = kPlanChains[i];
    c.caption.caption = std::find_if(kChainFields.begin(), kChainFields.end(), [&c](const ChainFieldInfo& f) {
                          return c.stem == f.stem;
                        })->caption;
    add("lbl" + c.stem + "chain", c.caption);
    add("txt" + c.stem + "chain", c.text).numeric().change([this, &c] {
      SectionPlan* row = selected();
      if (!row) return;
      if (c.text.text.empty())
        row->chains.erase(c.stem);  // the section window's own default
      else
        row->chains[c.stem] = c.text.text;
    });
  }
  selectRow(-1);
}

SectionPlan* frmTownship::selected() {
  return currentRow >= 0 && currentRow < static_cast<int>(plan.sections.size()) ? &plan.sections[static_cast<std::size_t>(currentRow)]
                                                                                 : nullptr;
}

void frmTownship::selectRow(int row) {
  currentRow = row;
  const SectionPlan* s = selected();
  fraRow.caption = s ? "Row " + std::to_string(row + 1) + " (section " + s->section + ")" : "Selected row";
  txtPM.text = s ? s->meridian : "";
  txtPM.enabled = s != nullptr;
  for (RowChain& c : rowChains) {
    const auto chain = s ? s->chains.find(c.stem) : std::map<std::string, std::string>::const_iterator{};
    c.text.text = s && chain != s->chains.end() ? chain->second : "";
    c.text.enabled = s != nullptr;
  }
}

std::string frmTownship::cell(int row, int column) const {
  const SectionPlan& s = plan.sections.at(static_cast<std::size_t>(row));
  switch (column) {
    case 0: return s.section;
    case 1: return s.township;
    case 2: return s.range;
    case 3: return s.direction;
    case 12: return s.numbering;
    default: break;
  }
  const PlanCorner& c = s.corners.at(static_cast<std::size_t>(column - 4));
  if (c.restore) return "restore " + c.restore->name;  // restored before the run; typing over it names a point instead
  return c.point.empty() && !c.x.empty() ? c.x + " " + c.y : c.point;
}

void frmTownship::setCell(int row, int column, const std::string& text) {
  SectionPlan& s = plan.sections.at(static_cast<std::size_t>(row));
  switch (column) {
    case 0:
      s.section = text;
      if (row == currentRow) selectRow(row);  // the row's frame names its section
      return;
    case 1: s.township = text; return;
    case 2: s.range = text; return;
    case 3: s.direction.assign(1, text == "e" || text == "E" ? 'E' : 'W'); return;
    case 12: s.numbering = text.empty() ? "1" : text; return;
    default: break;
  }
  // A point number, or typed coordinates as "X Y".
  PlanCorner& c = s.corners.at(static_cast<std::size_t>(column - 4));
  c = {};
  const auto space = text.find(' ');
  if (space == std::string::npos) {
    c.point = text;
  } else {
    c.x = text.substr(0, space);
    c.y = text.substr(text.find_first_not_of(' ', space) == std::string::npos ? text.size() : text.find_first_not_of(' ', space));
  }
}

void frmTownship::btnOpenPlan_Click() {
  const auto chosen = shell().chooseFile(FileDialog::Open, "Open Township Plan", program().userAppData,
                                         {"Township plans (*.json)", "All files (*)"});
  if (chosen && !chosen->empty()) openPath(*chosen);
}

bool frmTownship::openPath(const std::string& file) {
  try {
    plan = readPlanFile(file);
  } catch (const PlanError& e) {
    shell().msgBox("Open Township Plan", "\"" + file + "\" cannot be opened: " + e.what(), Icon::Exclamation);
    return false;
  }
  program().recent.add(file);
  txtSource.text = plan.source;
  selectRow(plan.sections.empty() ? -1 : 0);
  lstSummary.items.clear();
  outcome_.reset();
  btnPrint.enabled = false;
  disagreementLines.clear();
  stoppedRows.clear();
  stoppedLines.clear();
  ++tableVersion;
  return true;
}

void frmTownship::btnSavePlan_Click() {
  const auto chosen = shell().chooseFile(FileDialog::Save, "Save Township Plan", program().userAppData + "township.plan.json",
                                         {"Township plans (*.json)"});
  if (!chosen || chosen->empty()) return;
  plan.source = txtSource.text;
  const std::filesystem::path file(*chosen);
  exportFile(shell(), "Save Township Plan", file, {{exportKind(file), [&] { writeDocument(file, planText(plan)); }}});
}

void frmTownship::btnRun_Click() {
  plan.source = txtSource.text;
  if (plan.sections.empty()) {
    shell().msgBox("Township", "Add the sections to run first.", Icon::Information);
    return;
  }
  // Every row read back through the plan reader, so the window refuses what a plan file would.
  TownshipPlan checked;
  try {
    checked = parsePlan(planText(plan));
  } catch (const PlanError& e) {
    shell().msgBox("Township", std::string("The plan cannot be run: ") + e.what(), Icon::Exclamation);
    return;
  }
  checked.source = plan.source;
  TownshipOutcome out;
  try {
    RunOptions options{program().userAppData, shell().today()};
    options.windows = false;  // the window shows the summary and the map
    out = runTownship(checked, options, program().registry());
  } catch (const ProgramFault& e) {
    shell().msgBox(e.title(), e.what(), Icon::Critical);
    return;
  }
  lstSummary.items = out.summary;
  lstSummary.selected = -1;
  disagreementLines = out.disagreementLines;
  stoppedLines = out.stoppedLines;
  stoppedRows.clear();
  for (const StoppedSection& s : out.stopped) stoppedRows.push_back(s.row);
  for (const auto& file : out.result["files"]) shell().fileWritten(file.get<std::string>());
  outcome_ = std::move(out);
  btnPrint.enabled = true;
}

Picture frmTownship::map() const {
  if (!outcome_) {
    Picture empty;
    empty.hint = "The map of the township appears here after Run.";
    return empty;
  }
  return townshipMap(*outcome_, currentRow);
}

void frmTownship::mapClicked(double x, double y, double tolerance) {
  if (!outcome_) return;
  const MapPick pick = pickOnMap(*outcome_, x, y, tolerance);
  if (pick.row && *pick.row < static_cast<int>(plan.sections.size())) selectRow(*pick.row);
  if (pick.disagreement) {
    // Its lines in the summary: a name line, one per position, the difference.
    std::size_t first = 0;
    for (std::size_t i = 0; i < *pick.disagreement; ++i) first += 2 + outcome_->disagreements[i].positions.size();
    if (first < disagreementLines.size()) lstSummary.selected = disagreementLines[first];
  } else if (pick.row) {
    // A section that did not run: the lines saying why; otherwise the list of sections run.
    lstSummary.selected = -1;
    for (std::size_t i = 0; i < lstSummary.items.size(); ++i)
      if (lstSummary.items[i].rfind("Sections run:", 0) == 0) lstSummary.selected = static_cast<int>(i);
  }
}

}  // namespace tervalo
