#include "MiniJson.h"

#include <cstdlib>
#include <cstring>

namespace tvrtool::test {

namespace {

class Reader {
 public:
  explicit Reader(const std::string& text) : mText(text) {}

  bool value(Json& out) {
    skipBlanks();
    if (mAt >= mText.size()) return false;
    const char c = mText[mAt];
    if (c == '{') return object(out);
    if (c == '[') return array(out);
    if (c == '"') {
      out.kind = Json::Kind::String;
      return string(out.text);
    }
    if (word("true") || word("false")) {
      out.kind = Json::Kind::Bool;
      out.boolean = c == 't';
      return true;
    }
    if (word("null")) return true;
    return number(out);
  }

  bool atEnd() {
    skipBlanks();
    return mAt == mText.size();
  }

 private:
  void skipBlanks() {
    while (mAt < mText.size() && std::strchr(" \t\r\n", mText[mAt]) != nullptr && mText[mAt] != '\0') ++mAt;
  }

  bool take(char c) {
    skipBlanks();
    if (mAt < mText.size() && mText[mAt] == c) {
      ++mAt;
      return true;
    }
    return false;
  }

  bool word(const char* w) {
    if (mText.compare(mAt, std::strlen(w), w) != 0) return false;
    mAt += std::strlen(w);
    return true;
  }

  bool number(Json& out) {
    const size_t start = mAt;
    if (mAt < mText.size() && mText[mAt] == '-') ++mAt;
    const size_t digits = mAt;
    while (mAt < mText.size() && std::strchr("0123456789.eE+-", mText[mAt]) != nullptr && mText[mAt] != '\0') ++mAt;
    if (mAt == digits || mText[digits] < '0' || mText[digits] > '9') return false;
    const std::string literal = mText.substr(start, mAt - start);
    char* end = nullptr;
    out.kind = Json::Kind::Number;
    out.number = std::strtod(literal.c_str(), &end);
    return *end == '\0';
  }

  bool string(std::string& out) {
    ++mAt;  // the opening quote
    while (mAt < mText.size()) {
      const char c = mText[mAt++];
      if (c == '"') return true;
      if (static_cast<unsigned char>(c) < 0x20) return false;
      if (c != '\\') {
        out += c;
        continue;
      }
      if (mAt >= mText.size()) return false;
      const char e = mText[mAt++];
      const char* simple = std::strchr("\"\\/bfnrt", e);
      if (e == 'u') {
        if (mAt + 4 > mText.size()) return false;
        char* end = nullptr;
        const std::string hex = mText.substr(mAt, 4);
        const long code = std::strtol(hex.c_str(), &end, 16);
        if (*end != '\0' || code > 0xff) return false;
        out += static_cast<char>(code);
        mAt += 4;
      } else if (simple != nullptr && e != '\0') {
        out += "\"\\/\b\f\n\r\t"[simple - "\"\\/bfnrt"];
      } else {
        return false;
      }
    }
    return false;
  }

  bool array(Json& out) {
    out.kind = Json::Kind::Array;
    ++mAt;
    if (take(']')) return true;
    do {
      out.items.emplace_back();
      if (!value(out.items.back())) return false;
    } while (take(','));
    return take(']');
  }

  bool object(Json& out) {
    out.kind = Json::Kind::Object;
    ++mAt;
    if (take('}')) return true;
    do {
      skipBlanks();
      std::string key;
      if (mAt >= mText.size() || mText[mAt] != '"' || !string(key) || !take(':')) return false;
      out.members.emplace_back(key, Json{});
      if (!value(out.members.back().second)) return false;
    } while (take(','));
    return take('}');
  }

  const std::string& mText;
  size_t mAt = 0;
};

}  // namespace

const Json* Json::get(const std::string& key) const {
  for (const auto& [name, member] : members) {
    if (name == key) return &member;
  }
  return nullptr;
}

std::optional<Json> parseJson(const std::string& text) {
  Reader reader(text);
  Json json;
  if (!reader.value(json) || !reader.atEnd()) return std::nullopt;
  return json;
}

}  // namespace tvrtool::test
