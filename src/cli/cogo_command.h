#pragma once
// tervalo-cli cogo PROJECT FILE: the COGO commands of a text file run on a
// project's points, the new points stored in one transaction at the end.

#include <ostream>
#include <string>

namespace tervalo {

// Exit status 0 done; 2 a project or file that cannot be used, or a bad
// line (named, and nothing stored).
int cogoCommand(const std::string& project, const std::string& file, bool json, int secondsPlaces, std::ostream& out, std::ostream& err);

}  // namespace tervalo
