// `tvrtool compare`: the dumps of two runs of a processing (a device against a workstation, before
// against after a change) stage by stage, and where they part.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "Arguments.h"
#include "CompareReport.h"
#include "DumpPairing.h"
#include "FileBytes.h"
#include "OutputPaths.h"
#include "PngFile.h"
#include "Subcommand.h"

namespace tvrtool {

namespace {

namespace fs = std::filesystem;

void printHelp(std::FILE* to) {
  std::fputs(
      "Usage: tvrtool compare [OPTION]... A B\n"
      "\n"
      "Compare the dumps of two runs stage by stage: the folders A and B of buffer dumps\n"
      "(<boot ns>_<name>_<stride>x<height>.<format>), such as a device's and those of\n"
      "'tvrtool run --replay A --debug B'. Dumps pair by name, and among one name's dumps by the\n"
      "order they were taken in: the n-th source frame of A meets the n-th of B.\n"
      "\n"
      "For each pair: whether the sizes agree, the largest and the mean absolute difference,\n"
      "PSNR, how many samples differ by more than the tolerance and where the first one is;\n"
      "NV12 per plane (Y, Cb, Cr), RGB per channel, float tensors per element (c0, c1, c2 when\n"
      "a row holds whole pixels). The table gives each stage in the order a frame's dumps were\n"
      "taken and marks the first that differs by more than the tolerance: there the runs part.\n"
      "Dumps without a partner, and pairs of other sizes or formats or truncated, are listed.\n"
      "\n"
      "Options:\n"
      "  -t, --tolerance=T  differences up to T count as equal, in the dump's own units (8-bit\n"
      "                     steps, or the float values themselves); default 0\n"
      "  -o, --output=DIR   a heat map of each pair (frame0001_<name>.png: A dimmed, the\n"
      "                     differences from red, the smallest, to white, the largest) and\n"
      "                     pairs.csv (each pair and channel)\n"
      "  -h, --help         show this help and exit\n"
      "\n"
      "Examples:\n"
      "  tvrtool compare device-dumps host-dumps\n"
      "  tvrtool compare --tolerance 1 -o diff before after\n"
      "\n"
      "Exit status:\n"
      "  0  every dump has a partner within the tolerance\n"
      "  1  something differs by more, or did not pair\n"
      "  2  wrong usage, or a folder that cannot be read\n",
      to);
}

int usage(const std::string& message) { return usageError("tvrtool compare", message); }

struct Side {
  std::vector<uint8_t> bytes;
  std::optional<DumpSamples> samples;
};

// Reads one side of a pair; "" or why it cannot be compared.
std::string readSide(const DumpFile& dump, const char* which, Side& side) {
  std::string error;
  const std::optional<uint64_t> size = regularFileSize(dump.path, error);
  if (size) side.samples = dumpSamples(dump.name, *size, error);
  if (side.samples) {
    side.bytes.resize(static_cast<size_t>(*size));
    if (!readExactly(dump.path, side.bytes, error)) side.samples.reset();
  }
  return side.samples ? "" : std::string(which) + " " + dump.path + ": " + error;
}

std::string sizeText(const FileName& name) { return std::to_string(name.first) + "x" + std::to_string(name.second); }

// Compares one pair; writes its heat map into `outputDir` unless that is empty.
PairOutcome comparePair(const DumpPair& pair, double tolerance, const std::string& outputDir, std::string& error) {
  PairOutcome outcome{pair, "", "", "", std::nullopt};
  const DumpFile* known = pair.a != nullptr ? pair.a : pair.b;
  outcome.format = known->name.extension;
  outcome.size = sizeText(known->name);
  if (pair.a == nullptr || pair.b == nullptr) {
    outcome.problem = std::string("only in ") + (pair.a != nullptr ? "A: " : "B: ") + known->path;
    return outcome;
  }
  const FileName &a = pair.a->name, &b = pair.b->name;
  if (a.extension != b.extension || sizeText(a) != sizeText(b)) {
    outcome.problem = std::string(a.extension != b.extension ? "different formats" : "different sizes") + ": A " +
                      a.extension + " " + sizeText(a) + ", B " + b.extension + " " + sizeText(b);
    return outcome;
  }
  Side sideA, sideB;
  outcome.problem = readSide(*pair.a, "A", sideA);
  if (outcome.problem.empty()) outcome.problem = readSide(*pair.b, "B", sideB);
  if (!outcome.problem.empty()) return outcome;
  outcome.difference = compareDumps(*sideA.samples, sideA.bytes.data(), *sideB.samples, sideB.bytes.data(), tolerance);
  if (!outputDir.empty()) {
    char frame[16];
    std::snprintf(frame, sizeof frame, "frame%04zu_", pair.frame);
    const std::string target = (fs::path(outputDir) / (frame + pair.stage + ".png")).string();
    const std::string pngError = writePng(target, outcome.difference->heat);
    if (!pngError.empty() && error.empty()) error = "cannot write " + target + ": " + pngError;
  }
  outcome.difference->heat = {};  // the table needs the figures only
  return outcome;
}

int run(const std::vector<std::string>& args) {
  Arguments arguments;
  std::string error =
      parseArguments(args, {{"tolerance", 't', true}, {"output", 'o', true}, {"help", 'h', false}}, arguments);
  if (!error.empty()) return usage(error);
  if (arguments.has("help")) {
    printHelp(stdout);
    return kExitOk;
  }
  if (arguments.operands.size() != 2) return usage("give two folders of dumps, A and B");
  double tolerance = 0;
  if (arguments.has("tolerance")) {
    const std::string& text = arguments.options.at("tolerance");
    char* end = nullptr;
    tolerance = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !std::isfinite(tolerance) || tolerance < 0) {
      return usage("invalid --tolerance '" + text + "': give a number of 0 or more");
    }
  }
  const std::string &dirA = arguments.operands[0], &dirB = arguments.operands[1];
  for (const std::string& dir : {dirA, dirB}) {
    std::error_code code;
    if (!fs::is_directory(dir, code))
      return usage(dir + ": " + (fs::exists(dir, code) ? "not a folder" : "no such folder"));
  }
  const std::vector<DumpFile> dumpsA = listDumps(dirA, error);
  const std::vector<DumpFile> dumpsB = error.empty() ? listDumps(dirB, error) : std::vector<DumpFile>{};
  if (error.empty() && dumpsA.empty() && dumpsB.empty()) error = "neither " + dirA + " nor " + dirB + " holds dumps";
  std::string outputDir;
  if (error.empty() && arguments.has("output")) error = prepareFolder(arguments.options.at("output"), outputDir);
  if (!error.empty()) return usage(error);

