// The section form's run: the corners computed, named and numbered, the
// report pages and the GEOPAK file written, the slots filled with what the
// run found.

#include "secsub/frm_sec_sub.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "app/frm_main.h"
#include "app/output_file.h"
#include "app/program.h"
#include "app/shell.h"
#include "secsub/corners.h"
#include "secsub_out/evidence_page.h"
#include "secsub_out/geopak.h"
#include "secsub_out/report.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

// An output name without a folder lands in the data folder; an emptied
// field takes its default name there again, written back into the field.
std::filesystem::path outputPath(TextBox& field, const std::string& dataFolder, const char* defaultName) {
  if (field.text.empty()) field.text = dataFolder + defaultName;
  const std::filesystem::path path(field.text);
  return path.has_parent_path() ? path : std::filesystem::path(dataFolder) / path;
}

}  // namespace

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
  // Beside the boxes: an empty field the section does not require is the
  // regular quarter-mile, and the run says so.
  const std::vector<std::string> regularChains = takeEmptyChainsAsRegular(record);
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
    } else if (lookedUp(s)) {
      o.kind = CornerOrigin::Kind::LookedUp;
      o.point = lookups[i]->point;
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
  // What the numbers alone do not show, in the notice beside the grid and
  // on the report's last page.
  RunNotices said = coincidenceNotices(record, computed, entered, centerTyped);
  said.lines.insert(said.lines.begin(), regularChains.begin(), regularChains.end());
  const std::vector<std::string> fromMissing = missingCornerNotices(record, placedBy);
  said.lines.insert(said.lines.end(), fromMissing.begin(), fromMissing.end());
  for (int s : unnamed)
    said.lines.push_back("The corner " + std::to_string(s) + " (" + naming.descriptions[static_cast<std::size_t>(s)] +
                         ") has no point number; the files name it " + record.slots[static_cast<std::size_t>(s)].pointNumber + ".");
  said.said = said.lines;
  const std::vector<std::string> page = noticesPage(record, said.said);
  lines.insert(lines.end(), page.begin(), page.end());

  const std::filesystem::path& geopakFile = (*outputs)[0];
  const std::filesystem::path& reportFile = (*outputs)[1];
  std::vector<std::pair<std::filesystem::path, std::vector<std::string>>> files{{geopakFile, geopak}, {reportFile, lines}};
  if (outputs->size() > 2) files.emplace_back((*outputs)[2], cornerRecordLines(record, origins, drawingTitle(), ground ? &*ground : nullptr));
  program().writeOutputFiles(files, CStr(record.section) + "-" + CStr(record.township) + "-" +
                                        CStr(record.range < 0 ? -record.range : record.range) + record.direction);
  report = lines;
  hasRun = true;
  btnSaveDrawing.enabled = btnExport.enabled = btnPrint.enabled = btnPlat.enabled = true;
  runNaming = naming;
  notices = std::move(said);
  // Nothing this run replaced is lost: say where the earlier files went.
  for (const auto& [replaced, kept] : program().lastKept)
    notices.lines.push_back("The earlier " + replaced.filename().string() + " is kept in the History folder as \"" +
                            kept.filename().string() + "\".");
  showNotices(notices.lines);

  program().points.clearRecords(0, 25);
  shell().msgBox("Program Complete", "Created Files: " + geopakFile.string() + " and " + reportFile.string() + ".",
                 Icon::Information);
  shell().openInEditor(std::vector<std::filesystem::path>{reportFile, geopakFile});
}

}  // namespace tervalo
