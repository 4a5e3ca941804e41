#include "OnnxEngine.h"

#include <onnx/onnx_pb.h>

#include <algorithm>
#include <climits>
#include <mutex>
#include <opencv2/core/utility.hpp>
#include <opencv2/core/utils/logger.hpp>
#include <opencv2/dnn.hpp>
#include <regex>

#include "Layout.h"

namespace snpe_stub::detail {
namespace {

// Once per process: the engine's own log stays quiet (its reasons reach the caller as the last
// error). Under ThreadSanitizer OpenCV runs each network on the calling thread: its worker pool
// synchronises in code the sanitizer does not see, which would read as races in ours.
void prepareEngine() {
  static std::once_flag once;
  std::call_once(once, [] {
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
#ifdef SNPE_STUB_ENGINE_ON_CALLING_THREAD
    cv::setNumThreads(0);
#endif
  });
}

// OpenCV's message on one line, without its source locations, error codes and function names.
std::string reasonOf(const cv::Exception& e) {
  static const std::regex noise(R"(OpenCV\([^)]*\) \S*: error: |\(-?\d+:[^)]*\) | in function '[^']*'|\n|> ?)");
  std::string text = std::regex_replace(e.err, noise, " ");
  text = std::regex_replace(text, std::regex(" +"), " ");
  const size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? "unknown" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// Runs `work`, which returns false with `error` set; an exception becomes `what` and its reason.
template <typename Work>
bool guarded(const char* what, std::string& error, Work work) {
  try {
    return work();
  } catch (const cv::Exception& e) {
    error = std::string(what) + ": " + reasonOf(e);
  } catch (const std::exception& e) {
    error = std::string(what) + ": " + e.what();
  } catch (...) {
    error = what;
  }
  return false;
}

std::vector<size_t> modelDims(const Tensor& tensor) {
  const std::vector<size_t>& d = tensor.dims;
  return tensor.channelsLast ? std::vector<size_t>{d[0], d[3], d[1], d[2]} : d;
}

// The model with `layers` as its graph's outputs, so that the engine gives them by name.
std::string withOutputs(const OnnxSource& source, const std::vector<std::string>& layers) {
  onnx::ModelProto proto;
  proto.ParseFromArray(source.bytes->data(), static_cast<int>(source.bytes->size()));
  onnx::GraphProto& graph = *proto.mutable_graph();
  graph.clear_output();
  for (const std::string& layer : layers) {
    onnx::ValueInfoProto& output = *graph.add_output();
    output.set_name(layer);
    output.mutable_type()->mutable_tensor_type()->set_elem_type(onnx::TensorProto::FLOAT);
    output.mutable_type()->mutable_tensor_type()->mutable_shape();  // unknown: the engine finds it
  }
  return proto.SerializeAsString();
}

class OnnxEngine : public Engine {
 public:
  bool run(const std::vector<Binding>& inputs, const std::vector<Binding>& outputs, std::string& error) override {
    return guarded("the engine failed", error, [&] {
      for (size_t i = 0; i < inputs.size(); ++i) {
        gather(inputs[i], blobs_[i].ptr<float>());
        net_.setInput(blobs_[i], inputNames_[i]);
      }
      net_.forward(results_, outputNames_);
      for (size_t i = 0; i < outputs.size(); ++i) {
        const cv::Mat& result = results_[i];
        if (result.type() != CV_32F || result.total() != outputs[i].tensor->elements || !result.isContinuous()) {
          error = "the engine computed " + std::to_string(result.total()) + " elements for '" + outputNames_[i] +
                  "', not " + std::to_string(outputs[i].tensor->elements);
          return false;
        }
        scatter(result.ptr<float>(), outputs[i]);
      }
      return true;
    });
  }

  cv::dnn::Net net_;
  std::vector<cv::Mat> blobs_;  // one per input, in the model's order and dimensions
  std::vector<std::string> inputNames_;
  std::vector<std::string> outputNames_;
  std::vector<cv::Mat> results_;
};

std::unique_ptr<Engine> build(const OnnxSource& source, const std::vector<std::string>& layers,
                              const std::vector<Tensor>& inputs, std::vector<Tensor>& produced, std::string& error) {
  auto engine = std::make_unique<OnnxEngine>();
  for (const std::string& layer : layers) {
    auto& names = engine->outputNames_;
    if (std::find(names.begin(), names.end(), layer) == names.end()) names.push_back(layer);
  }
  const std::string renamed = layers.empty() ? std::string() : withOutputs(source, engine->outputNames_);
  const std::string& bytes = layers.empty() ? *source.bytes : renamed;
  if (layers.empty()) engine->outputNames_ = source.outputs;
  engine->net_ = cv::dnn::readNetFromONNX(bytes.data(), bytes.size());
  for (const Tensor& input : inputs) {
    std::vector<int> dims;
    for (size_t dim : modelDims(input)) dims.push_back(static_cast<int>(dim));
    engine->blobs_.emplace_back(static_cast<int>(dims.size()), dims.data(), CV_32F, cv::Scalar(0));
    engine->inputNames_.push_back(input.name);
    engine->net_.setInput(engine->blobs_.back(), input.name);
  }
  engine->net_.forward(engine->results_, engine->outputNames_);

  produced.clear();
  for (size_t i = 0; i < engine->outputNames_.size(); ++i) {
    const std::string& name = engine->outputNames_[i];
    const cv::Mat& result = engine->results_.at(i);
    std::vector<size_t> dims;
    for (int d = 0; d < result.dims; ++d) dims.push_back(static_cast<size_t>(result.size[d]));
    const auto declared = source.declared.find(name);
    if (declared != source.declared.end() && !declared->second.empty()) {
      const Tensor model = shownTensor(name, declared->second);
      if (model.elements != result.total()) {
        error = "the engine computes " + std::to_string(result.total()) + " elements for '" + name +
                "', the model declares " + std::to_string(model.elements);
        return nullptr;
      }
      dims = declared->second;
    }
    if (result.type() != CV_32F || result.total() == 0 || result.total() > kMaxElements) {
      error = "the engine computes no float tensor of a usable size for '" + name + "'";
      return nullptr;
    }
    produced.push_back(shownTensor(name, dims));
  }
  return engine;
}

}  // namespace

std::unique_ptr<Engine> buildOnnxEngine(const OnnxSource& source, const std::vector<std::string>& layers,
                                        const std::vector<Tensor>& inputs, std::vector<Tensor>& produced,
                                        std::string& error) {
  prepareEngine();
  std::unique_ptr<Engine> engine;
  guarded("the engine cannot build this network", error, [&] {
    engine = build(source, layers, inputs, produced, error);
    return engine != nullptr;
  });
  return engine;
}

}  // namespace snpe_stub::detail
