#include "app/forms_misc.h"
#include "text/number.h"
#include <cmath>

#include "app/header_data.h"
#include "app/program.h"
#include "app/shell.h"
#include "app/version.h"

namespace tervalo {

const char* VersionInfo::title() { return "Tervalo"; }

std::string VersionInfo::numbers() {
  return std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." + std::to_string(kVersionPatch);
}

const char* VersionInfo::legalRights() {
  return "Copyright (C) The Tervalo Project contributors. Tervalo is free software under the GNU General Public "
         "License, version 3 or (at your option) any later version, and comes with no warranty.";
}

frmAbout::frmAbout(Program& program) : FormModel(program, "frmAbout", std::string("About ") + VersionInfo::title()) {
  lblTitle.caption = VersionInfo::title();
  lblVersion.caption = "Version " + VersionInfo::numbers() + "    March 22, 2016";
  lblCopyright.caption = VersionInfo::legalRights();
  lblDisclaimer.caption =
      "Warning: This program is provided as is. By using it you release its makers, the Tervalo Project "
      "contributors, from all liability resulting from any inaccuracies in the application or in its results. "
      "Check every computed position before you rely on it.";
  lblSupport.caption = "User Support Information:  Tervalo User Support, telephone 555-0100";
  add("lblTitle", lblTitle);
  add("lblVersion", lblVersion);
  add("lblCopyright", lblCopyright);
  add("lblDisclaimer", lblDisclaimer);
  add("lblSupport", lblSupport);
  add("cmdOK", cmdOK).click([this] { unload(); });
}

frmHeader::frmHeader(Program& program) : FormModel(program, "frmHeader", "Print Header Information") {
  cmbCounty.items = countyNames(program.userAppData);
  if (!cmbCounty.items.empty()) cmbCounty.text = cmbCounty.items.front();
  add("lblSP", lblSP);
  add("txtSP", txtSP);
  add("lblTH", lblTH);
  add("txtTH", txtTH);
  add("lblDate", lblDate);
  add("txtDate", txtDate);
  add("lblCounty", lblCounty);
  add("cmbCounty", cmbCounty);
  add("lblOperator", lblOperator);
  add("txtOperator", txtOperator);
  add("lblHDatum", lblHDatum);
  add("cmbHDatum", cmbHDatum);
  add("lblVDatum", lblVDatum);
  add("cmbVDatum", cmbVDatum);
  add("lblComment", lblComment);
  add("txtComment", txtComment);
  add("chkIncludePath", chkIncludePath);
  add("btnSave", btnSave).click([this] { btnSave_Click(); });
  add("btnCancel", btnCancel).click([this] { unload(); });
}

// The eight texts of the form and where each is kept, in the form's order.
std::vector<std::pair<std::string*, std::string HeaderData::*>> frmHeader::fields() {
  return {{&txtSP.text, &HeaderData::spNumber},           {&txtTH.text, &HeaderData::th},
          {&txtDate.text, &HeaderData::date},             {&cmbCounty.text, &HeaderData::county},
          {&txtOperator.text, &HeaderData::operatorName}, {&cmbHDatum.text, &HeaderData::horizontalDatum},
          {&cmbVDatum.text, &HeaderData::verticalDatum},  {&txtComment.text, &HeaderData::comment}};
}

void frmHeader::btnSave_Click() {
  for (const auto& [text, field] : fields()) program().header.*field = *text;
  program().header.includePath = chkIncludePath.checked;
  unload();
}

void frmHeader::showForHeaderData() {
  txtDate.text = formatShortDate(shell().today());
  shell().showModal(*this);
  for (const auto& [text, field] : fields()) *text = program().header.*field;
}

frmSetOptions::frmSetOptions(Program& program)
    : FormModel(program, "frmSetOptions", " Set Tervalo32 Coordinate Output Options") {
  add("lblCoordSys", lblCoordSys);
  add("txtOutputCS", txtOutputCS);
  add("lblAdjustment", lblAdjustment);
  add("lstOutAdj", lstOutAdj);
  add("lblUnits", lblUnits);
  add("optEnglish", optEnglish, "units");
  add("optMetric", optMetric, "units");
  add("frameSort", frameSort);
  add("lblSortText", lblSortText);
  add("optNoSort", optNoSort, "sort");
  add("optPdSort", optPdSort, "sort");
  add("optPnSort", optPnSort, "sort");
  add("btnContinue", btnContinue);
  add("btnCancel", btnCancel);
}

frmHistory::frmHistory(Program& program) : FormModel(program, "frmHistory", "Kept Earlier Files") {
  add("lblKeep", lblKeep);
  add("txtKeep", txtKeep);
  add("lblFiles", lblFiles);
  add("btnOK", btnOK).click([this] { btnOK_Click(); });
  add("btnCancel", btnCancel).click([this] { unload(); });
}

void frmHistory::opened() { txtKeep.text = std::to_string(program().history().keep()); }

void frmHistory::btnOK_Click() {
  const auto files = strictNumber(txtKeep.text);
  if (!files || *files != std::floor(*files) || *files < 1 || *files > 100000) {
    shell().msgBox("Kept Earlier Files", "Give a whole number of files from 1 to 100000.", Icon::Exclamation);
    focusRequest = "txtKeep";
    return;
  }
  program().history().setKeep(static_cast<int>(*files));
  unload();
}

frmOutput::frmOutput(Program& program, std::string name, std::string windowCaption)
    : FormModel(program, std::move(name), std::move(windowCaption)) {
  add("lstOutput", lstOutput);
  add("lblOut", lblOut);
  add("txtOut", txtOut);
  add("btnOut", btnOut).click([this] { btnOut_Click(); });
  add("btnOutput", btnOutput).click([this] { btnOutput_Click(); });
  add("btnPrint", btnPrint).click([this] { shell().print({caption, lstOutput.items, std::nullopt}); });
  add("btnReturn", btnReturn).click([this] { unload(); });
}

void frmOutput::btnOut_Click() { browseForOutput(txtOut); }

void frmOutput::btnOutput_Click() {
  program().outputFileName = txtOut.text;
  program().writeOutputFile(txtOut.text, lstOutput.items, holds);
  shell().openInEditor(txtOut.text);
}

}  // namespace tervalo
