#include "TimingStatistics.h"

#include <algorithm>

namespace tvrtool {

Spread spreadOf(std::vector<int64_t> nanoseconds) {
  if (nanoseconds.empty()) return {};
  std::sort(nanoseconds.begin(), nanoseconds.end());
  const size_t n = nanoseconds.size();
  const double median = n % 2 == 1 ? static_cast<double>(nanoseconds[n / 2])
                                   : (static_cast<double>(nanoseconds[n / 2 - 1]) + static_cast<double>(nanoseconds[n / 2])) / 2;
  const size_t rank = (95 * n + 99) / 100;  // ceil(0.95 n), 1-based
  return {median / 1e6, static_cast<double>(nanoseconds[rank - 1]) / 1e6};
}

}  // namespace tvrtool
