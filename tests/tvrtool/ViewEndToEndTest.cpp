// `tvrtool view` as a camera engineer runs it: files written as the library writes them, the
// program run on them, and its PNGs read back with libpng.
//
// Usage: tvrtool_view_tests [gtest flags] COMMAND...   (the command that runs tvrtool, with the
// emulator first in a cross build)
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "ToolProcess.h"

namespace {

namespace fs = std::filesystem;
using tvrtool::test::Png;
using tvrtool::test::Result;

class ViewTest : public ::testing::Test {
 protected:
  void SetUp() override { dir = tvrtool::test::freshCaseDirectory("tvrtool_view"); }

  fs::path write(const std::string& name, const std::vector<uint8_t>& bytes) {
    const fs::path path = dir / name;
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path;
  }

  Result run(const std::vector<std::string>& args) { return tvrtool::test::runTool(args, dir); }

  Png readPng(const fs::path& path) {
    Png png;
    EXPECT_TRUE(tvrtool::test::decodePng(tvrtool::test::slurp(path), png)) << path;
    return png;
  }

  std::vector<std::string> filesInDir() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  fs::path dir;
};

// 4x2 NV12 as createImageBuf allocates it (stride x height x 3/2): a red chroma pair on the left
// half and a neutral one on the right, over luma rows of 16/235 and 126.
std::vector<uint8_t> nv12Frame() {
  return {16,  16,  235, 235,  //
          126, 126, 126, 126,  //
          64,  200, 128, 128};
}

TEST_F(ViewTest, Nv12DumpBecomesAnRgbPngNamedAfterIt) {
  const fs::path dump = write("5000000000_src_4x2.nv12", nv12Frame());
  const Result result = run({"view", dump});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, (dir / "5000000000_src_4x2.png").string() + ": nv12 4x2, stride 4\n");
  const Png png = readPng(dir / "5000000000_src_4x2.png");
  ASSERT_EQ(png.channels, 3u);
  ASSERT_EQ(png.width, 4u);
  ASSERT_EQ(png.height, 2u);
  // BT.601 video range: the red pair gives 115,0,0 over luma 16 and 243,95,0 over 126.
  EXPECT_EQ(png.pixels, (std::vector<uint8_t>{115, 0,  0, 115, 0,  0, 255, 255, 255, 255, 255, 255,  //
                                              243, 95, 0, 243, 95, 0, 128, 128, 128, 128, 128, 128}));
}

TEST_F(ViewTest, WidthOptionCropsTheStridePadding) {
  const fs::path dump = write("1_y_4x2.y", {10, 20, 30, 0xEE, 40, 50, 60, 0xEE});
  const fs::path png = dir / "out.png";
  ASSERT_EQ(run({"view", "--width", "3", "-o", png, dump}).status, 0);
  const Png gray = readPng(png);
  EXPECT_EQ(gray.channels, 1u);
  EXPECT_EQ(gray.width, 3u);
  EXPECT_EQ(gray.pixels, (std::vector<uint8_t>{10, 20, 30, 40, 50, 60}));
}

TEST_F(ViewTest, DashWritesThePngToStandardOutput) {
  const Result result = run({"view", "-o", "-", write("5_src_4x2.nv12", nv12Frame())});
  ASSERT_EQ(result.status, 0) << result.err;
  Png png;
  ASSERT_TRUE(decodePng(result.out, png));
  EXPECT_EQ(png.width, 4u);
  EXPECT_EQ(filesInDir(), std::vector<std::string>{"5_src_4x2.nv12"});
}

TEST_F(ViewTest, GoodFilesAreConvertedEvenWhenOthersAreRefused) {
  const fs::path good = write("5_src_4x2.nv12", nv12Frame());
  const fs::path bad = write("6_src_4x2.nv12", {1, 2, 3});
  const Result result = run({"view", bad, good});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(filesInDir(), (std::vector<std::string>{"5_src_4x2.nv12", "5_src_4x2.png", "6_src_4x2.nv12"}));
}

// Files that must be refused: one line on standard error, exit status 1, no PNG.
struct Refusal {
  const char* what;
  std::string name;
  std::vector<uint8_t> bytes;
  std::vector<std::string> options;
  std::string message;  // a part of the line
};
void PrintTo(const Refusal& r, std::ostream* os) { *os << r.what; }

