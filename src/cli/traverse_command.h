#pragma once
// tervalo-cli traverse FILE: a traverse file or a raw data collector file
// closed and adjusted, the report and the adjusted points written to the
// data folder.

#include <iosfwd>
#include <string>
#include <vector>

#include "text/date.h"

#include "crs/crs.h"

namespace tervalo {

// Exit status: 0 the traverse closed and adjusted, 3 it cannot be computed
// (a point not found, a geometry that does not close) or its files not
// written, 2 the file is not a traverse or raw file.
// `exports`: files the adjusted traverse is also written to, by their endings.
// A raw file (.rw5) is reduced as the field recorded it: a traverse where
// it records one (4 when its misclosure is worse than the allowable
// 1:5,000, the adjusted points written all the same), else every setup and
// shot radially (4 when a record could not be reduced or a set or check is
// beyond the tolerance, every other point written all the same).
struct RawCommandOptions {
  double tolerance = 10;  // seconds
  CrsChoice crs{};        // for GNSS records
};
int traverseCommand(const std::string& file, const std::vector<std::string>& exports, bool json, const std::string& dataFolder,
                    const Date& today, std::ostream& out, std::ostream& err, const RawCommandOptions& raw = {});

}  // namespace tervalo
