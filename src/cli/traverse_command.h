#pragma once
// tervalo-cli traverse FILE: a traverse file or a raw data collector file
// closed and adjusted, the report and the adjusted points written to the
// data folder.

#include <iosfwd>
#include <string>
#include <vector>

#include "text/date.h"

#include <optional>

#include "crs/crs.h"
#include "traverse/traverse.h"

namespace tervalo {

// Exit status: 0 the traverse closed and adjusted, 4 it closed worse than
// the allowable misclosure (a precision, an angular closure), failed the
// global test or flagged a blunder (the adjusted points written all the
// same), 3 it cannot be computed (a point not found, a geometry that does
// not close) or its files not written, 2 the file is not a traverse or raw
// file.
// `exports`: files the adjusted traverse is also written to, by their endings.
// A raw file (.rw5) is reduced as the field recorded it: a traverse where
// it records one, else every setup and shot radially (4 when a record could
// not be reduced or a set or check is beyond the tolerance, every other
// point written all the same).
struct RawCommandOptions {
  double tolerance = 10;  // seconds
  CrsChoice crs{};        // for GNSS records
  // Over what the file says: the rule, the allowable precision (N of 1:N)
  // and angular closure (k of k seconds times the root of the angles).
  std::optional<AdjustRule> method{};
  std::optional<double> precision{}, angular{};
};
int traverseCommand(const std::string& file, const std::vector<std::string>& exports, bool json, const std::string& dataFolder,
                    const Date& today, std::ostream& out, std::ostream& err, const RawCommandOptions& raw = {});

}  // namespace tervalo
