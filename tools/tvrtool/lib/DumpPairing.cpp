#include "DumpPairing.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "Layout.h"

namespace tvrtool {

namespace {

// Each stage's dumps in time order, and the stages in the order their first dumps came.
struct Stages {
  std::vector<std::string> order;
  std::map<std::string, std::vector<const DumpFile*>> dumps;
};

Stages stagesOf(const std::vector<DumpFile>& run) {
  Stages stages;
  for (const DumpFile& dump : run) {
    std::vector<const DumpFile*>& list = stages.dumps[dump.name.name];
    if (list.empty()) stages.order.push_back(dump.name.name);
    list.push_back(&dump);
  }
  return stages;
}

}  // namespace

std::vector<DumpFile> listDumps(const std::string& dir, std::string& error) {
  std::vector<DumpFile> dumps;
  std::error_code code;
  for (const auto& entry : std::filesystem::directory_iterator(dir, code)) {
    FileName name = parseFileName(entry.path().filename().string());
    // A dump's picture (tvrtool view writes <dump>.png beside it) is no dump.
    const bool dump = name.kind == NameKind::Dump && formatNamed(name.extension).has_value();
    if (dump && entry.is_regular_file(code)) dumps.push_back({entry.path().string(), name});
  }
  if (code) error = dir + ": cannot read the folder: " + code.message();
  std::sort(dumps.begin(), dumps.end(), [](const DumpFile& x, const DumpFile& y) {
    return x.name.stamp != y.name.stamp ? x.name.stamp < y.name.stamp : x.path < y.path;
  });
  return dumps;
}

Pairing pairDumps(const std::vector<DumpFile>& a, const std::vector<DumpFile>& b) {
  const Stages inA = stagesOf(a), inB = stagesOf(b);
  Pairing pairing;
  pairing.stages = inA.order;
  for (size_t i = 0; i < inB.order.size(); ++i) {
    const std::string& stage = inB.order[i];
    if (inA.dumps.count(stage) != 0) continue;
    // Every stage B took before this one is in the list by now.
    const auto before =
        i == 0 ? pairing.stages.begin() : std::find(pairing.stages.begin(), pairing.stages.end(), inB.order[i - 1]) + 1;
    pairing.stages.insert(before, stage);
  }
  static const std::vector<const DumpFile*> kNone;
  auto of = [](const Stages& run, const std::string& stage) -> const std::vector<const DumpFile*>& {
    const auto found = run.dumps.find(stage);
    return found == run.dumps.end() ? kNone : found->second;
  };
  for (size_t frame = 0;; ++frame) {
    bool any = false;
    for (const std::string& stage : pairing.stages) {
      const auto& fromA = of(inA, stage);
      const auto& fromB = of(inB, stage);
      if (frame >= fromA.size() && frame >= fromB.size()) continue;
      any = true;
      pairing.pairs.push_back({frame + 1, stage, frame < fromA.size() ? fromA[frame] : nullptr,
                               frame < fromB.size() ? fromB[frame] : nullptr});
    }
    if (!any) return pairing;
  }
}

}  // namespace tvrtool
