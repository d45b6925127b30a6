#pragma once
// tervalo-cli adjust: a network file adjusted by least squares, its
// statistics, residuals and ellipses as a report or JSON.

#include <iosfwd>
#include <string>

namespace tervalo {

// 0 adjusted and passed; 2 a file that cannot be adjusted (said why); 4
// adjusted, but the global test failed or an observation is flagged.
int adjustCommand(const std::string& file, bool json, std::ostream& out, std::ostream& err);

}  // namespace tervalo
