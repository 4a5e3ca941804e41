#include "CompareReport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace tvrtool {

namespace {

// A stage's pairs over all frames.
struct StageTotals {
  std::string format, size;
  size_t pairs = 0, compared = 0, over = 0;
  uint64_t samples = 0, differing = 0;
  double maxAbs = 0, sumMean = 0, minPsnr = std::numeric_limits<double>::infinity();
  std::string first;                            // "frame 2: x 0, y 4, c0"
  std::vector<ComponentDifference> components;  // summed over the frames
  std::vector<std::string> componentFirst;
};

// Decibels to a tenth; "inf" for identical dumps.
std::string psnrText(double value) {
  if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", value);
  return text;
}

std::string row(const std::vector<std::string>& cells) {
  static const size_t widths[] = {18, 7, 10, 7, 5, 11, 11, 8, 10};
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    line += cells[i];
    if (i + 1 < cells.size())
      line += std::string(std::max<size_t>(1, widths[i] + 1 - std::min(widths[i], cells[i].size())), ' ');
  }
  return line + "\n";
}

StageTotals totalsOf(const std::string& stage, const std::vector<PairOutcome>& outcomes, double tolerance) {
  StageTotals totals;
  for (const PairOutcome& outcome : outcomes) {
    if (outcome.pair.stage != stage) continue;
    ++totals.pairs;
    if (totals.format.empty()) totals.format = outcome.format, totals.size = outcome.size;
    if (!outcome.difference) continue;
    const Difference& d = *outcome.difference;
    ++totals.compared;
    totals.over += d.maxAbs > tolerance ? 1 : 0;
    totals.samples += d.samples;
    totals.differing += d.differing;
    totals.maxAbs = std::max(totals.maxAbs, d.maxAbs);
    totals.sumMean += d.meanAbs * static_cast<double>(d.samples);
    totals.minPsnr = std::min(totals.minPsnr, d.psnr);
    const std::string frame = "frame " + std::to_string(outcome.pair.frame) + ": ";
    if (totals.first.empty() && !d.first.empty()) totals.first = frame + d.first;
    totals.components.resize(d.components.size());
    totals.componentFirst.resize(d.components.size());
    for (size_t i = 0; i < d.components.size(); ++i) {
      const ComponentDifference& c = d.components[i];
      ComponentDifference& sum = totals.components[i];
      sum.name = c.name;
      sum.samples += c.samples;
      sum.differing += c.differing;
      sum.sumAbs += c.sumAbs;
      sum.maxAbs = std::max(sum.maxAbs, c.maxAbs);
      if (totals.componentFirst[i].empty() && c.differing > 0) {
        totals.componentFirst[i] = frame + "x " + std::to_string(c.firstX) + ", y " + std::to_string(c.firstY);
      }
    }
  }
  return totals;
}

std::string meanText(double sum, uint64_t samples) {
  return samples == 0 ? "-" : numberText(sum / static_cast<double>(samples));
}

}  // namespace

std::string numberText(double value) {
  if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

CompareReport compareReport(const std::vector<std::string>& stages, const std::vector<PairOutcome>& outcomes,
                            double tolerance) {
  CompareReport report;
  report.table = row({"stage", "format", "size", "frames", "over", "max diff", "mean diff", "PSNR dB", "differing",
                      "first difference"});
  std::string parting;
  for (const std::string& stage : stages) {
    const StageTotals t = totalsOf(stage, outcomes, tolerance);
    const bool parts = t.over > 0 && parting.empty();
    if (parts) parting = stage + (t.first.empty() ? "" : " (" + t.first + ")");
    const bool any = t.compared > 0;
    report.table += row({stage, t.format, t.size, std::to_string(t.compared) + "/" + std::to_string(t.pairs),
                         std::to_string(t.over), any ? numberText(t.maxAbs) : "-", meanText(t.sumMean, t.samples),
                         any ? psnrText(t.minPsnr) : "-", any ? std::to_string(t.differing) : "-",
                         (t.first.empty() ? "-" : t.first) + (parts ? "   <- the runs part here" : "")});
    for (size_t i = 0; i < t.components.size() && t.over > 0; ++i) {
      const ComponentDifference& c = t.components[i];
      report.table += row({"  " + c.name, "", "", "", "", numberText(c.maxAbs), meanText(c.sumAbs, c.samples), "",
                           std::to_string(c.differing), t.componentFirst[i].empty() ? "-" : t.componentFirst[i]});
    }
  }

  size_t unpaired = 0, over = 0, onlyA = 0, onlyB = 0;
  std::string notCompared;
  for (const PairOutcome& outcome : outcomes) {
    if (outcome.difference && outcome.difference->maxAbs > tolerance) ++over;
    if (outcome.problem.empty()) continue;
    ++unpaired;
    onlyA += outcome.pair.b == nullptr ? 1 : 0;
    onlyB += outcome.pair.a == nullptr ? 1 : 0;
    notCompared +=
        "  frame " + std::to_string(outcome.pair.frame) + " " + outcome.pair.stage + ": " + outcome.problem + "\n";
  }
  if (!notCompared.empty()) report.table += "\nnot compared:\n" + notCompared;
  const std::string tolerated = "tolerance " + numberText(tolerance);
  report.same = over == 0 && unpaired == 0 && !outcomes.empty();
  const size_t compared = outcomes.size() - unpaired;
  if (report.same) {
    report.verdict = "the runs agree: " + std::to_string(compared) + " pairs within " + tolerated;
  } else if (compared == 0) {
    const size_t unusable = unpaired - onlyA - onlyB;
    report.verdict = "nothing compared:";
    for (const auto& [count, what] :
         {std::pair{onlyA, " only in A"}, {onlyB, " only in B"}, {unusable, " pairs that cannot be"}}) {
      if (count != 0) report.verdict += (report.verdict.back() == ':' ? " " : ", ") + std::to_string(count) + what;
    }
  } else {
    report.verdict = (parting.empty() ? "no pair exceeds " + tolerated : "the runs part at " + parting) + "; " +
                     std::to_string(over) + " of " + std::to_string(compared) + " pairs exceed " + tolerated +
                     (unpaired == 0 ? "" : ", " + std::to_string(unpaired) + " not compared");
  }
  return report;
}

std::string pairsCsv(const std::vector<PairOutcome>& outcomes) {
  std::string csv = "frame,stage,component,samples,max diff,mean diff,PSNR dB,differing,first x,first y,problem\n";
  for (const PairOutcome& outcome : outcomes) {
    const std::string start = std::to_string(outcome.pair.frame) + "," + outcome.pair.stage + ",";
    if (!outcome.difference) {
      csv += start + ",,,,,,,,\"" + outcome.problem + "\"\n";
      continue;
    }
    const Difference& d = *outcome.difference;
    csv += start + "all," + std::to_string(d.samples) + "," + numberText(d.maxAbs) + "," + numberText(d.meanAbs) + "," +
           psnrText(d.psnr) + "," + std::to_string(d.differing) + ",,,\n";
    for (const ComponentDifference& c : d.components) {
      const bool differs = c.differing > 0;
      csv += start + c.name + "," + std::to_string(c.samples) + "," + numberText(c.maxAbs) + "," +
             meanText(c.sumAbs, c.samples) + ",," + std::to_string(c.differing) + "," +
             (differs ? std::to_string(c.firstX) : "") + "," + (differs ? std::to_string(c.firstY) : "") + ",\n";
    }
  }
  return csv;
}

}  // namespace tvrtool
