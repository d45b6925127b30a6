// Every window view of the desktop program, by form name. A calculator's
// views are added here as they are built.

#include "qt/qt_shell.h"
#include "qt/views.h"

namespace tervalo {

void registerViews(QtShell& shell) {
  shell.addView("frmAbout", makeAboutView);
  shell.addView("frmHistory", makeHistoryView);
  shell.addView("frmHeader", makeHeaderView);
  shell.addView("frmSetOptions", makeSetOptionsView);
  shell.addView("frmOutput", makeOutputView);
  shell.addView("frmSecSub", makeSecSubView);
  shell.addView("frmHorzCurve", makeHorzCurveView);
  shell.addView("frmVertCurve", makeVertCurveView);
  shell.addView("frmVCResults", makeVCResultsView);
  shell.addView("frmProp", makePropView);
  shell.addView("frmGrade", makeGradeView);
  shell.addView("frmGradeOut", makeOutputView);
  shell.addView("frmTownship", makeTownshipView);
  shell.addView("frmRestore", makeRestoreView);
  shell.addView("frmCrs", makeCrsView);
  shell.addView("frmTraverse", makeTraverseView);
  shell.addView("frmPoints", makePointsView);
  shell.addView("frmCogo", makeCogoView);
  shell.addView("frmMapcheck", makeMapcheckView);
  shell.addView("frmNetwork", makeNetworkView);
  shell.addView("frmAlignment", makeAlignmentView);
  shell.addView("frmSurveyor", makeSurveyorView);
  shell.addView("frmSharedProject", makeSharedProjectView);
}

}  // namespace tervalo
