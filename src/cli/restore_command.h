#pragma once
// tervalo-cli restore FILE: every lost corner of a restoration file
// restored, the report and the restored corners written to the data folder.

#include <iosfwd>
#include <string>

#include "text/date.h"

namespace tervalo {

// Exit status: 0 every corner restored, 3 one was refused (or the source
// could not be read), 2 the file is not a restoration file.
int restoreCommand(const std::string& file, bool json, const std::string& dataFolder, const Date& today,
                   std::ostream& out, std::ostream& err);

}  // namespace tervalo
