// `tvrtool run` as a camera engineer runs it: the real program on small frames, its statuses
// read from its output, its picture decoded with libpng and its trace parsed as JSON.
//
// Usage: tvrtool_run_tests [gtest flags] COMMAND...   (the command that runs tvrtool, with the
// emulator first in a cross build). Each run writes the build's device files: never run two at once.
#include <gtest/gtest.h>
#include <png.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "MiniJson.h"
#include "ToolProcess.h"

namespace {

namespace fs = std::filesystem;
using tvrtool::test::Json;
using tvrtool::test::Png;
using tvrtool::test::Result;

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) all.push_back(line);
  return all;
}

// What the tool itself said on standard error; the library's log records (tag TVR) go there too.
std::vector<std::string> toolErrors(const Result& result) {
  std::vector<std::string> own;
  for (const std::string& line : lines(result.err)) {
    if (line.rfind("TVR ", 0) != 0 && line.rfind("apply: frame", 0) != 0) own.push_back(line);
  }
  return own;
}

bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// "... -> colour R G B (...)" of the result line.
std::vector<int> meanColourOf(const std::string& out) {
  const size_t at = out.find("-> colour ");
  if (at == std::string::npos) return {};
  std::istringstream in(out.substr(at + 10));
  std::vector<int> rgb(3);
  in >> rgb[0] >> rgb[1] >> rgb[2];
  return rgb;
}

// A 64x48 NV12 frame: the left half red (BT.601 video range), the right half blue.
std::vector<uint8_t> redBlueFrame() {
  std::vector<uint8_t> frame(64 * 48 * 3 / 2);
  for (size_t row = 0; row < 48; ++row) {
    for (size_t x = 0; x < 64; ++x) frame[row * 64 + x] = x < 32 ? 81 : 41;
  }
  for (size_t row = 0; row < 24; ++row) {
    for (size_t x = 0; x < 64; x += 2) {
      frame[64 * 48 + row * 64 + x] = x < 32 ? 90 : 240;
      frame[64 * 48 + row * 64 + x + 1] = x < 32 ? 240 : 110;
    }
  }
  return frame;
}

class RunTest : public ::testing::Test {
 protected:
  void SetUp() override { dir = tvrtool::test::freshCaseDirectory("tvrtool_run"); }

  Result run(std::vector<std::string> args) {
    args.insert(args.begin(), "run");
    return tvrtool::test::runTool(args, dir);
  }

  fs::path write(const std::string& name, const std::vector<uint8_t>& bytes) {
    const fs::path path = dir / name;
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path;
  }

  Png readPng(const fs::path& path) {
    Png png;
    EXPECT_TRUE(tvrtool::test::decodePng(tvrtool::test::slurp(path), png)) << path;
    return png;
  }

  fs::path dir;
};

void expectEveryCallSucceeded(const Result& result, uint32_t frames) {
  EXPECT_EQ(result.status, 0) << result.out << result.err;
  for (const char* call : {"setup: ok", "initialize: ok", "abort: ok", "finalize: ok", "teardown: ok"}) {
    EXPECT_TRUE(has(result.out, call + std::string("\n"))) << call << "\n" << result.out;
  }
  EXPECT_TRUE(has(result.out, "apply: ok (" + std::to_string(frames) + " frames)\n")) << result.out;
  for (const char* stage : {"split", "NV12 to RGB", "RGB to float", "execute", "apply (total)"}) {
    EXPECT_TRUE(has(result.out, "\n" + std::string(stage) + " ")) << stage << "\n" << result.out;
  }
  EXPECT_EQ(toolErrors(result), std::vector<std::string>{});
}

