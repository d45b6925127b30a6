#include "app/json_text.h"

#include <algorithm>
#include <set>
#include <vector>

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

// 1-based line and column of the character at `offset`.
std::string lineAndColumn(const std::string& text, std::size_t offset) {
  offset = std::min(offset, text.size());
  const auto before = text.begin() + static_cast<std::ptrdiff_t>(offset);
  const auto line = 1 + std::count(text.begin(), before, '\n');
  const auto lineStart = std::find(std::make_reverse_iterator(before), text.rend(), '\n').base();
  return "line " + std::to_string(line) + ", column " + std::to_string(before - lineStart + 1);
}

// The library's messages begin with "[json.exception.kind.nnn] ".
std::string withoutTag(const std::string& message) {
  const auto end = message.find("] ");
  return message.rfind("[json.exception.", 0) == 0 && end != std::string::npos ? message.substr(end + 2) : message;
}

// Builds the value as the library's own parser does, and notes the first
// fault instead of throwing it.
class StrictBuilder {
 public:
  explicit StrictBuilder(Json& root) : dom_(root, false) {}

  bool null() { return dom_.null(); }
  bool boolean(bool v) { return dom_.boolean(v); }
  bool number_integer(Json::number_integer_t v) { return dom_.number_integer(v); }
  bool number_unsigned(Json::number_unsigned_t v) { return dom_.number_unsigned(v); }
  bool number_float(Json::number_float_t v, const std::string& s) { return dom_.number_float(v, s); }
  bool string(std::string& v) { return dom_.string(v); }
  bool binary(Json::binary_t& v) { return dom_.binary(v); }
  bool start_object(std::size_t n) { return deeper() && dom_.start_object(n); }
  bool key(std::string& k) {
    if (!keys_.back().insert(k).second) {
      fault_ = "the key \"" + k + "\" is given twice in one object";
      return false;
    }
    return dom_.key(k);
  }
  bool end_object() {
    keys_.pop_back();
    return dom_.end_object();
  }
  bool start_array(std::size_t n) { return deeper() && dom_.start_array(n); }
  bool end_array() {
    keys_.pop_back();
    return dom_.end_array();
  }
  bool parse_error(std::size_t position, const std::string& token, const nlohmann::detail::exception& e) {
    fault_ = withoutTag(e.what());
    // Syntax faults already say where they lie; others are placed at the token's first character.
    if (fault_.find(" at line ") == std::string::npos) position_ = position - std::min(position, token.size());
    return false;
  }

  std::string fault_;
  std::optional<std::size_t> position_;

 private:
  // One level deeper; refused beyond the limit before anything is built
  // there, so no deep value is ever copied or destroyed level by level.
  bool deeper() {
    if (keys_.size() >= kMaxJsonDepth) {
      fault_ = "values nested deeper than " + std::to_string(kMaxJsonDepth) + " levels";
      return false;
    }
    keys_.emplace_back();
    return true;
  }

  nlohmann::detail::json_sax_dom_parser<Json> dom_;
  std::vector<std::set<std::string>> keys_;
};

}  // namespace

nlohmann::ordered_json parseStrictJson(const std::string& text) {
  Json root;
  StrictBuilder builder(root);
  if (Json::sax_parse(text, &builder) && builder.fault_.empty()) return root;
  std::string fault = builder.fault_.empty() ? "the text ends too soon" : builder.fault_;
  if (builder.position_) fault += " at " + lineAndColumn(text, *builder.position_);
  throw JsonTextError(fault);
}

std::string jsonText(const nlohmann::ordered_json& value) {
  return value.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace tervalo
