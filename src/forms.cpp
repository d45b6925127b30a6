// Every window of the program and the calculators of the main window's menu.
// A calculator's windows are added here as they are built.

#include <memory>

#include "app/forms_misc.h"
#include "app/frm_main.h"
#include "app/program.h"
#include "app/shell.h"
#include "cogo/frm_cogo.h"
#include "parcels/frm_mapcheck.h"
#include "adjust/frm_network.h"
#include "alignment/frm_alignment.h"
#include "parcels/frm_surveyor.h"
#include "project/frm_shared_project.h"
#include "crs/frm_crs.h"
#include "grading/frm_grade.h"
#include "hcurve/frm_horz_curve.h"
#include "project/frm_points.h"
#include "proportion/frm_prop.h"
#include "restore/frm_restore.h"
#include "secsub/frm_sec_sub.h"
#include "township/frm_township.h"
#include "traverse/frm_traverse.h"
#include "vcurve/frm_vert_curve.h"

namespace tervalo {
namespace {

FormRegistry buildRegistry() {
  FormRegistry registry;
  registry.addForm("frmMain", [](Program& p) { return std::make_unique<frmMain>(p); });
  registry.addForm("frmAbout", [](Program& p) { return std::make_unique<frmAbout>(p); });
  registry.addForm("frmHeader", [](Program& p) { return std::make_unique<frmHeader>(p); });
  registry.addForm("frmSetOptions", [](Program& p) { return std::make_unique<frmSetOptions>(p); });
  registry.addForm("frmOutput", [](Program& p) { return std::make_unique<frmOutput>(p); });
  registry.addForm("frmHistory", [](Program& p) { return std::make_unique<frmHistory>(p); });
  registry.addForm("frmSecSub", [](Program& p) { return std::make_unique<frmSecSub>(p); });

  registry.addCalculator({"secsub", "mnuSecSub", "frmSecSub", {}});
  registry.addForm("frmHorzCurve", [](Program& p) { return std::make_unique<frmHorzCurve>(p); });
  registry.addCalculator({"hcurve", "mnuChorz", "frmHorzCurve", [](Program& p) {
                            // Cleared and given its output name each time it is chosen.
                            auto& form = p.form<frmHorzCurve>("frmHorzCurve");
                            form.click("btnClear");
                            form.txtOut.text = p.userAppData + "outHfile.txt";
                            p.shell().showModal(form);
                          }});
  registry.addForm("frmVertCurve", [](Program& p) { return std::make_unique<frmVertCurve>(p); });
  registry.addForm("frmVCResults", [](Program& p) { return std::make_unique<frmVCResults>(p); });
  registry.addCalculator({"vcurve", "mnuCvert", "frmVertCurve", [](Program& p) { p.shell().showModal(p.form("frmVertCurve")); }});
  registry.addForm("frmGrade", [](Program& p) { return std::make_unique<frmGrade>(p); });
  registry.addForm("frmGradeOut", [](Program& p) { return std::make_unique<frmOutput>(p, "frmGradeOut", "Grading Width Output"); });
  registry.addCalculator({"grading", "mnuMgrade", "frmGrade", [](Program& p) { p.shell().showModal(p.form("frmGrade")); }});
  registry.addForm("frmProp", [](Program& p) { return std::make_unique<frmProp>(p); });
  registry.addCalculator({"proportion", "mnuMprop", "frmProp", [](Program& p) { p.shell().showModal(p.form("frmProp")); }});
  registry.addForm("frmTownship", [](Program& p) { return std::make_unique<frmTownship>(p); });
  registry.addForm("frmRestore", [](Program& p) { return std::make_unique<frmRestore>(p); });
  registry.addForm("frmCogo", [](Program& p) { return std::make_unique<frmCogo>(p); });
  registry.addForm("frmMapcheck", [](Program& p) { return std::make_unique<frmMapcheck>(p); });
  registry.addForm("frmNetwork", [](Program& p) { return std::make_unique<frmNetwork>(p); });
  registry.addForm("frmAlignment", [](Program& p) { return std::make_unique<frmAlignment>(p); });
  registry.addForm("frmSurveyor", [](Program& p) { return std::make_unique<frmSurveyor>(p); });
  registry.addForm("frmPoints", [](Program& p) { return std::make_unique<frmPoints>(p); });
  registry.addForm("frmSharedProject", [](Program& p) { return std::make_unique<frmSharedProject>(p); });
  registry.addForm("frmCrs", [](Program& p) { return std::make_unique<frmCrs>(p); });
  registry.addForm("frmTraverse", [](Program& p) { return std::make_unique<frmTraverse>(p); });
  return registry;
}

}  // namespace

const FormRegistry& allForms() {
  static const FormRegistry registry = buildRegistry();
  return registry;
}

}  // namespace tervalo
