#include <string>

#include "DlSystem/PlatformConfig.h"
#include "StandIn.h"

namespace standin {
namespace {

class BuilderTest : public StandInTest {};

TEST_F(BuilderTest, RunsOnTheFirstAvailableRuntimeOfTheOrder) {
  auto available = [](Snpe_Runtime_t runtime) {
    return Snpe_Util_IsRuntimeAvailableCheckOption(runtime, SNPE_RUNTIME_CHECK_OPTION_DEFAULT) != 0;
  };
  EXPECT_TRUE(available(SNPE_RUNTIME_CPU));
  EXPECT_FALSE(available(SNPE_RUNTIME_DSP));
  snpe_stub::setRuntimeAvailable(SNPE_RUNTIME_DSP, true);
  EXPECT_TRUE(available(SNPE_RUNTIME_DSP));
  EXPECT_FALSE(available(SNPE_RUNTIME_GPU));

  Network dsp = build(kMeanModel, {SNPE_RUNTIME_GPU, SNPE_RUNTIME_DSP, SNPE_RUNTIME_CPU});
  Network cpu = build(kMeanModel, {SNPE_RUNTIME_GPU, SNPE_RUNTIME_CPU, SNPE_RUNTIME_DSP});
  Network unordered = build(kMeanModel);
  ASSERT_TRUE(dsp && cpu && unordered);
  EXPECT_EQ(snpe_stub::networkSettings(dsp.get())->runtime, SNPE_RUNTIME_DSP);
  EXPECT_EQ(snpe_stub::networkSettings(cpu.get())->runtime, SNPE_RUNTIME_CPU);
  EXPECT_EQ(snpe_stub::networkSettings(unordered.get())->runtime, SNPE_RUNTIME_CPU);
  snpe_stub::reset();
  EXPECT_FALSE(available(SNPE_RUNTIME_DSP));
}

TEST_F(BuilderTest, FailsWhenNoRuntimeOfTheOrderIsAvailable) {
  EXPECT_FALSE(build(kMeanModel, {SNPE_RUNTIME_DSP, SNPE_RUNTIME_GPU}));
  EXPECT_NE(lastError().find("none of the runtimes 2, 1 is available"), std::string::npos) << lastError();
  snpe_stub::setRuntimeAvailable(SNPE_RUNTIME_CPU, false);
  EXPECT_FALSE(build(kMeanModel)) << "the default order is the CPU";
}

TEST_F(BuilderTest, OutputLayersChooseTheNetworksOutputs) {
  Container container = openText(kCopyModel);
  Builder builder(Snpe_SNPEBuilder_Create(container.get()));
  StringList layers(Snpe_StringList_Create());
  ASSERT_EQ(Snpe_StringList_Append(layers.get(), "side"), SNPE_SUCCESS);
  ASSERT_EQ(Snpe_SNPEBuilder_SetOutputLayers(builder.get(), layers.get()), SNPE_SUCCESS);
  ASSERT_EQ(Snpe_StringList_Append(layers.get(), "in"), SNPE_SUCCESS);  // the builder kept a copy
  Network side(Snpe_SNPEBuilder_Build(builder.get()));
  ASSERT_TRUE(side) << lastError();
  StringList names(Snpe_SNPE_GetOutputTensorNames(side.get()));
  EXPECT_EQ(strings(names.get()), std::vector<std::string>{"side"});

  // An input, or a name the model does not have, is no output layer.
  for (const char* wrong : {"in", "nope"}) {
    StringList bad(Snpe_StringList_Create());
    Snpe_StringList_Append(bad.get(), "out");
    Snpe_StringList_Append(bad.get(), wrong);
    ASSERT_EQ(Snpe_SNPEBuilder_SetOutputLayers(builder.get(), bad.get()), SNPE_SUCCESS);
    EXPECT_EQ(Snpe_SNPEBuilder_Build(builder.get()), nullptr) << wrong;
    EXPECT_NE(lastError().find("'" + std::string(wrong) + "' is not an output of model copy-2.1"), std::string::npos)
        << lastError();
  }

  StringList none(Snpe_StringList_Create());
  ASSERT_EQ(Snpe_SNPEBuilder_SetOutputLayers(builder.get(), none.get()), SNPE_SUCCESS);
  Network all(Snpe_SNPEBuilder_Build(builder.get()));
  StringList allNames(Snpe_SNPE_GetOutputTensorNames(all.get()));
  EXPECT_EQ(strings(allNames.get()), (std::vector<std::string>{"out", "side"}));
}

TEST_F(BuilderTest, NetworkKeepsEverySettingOfItsBuilder) {
  snpe_stub::setRuntimeAvailable(SNPE_RUNTIME_GPU, true);
  Container container = openText(kMeanModel);
  Builder builder(Snpe_SNPEBuilder_Create(container.get()));
  container.reset();  // the builder does not need it any more
  RuntimeList runtimes(Snpe_RuntimeList_Create());
  Snpe_RuntimeList_Add(runtimes.get(), SNPE_RUNTIME_GPU);
  Snpe_RuntimeList_Add(runtimes.get(), SNPE_RUNTIME_CPU);
  Owned<Snpe_PlatformConfig_Delete> config(Snpe_PlatformConfig_Create());
  ASSERT_EQ(Snpe_PlatformConfig_SetPlatformOptions(config.get(), "unsignedPD:ON"), 1);
  StringList layers(Snpe_StringList_Create());
  Snpe_StringList_Append(layers.get(), "mean");
  Snpe_SNPEBuilder_Handle_t b = builder.get();
  const Snpe_ErrorCode_t results[] = {Snpe_SNPEBuilder_SetRuntimeProcessorOrder(b, runtimes.get()),
                                      Snpe_SNPEBuilder_SetPerformanceProfile(b, SNPE_PERFORMANCE_PROFILE_BURST),
                                      Snpe_SNPEBuilder_SetProfilingLevel(b, SNPE_PROFILING_LEVEL_DETAILED),
                                      Snpe_SNPEBuilder_SetExecutionPriorityHint(b, SNPE_EXECUTION_PRIORITY_HIGH),
                                      Snpe_SNPEBuilder_SetDebugMode(b, 1),
                                      Snpe_SNPEBuilder_SetOutputLayers(b, layers.get()),
                                      Snpe_SNPEBuilder_SetUseUserSuppliedBuffers(b, 1),
                                      Snpe_SNPEBuilder_SetPlatformConfig(b, config.get())};
  for (Snpe_ErrorCode_t result : results) EXPECT_EQ(result, SNPE_SUCCESS);
  Network network(Snpe_SNPEBuilder_Build(b));
  builder.reset();
  ASSERT_TRUE(network) << lastError();

  const auto settings = snpe_stub::networkSettings(network.get());
  ASSERT_TRUE(settings);
  EXPECT_EQ(settings->modelVersion, "mean-colour-1.0");
  EXPECT_EQ(settings->runtime, SNPE_RUNTIME_GPU);
  EXPECT_EQ(settings->runtimeOrder, (std::vector<Snpe_Runtime_t>{SNPE_RUNTIME_GPU, SNPE_RUNTIME_CPU}));
  EXPECT_EQ(settings->performanceProfile, SNPE_PERFORMANCE_PROFILE_BURST);
  EXPECT_EQ(settings->profilingLevel, SNPE_PROFILING_LEVEL_DETAILED);
  EXPECT_EQ(settings->executionPriority, SNPE_EXECUTION_PRIORITY_HIGH);
  EXPECT_TRUE(settings->debugMode);
  EXPECT_TRUE(settings->useUserSuppliedBuffers);
  EXPECT_EQ(settings->outputLayers, std::vector<std::string>{"mean"});
  EXPECT_EQ(settings->platformOptions, std::vector<std::string>{"unsignedPD:ON"});
  EXPECT_FALSE(snpe_stub::networkSettings(runtimes.get())) << "not a network";
}

TEST_F(BuilderTest, SettersRefuseForeignHandlesAndValuesOutsideTheEnumeration) {
  Container container = openText(kMeanModel);
  Builder builder(Snpe_SNPEBuilder_Create(container.get()));
  EXPECT_EQ(Snpe_SNPEBuilder_SetPerformanceProfile(builder.get(), static_cast<Snpe_PerformanceProfile_t>(10)),
            SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
  EXPECT_EQ(Snpe_SNPEBuilder_SetDebugMode(container.get(), 1), SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  EXPECT_EQ(Snpe_SNPEBuilder_SetRuntimeProcessorOrder(builder.get(), container.get()), SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  EXPECT_EQ(Snpe_SNPEBuilder_Create(builder.get()), nullptr);
}

TEST_F(BuilderTest, PlatformOptionsMustBeKeywordColonValue) {
  Owned<Snpe_PlatformConfig_Delete> config(Snpe_PlatformConfig_Create());
  EXPECT_EQ(Snpe_PlatformConfig_SetPlatformOptions(config.get(), "unsignedPD:OFF"), 1);
  for (const char* bad : {"", "unsignedPD", "unsignedPD:", ":ON", "unsigned PD:ON"}) {
    EXPECT_EQ(Snpe_PlatformConfig_SetPlatformOptions(config.get(), bad), 0) << '"' << bad << '"';
  }
  EXPECT_EQ(Snpe_PlatformConfig_SetPlatformOptions(config.get(), nullptr), 0);
}

}  // namespace
}  // namespace standin
