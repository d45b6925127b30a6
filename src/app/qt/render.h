#pragma once

#include <QString>

namespace tervalo {

class Program;
class QtShell;
class MainWindow;

// Renders every window of the program, filled with the example section's
// data, to DIR/<form name>.png. Returns the number of windows that could
// not be rendered.
int renderWindows(Program& program, QtShell& shell, MainWindow& main, const QString& dir);

}  // namespace tervalo
