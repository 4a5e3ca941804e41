#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>

#include "DlSystem/PlatformConfig.h"
#include "StandIn.h"

namespace standin {
namespace {

using snpe_stub::Kind;

class ControlTest : public StandInTest {};

// One live object of every kind and a network ready to run, for calls that need real arguments.
struct World {
  float in[6] = {};
  float out[6] = {};
  float side[4] = {};
  Network network = build(kCopyModel);
  Container container = openText(kCopyModel);
  Builder builder{Snpe_SNPEBuilder_Create(container.get())};
  RuntimeList runtimes{Snpe_RuntimeList_Create()};
  StringList strings{Snpe_StringList_Create()};
  Owned<Snpe_PlatformConfig_Delete> config{Snpe_PlatformConfig_Create()};
  Encoding encoding{Snpe_UserBufferEncodingFloat_Create()};
  UserBuffer inBuffer = floatBuffer(in, sizeof in, {12, 4});
  UserBuffer outBuffer = floatBuffer(out, sizeof out, {8, 4});
  UserBuffer sideBuffer = floatBuffer(side, sizeof side, {4});
  Shape shape{Snpe_SNPE_GetInputDimensions(network.get(), "in")};
  BufferMap inputs{Snpe_UserBufferMap_Create()};
  BufferMap outputs{Snpe_UserBufferMap_Create()};