TEST_F(RunTest, ChartRunReportsEveryCallAndWritesThePictureAndABalancedTrace) {
  const fs::path trace = dir / "trace.json";
  const Result result = run({"--frames", "3", "--trace", trace, "-o", dir / "out"});
  expectEveryCallSucceeded(result, 3);

  const Png png = readPng(dir / "out" / "network_input_224x224.png");
  EXPECT_EQ(png.width, 224u);
  EXPECT_EQ(png.height, 224u);
  EXPECT_EQ(png.channels, 3u);
  EXPECT_TRUE(fs::exists(dir / "out" / "mean_colour_224x224.dlc"));

  const std::optional<Json> json = tvrtool::test::parseJson(tvrtool::test::slurp(trace));
  ASSERT_TRUE(json) << tvrtool::test::slurp(trace);
  const Json* events = json->get("traceEvents");
  ASSERT_TRUE(events != nullptr && events->kind == Json::Kind::Array);
  // Every lifecycle call traced once, each frame's apply too; every begin closed by its end.
  std::vector<std::string> open;
  std::map<std::string, int> calls;
  double lastTime = -1e300;
  for (const Json& event : events->items) {
    ASSERT_TRUE(event.get("name") && event.get("ph") && event.get("ts") && event.get("pid") && event.get("tid"));
    const std::string& name = event.get("name")->text;
    EXPECT_GE(event.get("ts")->number, lastTime) << name;
    lastTime = event.get("ts")->number;
    if (event.get("ph")->text == "B") {
      open.push_back(name);
      ++calls[name];
    } else {
      ASSERT_EQ(event.get("ph")->text, "E");
      ASSERT_FALSE(open.empty()) << "an end without a begin: " << name;
      EXPECT_EQ(open.back(), name);
      open.pop_back();
    }
  }
  EXPECT_TRUE(open.empty());
  EXPECT_EQ(calls, (std::map<std::string, int>{{"MeanColourProcessing::setup()", 1},
                                                {"MeanColourProcessing::initialize()", 1},
                                                {"MeanColourProcessing::apply()", 3},
                                                {"MeanColourProcessing::abort()", 1},
                                                {"MeanColourProcessing::finalize()", 1},
                                                {"MeanColourProcessing::teardown()", 1}}));
}

TEST_F(RunTest, Nv12FrameCroppedAndTurnedGivesTheCropsColour) {
  const fs::path frame = write("frame_64x48.nv12", redBlueFrame());
  const Result result = run({"--frames", "2", "--crop", "0,0,32,48", "--rotation", "90", "--input-size", "16x16",
                             "-o", dir, frame});
  expectEveryCallSucceeded(result, 2);
  const std::vector<int> colour = meanColourOf(result.out);
  ASSERT_EQ(colour.size(), 3u) << result.out;
  EXPECT_NEAR(colour[0], 255, 3);
  EXPECT_NEAR(colour[1], 0, 3);
  EXPECT_NEAR(colour[2], 0, 3);
  const Png png = readPng(dir / "network_input_16x16.png");
  EXPECT_EQ(png.width, 16u);
  EXPECT_EQ(png.height, 16u);
}

TEST_F(RunTest, DebugFolderReceivesEachFrameAndWhatTheNetworkSaw) {
  const fs::path frame = write("frame.nv12", redBlueFrame());
  const Result result = run({"--width", "64", "--height", "48", "--frames", "2", "--input-size", "16x8", "--debug",
                             dir / "dumps", "-o", dir, frame});
  expectEveryCallSucceeded(result, 2);
  std::map<std::string, int> dumps;
  for (const auto& entry : fs::directory_iterator(dir / "dumps")) {
    // A dump's boot-time stamp differs from run to run; the record file has none.
    const std::string name = entry.path().filename();
    ++dumps[std::isdigit(static_cast<unsigned char>(name[0])) ? name.substr(name.find('_') + 1) : name];
  }
  EXPECT_EQ(dumps, (std::map<std::string, int>{
                       {"source_64x48.nv12", 2}, {"network_input_48x8.rgb", 2}, {"input_param.csv", 1}}))
      << result.out;
}

