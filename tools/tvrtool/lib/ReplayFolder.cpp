#include "ReplayFolder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "DumpName.h"
#include "FileBytes.h"
#include "TivoraUtil.h"

namespace tvrtool {

namespace {

namespace fs = std::filesystem;

constexpr const char* kInputRecords = "input_param.csv";
constexpr const char* kStreamRecords = "static_param.csv";

struct SourceDump {
  fs::path path;
  FileName name;
};

// The folder's source frame dumps in the order they were taken.
std::vector<SourceDump> sourceDumps(const fs::path& dir, std::error_code& code) {
  std::vector<SourceDump> dumps;
  for (const fs::directory_entry& entry : fs::directory_iterator(dir, code)) {
    const FileName name = parseFileName(entry.path().filename().string());
    if (name.kind == NameKind::Dump && name.name == "source" && name.extension == "nv12") {
      dumps.push_back({entry.path(), name});
    }
  }
  std::sort(dumps.begin(), dumps.end(), [](const SourceDump& a, const SourceDump& b) {
    return a.name.stamp != b.name.stamp ? a.name.stamp < b.name.stamp : a.path < b.path;
  });
  return dumps;
}

// The records of a parameter dump in the folder; nothing and `error` when it is missing (and
// `required`) or does not read.
std::optional<ParameterDump> readRecords(const fs::path& path, bool required, std::string& error) {
  std::error_code code;
  if (!required && !fs::exists(path, code)) return ParameterDump{};
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  if (!in) {
    error =
        path.string() + (fs::exists(path, code) ? ": cannot be read" : ": no such file (the frames' input records)");
    return std::nullopt;
  }
  std::optional<ParameterDump> dump = readParameterDump(text.str(), error);
  if (!dump) error = path.string() + ": " + error;
  return dump;
}

std::string layoutOf(const tvr_image_buf_t& image) {
  const std::string format = tivora::convert(image.format);
  return (format.empty() ? "format " + std::to_string(image.format) : format) + " " + std::to_string(image.size.w) +
         "x" + std::to_string(image.size.h) + " (stride " + std::to_string(image.stride) + ", scanline " +
         std::to_string(image.scanline) + ")";
}

// The frame of one source dump, checked against its record.
std::optional<Nv12Frame> readFrame(const SourceDump& dump, const DumpedInput& record, const std::string& recordPlace,
                                   std::string& error) {
  const tvr_image_buf_t& image = record.source;
  const std::string file = dump.path.string();
  if (dump.name.first != image.stride || dump.name.second != image.size.h) {
    error = file + ": its name says stride " + std::to_string(dump.name.first) + ", height " +
            std::to_string(dump.name.second) + ", but its record (" + recordPlace + ") says " + layoutOf(image);
    return std::nullopt;
  }
  const std::optional<uint64_t> size = regularFileSize(file, error);
  if (size && *size != image.buf.buf_size) {
    error = "it has " + std::to_string(*size) + " bytes, but its record (" + recordPlace + ") says buf_size " +
            std::to_string(image.buf.buf_size) + (*size < image.buf.buf_size ? " (truncated?)" : "");
  }
  Nv12Frame frame{image.size.w, image.size.h, image.stride, image.scanline, {}};
  if (error.empty()) frame.bytes.resize(static_cast<size_t>(*size));
  if (!error.empty() || !readExactly(file, frame.bytes, error)) {
    error = file + ": " + error;
    return std::nullopt;
  }
  return frame;
}

}  // namespace

std::optional<Replay> loadReplay(const std::string& dir, uint32_t maxFrames, ReplayFailure& failure,
                                 std::string& error) {
  failure = ReplayFailure::Refused;
  std::error_code code;
  if (!fs::is_directory(dir, code)) {
    error = dir + ": " + (fs::exists(dir, code) ? "not a folder" : "no such folder");
    return std::nullopt;
  }
  const std::vector<SourceDump> dumps = sourceDumps(dir, code);
  if (code) {
    error = dir + ": cannot read the folder: " + code.message();
    return std::nullopt;
  }
  if (dumps.empty()) {
    failure = ReplayFailure::NoSourceFrames;
    error = dir +
            ": no source frames to replay (dumps named <boot ns>_source_<stride>x<height>.nv12: switch "
            "DumpSource on)";
    return std::nullopt;
  }
  const fs::path inputPath = fs::path(dir) / kInputRecords;
  const std::optional<ParameterDump> inputs = readRecords(inputPath, true, error);
  const std::optional<ParameterDump> streams =
      inputs ? readRecords(fs::path(dir) / kStreamRecords, false, error) : std::nullopt;
  if (!streams) return std::nullopt;

  Replay replay{};
  for (const DumpedInput& record : inputs->inputs) {
    if (record.hasSource) replay.records.push_back(record);
  }
  if (replay.records.size() != dumps.size()) {
    const bool recordsShort = replay.records.size() < dumps.size();
    error = recordsShort ? inputPath.string() + ": no input record for the source frame " +
                               dumps[replay.records.size()].path.filename().string()
                         : dir + ": no source frame for the input record of " + std::string(kInputRecords) + " line " +
                               std::to_string(replay.records[dumps.size()].line);
    error += " (" + std::to_string(dumps.size()) + " source frames, " + std::to_string(replay.records.size()) +
             " records with a source)";
    return std::nullopt;
  }
  replay.records.resize(std::min<size_t>(replay.records.size(), maxFrames));
  const tvr_image_buf_t& first = replay.records.front().source;
  for (size_t i = 0; i < replay.records.size(); ++i) {
    const tvr_image_buf_t& image = replay.records[i].source;
    const std::string place = std::string(kInputRecords) + " line " + std::to_string(replay.records[i].line);
    if (layoutOf(image) != layoutOf(first)) {
      error = inputPath.string() + ": frames of mixed layouts: the first is " + layoutOf(first) + ", line " +
              std::to_string(replay.records[i].line) + " says " + layoutOf(image);
      return std::nullopt;
    }
    std::optional<Nv12Frame> frame = readFrame(dumps[i], replay.records[i], place, error);
    if (!frame) return std::nullopt;
    replay.sequence.frames.push_back(std::move(*frame));
  }
  replay.stream = streams->statics.empty()
                      ? tvr_static_param_t{{first.format, first.size, first.stride, first.scanline}}
                      : streams->statics.back();
  replay.sequence.description = dir + ", a replay of " + std::to_string(replay.records.size()) + " source frames of " +
                                layoutOf(first) + " with their input records";
  failure = ReplayFailure::None;
  return replay;
}

}  // namespace tvrtool
