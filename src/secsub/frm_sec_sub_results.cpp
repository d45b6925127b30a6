// What a run of the section form gives to look at and take away: the
// drawing, each corner's reason, the map for the exports, the runner's
// result, a slot restored from the restoration window.

#include "secsub/frm_sec_sub.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>

#include "project/point_import.h"
#include "project/project_session.h"
#include "app/frm_main.h"
#include "app/program.h"
#include "app/shell.h"
#include "export/export_file.h"
#include "export/map_export.h"
#include "parcels/parcel_run.h"
#include "parcels/plat_file.h"
#include "text/date.h"
#include "restore/frm_restore.h"
#include "secsub/corners.h"
#include "secsub_out/drawing.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/number.h"

namespace tervalo {

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
  result["notices"] = notices.said;
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
  std::array<bool, slot::count> restored{};
  for (std::size_t i = 0; i < restored.size(); ++i) restored[i] = origins[i].kind == CornerOrigin::Kind::Restored;
  return sectionDrawing({.record = record,
                         .computed = computed,
                         .restored = restored,
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

void frmSecSub::opened() {
  showNotices(notices.lines);
  showCrs();
  btnStore.enabled = program().project != nullptr;
}

void frmSecSub::btnStore_Click() {
  if (!program().project) return;
  if (!hasRun) {
    shell().msgBox("Store in Project", "Continue first: the run computes the corners to store.", Icon::Information);
    return;
  }
  const std::string title = drawingTitle();
  const std::string said = storeFromTool(*program().project, shell(), mapPoints(runMap(), title, &program().project->file()), title, "Store " + title);
  if (!said.empty()) shell().msgBox("Store in Project", said, Icon::Information);
}

void frmSecSub::btnPlat_Click() {
  if (!hasRun) return;
  const char* title = "Plat of the Section";
  const auto chosen = shell().chooseFile(FileDialog::Save, title, program().userAppData + "Section" + CStr(record.section) + "-plat.pdf",
                                         {"PDF document (*.pdf)", "SVG drawing (*.svg)", "DXF drawing (*.dxf)"});
  if (!chosen || chosen->empty()) return;
  try {
    ParcelRun run;
    run.sections.push_back(plattedSection(record, computed, program().crs));
    PlatPeople people;
    if (program().project) {
      const ProjectSettings& s = program().project->file().settings();
      people = PlatPeople{s.surveyor, s.license, s.firm, "", {}};
    }
    people.date = formatShortDate(shell().today());
    // The smallest sheet that holds the plat with its labels clear.
    std::optional<Sheet> sheet;
    std::string why;
    for (SheetSize size : {SheetSize::Letter, SheetSize::Tabloid, SheetSize::ArchD}) {
      try {
        sheet = drawPlat(sectionsPlat(run, people), PlatOptions{size, 0});
        break;
      } catch (const DeedError& e) {
        why = e.what();
      }
    }
    if (!sheet) {
      shell().msgBox(title, "The plat cannot be drawn: " + why + ".", Icon::Exclamation);
      return;
    }
    writeSheetFile(*sheet, *chosen);
    sayWritten(std::filesystem::path(*chosen));
  } catch (const CrsError& e) {
    shell().msgBox(title, e.what(), Icon::Exclamation);
  } catch (const RunTimeError& e) {
    shell().msgBox(title, e.what(), Icon::Exclamation);
  }
}

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


}  // namespace tervalo