  World() {
    Snpe_StringList_Append(strings.get(), "out");
    Snpe_RuntimeList_Add(runtimes.get(), SNPE_RUNTIME_CPU);
    Snpe_UserBufferMap_Add(inputs.get(), "in", inBuffer.get());
    Snpe_UserBufferMap_Add(outputs.get(), "out", outBuffer.get());
    Snpe_UserBufferMap_Add(outputs.get(), "side", sideBuffer.get());
  }
};

// A function that makes objects and the function that deletes them.
struct Lifecycle {
  const char* create;
  const char* destroy;
  std::function<void*(World&)> make;
  Snpe_ErrorCode_t (*release)(void*);
};

// Any other function: calls it, true when it reported a failure.
struct Query {
  const char* name;
  std::function<bool(World&)> failed;
};

TEST_F(ControlTest, EveryFunctionFailsOnceWhenScripted) {
  static const std::string path = writeFile("control.dlc", kNoneModel);
  static const std::string text = kNoneModel;
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  const Lifecycle lifecycles[] = {
      {"Snpe_DlContainer_Open", "Snpe_DlContainer_Delete", [](World&) { return Snpe_DlContainer_Open(path.c_str()); },
       Snpe_DlContainer_Delete},
      {"Snpe_DlContainer_OpenBuffer", "Snpe_DlContainer_Delete",
       [&](World&) { return Snpe_DlContainer_OpenBuffer(bytes, text.size()); }, Snpe_DlContainer_Delete},
      {"Snpe_SNPEBuilder_Create", "Snpe_SNPEBuilder_Delete",
       [](World& w) { return Snpe_SNPEBuilder_Create(w.container.get()); }, Snpe_SNPEBuilder_Delete},
      {"Snpe_SNPEBuilder_Build", "Snpe_SNPE_Delete", [](World& w) { return Snpe_SNPEBuilder_Build(w.builder.get()); },
       Snpe_SNPE_Delete},
      {"Snpe_RuntimeList_Create", "Snpe_RuntimeList_Delete", [](World&) { return Snpe_RuntimeList_Create(); },
       Snpe_RuntimeList_Delete},
      {"Snpe_StringList_Create", "Snpe_StringList_Delete", [](World&) { return Snpe_StringList_Create(); },
       Snpe_StringList_Delete},
      {"Snpe_SNPE_GetInputTensorNames", "Snpe_StringList_Delete",
       [](World& w) { return Snpe_SNPE_GetInputTensorNames(w.network.get()); }, Snpe_StringList_Delete},
      {"Snpe_SNPE_GetOutputTensorNames", "Snpe_StringList_Delete",
       [](World& w) { return Snpe_SNPE_GetOutputTensorNames(w.network.get()); }, Snpe_StringList_Delete},
      {"Snpe_UserBufferMap_GetUserBufferNames", "Snpe_StringList_Delete",
       [](World& w) { return Snpe_UserBufferMap_GetUserBufferNames(w.inputs.get()); }, Snpe_StringList_Delete},
      {"Snpe_PlatformConfig_Create", "Snpe_PlatformConfig_Delete", [](World&) { return Snpe_PlatformConfig_Create(); },
       Snpe_PlatformConfig_Delete},
      {"Snpe_UserBufferMap_Create", "Snpe_UserBufferMap_Delete", [](World&) { return Snpe_UserBufferMap_Create(); },
       Snpe_UserBufferMap_Delete},
      {"Snpe_UserBufferEncodingFloat_Create", "Snpe_UserBufferEncodingFloat_Delete",
       [](World&) { return Snpe_UserBufferEncodingFloat_Create(); }, Snpe_UserBufferEncodingFloat_Delete},
      {"Snpe_Util_CreateUserBuffer", "Snpe_IUserBuffer_Delete",
       [](World& w) { return Snpe_Util_CreateUserBuffer(w.in, sizeof w.in, w.shape.get(), w.encoding.get()); },
       Snpe_IUserBuffer_Delete},
      {"Snpe_TensorShape_CreateDimsSize", "Snpe_TensorShape_Delete",
       [](World&) { return Snpe_TensorShape_CreateDimsSize(nullptr, 0); }, Snpe_TensorShape_Delete},
      {"Snpe_SNPE_GetInputDimensions", "Snpe_TensorShape_Delete",
       [](World& w) { return Snpe_SNPE_GetInputDimensions(w.network.get(), "in"); }, Snpe_TensorShape_Delete},
  };
  auto code = [](Snpe_ErrorCode_t result) { return result != SNPE_SUCCESS; };
  const Query queries[] = {
      {"Snpe_ErrorCode_GetLastErrorString", [](World&) { return *Snpe_ErrorCode_GetLastErrorString() == '\0'; }},
      {"Snpe_Util_InitializeLogging", [](World&) { return Snpe_Util_InitializeLogging(SNPE_LOG_LEVEL_WARN) == 0; }},
      {"Snpe_Util_IsRuntimeAvailableCheckOption",
       [](World&) {
         return !Snpe_Util_IsRuntimeAvailableCheckOption(SNPE_RUNTIME_CPU, SNPE_RUNTIME_CHECK_OPTION_DEFAULT);
       }},
      {"Snpe_SNPEBuilder_SetRuntimeProcessorOrder",
       [&](World& w) { return code(Snpe_SNPEBuilder_SetRuntimeProcessorOrder(w.builder.get(), w.runtimes.get())); }},
      {"Snpe_SNPEBuilder_SetPerformanceProfile",
       [&](World& w) {
         return code(Snpe_SNPEBuilder_SetPerformanceProfile(w.builder.get(), SNPE_PERFORMANCE_PROFILE_BURST));
       }},
      {"Snpe_SNPEBuilder_SetProfilingLevel",
       [&](World& w) { return code(Snpe_SNPEBuilder_SetProfilingLevel(w.builder.get(), SNPE_PROFILING_LEVEL_OFF)); }},
      {"Snpe_SNPEBuilder_SetExecutionPriorityHint",
       [&](World& w) {
         return code(Snpe_SNPEBuilder_SetExecutionPriorityHint(w.builder.get(), SNPE_EXECUTION_PRIORITY_LOW));
       }},
      {"Snpe_SNPEBuilder_SetDebugMode",
       [&](World& w) { return code(Snpe_SNPEBuilder_SetDebugMode(w.builder.get(), 0)); }},
      {"Snpe_SNPEBuilder_SetOutputLayers",
       [&](World& w) { return code(Snpe_SNPEBuilder_SetOutputLayers(w.builder.get(), w.strings.get())); }},
      {"Snpe_SNPEBuilder_SetUseUserSuppliedBuffers",
       [&](World& w) { return code(Snpe_SNPEBuilder_SetUseUserSuppliedBuffers(w.builder.get(), 1)); }},
      {"Snpe_SNPEBuilder_SetPlatformConfig",
       [&](World& w) { return code(Snpe_SNPEBuilder_SetPlatformConfig(w.builder.get(), w.config.get())); }},
      {"Snpe_SNPE_ExecuteUserBuffers",
       [&](World& w) { return code(Snpe_SNPE_ExecuteUserBuffers(w.network.get(), w.inputs.get(), w.outputs.get())); }},
      {"Snpe_SNPE_GetModelVersion", [](World& w) { return !Snpe_SNPE_GetModelVersion(w.network.get()); }},
      {"Snpe_RuntimeList_Add",
       [&](World& w) { return code(Snpe_RuntimeList_Add(w.runtimes.get(), SNPE_RUNTIME_GPU)); }},
      {"Snpe_RuntimeList_Size", [](World& w) { return Snpe_RuntimeList_Size(w.runtimes.get()) == 0; }},
      {"Snpe_RuntimeList_GetRuntime",
       [](World& w) { return Snpe_RuntimeList_GetRuntime(w.runtimes.get(), 0) == SNPE_RUNTIME_UNSET; }},
      {"Snpe_StringList_Append", [&](World& w) { return code(Snpe_StringList_Append(w.strings.get(), "x")); }},
      {"Snpe_StringList_At", [](World& w) { return *Snpe_StringList_At(w.strings.get(), 0) == '\0'; }},
      {"Snpe_StringList_Size", [](World& w) { return Snpe_StringList_Size(w.strings.get()) == 0; }},
      {"Snpe_PlatformConfig_SetPlatformOptions",
       [](World& w) { return !Snpe_PlatformConfig_SetPlatformOptions(w.config.get(), "a:b"); }},
      {"Snpe_UserBufferMap_Add",
       [&](World& w) { return code(Snpe_UserBufferMap_Add(w.inputs.get(), "in", w.inBuffer.get())); }},
      {"Snpe_UserBufferMap_Size", [](World& w) { return Snpe_UserBufferMap_Size(w.inputs.get()) == 0; }},
      {"Snpe_UserBufferMap_GetUserBuffer_Ref",
       [](World& w) { return !Snpe_UserBufferMap_GetUserBuffer_Ref(w.inputs.get(), "in"); }},
      {"Snpe_IUserBuffer_GetSize", [](World& w) { return Snpe_IUserBuffer_GetSize(w.inBuffer.get()) == 0; }},
      {"Snpe_TensorShape_GetDimensions", [](World& w) { return !Snpe_TensorShape_GetDimensions(w.shape.get()); }},
      {"Snpe_TensorShape_Rank", [](World& w) { return Snpe_TensorShape_Rank(w.shape.get()) == 0; }},
      {"Snpe_TensorShape_At", [](World& w) { return Snpe_TensorShape_At(w.shape.get(), 0) == 0; }},
  };

  World world;
  ASSERT_TRUE(world.network);
  auto scripted = [](const char* name) {
    snpe_stub::failCall(name);
    return std::string(name) + ": scripted failure";
  };
  for (const Lifecycle& kind : lifecycles) {
    SCOPED_TRACE(kind.create);
    const std::string expected = scripted(kind.create);
    EXPECT_EQ(kind.make(world), nullptr);
    void* object = kind.make(world);
    ASSERT_NE(object, nullptr) << "a script made to fail once fails once";
    EXPECT_EQ(lastError(), expected);
    scripted(kind.destroy);
    EXPECT_EQ(kind.release(object), SNPE_ERRORCODE_CAPI_DELETE_FAILURE);
    EXPECT_EQ(kind.release(object), SNPE_SUCCESS) << "a failed Delete leaves its object alive";
  }
  for (const Query& query : queries) {
    SCOPED_TRACE(query.name);
    snpe_stub::setLastError("before");
    const std::string expected = scripted(query.name);
    EXPECT_TRUE(query.failed(world));
    EXPECT_EQ(lastError(), expected);
    EXPECT_FALSE(query.failed(world)) << "a script made to fail once fails once";
  }
}

TEST_F(ControlTest, ScriptsFailACountOfCallsOrAlwaysWithTheirOwnText) {
  snpe_stub::failCall("Snpe_RuntimeList_Create", 2, "no memory");
  EXPECT_EQ(Snpe_RuntimeList_Create(), nullptr);
  EXPECT_EQ(Snpe_RuntimeList_Create(), nullptr);
  EXPECT_EQ(lastError(), "no memory");
  RuntimeList third(Snpe_RuntimeList_Create());
  EXPECT_TRUE(third);

  snpe_stub::failCall("Snpe_StringList_Create", -1);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(Snpe_StringList_Create(), nullptr);
  snpe_stub::failCall("Snpe_StringList_Create", 0);
  StringList afterRemoval(Snpe_StringList_Create());
  EXPECT_TRUE(afterRemoval);
}

TEST_F(ControlTest, LastErrorIsPerThreadAndOnlyFailuresChangeIt) {
  snpe_stub::setLastError("told by the test");
  std::string other;
  std::thread([&] {
    Snpe_RuntimeList_Size(nullptr);
    other = lastError();
  }).join();
  EXPECT_EQ(other, "Snpe_RuntimeList_Size: not a runtime list");
  RuntimeList list(Snpe_RuntimeList_Create());
  EXPECT_EQ(lastError(), "told by the test");
}

std::string address(const void* p) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", p);
  return text;
}

TEST_F(ControlTest, JournalWritesEveryArgument) {
  const std::string path = writeFile("journal.dlc", kCopyModel);
  Container container(Snpe_DlContainer_Open(path.c_str()));
  Builder builder(Snpe_SNPEBuilder_Create(container.get()));
  Snpe_SNPEBuilder_SetPerformanceProfile(builder.get(), SNPE_PERFORMANCE_PROFILE_BURST);
  const size_t dims[] = {24, 8, 4};
  Shape strides(Snpe_TensorShape_CreateDimsSize(dims, 3));
  Encoding encoding(Snpe_UserBufferEncodingFloat_Create());
  float memory[24];
  UserBuffer buffer(Snpe_Util_CreateUserBuffer(memory, sizeof memory, strides.get(), encoding.get()));
  BufferMap map(Snpe_UserBufferMap_Create());
  Snpe_UserBufferMap_Add(map.get(), "in", buffer.get());
  Snpe_SNPEBuilder_Delete(nullptr);
  int notAHandle = 0;
  Snpe_StringList_Size(&notAHandle);
  Snpe_Util_IsRuntimeAvailableCheckOption(SNPE_RUNTIME_DSP, SNPE_RUNTIME_CHECK_OPTION_BASIC_CHECK);

  auto name = [](const void* handle) { return snpe_stub::handleName(handle); };
  EXPECT_EQ(name(container.get()).rfind("container#", 0), 0u);
  EXPECT_EQ(name(builder.get()).rfind("builder#", 0), 0u);
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"Snpe_DlContainer_Open", '"' + path + '"'},
      {"Snpe_SNPEBuilder_Create", name(container.get())},
      {"Snpe_SNPEBuilder_SetPerformanceProfile", name(builder.get()) + ", 5"},
      {"Snpe_TensorShape_CreateDimsSize", "[24,8,4], 3"},
      {"Snpe_UserBufferEncodingFloat_Create", ""},
      {"Snpe_Util_CreateUserBuffer", address(memory) + ", 96, " + name(strides.get()) + ", " + name(encoding.get())},
      {"Snpe_UserBufferMap_Create", ""},
      {"Snpe_UserBufferMap_Add", name(map.get()) + ", \"in\", " + name(buffer.get())},
      {"Snpe_SNPEBuilder_Delete", "null"},
      {"Snpe_StringList_Size", address(&notAHandle) + "?"},
      {"Snpe_Util_IsRuntimeAvailableCheckOption", "2, 1"},
  };
  std::vector<std::pair<std::string, std::string>> calls;
  for (const auto& call : snpe_stub::journal()) calls.emplace_back(call.name, call.args);
  EXPECT_EQ(calls, expected);

  // Names are never reused, not even for an object at the same address.
  const std::string old = name(map.get());
  map.reset();
  BufferMap next(Snpe_UserBufferMap_Create());
  EXPECT_NE(name(next.get()), old);

  snpe_stub::setJournaling(false);
  Snpe_RuntimeList_Size(nullptr);
  EXPECT_EQ(snpe_stub::journal().back().name, "Snpe_UserBufferMap_Create");
}

