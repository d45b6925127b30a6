#pragma once

#include <iosfwd>
#include <string>

namespace tervalo {

// Prints the format recognised in `file` and every point read, in aligned
// columns; or the message that would end the program (exit status 3).
int pointsCommand(const std::string& file, std::ostream& out, std::ostream& err);

}  // namespace tervalo