  std::printf("A: %s (%zu dumps)\nB: %s (%zu dumps)\n\n", dirA.c_str(), dumpsA.size(), dirB.c_str(), dumpsB.size());
  const Pairing pairing = pairDumps(dumpsA, dumpsB);
  std::vector<PairOutcome> outcomes;
  for (const DumpPair& pair : pairing.pairs) outcomes.push_back(comparePair(pair, tolerance, outputDir, error));
  const CompareReport report = compareReport(pairing.stages, outcomes, tolerance);
  std::printf("%s\n%s\n", report.table.c_str(), report.verdict.c_str());
  if (!outputDir.empty()) {
    const std::string csv = (fs::path(outputDir) / "pairs.csv").string();
    if (error.empty()) error = writeTextFile(csv, pairsCsv(outcomes));
    if (error.empty()) std::printf("heat maps and pairs.csv: %s\n", outputDir.c_str());
  }
  if (!error.empty()) {
    std::fprintf(stderr, "tvrtool compare: %s\n", error.c_str());
    return kExitFailed;
  }
  return report.same ? kExitOk : kExitFailed;
}

}  // namespace

const Subcommand& compareCommand() {
  static const Subcommand command = {"compare", "compare two runs' dumps stage by stage: where they part", run,
                                     printHelp};
  return command;
}

}  // namespace tvrtool
