// The dumps of two runs paired for `tvrtool compare`: by buffer name, and among the dumps of one
// name by the order they were taken in (their boot-time stamps), so that the n-th source frame of
// one run meets the n-th of the other.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "DumpName.h"

namespace tvrtool {

struct DumpFile {
  std::string path;
  FileName name;  // a dump's name: its stamp, buffer name, size and format
};

struct DumpPair {
  size_t frame;       // 1, 2, ...: the place of the dumps among their name's, in time order
  std::string stage;  // the buffer name ("source", "network_input")
  const DumpFile* a;  // null when only the other run has it
  const DumpFile* b;
};

struct Pairing {
  std::vector<std::string> stages;  // in pipeline order: as a frame's dumps were taken
  std::vector<DumpPair> pairs;      // by frame, then stage
};

// The dump files in `dir` (<boot ns>_<name>_<stride>x<height>.<format>, of a format tvrtool reads;
// other files, the PNGs of `tvrtool view` among them, are passed over), in time order. On failure
// `error` says why.
std::vector<DumpFile> listDumps(const std::string& dir, std::string& error);

// Pairs the dumps of runs A and B, both lists in time order. The stages come in the order their
// first dumps were taken in A; a stage only B has comes after the stage it follows in B. The pairs
// point into `a` and `b`.
Pairing pairDumps(const std::vector<DumpFile>& a, const std::vector<DumpFile>& b);

}  // namespace tvrtool
