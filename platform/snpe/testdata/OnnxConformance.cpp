// How many of ONNX's backend test cases with float inputs and outputs run and match their golden
// outputs through the NN runtime's C interface, next to OpenCV DNN run directly on the same files.
// A measurement to run by hand (scripts/onnx-conformance), not a test.
//   onnx_conformance [-v] [root]      -v prints a line per case; root defaults to Debian's test data
#include <dirent.h>

#include <cstdio>
#include <cstring>
#include <opencv2/core/utils/logger.hpp>
#include <opencv2/dnn.hpp>
#include <string>
#include <vector>

#include "DlContainer/DlContainer.h"
#include "DlSystem/DlError.h"
#include "DlSystem/IUserBuffer.h"
#include "DlSystem/StringList.h"
#include "DlSystem/TensorShape.h"
#include "DlSystem/UserBufferMap.h"
#include "OnnxTestData.h"
#include "SNPE/SNPE.h"
#include "SNPE/SNPEBuilder.h"
#include "SNPE/SNPEUtil.h"

using snpe_stub::testdata::closeTo;
using snpe_stub::testdata::Golden;
using snpe_stub::testdata::TestCase;

namespace {

enum class Result { Failed, Ran, Matched };

std::vector<std::string> directories(const std::string& root) {
  std::vector<std::string> found;
  for (const char* suite : {"node", "pytorch-converted", "pytorch-operator", "simple"}) {
    const std::string parent = root + "/" + suite;
    DIR* dir = opendir(parent.c_str());
    if (dir == nullptr) continue;
    while (const dirent* entry = readdir(dir)) {
      if (entry->d_name[0] != '.') found.push_back(parent + "/" + entry->d_name);
    }
    closedir(dir);
  }
  return found;
}

// The runtime's objects of one case, released in reverse order of making.
struct Runtime {
  std::vector<std::pair<void*, Snpe_ErrorCode_t (*)(void*)>> owned;
  void* keep(void* handle, Snpe_ErrorCode_t (*release)(void*)) {
    if (handle != nullptr) owned.emplace_back(handle, release);
    return handle;
  }
  ~Runtime() {
    for (auto it = owned.rbegin(); it != owned.rend(); ++it) it->second(it->first);
  }
};

void* userBuffer(Runtime& runtime, std::vector<float>& memory, const std::vector<size_t>& dims, void* encoding) {
  std::vector<size_t> strides(dims.size());
  size_t stride = sizeof(float);
  for (size_t i = dims.size(); i-- > 0;) {
    strides[i] = stride;
    stride *= dims[i];
  }
  void* shape = runtime.keep(Snpe_TensorShape_CreateDimsSize(strides.data(), strides.size()), Snpe_TensorShape_Delete);
  return runtime.keep(Snpe_Util_CreateUserBuffer(memory.data(), memory.size() * sizeof(float), shape, encoding),
                      Snpe_IUserBuffer_Delete);
}

Result throughRuntime(const TestCase& test, std::string& why) {
  Runtime runtime;
  const auto* bytes = reinterpret_cast<const uint8_t*>(test.model.data());
  void* container = runtime.keep(Snpe_DlContainer_OpenBuffer(bytes, test.model.size()), Snpe_DlContainer_Delete);
  void* builder = container ? runtime.keep(Snpe_SNPEBuilder_Create(container), Snpe_SNPEBuilder_Delete) : nullptr;
  void* network = builder ? runtime.keep(Snpe_SNPEBuilder_Build(builder), Snpe_SNPE_Delete) : nullptr;
  if (network == nullptr) {
    why = Snpe_ErrorCode_GetLastErrorString();
    return Result::Failed;
  }
  void* encoding = runtime.keep(Snpe_UserBufferEncodingFloat_Create(), Snpe_UserBufferEncodingFloat_Delete);
  void* inputs = runtime.keep(Snpe_UserBufferMap_Create(), Snpe_UserBufferMap_Delete);
  void* outputs = runtime.keep(Snpe_UserBufferMap_Create(), Snpe_UserBufferMap_Delete);
  std::vector<std::vector<float>> memory;
  memory.reserve(test.inputs.size() + test.outputs.size());
  for (const Golden& input : test.inputs) {
    memory.push_back(input.deviceValues());
    Snpe_UserBufferMap_Add(inputs, input.name.c_str(),
                           userBuffer(runtime, memory.back(), input.deviceDims(), encoding));
  }
  for (const Golden& output : test.outputs) {
    memory.emplace_back(output.values.size(), 0.0f);
    Snpe_UserBufferMap_Add(outputs, output.name.c_str(),
                           userBuffer(runtime, memory.back(), output.deviceDims(), encoding));
  }
  if (Snpe_SNPE_ExecuteUserBuffers(network, inputs, outputs) != SNPE_SUCCESS) {
    why = Snpe_ErrorCode_GetLastErrorString();
    return Result::Failed;
  }
  for (size_t i = 0; i < test.outputs.size(); ++i) {
    if (!closeTo(memory[test.inputs.size() + i], test.outputs[i].deviceValues())) {
      why = "output '" + test.outputs[i].name + "' differs";
      return Result::Ran;
    }
  }
  return Result::Matched;
}

Result throughOpenCv(const TestCase& test, std::string& why) {
  try {
    cv::dnn::Net net = cv::dnn::readNetFromONNX(test.model.data(), test.model.size());
    for (const Golden& input : test.inputs) {
      const std::vector<int> dims(input.dims.begin(), input.dims.end());
      net.setInput(cv::Mat(dims, CV_32F, const_cast<float*>(input.values.data())), input.name);
    }
    std::vector<std::string> names;
    for (const Golden& output : test.outputs) names.push_back(output.name);
    std::vector<cv::Mat> results;
    net.forward(results, names);
    for (size_t i = 0; i < results.size(); ++i) {
      const cv::Mat flat = results[i].reshape(1, 1);
      if (!closeTo(std::vector<float>(flat.begin<float>(), flat.end<float>()), test.outputs[i].values)) {
        why = "output '" + test.outputs[i].name + "' differs";
        return Result::Ran;
      }
    }
    return Result::Matched;
  } catch (const std::exception& e) {
    why = e.what();
    why = why.substr(0, why.find('\n'));
    return Result::Failed;
  }
}

const char* word(Result result) {
  return result == Result::Matched ? "match" : result == Result::Ran ? "differ" : "fail";
}

}  // namespace

