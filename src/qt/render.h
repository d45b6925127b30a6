#pragma once

#include <QString>

namespace tervalo {

class Program;
class QtShell;
class MainWindow;

// Renders every window of the program, filled with the example section's
// data, to DIR/<form name>.png. Returns the program's exit status: 0, 1
// when a window could not be rendered, 2 when the examples are not in the
// working folder (said on standard error).
int renderWindows(Program& program, QtShell& shell, MainWindow& main, const QString& dir);

}  // namespace tervalo
