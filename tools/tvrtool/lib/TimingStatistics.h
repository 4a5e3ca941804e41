// Per-frame timings summarised the way a camera engineer reads them: the typical frame and the
// slow ones.
#pragma once

#include <cstdint>
#include <vector>

namespace tvrtool {

struct Spread {
  double medianMs = 0;  // the middle value; the mean of the two middle values for an even count
  double p95Ms = 0;     // the 95th percentile by nearest rank: the smallest value >= 95% of all
};

// Of durations in nanoseconds; zeros for none.
Spread spreadOf(std::vector<int64_t> nanoseconds);

}  // namespace tvrtool
