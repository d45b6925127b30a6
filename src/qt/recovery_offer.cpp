#include "qt/recovery_offer.h"

#include "app/form_model.h"
#include "app/job.h"
#include "app/program.h"
#include "qt/binder.h"
#include "qt/qt_shell.h"
#include "qt/views.h"
#include "app/recovery.h"

namespace tervalo {

void offerRecovery(Program& program, QtShell& shell, MainWindow& window) {
  const RecoveredInputs found = takeRecoveryJob(program.userAppData, program.registry());
  if (!found.setAside.empty()) shell.msgBox("Tervalo", found.setAside, Icon::Exclamation, Buttons::Ok);
  if (!found.job) return;
  const Job& job = *found.job;
  const CalculatorInfo* calculator = program.registry().calculatorByJob(job.calculator);
  // Named as its menu entry names it ("Horizontal Curve").
  const ControlEntry* entry = program.form("frmMain").find(calculator->menu);
  const std::string what = entry ? controlText(entry->control) : calculator->job;
  if (shell.msgBox("Tervalo", "Tervalo ended while you were working. Reopen " + what + " with the values you had typed?",
                   Icon::Question, Buttons::YesNo) == Answer::Yes)
    window.binder().run([&] { shell.replay(job); });
}

}  // namespace tervalo
