#pragma once
// tervalo-cli parcels and plat: a section job's or a township plan's
// aliquot parts and lots, as a report or JSON, and drawn on a plat sheet.

#include <iosfwd>
#include <string>

#include "text/date.h"

#include "app/runner.h"

namespace tervalo {

struct PlatCommandOptions {
  std::string out;              // the file: .pdf, .svg or .dxf
  std::string sheet = "letter";  // letter, tabloid or archd
  double scale = 0;              // units per inch; 0 picks one
};

int platCommand(const std::string& file, const PlatCommandOptions& plat, const RunOptions& options, std::ostream& out, std::ostream& err);

int parcelsCommand(const std::string& file, bool json, const RunOptions& options, std::ostream& out, std::ostream& err);

}  // namespace tervalo
