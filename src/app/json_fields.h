#pragma once
// Reading the fields of this program's JSON files strictly, each fault an
// `Error` whose message names the place ("corner 2 (NE COR) north"), the
// field and what it must be.

#include <algorithm>
#include <initializer_list>
#include <string>

#include <nlohmann/json.hpp>

#include "app/json_text.h"
#include "text/angle.h"
#include "text/number.h"

namespace tervalo {

template <class Error>
struct JsonFields {
  using Json = nlohmann::ordered_json;

  static void refuseUnknown(const Json& object, std::initializer_list<const char*> known, const std::string& where) {
    for (const auto& item : object.items())
      if (std::none_of(known.begin(), known.end(), [&item](const char* k) { return item.key() == k; }))
        throw Error(where + ": unknown key \"" + item.key() + "\"");
  }

  // A number, or a text holding one.
  static double number(const Json& value, const std::string& where, const std::string& what) {
    if (value.is_number()) return value.get<double>();
    if (value.is_string())
      if (const auto v = strictNumber(value.get<std::string>())) return *v;
    throw Error(where + ": \"" + what + "\" must be a number");
  }

  // Degrees as a number or in the angle text forms ("45-30-15").
  static double angle(const Json& value, const std::string& where, const std::string& what) {
    if (value.is_number()) return value.get<double>();
    if (value.is_string())
      if (const auto v = angleFromText(value.get<std::string>())) return *v;
    throw Error(where + ": \"" + what + "\" must be an angle in degrees (45.5 or \"45-30-00\")");
  }

  // A text, or a number written as the user would type it.
  static std::string text(const Json& value, const std::string& where, const std::string& what) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number()) return jsonText(value);
    throw Error(where + ": \"" + what + "\" must be a text");
  }
};

}  // namespace tervalo
