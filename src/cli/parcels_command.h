#pragma once
// tervalo-cli parcels and plat: a section job's or a township plan's
// aliquot parts and lots, as a report or JSON, and drawn on a plat sheet.

#include <iosfwd>
#include <string>

#include "app/runner.h"

namespace tervalo {

int parcelsCommand(const std::string& file, bool json, const RunOptions& options, std::ostream& out, std::ostream& err);

}  // namespace tervalo
