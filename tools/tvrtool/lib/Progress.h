// Progress of a long run of frames: one line rewritten in place on a terminal, else a line at
// every tenth of the run (logs and CI keep their output short).
#pragma once

#include <cstdint>
#include <cstdio>

namespace tvrtool {

class Progress {
 public:
  // Runs shorter than `kLongRun` frames show nothing.
  static constexpr uint32_t kLongRun = 10;

  Progress(std::FILE* to, bool terminal, uint32_t total);
  void frameDone(uint32_t done);  // frames finished so far, 1..total
  void finish();                  // clears the terminal line

 private:
  std::FILE* mTo;
  bool mTerminal;
  uint32_t mTotal;
  uint32_t mShownPercent = 0;
};

}  // namespace tvrtool
