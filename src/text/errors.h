#pragma once
// The ways a procedure stops short.

#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

namespace tervalo {

// A fault that ends the program after one critical message box with this
// title and text (an unrecognised coordinate file, say). Thrown from deep in
// a computation or reader; the outermost event wrapper shows the box and
// ends the program.
class ProgramFault : public std::runtime_error {
 public:
  ProgramFault(std::string title, const std::string& text) : std::runtime_error(text), title_(std::move(title)) {}
  const std::string& title() const { return title_; }

 private:
  std::string title_;
};

// A fault the program does not handle itself (a bad number in a coordinate
// file, a division by zero, a file that cannot be written): shown in a
// "Run-time Error" box that says what went wrong, then the program ends.
class RunTimeError : public ProgramFault {
 public:
  explicit RunTimeError(const std::string& text) : ProgramFault("Run-time Error", text) {}
};

// Thrown by Shell::endProgram after a fatal message; only the outermost
// layer (a window's event wrapper, the job runner) catches it.
class ProgramEnd : public std::exception {
 public:
  const char* what() const noexcept override { return "program ended"; }
};

// A file-system fault (a folder that vanished, a name the system refuses)
// in the program's own words: what failed, and on which name.
std::string fileSystemFault(const std::filesystem::filesystem_error& e);

}  // namespace tervalo
