// The sample processing's debug apply: with dumps switched on in its debug configuration, it
// writes the host's frame, the network's picture and the input record into the data directory.
// The logger reads its configuration once per process, so the case runs in a fresh process.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "FreshProcess.h"
#include "MeanColourFrames.h"
#include "MeanColourProcessing.h"
#include "SlotNetworks.h"

namespace {

namespace fs = std::filesystem;
using tivora::examples::MeanColourConfig;
using tivora::examples::MeanColourOutput;
using tivora::examples::MeanColourProcessing;

std::vector<std::string> filesIn(const std::string& dir) {
  std::vector<std::string> names;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(dir, ignored)) names.push_back(entry.path().filename().string());
  return names;
}

bool hasFileEndingIn(const std::vector<std::string>& names, const std::string& suffix, uintmax_t size,
                     const std::string& dir) {
  for (const std::string& name : names) {
    if (name.size() >= suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0) {
      return fs::file_size(dir + "/" + name) == size;
    }
  }
  return false;
}

using MeanColourDebugTest = tivora::test::DeviceTest;

TEST_F(MeanColourDebugTest, DebugApplyDumpsWhatTheProcessingSaw) {
  const std::string camera = tivora::paths::kVendorCameraDir;
  const std::string dumps = std::string(TIVORA_PATH_PREFIX) + "/dumps";
  tivora::test::writeFile(tivora::test::loggerConfigPath(camera.c_str()), "TivoraLogLevel=E\n");
  tivora::test::writeFile(camera + "/" + MeanColourProcessing::kDebugConfigFile,
                          "DataDir=" + dumps + "\nDumpSource=true\nDumpNetworkInput=true\n");
  fs::create_directories(dumps);
  tivora::test::inFreshProcess([&] {
    MeanColourConfig config;
    config.inputWidth = 16;
    config.inputHeight = 8;
    MeanColourProcessing processing(4, config);
    hvx::IProcessing& host = processing;
    const std::string model =
        tivora::test::writeModel("mean_colour.dlc", MeanColourProcessing::hostModelText(16, 8));
    tvr_create_param_t create{};
    std::snprintf(create.dlc_path[0], sizeof create.dlc_path[0], "%s", model.c_str());
    create.dlc_num = 1;
    create.use_user_buffers = true;
    ASSERT_EQ(host.setup(&create), 0);
    tvr_static_param_t stream{};
    stream.src_info = {TVR_FORMAT_NV12, {64, 48}, 80, 48};
    ASSERT_EQ(host.initialize(&stream), 0);

    const tivora::test::Nv12Frame frame(64, 48, 80, 100, 110, 120);
    const tvr_input_param_t input{TVR_ROTATION_0, &frame.record};
    MeanColourOutput output{};
    ASSERT_EQ(host.apply(&input, &output, nullptr), 0);
    EXPECT_TRUE(filesIn(dumps).empty()) << "an apply without a debug record dumps nothing";

    int debugRecord = 0;  // its contents are the host's and the processing's business
    ASSERT_EQ(host.apply(&input, &output, &debugRecord), 0);
    const std::vector<std::string> files = filesIn(dumps);
    EXPECT_EQ(files.size(), 3u);
    EXPECT_TRUE(hasFileEndingIn(files, "_source_80x48.nv12", 80 * 48 * 3 / 2, dumps));
    EXPECT_TRUE(hasFileEndingIn(files, "_network_input_48x8.rgb", 48 * 8, dumps));
    EXPECT_EQ(tivora::test::readFile(dumps + "/input_param.csv").rfind("Input parameter,\n,rotation,0\n,p_src\n", 0),
              0u);
    EXPECT_EQ(host.finalize(), 0);
    EXPECT_EQ(host.teardown(), 0);
  });
}

}  // namespace
