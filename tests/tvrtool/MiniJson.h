// A strict little JSON reader for the tests: enough to prove that tvrtool writes valid JSON and to
// look inside it. \uXXXX escapes up to \u00ff decode to that byte; others are refused.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tvrtool::test {

struct Json {
  enum class Kind { Null, Bool, Number, String, Array, Object } kind = Kind::Null;
  bool boolean = false;
  double number = 0;
  std::string text;
  std::vector<Json> items;                           // of an array
  std::vector<std::pair<std::string, Json>> members;  // of an object, in order

  // The member named `key` of an object; null when there is none.
  const Json* get(const std::string& key) const;
};

// The whole of `text` as one JSON value (surrounding white space allowed); nothing when invalid.
std::optional<Json> parseJson(const std::string& text);

}  // namespace tvrtool::test