TEST_F(RunTest, PngPictureWithOddSidesIsCutToEven) {
  // 5x3 pixels of mid gray.
  std::vector<uint8_t> pixels(5 * 3 * 3, 128);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = 5;
  image.height = 3;
  image.format = PNG_FORMAT_RGB;
  const fs::path path = dir / "gray.png";
  ASSERT_NE(png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr), 0);
  const Result result = run({"--frames", "1", "--input-size", "4x2", "-o", dir, path});
  expectEveryCallSucceeded(result, 1);
  EXPECT_TRUE(has(result.out, "PNG 5x3 cut to 4x2")) << result.out;
  EXPECT_EQ(meanColourOf(result.out), (std::vector<int>{128, 128, 128})) << result.out;
}

TEST_F(RunTest, RefusedFramesAreNamedOnOneLineBeforeTheProcessingStarts) {
  const fs::path frame = write("frame.nv12", redBlueFrame());
  const fs::path cut = write("cut_64x48.nv12", std::vector<uint8_t>(100));
  const fs::path notPng = write("picture.png", {'n', 'o', 't', ' ', 'a', ' ', 'p', 'n', 'g'});
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{(dir / "missing.nv12").string()}, "no such file"},
      {{cut}, "truncated"},
      {{"--width", "32", "--height", "48", frame}, "the file has 4608 bytes"},
      {{"--width", "64", "--height", "47", frame}, "even width and height"},
      {{notPng}, "cannot read it as a PNG"},
      {{"--crop", "40,0,32,48", "--width", "64", "--height", "48", frame}, "does not fit the 64x48 frame"},
  };
  for (const auto& [args, reason] : cases) {
    std::vector<std::string> withOutput = args;
    withOutput.insert(withOutput.end(), {"-o", dir / "out"});
    const Result result = run(withOutput);
    EXPECT_EQ(result.status, 1) << reason;
    const std::vector<std::string> errors = toolErrors(result);
    ASSERT_EQ(errors.size(), 1u) << reason << "\n" << result.err;
    EXPECT_EQ(errors[0].rfind("tvrtool run: ", 0), 0u) << errors[0];
    EXPECT_TRUE(has(errors[0], reason)) << errors[0];
    EXPECT_FALSE(has(result.out, "setup:")) << result.out;
  }
}

TEST_F(RunTest, FailedSetupStillRunsTheReleaseHooks) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{"--model", (dir / "no-such-model.dlc").string()}, "setup: 8 (the model file cannot be read)"},
      {{"--runtime", "gpu"}, "setup: 2 (runtime unavailable)"},
  };
  for (const auto& [args, status] : cases) {
    std::vector<std::string> withOutput = args;
    withOutput.insert(withOutput.end(), {"--frames", "1", "-o", dir / "out"});
    const Result result = run(withOutput);
    EXPECT_EQ(result.status, 1) << status;
    EXPECT_TRUE(has(result.out, status + "\nabort: ok\nfinalize: ok\nteardown: ok\n")) << result.out;
    EXPECT_FALSE(has(result.out, "initialize:")) << result.out;
    const std::vector<std::string> errors = toolErrors(result);
    ASSERT_EQ(errors.size(), 1u) << result.err;
    EXPECT_EQ(errors[0].rfind("tvrtool run: setup failed with ", 0), 0u) << errors[0];
  }
}

TEST_F(RunTest, HelpAndWrongUsage) {
  const Result help = run({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.out.rfind("Usage: tvrtool run", 0), 0u) << help.out;
  EXPECT_TRUE(has(tvrtool::test::runTool({"--help"}, dir).out, "\n  run ")) << "tvrtool --help lists run";
  const Result wrong = run({"--rotation", "45"});
  EXPECT_EQ(wrong.status, 2);
  EXPECT_TRUE(has(wrong.err, "tvrtool run: invalid --rotation")) << wrong.err;
}

}  // namespace

int main(int argc, char** argv) { return tvrtool::test::toolTestMain(argc, argv); }