TEST_F(ControlTest, LiveCountsFollowEveryKindAndSurviveReset) {
  {
    World world;
    StringList names(Snpe_SNPE_GetInputTensorNames(world.network.get()));
    const std::pair<Kind, int> expected[] = {
        {Kind::Container, 1},     {Kind::RuntimeList, 1}, {Kind::StringList, 2}, {Kind::PlatformConfig, 1},
        {Kind::Builder, 1},       {Kind::Network, 1},     {Kind::UserBuffer, 3}, {Kind::Encoding, 1},
        {Kind::UserBufferMap, 2}, {Kind::TensorShape, 1},
    };
    for (const auto& [kind, count] : expected) {
      EXPECT_EQ(snpe_stub::liveCount(kind), count) << snpe_stub::kindName(kind);
    }
    snpe_stub::reset();
    EXPECT_EQ(snpe_stub::liveCount(), 14);
  }
  EXPECT_EQ(snpe_stub::liveCount(), 0);
}

TEST_F(ControlTest, DeleteRefusesNullForeignAndDeletedHandles) {
  const decltype(&Snpe_SNPE_Delete) deletes[] = {
      Snpe_DlContainer_Delete,   Snpe_RuntimeList_Delete, Snpe_StringList_Delete,  Snpe_PlatformConfig_Delete,
      Snpe_SNPEBuilder_Delete,   Snpe_SNPE_Delete,        Snpe_IUserBuffer_Delete, Snpe_UserBufferEncodingFloat_Delete,
      Snpe_UserBufferMap_Delete, Snpe_TensorShape_Delete};
  int local = 0;
  void* deleted = Snpe_PlatformConfig_Create();
  Snpe_PlatformConfig_Delete(deleted);
  Encoding encoding(Snpe_UserBufferEncodingFloat_Create());
  for (auto destroy : deletes) {
    EXPECT_EQ(destroy(nullptr), SNPE_ERRORCODE_CAPI_BAD_HANDLE);
    EXPECT_EQ(destroy(&local), SNPE_ERRORCODE_CAPI_BAD_HANDLE);
    EXPECT_EQ(destroy(deleted), SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  }
  EXPECT_EQ(snpe_stub::liveCount(Kind::Encoding), 1) << "only the encoding's own Delete releases it";
}

// Runs each of `networks` `times` times on a thread of its own, all threads starting together. The
// operator is none: the threads share the buffers but do not touch them.
void runTogether(const std::vector<Snpe_SNPE_Handle_t>& networks, int times) {
  float memory[4];
  UserBuffer buffer = floatBuffer(memory, sizeof memory, {4});
  BufferMap inputs(Snpe_UserBufferMap_Create());
  BufferMap outputs(Snpe_UserBufferMap_Create());
  Snpe_UserBufferMap_Add(inputs.get(), "in", buffer.get());
  Snpe_UserBufferMap_Add(outputs.get(), "out", buffer.get());
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  for (Snpe_SNPE_Handle_t network : networks) {
    threads.emplace_back([&, network] {
      ++ready;
      while (ready.load() < static_cast<int>(networks.size())) std::this_thread::yield();
      for (int i = 0; i < times; ++i) {
        EXPECT_EQ(Snpe_SNPE_ExecuteUserBuffers(network, inputs.get(), outputs.get()), SNPE_SUCCESS);
      }
    });
  }
  for (auto& thread : threads) thread.join();
}

TEST_F(ControlTest, CountsExecutionsInProgressOverallAndPerNetwork) {
  Network a = build(kNoneModel);
  Network b = build(kNoneModel);
  snpe_stub::setExecuteDelay(std::chrono::milliseconds(30));

  // One thread per network: the networks overlap, each one alone never does. A loaded machine
  // may start the second thread late, so try a few times.
  for (int round = 0; round < 10 && snpe_stub::maxConcurrentExecutions() < 2; ++round) {
    runTogether({a.get(), b.get()}, 3);
  }
  EXPECT_EQ(snpe_stub::maxConcurrentExecutions(), 2);
  EXPECT_EQ(snpe_stub::maxConcurrentExecutionsOfOneNetwork(), 1);
  EXPECT_EQ(snpe_stub::maxConcurrentExecutions(a.get()), 1);
  EXPECT_EQ(snpe_stub::maxConcurrentExecutions(nullptr), -1) << "not a network";

  snpe_stub::reset();
  EXPECT_EQ(snpe_stub::maxConcurrentExecutions(), 0);
  EXPECT_EQ(snpe_stub::maxConcurrentExecutions(a.get()), 0);

  // Two threads on one network: the runtime does not serialise them, the counters show it.
  snpe_stub::setExecuteDelay(std::chrono::milliseconds(30));
  for (int round = 0; round < 10 && snpe_stub::maxConcurrentExecutionsOfOneNetwork() < 2; ++round) {
    runTogether({a.get(), a.get()}, 3);
  }
  EXPECT_EQ(snpe_stub::maxConcurrentExecutionsOfOneNetwork(), 2);
  EXPECT_EQ(snpe_stub::maxConcurrentExecutions(a.get()), 2);
  EXPECT_EQ(snpe_stub::maxConcurrentExecutions(b.get()), 0);
}

}  // namespace
}  // namespace standin
