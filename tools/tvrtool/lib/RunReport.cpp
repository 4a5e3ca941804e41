#include "RunReport.h"

#include <cstdio>

#include "TimingStatistics.h"

namespace tvrtool {

std::string timingTable(const FrameTimings& timings) {
  char line[128];
  std::snprintf(line, sizeof line, "%-20s %10s %10s\n", "stage", "median ms", "p95 ms");
  std::string table = line;
  auto row = [&](const char* name, const std::vector<int64_t>& series) {
    const Spread spread = spreadOf(series);
    std::snprintf(line, sizeof line, "%-20s %10.3f %10.3f\n", name, spread.medianMs, spread.p95Ms);
    table += line;
  };
  for (size_t i = 0; i < timings.columnCount(); ++i) row(timings.columnName(i), timings.column(i));
  row("apply (total)", timings.apply());
  return table;
}

}  // namespace tvrtool
