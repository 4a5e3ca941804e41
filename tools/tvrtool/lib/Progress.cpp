#include "Progress.h"

namespace tvrtool {

Progress::Progress(std::FILE* to, bool terminal, uint32_t total) : mTo(to), mTerminal(terminal), mTotal(total) {}

void Progress::frameDone(uint32_t done) {
  if (mTotal < kLongRun) return;
  const uint32_t percent = static_cast<uint32_t>(uint64_t{done} * 100 / mTotal);
  const uint32_t step = mTerminal ? 1 : 10;
  if (percent / step == mShownPercent / step) return;
  mShownPercent = percent;
  if (mTerminal) {
    std::fprintf(mTo, "\rapply: frame %u of %u (%u%%)", done, mTotal, percent);
    std::fflush(mTo);
  } else {
    std::fprintf(mTo, "apply: frame %u of %u (%u%%)\n", done, mTotal, percent);
  }
}

void Progress::finish() {
  if (mTerminal && mTotal >= kLongRun) std::fprintf(mTo, "\r%60s\r", "");
}

}  // namespace tvrtool
