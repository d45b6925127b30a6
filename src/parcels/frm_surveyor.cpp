#include "parcels/frm_surveyor.h"

#include "app/program.h"
#include "app/shell.h"
#include "project/project_session.h"

namespace tervalo {

frmSurveyor::frmSurveyor(Program& program) : FormModel(program, "frmSurveyor", "Surveyor") {
  add("lblSurveyor", lblSurveyor);
  add("txtSurveyor", txtSurveyor);
  add("lblLicense", lblLicense);
  add("txtLicense", txtLicense);
  add("lblFirm", lblFirm);
  add("txtFirm", txtFirm);
  add("btnOK", btnOK).click([this] { btnOK_Click(); });
  add("btnCancel", btnCancel).click([this] { unload(); });
}

void frmSurveyor::opened() {
  if (!program().project) return;
  const ProjectSettings& s = program().project->file().settings();
  txtSurveyor.text = s.surveyor;
  txtLicense.text = s.license;
  txtFirm.text = s.firm;
}

void frmSurveyor::btnOK_Click() {
  if (!program().project) {
    unload();
    return;
  }
  ProjectSettings people;
  people.surveyor = txtSurveyor.text;
  people.license = txtLicense.text;
  people.firm = txtFirm.text;
  try {
    program().project->file().setSigner(people);
  } catch (const ProjectError& e) {
    // The window stays open with what was typed.
    shell().msgBox("Surveyor", std::string(e.what()) + ".", Icon::Exclamation);
    return;
  }
  unload();
}

}  // namespace tervalo
