// The frames `tvrtool run` reads before the first apply: Y4M streams and folders of NV12 and PNG
// files, and what each refuses (NV12 files of several frames: RunEndToEndTest).
#include <gtest/gtest.h>

#include <sstream>

#include "FrameLoader.h"
#include "PngFile.h"
#include "ToolProcess.h"
#include "Y4mFile.h"

namespace {

using tvrtool::Nv12Frame;

// A 4x2 stream: luma 1..8, Cb 20 and 21, Cr 30 and 31 per frame (plus the frame's index).
std::string y4m(const std::string& header, int frames) {
  std::string stream = header + "\n";
  for (int i = 0; i < frames; ++i) stream += "FRAME Ixyz\n" + std::string{1, 2, 3, 4, 5, 6, 7, 8, 20, 21, 30, 31};
  return stream;
}

std::optional<std::vector<Nv12Frame>> readY4m(const std::string& stream, uint32_t maxFrames, std::string& error) {
  std::istringstream in(stream);
  return tvrtool::readY4m(in, maxFrames, error);
}

TEST(Y4mTest, PlanarFramesBecomeNv12AndTheCountMayBeCut) {
  std::string error;
  const auto frames = readY4m(y4m("YUV4MPEG2 W4 H2 F30:1 Ip A1:1 C420mpeg2 XYSCSS=420MPEG2", 3), 2, error);
  ASSERT_TRUE(frames) << error;
  ASSERT_EQ(frames->size(), 2u);
  const Nv12Frame& frame = frames->back();
  EXPECT_EQ(frame.width * 1000 + frame.height * 100 + frame.stride * 10 + frame.scanline, 4242u);
  EXPECT_EQ(frame.bytes, (std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 7, 8, 20, 30, 21, 31}));
  for (const char* tag : {"C420jpeg", "C420paldv", "C420", ""}) {
    EXPECT_TRUE(readY4m(y4m(std::string("YUV4MPEG2 W4 H2 ") + tag, 1), 1, error)) << tag << ": " << error;
  }
}

TEST(Y4mTest, RefusesWhatIsNotAWholeStreamOfEven420Frames) {
  const std::pair<std::string, std::string> cases[] = {
      {"YUV4MPEG W4 H2\n", "not a YUV4MPEG2 stream"},
      {y4m("YUV4MPEG2 W4 H2 C422", 1), "the frames are C422, not 4:2:0"},
      {y4m("YUV4MPEG2 W4 H2 C420p10", 1), "not 4:2:0"},
      {y4m("YUV4MPEG2 W4", 1), "no width (W) or height (H)"},
      {y4m("YUV4MPEG2 W3 H2", 1), "the frames are 3x2: NV12 needs an even width and height"},
      {y4m("YUV4MPEG2 W4 H2", 2).substr(0, 54), "frame 2 holds 4 of its 12 bytes (truncated)"},
      {y4m("YUV4MPEG2 W4 H2", 1) + "FRAMES\n", "frame 2 does not start with a FRAME line"},
      {y4m("YUV4MPEG2 W4 H2", 0), "the stream holds no frames"},
  };
  for (const auto& [stream, message] : cases) {
    std::string error;
    EXPECT_FALSE(readY4m(stream, 10, error)) << message;
    EXPECT_NE(error.find(message), std::string::npos) << error;
  }
}

class FrameLoaderTest : public tvrtool::test::CaseFolderTest {
 protected:
  std::optional<tvrtool::FrameSequence> load(const std::string& name) { return tvrtool::loadFrames(path(name), {}, 10, error); }
  // A gray picture of the given size, written as PNG.
  void writePng(const std::string& name, uint32_t width, uint32_t height) {
    std::filesystem::create_directories((dir / name).parent_path());
    EXPECT_EQ(tvrtool::writePng(path(name), {width, height, 1, std::vector<uint8_t>(size_t{width} * height, 128)}), "");
  }

  std::string error;
};

TEST_F(FrameLoaderTest, FolderGivesItsNv12AndPngFramesInNameOrderAndRefusesMixedSizes) {
  writePng("frames/b.png", 5, 3);  // cut to 4x2
  write("frames/a_4x2.nv12", std::string(24, 'a'));
  write("frames/input_param.csv", "left out");
  const auto sequence = load("frames");
  ASSERT_TRUE(sequence) << error;
  ASSERT_EQ(sequence->frames.size(), 3u);
  EXPECT_EQ(sequence->frames[0].bytes[0], 'a');
  EXPECT_EQ(sequence->frames[2].bytes[0], 126);  // gray 128 as BT.601 video-range luma
  EXPECT_NE(sequence->description.find("3 frames of NV12 4x2"), std::string::npos) << sequence->description;
  EXPECT_NE(sequence->description.find("1 other files left out"), std::string::npos) << sequence->description;

  writePng("frames/c.png", 6, 2);
  EXPECT_FALSE(load("frames"));
  EXPECT_NE(error.find("frames of mixed sizes: a_4x2.nv12 is 4x2 (stride 4, scanline 2) but c.png is 6x2"), std::string::npos)
      << error;
  std::filesystem::create_directories(dir / "empty");
  EXPECT_FALSE(load("empty"));
  EXPECT_NE(error.find("holds no frames"), std::string::npos) << error;
}

}  // namespace
