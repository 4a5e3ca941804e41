// What `tvrtool compare` says about two runs: a table by stage, in pipeline order, with the first
// stage that differs by more than the tolerance marked as where the runs part; below it the
// channels of each stage that differs, what could not be compared, and the verdict. Every pair
// also has a line of its own in the CSV.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "DumpDifference.h"
#include "DumpPairing.h"

namespace tvrtool {

struct PairOutcome {
  DumpPair pair;
  std::string format, size;              // as the dumps' names give them ("nv12", "1920x1080"), A's when both
  std::string problem;                   // why the pair was not compared ("only in A", "B is truncated: ..."), else ""
  std::optional<Difference> difference;  // when compared (its heat map may have been dropped)
};

struct CompareReport {
  std::string table;    // for standard output
  std::string verdict;  // one line: identical, where the runs part, or what did not pair
  bool same = false;    // every pair compared and within the tolerance
};

CompareReport compareReport(const std::vector<std::string>& stages, const std::vector<PairOutcome>& outcomes,
                            double tolerance);

// A header and one line per pair and component: frame, stage, component ("all" for the pair),
// samples, max and mean absolute difference, PSNR, differing samples, the first one's x and y, the
// problem of a pair not compared.
std::string pairsCsv(const std::vector<PairOutcome>& outcomes);

// "0", "3", "0.0078125", "inf": a difference as short as it reads exactly enough.
std::string numberText(double value);

}  // namespace tvrtool
