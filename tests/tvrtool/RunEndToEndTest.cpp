// `tvrtool run` as a camera engineer runs it: the real program hosting a tiny test plugin
// (TestPlugin.cpp) and the bundled sample, on frame files, folders and streams; its statuses read
// from its output, its pictures decoded with libpng, its trace parsed as JSON. Each run writes the
// build's device files: never run two at once.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <cctype>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include "PngFile.h"
#include "ToolProcess.h"

namespace {

namespace fs = std::filesystem;
using tvrtool::test::has;
using tvrtool::test::Result;

class RunTest : public tvrtool::test::CaseFolderTest {
 protected:
  Result run(std::vector<std::string> args) {
    args.insert(args.begin(), "run");
    return tool(args);
  }
};

// A 64x48 NV12 frame of one gray: luma 16 + 40 x `index`.
std::string grayFrame(int index) { return std::string(64 * 48, char(16 + 40 * index)) + std::string(64 * 24, '\x80'); }

void expectEveryCallSucceeded(const Result& result, uint32_t frames) {
  EXPECT_EQ(result.status, 0) << result.out << result.err;
  EXPECT_TRUE(has(result.out, "setup: ok\ninitialize: ok\napply: ok (" + std::to_string(frames) +
                                  " frames)\nabort: ok\nfinalize: ok\nteardown: ok\n"))
      << result.out;
  EXPECT_EQ(result.toolErrors(), std::vector<std::string>{});
}

TEST_F(RunTest, BundledSampleTakesItsOptionsAndIsTimedTracedLoggedAndDumped) {
  // The chart's 75% red bar, turned, at 16x16, with red and blue swapped: the network sees blue.
  const Result result = run({"--option", "input-size=16x16", "--option", "order=swap", "--rotation", "90", "--crop",
                             "1200,0,240,240", "--frames", "3", "--trace", path("trace.json"), "--log-level", "D",
                             "--debug", path("dumps"), "-o", path("out"), "--results", path("results.csv")});
  expectEveryCallSucceeded(result, 3);
  EXPECT_TRUE(has(result.out, "\nsplit ") && has(result.out, "\nexecute ") && has(result.out, "\napply (total) ")) << result.out;
  int r = -1, g = -1, b = -1;
  std::istringstream(result.out.substr(result.out.find("= colour ") + 9)) >> r >> g >> b;
  EXPECT_LE(std::abs(r - 0) + std::abs(g - 0) + std::abs(b - 191), 6) << result.out;
  EXPECT_TRUE(has(result.err, "[TVR DEBUG] MeanColourProcessing.convertNv12ToRgb888: Scale down")) << result.err;

  std::map<std::string, int> files;
  for (const auto& entry : fs::recursive_directory_iterator(dir)) {
    const std::string name = entry.path().filename();  // a dump's stamp differs from run to run
    ++files[std::isdigit(static_cast<unsigned char>(name[0])) ? name.substr(name.find('_') + 1) : name];
  }
  EXPECT_EQ(files, (std::map<std::string, int>{{"dumps", 1}, {"source_1920x1080.nv12", 3}, {"network_input_48x16.rgb", 3},
                                               {"network_tensor_48x16.f32", 3}, {"network_output_3x1.f32", 3},
                                               {"input_param.csv", 1}, {"out", 1}, {"source_1920x1080.png", 1},
                                               {"network_input_48x16.png", 1}, {"network_tensor_48x16.png", 1},
                                               {"network_output_3x1.png", 1}, {"trace.json", 1}, {"results.csv", 1}}));
  tvrtool::DisplayImage png;
  ASSERT_EQ(tvrtool::readPng(path("out/network_input_48x16.png"), png), "");
  EXPECT_EQ(png.width * 100 + png.height, 1616u);

  // Every lifecycle call traced once, each frame's apply too, every begin ended.
  std::map<std::string, int> begun, ended;
  const nlohmann::json trace = nlohmann::json::parse(tvrtool::test::readFile(path("trace.json")));
  for (const nlohmann::json& event : trace.at("traceEvents")) {
    if (event.at("ph") != "B" && event.at("ph") != "E") continue;
    const std::string name = event.at("name");
    ++(event.at("ph") == "B" ? begun : ended)[name.substr(name.find("::") + 2)];
  }
  EXPECT_EQ(ended, begun);
  EXPECT_EQ(begun, (std::map<std::string, int>{
                       {"setup()", 1}, {"initialize()", 1}, {"apply()", 3}, {"abort()", 1}, {"finalize()", 1}, {"teardown()", 1}}));
  EXPECT_EQ(tvrtool::test::lines(tvrtool::test::readFile(path("results.csv")))[0],
            "frame,status,split ms,NV12 to RGB ms,RGB to float ms,execute ms,apply ms,result");
}

TEST_F(RunTest, PluginGetsTheCropTheOptionsTheSameFrameAgainAndOneDebugApplyForPictures) {
  // Luma 16 left of x = 32, 56 right of it.
  std::string frame = grayFrame(0);
  for (size_t row = 0; row < 48; ++row) frame.replace(row * 64 + 32, 32, 32, char(56));
  const Result result = run({"--processing", TEST_PLUGIN_GOOD, "--crop", "32,0,32,48", "--option", "offset=4",
                             "--frames", "3", "-o", path("out"), write("frame_64x48.nv12", frame)});
  expectEveryCallSucceeded(result, 3);
  EXPECT_TRUE(has(result.out, "processing: LumaProcessing (" TEST_PLUGIN_GOOD ")\n")) << result.out;
  EXPECT_TRUE(has(result.out, "\nresult: frame 3, luma 60, 1 debug\npictures: none")) << result.out;
}

// A processing that sleeps 5 ms in each apply, traced while two threads keep both cores busy:
// each slice has the time its marker was written, so no apply is shorter than its sleep and no two
// frames begin at one instant. The frame count bounds the test, not the clock.
TEST_F(RunTest, TraceTimesEverySliceWhenItsMarkerWasWrittenWhileBothCoresAreBusy) {
  std::atomic<bool> done{false};
  std::vector<std::thread> load;
  for (int i = 0; i < 2; ++i) {
    load.emplace_back([&done] {
      for (volatile uint64_t n = 0; !done.load(std::memory_order_relaxed);) n = n + 1;
    });
  }
  const Result result = run({"--processing", TEST_PLUGIN_GOOD, "--option", "sleep-ms=5", "--frames", "20", "--trace",
                             path("trace.json"), write("frame_64x48.nv12", grayFrame(0))});
  done = true;
  for (std::thread& thread : load) thread.join();
  expectEveryCallSucceeded(result, 20);

  std::vector<double> begins, ends, frameMs;     // apply's slices (µs) and the frame time counter (ms)
  std::vector<std::pair<double, double>> sleeps;  // the plugin's stage: start and duration (µs)
  std::set<int64_t> namedThreads, applyThreads;
  std::string process;
  const nlohmann::json trace = nlohmann::json::parse(tvrtool::test::readFile(path("trace.json")));
  for (const nlohmann::json& event : trace.at("traceEvents")) {
    const std::string phase = event.at("ph"), name = event.at("name");
    if (name == "process_name") process = event.at("args").at("name");
    if (name == "thread_name") namedThreads.insert(event.at("tid").get<int64_t>());
    const bool apply = name.size() > 9 && name.substr(name.size() - 9) == "::apply()";
    if (apply) (phase == "B" ? begins : ends).push_back(event.at("ts"));
    if (apply) applyThreads.insert(event.at("tid").get<int64_t>());
    if (phase == "X" && name == "sleep") sleeps.emplace_back(event.at("ts"), event.at("dur"));
    if (phase == "C") frameMs.push_back(event.at("args").at("ms"));
  }
  EXPECT_EQ(process, "tvrtool run: LumaProcessing");
  EXPECT_TRUE(applyThreads.size() == 1 && namedThreads.count(*applyThreads.begin()) == 1);
  ASSERT_EQ((std::vector<size_t>{begins.size(), ends.size(), sleeps.size(), frameMs.size()}), std::vector<size_t>(4, 20));
  for (size_t i = 0; i < 20; ++i) {
    EXPECT_GE(ends[i] - begins[i], 5000.0) << "apply " << i + 1;
    EXPECT_GE(sleeps[i].second, 5000.0) << "sleep " << i + 1;
    EXPECT_TRUE(sleeps[i].first >= begins[i] && sleeps[i].first + sleeps[i].second <= ends[i]) << "sleep " << i + 1;
    EXPECT_GE(frameMs[i], 5.0) << "frame " << i + 1;
    EXPECT_TRUE(i == 0 || begins[i] - begins[i - 1] >= 5000.0) << "apply " << i + 1;
  }
}

// Five frames of luma 16, 56, ... 176 from each kind of sequence; each gives one result line.
class SequenceTest : public RunTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(SequenceTest, EachFrameGivesOneResultLineInOrder) {
  std::string source;
  if (GetParam() == "nv12") {
    std::string frames;
    for (int i = 0; i < 5; ++i) frames += grayFrame(i);
    source = write("frames_64x48.nv12", frames);
  } else if (GetParam() == "folder") {
    for (int i = 4; i >= 0; --i) write("frames/" + std::string(1, char('a' + i)) + "_64x48.nv12", grayFrame(i));
    source = path("frames");
  } else {
    std::string stream = "YUV4MPEG2 W64 H48 F30:1 Ip A1:1 C420jpeg XYSCSS=420JPEG\n";
    for (int i = 0; i < 5; ++i) stream += "FRAME\n" + std::string(64 * 48, char(16 + 40 * i)) + std::string(64 * 24, '\x80');
    source = write("clip.y4m", stream);
  }
  const Result result = run({"--processing", TEST_PLUGIN_GOOD, "--results", path("results.csv"), source});
  expectEveryCallSucceeded(result, 5);
  const std::vector<std::string> csv = tvrtool::test::lines(tvrtool::test::readFile(path("results.csv")));
  ASSERT_EQ(csv.size(), 6u) << result.out;
  EXPECT_EQ(csv[0], "frame,status,apply ms,result");
  for (size_t i = 1; i <= 5; ++i) {
    EXPECT_EQ(csv[i].rfind(std::to_string(i) + ",0,", 0), 0u) << csv[i];
    EXPECT_TRUE(has(csv[i], ",\"frame " + std::to_string(i) + ", luma " + std::to_string(16 + 40 * (i - 1)) + ", 0 debug\"")) << csv[i];
  }
}

INSTANTIATE_TEST_SUITE_P(Sources, SequenceTest, ::testing::Values("nv12", "folder", "y4m"));

// Refusals before anything runs: one line naming the file and the reason, no lifecycle call.
TEST_F(RunTest, BadPluginsAndInputsAreRefusedInOneLineBeforeSetup) {
  const std::string frame = write("frame_64x48.nv12", grayFrame(0)), text = write("notes.so", "not a library");
  const std::string blocked = write("file", "") + "/below";
  // Dump folders to replay: without source frames, without their records, with a garbled record.
  write("no-source/input_param.csv", "Input parameter,\n,rotation,0\n,p_src,NULL\n");
  write("no-records/10_source_64x48.nv12", grayFrame(0));
  write("garbled/10_source_64x48.nv12", grayFrame(0));
  write("garbled/input_param.csv", "Input parameter,\n,rotation,x\n");
  const std::vector<std::tuple<std::vector<std::string>, int, std::string>> cases = {
      {{"--processing", text}, 1, text + ": not a shared library"},
      {{"--processing", TEST_PLUGIN_NO_FACTORY}, 1, TEST_PLUGIN_NO_FACTORY ": not a processing plugin: it has no tivora_create_processing"},
      {{"--processing", TEST_PLUGIN_ABI2}, 1, TEST_PLUGIN_ABI2 ": plugin ABI version 2, but this tvrtool hosts version 1"},
      {{"--processing", TEST_PLUGIN_NULL_FACTORY}, 1, TEST_PLUGIN_NULL_FACTORY ": tivora_create_processing(0) returned no processing"},
      {{"--processing", TEST_PLUGIN_GOOD, "--option", "colour=red"}, 1, TEST_PLUGIN_GOOD ": the processing refuses the option colour=red"},
      {{"--crop", "31,0,32,32", frame}, 2, "invalid --crop"},
      {{"--crop", "40,0,32,32", frame}, 1, "does not fit the 64x48 frames"},
      {{write("cut_64x48.nv12", grayFrame(0) + "a")}, 1, "cut_64x48.nv12: the file has 4609 bytes, not a whole number of 4608-byte frames"},
      {{"--results", blocked, frame}, 1, "cannot write the results " + blocked},
      {{"--trace", blocked, frame}, 1, "cannot write " + blocked},
      {{"-o", blocked, frame}, 1, blocked},
      {{"--replay", path("no-source")}, 2, path("no-source") + ": no source frames to replay"},
      {{"--replay", path("no-records")}, 1, path("no-records/input_param.csv") + ": no such file"},
      {{"--replay", path("garbled")}, 1, path("garbled/input_param.csv") + ": line 2: rotation 'x' is not a number"},
      {{"--replay", path("garbled"), "--rotation", "90"}, 2, "--replay takes the frames, their layout, crop and rotation"},
  };
  for (const auto& [args, status, reason] : cases) {
    const Result result = run(args);
    EXPECT_EQ(result.status, status) << reason;
    const std::vector<std::string> errors = result.toolErrors();
    ASSERT_FALSE(errors.empty()) << reason;
    EXPECT_EQ(errors[0].rfind("tvrtool run: ", 0), 0u) << errors[0];
    EXPECT_TRUE(has(errors[0], reason)) << errors[0];
    EXPECT_EQ(errors.size(), status == 2 ? 2u : 1u) << result.err;  // a usage error adds where the help is
    EXPECT_FALSE(has(result.out, "setup:")) << result.out;
  }
}

TEST_F(RunTest, FailedSetupStillRunsTheReleaseHooksAndSaysWhy) {
  const Result result = run({"--model", path("none.dlc"), "--frames", "1"});
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(has(result.out, "setup: 8 (the model file cannot be read)\nabort: ok\nfinalize: ok\nteardown: ok\n")) << result.out;
  EXPECT_EQ(result.toolErrors(), std::vector<std::string>{"tvrtool run: setup failed with 8 (the model file cannot be read): model " +
                                                          path("none.dlc") + ": No such file or directory"});
}

}  // namespace
