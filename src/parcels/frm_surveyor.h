#pragma once
// The Surveyor window (Project > Surveyor...): who signs the open project's
// plats, their license and firm, kept in the project for every plat drawn
// from it.

#include "app/form_model.h"

namespace tervalo {

class frmSurveyor : public FormModel {
 public:
  explicit frmSurveyor(Program& program);

  Label lblSurveyor{"Surveyor:"};
  TextBox txtSurveyor;
  Label lblLicense{"License No.:"};
  TextBox txtLicense;
  Label lblFirm{"Firm:"};
  TextBox txtFirm;
  Button btnOK{"OK"};
  Button btnCancel{"Cancel"};

  void opened() override;
  void btnOK_Click();
};

}  // namespace tervalo
