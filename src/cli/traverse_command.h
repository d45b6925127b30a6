#pragma once
// tervalo-cli traverse FILE: a traverse file or a raw data collector file
// closed and adjusted, the report and the adjusted points written to the
// data folder.

#include <iosfwd>
#include <string>
#include <vector>

#include "text/date.h"

namespace tervalo {

// Exit status: 0 the traverse closed and adjusted, 3 it cannot be computed
// (a point not found, a geometry that does not close) or its files not
// written, 2 the file is not a traverse or raw file.
// `exports`: files the adjusted traverse is also written to, by their endings.
int traverseCommand(const std::string& file, const std::vector<std::string>& exports, bool json, const std::string& dataFolder,
                    const Date& today, std::ostream& out, std::ostream& err);

}  // namespace tervalo
