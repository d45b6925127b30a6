#include "app/qt/recovery_offer.h"

#include "app/form_model.h"
#include "app/job.h"
#include "app/program.h"
#include "app/qt/binder.h"
#include "app/qt/qt_shell.h"
#include "app/qt/views.h"
#include "app/recovery.h"

namespace tervalo {

void offerRecovery(Program& program, QtShell& shell, MainWindow& window) {
  const auto text = takeRecoveryJob(program.userAppData);
  if (!text) return;
  Job job;
  try {
    job = parseJob(*text, program.registry());
  } catch (const JobError&) {
    return;  // written by another version of the program: nothing to offer
  }
  const CalculatorInfo* calculator = program.registry().calculatorByJob(job.calculator);
  // Named as its menu entry names it ("Horizontal Curve").
  const ControlEntry* entry = program.form("frmMain").find(calculator->menu);
  const std::string what = entry ? controlText(entry->control) : calculator->job;
  if (shell.msgBox("Tervalo", "Tervalo ended while you were working. Reopen " + what + " with the values you had typed?",
                   Icon::Question, Buttons::YesNo) == Answer::Yes)
    window.binder().run([&] { shell.replay(job); });
}

}  // namespace tervalo