class ViewRefusalTest : public ViewTest, public ::testing::WithParamInterface<Refusal> {};

TEST_P(ViewRefusalTest, SaysWhyInOneLineAndWritesNothing) {
  const Refusal& r = GetParam();
  const fs::path file = write(r.name, r.bytes);
  std::vector<std::string> args = {"view"};
  args.insert(args.end(), r.options.begin(), r.options.end());
  args.push_back(file);
  const Result result = run(args);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  ASSERT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  EXPECT_EQ(result.err.rfind("tvrtool view: " + file.string() + ": ", 0), 0u) << result.err;
  EXPECT_NE(result.err.find(r.message), std::string::npos) << result.err;
  EXPECT_EQ(filesInDir(), std::vector<std::string>{r.name});
}

INSTANTIATE_TEST_SUITE_P(
    Files, ViewRefusalTest,
    ::testing::Values(
        Refusal{"Truncated",
                "5_src_4x2.nv12",
                {16, 16, 235, 235, 126},
                {},
                "5 bytes, but nv12 4x2, stride 4 takes 12 (truncated?)"},
        Refusal{"Empty", "5_src_4x2.nv12", {}, {}, "the file is empty"},
        Refusal{"TooLong", "rgb_1x1.raw", {1, 2, 3, 4}, {}, "4 bytes, but rgb 1x1, stride 3 takes 3"},
        Refusal{"MislabelledAsRgb", "5_src_4x2.rgb", nv12Frame(), {}, "not a multiple of 3"},
        Refusal{"MislabelledSize", "5_src_8x2.nv12", nv12Frame(), {}, "takes 24 (truncated?)"},
        Refusal{"UnknownExtension", "5_src_4x2.jpg", nv12Frame(), {}, "cannot tell the format from the name"},
        Refusal{"PaddedHostFrame", "5_src_4x2.nv12", std::vector<uint8_t>(24), {}, "it would fit --scanline 4"},
        Refusal{"ItselfAsOutput",
                "picture.png",
                nv12Frame(),
                {"--format=y", "--width=4", "--height=3"},
                "would overwrite the file itself"}),
    [](const auto& tested) { return std::string(tested.param.what); });

TEST_F(ViewTest, WrongUsageExitsWithTwo) {
  const fs::path dump = write("5_src_4x2.nv12", nv12Frame());
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{{"view"},
                                                                                    {"view", "--colour", dump},
                                                                                    {"view", "--width", "abc", dump},
                                                                                    {"view", "--width", "0", dump},
                                                                                    {"view", "--format", "png", dump},
                                                                                    {"view", "-o", "a.png", dump, dump},
                                                                                    {"look"},
                                                                                    {},
                                                                                    {"--frobnicate"},
                                                                                    {"help", "look"}}) {
    const Result result = run(args);
    EXPECT_EQ(result.status, 2) << (args.empty() ? "" : args.back());
    EXPECT_NE(result.err.find("Try 'tvrtool"), std::string::npos) << result.err;
  }
  EXPECT_EQ(filesInDir(), std::vector<std::string>{"5_src_4x2.nv12"});
}

TEST_F(ViewTest, HelpIsShownOnStandardOutput) {
  const Result top = run({"--help"});
  EXPECT_EQ(top.status, 0);
  EXPECT_EQ(top.out.rfind("Usage: tvrtool COMMAND", 0), 0u) << top.out;
  EXPECT_NE(top.out.find("  view    "), std::string::npos);
  EXPECT_EQ(run({"help"}).out, top.out);

  const Result view = run({"view", "--help"});
  EXPECT_EQ(view.status, 0);
  EXPECT_EQ(view.out.rfind("Usage: tvrtool view [OPTION]... FILE...", 0), 0u) << view.out;
  for (const char* part : {"Options:", "Examples:", "Exit status:", "--scanline"}) {
    EXPECT_NE(view.out.find(part), std::string::npos) << part;
  }
  EXPECT_EQ(run({"help", "view"}).out, view.out);
  EXPECT_EQ(run({"view", "-h", "whatever.nv12"}).out, view.out);
}

}  // namespace

int main(int argc, char** argv) { return tvrtool::test::toolTestMain(argc, argv); }
