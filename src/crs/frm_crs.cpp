#include "crs/frm_crs.h"

#include <cmath>

#include "app/program.h"
#include "app/shell.h"
#include "text/number.h"

namespace tervalo {

frmCrs::frmCrs(Program& program) : FormModel(program, "frmCrs", "Coordinate System") {
  add("optNone", optNone, "system");
  add("optSystem", optSystem, "system");
  add("lblSearch", lblSearch);
  add("txtSearch", txtSearch).change([this] { search(); });
  add("lstSystems", lstSystems).click([this] {
    if (lstSystems.selected < 0 || lstSystems.selected >= static_cast<int>(listed_.size())) return;
    txtEpsg.text = std::to_string(listed_[static_cast<std::size_t>(lstSystems.selected)]);
    optSystem.checked = true, optNone.checked = false;
    showSystem();
  });
  add("lblEpsg", lblEpsg);
  add("txtEpsg", txtEpsg).numeric().change([this] {
    if (!txtEpsg.text.empty()) optSystem.checked = true, optNone.checked = false;
    showSystem();
  });
  add("lblSystem", lblSystem);
  add("fraFoot", fraFoot);
  add("optSystemUnit", optSystemUnit, "foot");
  add("optUsFoot", optUsFoot, "foot");
  add("optIntlFoot", optIntlFoot, "foot");
  add("lblElevation", lblElevation);
  add("txtElevation", txtElevation).numeric();
  add("btnOK", btnOK).click([this] { btnOK_Click(); });
  add("btnCancel", btnCancel).click([this] { unload(); });
}

void frmCrs::opened() {
  const CrsChoice& crs = program().crs;
  optNone.checked = crs.none();
  optSystem.checked = !crs.none();
  txtEpsg.text = crs.none() ? "" : std::to_string(crs.epsg);
  optSystemUnit.checked = crs.foot.empty();
  optUsFoot.checked = crs.foot == "us";
  optIntlFoot.checked = crs.foot == "international";
  txtElevation.text = crs.elevation ? CStr(*crs.elevation) : "";
  lblSystem.caption.clear();
  if (!crs.none()) showSystem();  // PROJ only once a system is at hand
}

void frmCrs::search() {
  lstSystems.items.clear();
  listed_.clear();
  if (txtSearch.text.size() < 2) return;
  try {
    for (const CrsListEntry& e : geo().search(txtSearch.text, 200)) {
      lstSystems.items.push_back(std::to_string(e.epsg) + "  " + e.name);
      listed_.push_back(e.epsg);
    }
  } catch (const CrsError& e) {
    lblSystem.caption = e.what();
  }
}

void frmCrs::showSystem() {
  const auto code = strictNumber(txtEpsg.text);
  if (!code || *code < 1 || *code != std::floor(*code)) {
    lblSystem.caption = txtEpsg.text.empty() ? "" : "An EPSG code is a whole number, such as 3419.";
    return;
  }
  try {
    const CrsDescription d = geo().describe(static_cast<int>(*code));
    // Where it is used, its first words: a long list of counties would push the window off the screen.
    std::string area = d.area;
    if (area.size() > 90) {
      const auto cut = area.find_last_of(";,", 90);
      area = area.substr(0, cut == std::string::npos ? 90 : cut) + "...";
    }
    lblSystem.caption = d.name + "\nDatum: " + d.datum + "; unit: " + d.unit + (area.empty() ? "" : "\nUsed in: " + area);
  } catch (const CrsError& e) {
    lblSystem.caption = e.what();
  }
}

void frmCrs::btnOK_Click() {
  CrsChoice crs;
  if (optSystem.checked) {
    const auto code = strictNumber(txtEpsg.text);
    if (!code || *code < 1 || *code > 999999 || *code != std::floor(*code)) {
      shell().msgBox("Coordinate System", "Give the EPSG code of a projected system, such as 3419, or choose None.", Icon::Exclamation);
      focusRequest = "txtEpsg";
      return;
    }
    crs.epsg = static_cast<int>(*code);
    crs.foot = optUsFoot.checked ? "us" : optIntlFoot.checked ? "international" : "";
    try {
      geo().describe(crs.epsg);
      geo().wkt(crs, false);  // the foot fits the system
    } catch (const CrsError& e) {
      shell().msgBox("Coordinate System", e.what(), Icon::Exclamation);
      return;
    }
  }
  std::optional<double> elevation;
  if (!txtElevation.text.empty()) {
    elevation = strictNumber(txtElevation.text);
    if (!elevation || !(std::fabs(*elevation) < kMostElevation)) {
      shell().msgBox("Coordinate System", "The mean project elevation is a number, in the unit of the coordinates.",
                     Icon::Exclamation);
      focusRequest = "txtElevation";
      return;
    }
  }
  crs.elevation = elevation;
  program().crs = crs;
  unload();
}

}  // namespace tervalo
