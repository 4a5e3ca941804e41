// The messages users rely on: engineers search the Android log for them, so their words (misspellings
// included), their tags and the facts they carry stay as they are. One row per message: what makes
// the library write it, and the record it writes. The logger's own messages are in
// OncePerProcessTest.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "DeviceFiles.h"
#include "Images.h"
#include "LogCapture.h"
#include "RecordingProcessing.h"
#include "SlotNetworks.h"
#include "TivoraUtil.h"
#include "fastcv_stub/FastcvControl.h"
#include "snpe_stub/SnpeControl.h"

namespace {

using tivora::test::Nv12Frame;
using tivora::test::Plane;

const std::string kCamera = tivora::paths::kVendorCameraDir;

// What the rows act on: a bound processing, one that is not, the manager, a model.
struct World {
  tivora::test::RecordingProcessing bound, unbound;
  tivora::SNPEMgr* manager = tivora::SNPEMgr::getInstance();
  tivora::SNPEParam param = tivora::test::paramFor(tivora::test::writeModel("mean.dlc", tivora::test::kMeanModel));
  std::vector<std::string> layers;
  int record = 0;  // any record will do where only its presence counts
  unsigned char* data = nullptr;

  World() { unbound.unbind(); }
  ~World() {
    for (unsigned int slot = 0; slot < 40; ++slot) manager->deleteSNPE(slot);
    snpe_stub::reset();
    fastcv_stub::reset();
    fastcv_stub::setOperationModeResult(0);
  }
  tvr_err_t create(unsigned int slot) { return manager->createSNPE(slot, param, layers); }
  tvr_err_t create(unsigned int slot, const std::string& model) {
    param = tivora::test::paramFor(model);
    return create(slot);
  }
  static void loadDebug(const std::string& content) {
    tivora::test::writeFile(kCamera + "/Debug.dat", content);
    tivora::TivoraBase::DebugBase().loadConfig("Debug.dat");
  }
};

struct Message {
  std::string text;  // the whole record; its tag gives the priority
  std::function<void(World&)> cause;
};

const std::string kBase = "RecordingProcessing.";

// clang-format off
const Message kMessages[] = {
    {"[TVR ERROR] " + kBase + "setup: Tivora is not ready", [](World& w) { w.unbound.setup(nullptr); }},
    {"[TVR ERROR] " + kBase + "setup: Create parameter is null", [](World& w) { w.bound.setup(nullptr); }},
    {"[TVR ERROR] " + kBase + "initialize: Static parameter is null", [](World& w) { w.bound.initialize(nullptr); }},
    {"[TVR ERROR] " + kBase + "initialize: Failed to set fastCV operation mode",
     [](World& w) { fastcv_stub::setOperationModeResult(1); w.bound.initialize(&w.record); }},
    {"[TVR ERROR] " + kBase + "apply: Input parameter is null",
     [](World& w) { w.bound.apply(nullptr, nullptr, nullptr); }},
    {"[TVR ERROR] " + kBase + "apply: Output parameter is null",
     [](World& w) { w.bound.apply(&w.record, nullptr, nullptr); }},
    {"[TVR ERROR] SNPEMgr.createSNPE: [7] SNPE Mgr is null",
     [](World& w) { w.unbound.createSNPE(7, w.param, w.layers); }},
    {"[TVR ERROR] TivoraBase.createSNPEInternal: DLC file(" + kCamera + "/none.dlc) is invalid",
     [](World& w) { w.create(1, kCamera + "/none.dlc"); }},
    {"[TVR ERROR] TivoraBase.createSNPEInternal: Container open failed",
     [](World& w) { w.create(1, tivora::test::writeModel("bad.dlc", "no model\n")); }},
    {"[TVR ERROR] TivoraBase.createSNPEInternal: Runtime(4) is not available",
     [](World& w) { w.param.runtime = TVR_RUNTIME_AIP; w.create(1); }},
    {"[TVR ERROR] SNPEMgr.execute: Invarid class ID: 40", [](World& w) { w.manager->execute(40); }},
    {"[TVR ERROR] SNPEMgr.execute: [5] SNPE instance(0x1) is not available", [](World& w) { w.manager->execute(5); }},
    {"[TVR ERROR] SNPEMgr.execute: [5] SNPE execution failed(out of memory)",
     [](World& w) { w.create(5); tivora::test::SlotBuffers buffers(w.manager, 5);
                    snpe_stub::failCall("Snpe_SNPE_ExecuteUserBuffers", 1, "out of memory"); w.manager->execute(5); }},
    {"[TVR ERROR] " + kBase + "splitYUV420SP: Invarid CC size,source(64 x 32) dstination(64 x 30)",
     [](World& w) { Nv12Frame frame(64, 32, 64, 0, 0, 0); Plane cc(64, 15);
                    w.bound.splitYUV420SP(&frame.record, &frame.record, cc.get()); }},
    // The planar split checks the sizes before the format.
    {"[TVR ERROR] " + kBase + "splitYUV420P: Source image size(64 x 32) and destination Y size(32 x 16) not equal",
     [](World& w) { Nv12Frame frame(64, 32, 64, 0, 0, 0); Plane y(32, 16);
                    w.bound.splitYUV420P(&frame.record, y.get(), y.get(), y.get()); }},
    {"[TVR ERROR] TivoraUtil.readFromFile: Cannot open file(" + kCamera + "/none.bin)",
     [](World& w) { tivora::readFromFile((kCamera + "/none.bin").c_str(), &w.data, &w.record); }},
    {"[TVR DEBUG] DebugBase.loadConfig: Debug is enabled", [](World&) { World::loadDebug("A=1\n"); }},
};
// clang-format on

using MessagesTest = tivora::test::DeviceTest;

TEST_F(MessagesTest, EachIsWrittenWithItsPriority) {
  const tivora::test::ScopedLogLevel everything(tivora::TivoraLogger::TVR_LOG_VERBOSE);
  for (const Message& message : kMessages) {
    tivora::test::wipeDevice();
    World world;
    tivora::test::LogCapture capture;
    message.cause(world);
    const auto records = capture.records();
    const auto found =
        std::find_if(records.begin(), records.end(), [&](const auto& r) { return r.text == message.text; });
    ASSERT_NE(found, records.end()) << message.text << "\nis not among\n" << testing::PrintToString(capture.texts());
    const std::string tag = message.text.substr(5, message.text.find(']') - 5);
    EXPECT_EQ(found->priority, tag == "ERROR" ? 6 : tag == "WARN" ? 5 : tag == "INFO" ? 4 : 3) << message.text;
    EXPECT_EQ(found->tag, "TVR");
  }
}

}  // namespace
