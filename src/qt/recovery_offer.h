#pragma once

namespace tervalo {

class Program;
class QtShell;
class MainWindow;

// At start: when a program end left a recovery job, asks once whether to
// reopen that calculator with the values the user had typed, and removes
// the job either way.
void offerRecovery(Program& program, QtShell& shell, MainWindow& window);

}  // namespace tervalo
