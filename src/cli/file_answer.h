#pragma once
// How restore and traverse answer: with --json the whole result (its
// messages and files added), else the report, the messages on standard
// error and the files written.

#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/json_text.h"

namespace tervalo {

inline void printFileAnswer(std::ostream& out, std::ostream& err, bool json, nlohmann::ordered_json& result,
                            const std::vector<std::string>& report, const nlohmann::ordered_json& messages,
                            const nlohmann::ordered_json& files) {
  result["messages"] = messages;
  result["files"] = files;
  if (json) {
    out << jsonText(result) << "\n";
    return;
  }
  for (const auto& line : report) out << line << "\n";
  for (const auto& m : messages) err << m.get<std::string>() << "\n";
  for (const auto& f : files) out << "Written: " << f.get<std::string>() << "\n";
}

}  // namespace tervalo
