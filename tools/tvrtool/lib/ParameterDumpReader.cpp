#include "ParameterDumpReader.h"

#include <algorithm>
#include <cstdint>
#include <map>

namespace tvrtool {

namespace {

enum class Kind { Create, Static, Input, Output, Debug };

std::optional<Kind> headingKind(std::string_view line) {
  const std::pair<const char*, Kind> headings[] = {{"Create parameter,", Kind::Create},
                                                   {"Static parameter,", Kind::Static},
                                                   {"Input parameter,", Kind::Input},
                                                   {"Output parameter,", Kind::Output},
                                                   {"Debug parameter,", Kind::Debug}};
  for (const auto& [text, kind] : headings) {
    if (line == text) return kind;
  }
  return std::nullopt;
}

struct Field {
  std::string value;
  size_t line;
};

// One record's fields by their dotted path ("p_src.crop.pos.x"), read as numbers on demand.
class Record {
 public:
  Record(Kind kind, size_t line) : mKind(kind), mLine(line) {}
  Kind kind() const { return mKind; }
  size_t line() const { return mLine; }
  void set(const std::string& path, std::string_view value, size_t line) { mFields[path] = {std::string(value), line}; }
  const Field* find(const std::string& path) const {
    const auto found = mFields.find(path);
    return found == mFields.end() ? nullptr : &found->second;
  }

  // The field as a decimal number from `min` to `max`; false with `error` when it is missing or
  // is not one.
  template <typename T>
  bool read(const std::string& path, T& into, std::string& error, int64_t min, int64_t max) const {
    const Field* field = find(path);
    if (field == nullptr) {
      error = "the record of line " + std::to_string(mLine) + " has no " + path;
      return false;
    }
    const std::string& text = field->value;
    const bool negative = !text.empty() && text[0] == '-';
    const size_t digits = text.size() - (negative ? 1 : 0);
    int64_t value = 0;
    bool number = digits > 0 && digits <= 10;
    for (size_t i = text.size() - digits; number && i < text.size(); ++i) {
      number = text[i] >= '0' && text[i] <= '9';
      value = value * 10 + (text[i] - '0');
    }
    if (negative) value = -value;
    if (!number || value < min || value > max) {
      error = "line " + std::to_string(field->line) + ": " + path + " '" + text + "' is not a number from " +
              std::to_string(min) + " to " + std::to_string(max);
      return false;
    }
    into = static_cast<T>(value);
    return true;
  }

 private:
  Kind mKind;
  size_t mLine;
  std::map<std::string, Field> mFields;
};

constexpr int64_t kInt32Min = INT32_MIN, kInt32Max = INT32_MAX, kUint32Max = UINT32_MAX;

bool readSource(const Record& record, tvr_image_buf_t& image, std::string& error) {
  image = {};
  bool ok = record.read("p_src.buf.buf_size", image.buf.buf_size, error, 0, kUint32Max) &&
            record.read("p_src.buf.heap_id", image.buf.heap_id, error, kInt32Min, kInt32Max) &&
            record.read("p_src.format", image.format, error, kInt32Min, kInt32Max) &&
            record.read("p_src.size.w", image.size.w, error, 0, kUint32Max) &&
            record.read("p_src.size.h", image.size.h, error, 0, kUint32Max);
  for (int i = 0; ok && i < 3; ++i) {
    ok = record.read("p_src.offset[" + std::to_string(i) + "]", image.offset[i], error, 0, kUint32Max);
  }
  return ok && record.read("p_src.stride", image.stride, error, 0, kUint32Max) &&
         record.read("p_src.scanline", image.scanline, error, 0, kUint32Max) &&
         record.read("p_src.crop.pos.x", image.crop.pos.x, error, kInt32Min, kInt32Max) &&
         record.read("p_src.crop.pos.y", image.crop.pos.y, error, kInt32Min, kInt32Max) &&
         record.read("p_src.crop.size.w", image.crop.size.w, error, 0, kUint32Max) &&
         record.read("p_src.crop.size.h", image.crop.size.h, error, 0, kUint32Max);
}

bool finish(const Record& record, ParameterDump& dump, std::string& error) {
  if (record.kind() == Kind::Input) {
    DumpedInput input{record.line(), TVR_ROTATION_0, false, {}};
    if (!record.read("rotation", input.rotation, error, kInt32Min, kInt32Max)) return false;
    const Field* source = record.find("p_src");
    input.hasSource = source == nullptr || source->value != "NULL";
    if (input.hasSource && !readSource(record, input.source, error)) return false;
    dump.inputs.push_back(input);
  } else if (record.kind() == Kind::Static) {
    tvr_static_param_t stream{};
    tvr_stream_info_t& info = stream.src_info;
    if (!record.read("src_info.format", info.format, error, kInt32Min, kInt32Max) ||
        !record.read("src_info.size.w", info.size.w, error, 0, kUint32Max) ||
        !record.read("src_info.size.h", info.size.h, error, 0, kUint32Max) ||
        !record.read("src_info.stride", info.stride, error, 0, kUint32Max) ||
        !record.read("src_info.scanline", info.scanline, error, 0, kUint32Max)) {
      return false;
    }
    dump.statics.push_back(stream);
  }
  return true;
}

}  // namespace

std::optional<ParameterDump> readParameterDump(std::string_view text, std::string& error) {
  ParameterDump dump;
  std::optional<Record> record;
  std::vector<std::string> labels;  // the labels of the lines that enclose the next one
  size_t number = 0;
  for (size_t start = 0; start < text.size();) {
    const size_t end = std::min(text.find('\n', start), text.size());
    std::string_view line = text.substr(start, end - start);
    start = end + 1;
    ++number;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.empty()) continue;
    const std::string where = "line " + std::to_string(number) + ": ";

    const size_t depth = line.find_first_not_of(',');
    if (depth == 0) {
      const std::optional<Kind> kind = headingKind(line);
      if (!kind) {
        error = where + "'" + std::string(line.substr(0, 40)) + "' is no line of a parameter dump";
        return std::nullopt;
      }
      if (record && !finish(*record, dump, error)) return std::nullopt;
      record.emplace(*kind, number);
      labels.clear();
      continue;
    }
    if (!record || depth == std::string_view::npos || depth > labels.size() + 1) {
      error = where + (record ? "'" + std::string(line.substr(0, 40)) + "' does not nest under the line before it"
                              : "a field before the first heading");
      return std::nullopt;
    }
    const std::string_view rest = line.substr(depth);
    const size_t comma = rest.find(',');
    labels.resize(depth - 1);
    labels.emplace_back(rest.substr(0, comma));
    std::string path;
    for (const std::string& label : labels) path += (path.empty() ? "" : ".") + label;
    if (comma != std::string_view::npos) record->set(path, rest.substr(comma + 1), number);
  }
  if (record && !finish(*record, dump, error)) return std::nullopt;
  return dump;
}

}  // namespace tvrtool
