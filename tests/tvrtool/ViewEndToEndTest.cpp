// `tvrtool view` as a camera engineer runs it, on files written as the library writes them; its
// PNGs read back with libpng. What a layout or a size means is LayoutTest's; this is the program.
#include <gtest/gtest.h>

#include <algorithm>

#include "PngFile.h"
#include "ToolProcess.h"

namespace {

namespace fs = std::filesystem;
using tvrtool::test::Result;

class ViewTest : public tvrtool::test::CaseFolderTest {
 protected:
  std::vector<std::string> files() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  // 4x2 NV12 as createImageBuf allocates it: a red chroma pair on the left half and a neutral one
  // on the right, over luma rows of 16/235 and 126.
  const std::string nv12 = {16, 16, '\xEB', '\xEB', 126, 126, 126, 126, 64, '\xC8', '\x80', '\x80'};
};

TEST_F(ViewTest, DumpsBecomePngsBesideThemAndBadOnesAreRefusedInOneLine) {
  const std::string good = write("5000000000_src_4x2.nv12", nv12), bad = write("6_src_4x2.nv12", nv12.substr(0, 5));
  const Result result = tool({"view", bad, good});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, path("5000000000_src_4x2.png") + ": nv12 4x2, stride 4\n");
  EXPECT_EQ(result.toolErrors(),
            std::vector<std::string>{"tvrtool view: " + bad + ": the file has 5 bytes, but nv12 4x2, stride 4 takes 12 (truncated?)"});
  EXPECT_EQ(files(), (std::vector<std::string>{"5000000000_src_4x2.nv12", "5000000000_src_4x2.png", "6_src_4x2.nv12"}));
  tvrtool::DisplayImage png;
  ASSERT_EQ(tvrtool::readPng(path("5000000000_src_4x2.png"), png), "");
  // BT.601 video range: the red pair gives 115,0,0 over luma 16 and 243,95,0 over 126.
  EXPECT_EQ(png.pixels, (std::vector<uint8_t>{115, 0,  0, 115, 0,  0, 255, 255, 255, 255, 255, 255,  //
                                              243, 95, 0, 243, 95, 0, 128, 128, 128, 128, 128, 128}));
}

TEST_F(ViewTest, OutputGoesWhereDashOrAPathSaysButNeverOverTheInput) {
  const std::string dump = write("5_y_4x2.y", std::string(8, 'a'));
  const Result piped = tool({"view", "-o", "-", dump});
  ASSERT_EQ(piped.status, 0) << piped.err;
  EXPECT_EQ(piped.out.substr(1, 3), "PNG");
  const Result itself = tool({"view", "--format=y", "--width=4", "--height=2", "-o", dump, dump});
  EXPECT_EQ(itself.status, 1);
  EXPECT_NE(itself.err.find("would overwrite the file itself"), std::string::npos) << itself.err;
  EXPECT_EQ(files(), std::vector<std::string>{"5_y_4x2.y"});
}

TEST_F(ViewTest, WrongUsageExitsWithTwoAndHelpWithZero) {
  const std::string dump = write("5_src_4x2.nv12", nv12);
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
           {"view"}, {"view", "--colour", dump}, {"view", "--width", "0", dump}, {"view", "--format", "png", dump},
           {"view", "-o", "a.png", dump, dump}, {"look"}, {}, {"help", "look"}}) {
    const Result result = tool(args);
    EXPECT_EQ(result.status, 2) << (args.empty() ? "" : args.back());
    EXPECT_NE(result.err.find("Try 'tvrtool"), std::string::npos) << result.err;
  }
  const Result help = tool({"help", "view"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.out.rfind("Usage: tvrtool view [OPTION]... FILE...", 0), 0u) << help.out;
  EXPECT_EQ(tool({"view", "-h", dump}).out, help.out);
  EXPECT_EQ(files(), std::vector<std::string>{"5_src_4x2.nv12"});
}

}  // namespace