int main(int argc, char** argv) {
  bool verbose = false;
  std::string root = snpe_stub::testdata::kRoot;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "-v") == 0) {
      verbose = true;
    } else {
      root = argv[i];
    }
  }
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
  int cases = 0;
  int ran[2] = {0, 0};
  int matched[2] = {0, 0};
  for (const std::string& directory : directories(root)) {
    TestCase test;
    std::string error;
    if (!snpe_stub::testdata::readTestCase(directory, test, error)) continue;  // not a float case
    ++cases;
    std::string why[2];
    const Result results[2] = {throughRuntime(test, why[0]), throughOpenCv(test, why[1])};
    for (int k = 0; k < 2; ++k) {
      ran[k] += results[k] != Result::Failed;
      matched[k] += results[k] == Result::Matched;
    }
    if (verbose) {
      std::printf("%s: runtime %s%s%s; OpenCV %s\n", directory.c_str() + root.size() + 1, word(results[0]),
                  why[0].empty() ? "" : ": ", why[0].c_str(), word(results[1]));
    }
  }
  if (cases == 0) {
    std::fprintf(stderr, "onnx_conformance: no test cases under %s (install libonnx-testdata)\n", root.c_str());
    return 1;
  }
  std::printf("%d float test cases under %s\n", cases, root.c_str());
  std::printf("through the runtime's C interface: %d run, %d match their golden outputs\n", ran[0], matched[0]);
  std::printf("OpenCV DNN directly:               %d run, %d match their golden outputs\n", ran[1], matched[1]);
  return 0;
}
