#include "app/shell.h"

#include "text/errors.h"

namespace tervalo {

const char* iconName(Icon icon) {
  switch (icon) {
    case Icon::Critical: return "critical";
    case Icon::Exclamation: return "exclamation";
    case Icon::Information: return "information";
    case Icon::Question: return "question";
  }
  return "";
}

void Shell::endProgram() { throw ProgramEnd(); }

}  // namespace tervalo
