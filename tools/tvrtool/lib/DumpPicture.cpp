#include "DumpPicture.h"

#include <algorithm>
#include <string>
#include <filesystem>

#include "DisplayImage.h"
#include "DumpName.h"
#include "FileBytes.h"
#include "PngFile.h"

namespace tvrtool {

namespace fs = std::filesystem;

std::string writePicture(const std::string& path, const LayoutRequest& request, const std::string& target,
                         std::string& read) {
  std::string error;
  const std::optional<Layout> layout = resolveLayout(parseFileName(path), request, error);
  if (!layout) return error;
  const std::optional<uint64_t> size = regularFileSize(path, error);
  if (!size) return error;
  error = checkFileSize(*layout, *size);
  if (!error.empty()) return error;

  std::vector<uint8_t> bytes(*size);
  if (!readExactly(path, bytes, error)) return error;
  std::error_code code;
  if (target != "-" && fs::equivalent(path, target, code)) return "the PNG would overwrite the file itself";
  error = writePng(target, toDisplayImage(*layout, bytes.data()));
  if (!error.empty()) return "cannot write " + target + ": " + error;
  read = describe(*layout);
  return "";
}

std::vector<std::string> dumpsSince(const std::string& dir, int64_t sinceBootNs) {
  std::vector<std::string> dumps;
  std::error_code code;
  for (const fs::directory_entry& entry : fs::directory_iterator(dir, code)) {
    const std::string name = entry.path().filename().string();
    if (parseFileName(name).kind != NameKind::Dump) continue;
    // A dump's name starts with its stamp, which parseFileName has found to be digits.
    const std::string stamp = name.substr(0, name.find('_'));
    if (stamp.size() <= 18 && std::stoll(stamp) >= sinceBootNs) dumps.push_back(entry.path().string());
  }
  std::sort(dumps.begin(), dumps.end());
  return dumps;
}

}  // namespace tvrtool
