#pragma once
// JSON text as the program reads its own documents (jobs, recovery):
// strictly, so that what cannot be represented is refused, never thrown
// past the program.

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace tervalo {

// Why a text is not a JSON document the program takes, with the line and
// column where the fault lies.
class JsonTextError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// No document of the program nests anywhere near this deep.
inline constexpr std::size_t kMaxJsonDepth = 64;

// Parses one JSON value. A syntax fault, a number beyond a double (1e400),
// a key given twice in one object or values nested deeper than
// kMaxJsonDepth is a JsonTextError; nothing else of the JSON library escapes.
nlohmann::ordered_json parseStrictJson(const std::string& text);

// The value as indented JSON text. Never fails on content: a byte that is
// not UTF-8 (none should reach here) is written as U+FFFD.
std::string jsonText(const nlohmann::ordered_json& value);

}  // namespace tervalo
