// A device's dumps replayed and compared as a camera engineer does it: `tvrtool run --debug` plays
// the device, `tvrtool run --replay` the workstation, `tvrtool compare` says where they part.
// Each run writes the build's device files: never run two at once.
#include <gtest/gtest.h>

#include <filesystem>

#include "PngFile.h"
#include "ToolProcess.h"

namespace {

namespace fs = std::filesystem;
using tvrtool::test::has;
using tvrtool::test::Result;

// A 64x48 NV12 frame, a luma ramp under a chroma far from gray, so that red and blue differ.
std::string colourFrame(int index) {
  std::string frame;
  for (int y = 0; y < 48; ++y) {
    for (int x = 0; x < 64; ++x) frame += char(16 + 3 * x + 20 * index);
  }
  for (int i = 0; i < 64 * 24 / 2; ++i) frame += std::string{char(90 + i % 7), char(200 - index * 10)};
  return frame;
}

class CompareTest : public tvrtool::test::CaseFolderTest {
 protected:
  Result run(std::vector<std::string> args) {
    args.insert(args.begin(), {"run", "--option", "input-size=16x16"});
    return tool(args);
  }
  Result compare(std::vector<std::string> args) {
    args.insert(args.begin(), "compare");
    return tool(args);
  }
};

TEST_F(CompareTest, ReplayOfADevicesDumpsAgreesWithThemAndSwappedChannelsPartAtTheFloatInput) {
  const std::string frames = write("frames_64x48.nv12", colourFrame(0) + colourFrame(1));
  ASSERT_EQ(run({"--crop", "8,4,48,40", "--rotation", "180", "--debug", path("device"), frames}).status, 0);
  const Result replay = run({"--replay", path("device"), "--debug", path("host")});
  ASSERT_EQ(replay.status, 0) << replay.out << replay.err;
  EXPECT_TRUE(has(replay.out, "(the first: rotation 180, crop 8,4 48x40)")) << replay.out;

  const Result same = compare({path("device"), path("host")});
  EXPECT_EQ(same.status, 0) << same.out;
  EXPECT_TRUE(has(same.out, "\nthe runs agree: 8 pairs within tolerance 0\n")) << same.out;

  ASSERT_EQ(run({"--replay", path("device"), "--option", "order=swap", "--debug", path("swapped")}).status, 0);
  const Result swapped = compare({"-o", path("heat"), path("device"), path("swapped")});
  EXPECT_EQ(swapped.status, 1);
  // The stages in pipeline order; the picture agrees, the floats made of it do not.
  std::vector<std::string> stages, rows;
  for (const std::string& line : tvrtool::test::lines(swapped.out)) {
    if (line.rfind("source ", 0) != 0 && line.rfind("network_", 0) != 0) continue;
    stages.push_back(line.substr(0, line.find(' ')));
    rows.push_back(line);
  }
  ASSERT_EQ(stages, (std::vector<std::string>{"source", "network_input", "network_tensor", "network_output"}));
  EXPECT_TRUE(has(rows[0], " inf ") && has(rows[1], " inf ")) << swapped.out;  // PSNR of equal pictures
  EXPECT_TRUE(has(rows[2], "<- the runs part here") && !has(rows[3], "<- the runs")) << swapped.out;
  EXPECT_TRUE(has(swapped.out, "\nthe runs part at network_tensor (frame 1: x ")) << swapped.out;
  EXPECT_TRUE(has(swapped.out, "; 4 of 8 pairs exceed tolerance 0\n")) << swapped.out;
  tvrtool::DisplayImage heat;
  ASSERT_EQ(tvrtool::readPng(path("heat/frame0002_network_tensor.png"), heat), "");
  EXPECT_EQ(heat.width * 1000 + heat.height, 64064u);  // 16x16, shown four times as large
  EXPECT_EQ(tvrtool::test::lines(tvrtool::test::readFile(path("heat/pairs.csv"))).size(), 1u + 8 * 4);
}

TEST_F(CompareTest, DumpsThatDoNotPairAreListedAndFoldersThatCannotBeComparedAreRefused) {
  // A: two source frames of a 4x2 NV12 picture and an RGB stage; B: the first source cut short,
  // an RGB stage of another size, and a stage A does not have.
  write("a/10_source_4x2.nv12", std::string(12, 'a'));
  write("a/20_rgb_6x2.rgb", std::string(12, 'r'));
  write("a/30_source_4x2.nv12", std::string(12, 'a'));
  write("b/11_source_4x2.nv12", std::string(5, 'a'));
  write("b/21_rgb_3x2.rgb", std::string(6, 'r'));
  write("b/22_extra_4x2.y", std::string(8, 'y'));
  write("b/notes.txt", "not a dump");
  write("b/11_source_4x2.png", "the picture tvrtool view makes of a dump");
  const Result result = compare({path("a"), path("b")});
  EXPECT_EQ(result.status, 1);
  for (const std::string& listed : {"frame 1 source: B " + path("b/11_source_4x2.nv12") + ": truncated: 5 bytes, not 12\n",
                                    std::string("frame 1 rgb: different sizes: A rgb 6x2, B rgb 3x2\n"),
                                    "frame 1 extra: only in B: " + path("b/22_extra_4x2.y") + "\n",
                                    "frame 2 source: only in A: " + path("a/30_source_4x2.nv12") + "\n",
                                    std::string("\nnothing compared: 1 only in A, 1 only in B, 2 pairs that cannot be\n")}) {
    EXPECT_TRUE(has(result.out, listed)) << listed << result.out;
  }

  fs::create_directories(path("empty"));
  const std::vector<std::pair<std::vector<std::string>, std::string>> refused = {
      {{path("a")}, "give two folders of dumps, A and B"},
      {{path("a"), path("none")}, path("none") + ": no such folder"},
      {{"--tolerance", "-1", path("a"), path("b")}, "invalid --tolerance '-1'"},
      {{path("empty"), path("empty")}, "neither " + path("empty") + " nor " + path("empty") + " holds dumps"},
  };
  for (const auto& [args, reason] : refused) {
    const Result refusal = compare(args);
    EXPECT_EQ(refusal.status, 2) << reason;
    EXPECT_TRUE(has(refusal.err, "tvrtool compare: " + reason)) << refusal.err;
    EXPECT_EQ(refusal.out, "") << reason;
  }
}

}  // namespace
