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

void Shell::savePicture(const Picture&, const std::filesystem::path&) {
  throw RunTimeError("Pictures are drawn by the desktop program; save this one there.");
}

void Shell::savePdf(const PrintJob&, const std::filesystem::path&) {
  throw RunTimeError("PDF reports are painted by the desktop program; save this one there.");
}

void Shell::print(const PrintJob& job) {
  msgBox("Print", "\"" + job.title + "\" is printed by the desktop program.", Icon::Information);
}

}  // namespace tervalo
