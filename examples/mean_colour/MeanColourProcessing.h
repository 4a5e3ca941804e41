// A complete sample processing: the model to copy when writing one.
//
// MeanColourProcessing takes NV12 camera frames, cuts the host's crop region out, scales it to its
// network's input size, turns it as the host asks, converts it to normalised float RGB right in
// the network's input buffer, runs the network and reports the network's answer. Its networks
// compute the mean colour of the picture and, when the model has that output, its sharpness:
// scripts/make-models makes the ONNX one, hostModelText the NN runtime stand-in's text one (the
// mean only); on a device the same code runs a real model whose first output has three values.
//
// The host drives it through hvx::IProcessing:
//   setup(tvr_create_param_t)       builds network 0 from dlc_path[0], takes the picture's size
//                                   from its input tensor and binds the buffers (NetworkBinding)
//   initialize(tvr_static_param_t)  allocates every intermediate image once, for this stream
//   apply(tvr_input_param_t, MeanColourOutput, debug)   one frame; with a debug record it also
//                                   dumps what it saw (see kDebugConfigFile)
//   abort / finalize / teardown     finalize frees the images, teardown the network's buffers;
//                                   both are safe after a failed or skipped setup or initialize
//
// Rotation: the image library's turn stage keeps the unturned size in its records, and the colour
// stage reads that size, so a quarter turn (90 or 270) is only consistent for a square network
// input; apply refuses a quarter turn of a non-square input with 12.
#pragma once

#include <time.h>

#include <array>
#include <cstdint>
#include <string>

#include "NetworkBinding.h"
#include "TivoraBase.h"

namespace tivora::examples {

// What the host gets back from apply (the output record is agreed between host and processing).
struct MeanColourOutput {
  float mean_rgb[3];   // the network's first output: for the bundled networks, the mean of R, G
                       // and B of the network's input, in the normalised units of the input
  float sharpness;     // the energy of a 3x3 Laplacian over the input's luma, in those units
                       // squared; NaN when the model has no sharpness output
  uint32_t frame;      // frames applied so far, this one included
};

// Time spent in each stage of the last apply, in nanoseconds of the monotonic clock, and when
// each stage began (CLOCK_MONOTONIC), so that a trace can place it inside the apply.
struct StageTimes {
  int64_t split = 0;
  int64_t nv12ToRgb = 0;
  int64_t rgbToFloat = 0;
  int64_t execute = 0;
  int64_t splitStart = 0;
  int64_t nv12ToRgbStart = 0;
  int64_t rgbToFloatStart = 0;
  int64_t executeStart = 0;
};

// The network and how the processing prepares its input. The input tensor must be
// 1 x H x W x 3 floats with even sides, the output tensor 3 floats (as in hostModelText); the
// sharpness tensor, one float, is bound when the model has it.
struct MeanColourConfig {
  std::string inputTensor = "image";
  std::string outputTensor = "mean";
  std::string sharpnessTensor = "sharpness";
  uint32_t inputWidth = 0;   // W x H: 0 x 0 takes the model's; any other size must be the model's
  uint32_t inputHeight = 0;
  int mean = 128;                                        // subtracted from every 8-bit sample
  int divisor = 128;                                     // the difference is divided by it
  TivoraBase::RgbOrder order = TivoraBase::RGB_ORDER_KEEP;
};

class MeanColourProcessing : public TivoraBase {
 public:
  // Debug configuration read at setup from the logger's data directory: "DataDir=<folder>" and
  // a dump key per stage of a frame, value "true" switching it on:
  //   DumpSource         the host's frame, as it lies in memory   source_<stride>x<height>.nv12
  //   DumpNetworkInput   the RGB picture the network sees          network_input_<3w>x<h>.rgb
  //   DumpNetworkTensor  that picture as the network's floats      network_tensor_<3w>x<h>.f32
  //   DumpNetworkOutput  the network's answer, 3 floats            network_output_3x1.f32
  // With debugging on, every debug apply also appends the input record to "input_param.csv" in
  // the data directory, so that `tvrtool run --replay` can give each frame its record again.
  static constexpr const char* kDebugConfigFile = "MeanColourDebug.dat";
  // The longest side of the network's picture.
  static constexpr uint32_t kMaxInputSide = 4096;

  explicit MeanColourProcessing(SNPEMgr::TVRResourceType resourceType, MeanColourConfig config = {});
  ~MeanColourProcessing() override;

  const char* getProcessingName() override { return "MeanColourProcessing"; }

  // The configuration; a new one takes effect at the next setup.
  const MeanColourConfig& config() const { return mConfig; }
  void setConfig(const MeanColourConfig& config) { mConfig = config; }

  // From the next setup on, every dump is on and goes to `dir` (absolute, without a blank),
  // whatever the debug configuration file says; an empty `dir` leaves dumps to that file.
  void setDumpDirectory(const std::string& dir) { mDumpDir = dir; }

  // After an apply: the time of each stage, and the RGB888 image the network saw (size.w is three
  // times the input width, which setup took from the model). Null before initialize.
  const StageTimes& lastStageTimes() const { return mTimes; }
  const tvr_image_buf_t* networkImage() const { return mRgb; }

  // The model text of the bundled network for the NN runtime's host stand-in: the mean of each
  // channel of a 1 x height x width x 3 input.
  static std::string hostModelText(uint32_t width, uint32_t height);

 protected:
  std::string getClassName() override { return "MeanColourProcessing"; }

  tvr_err_t setupImpl(const void* createParam) override;
  void teardownImpl() override;
  tvr_err_t initializeImpl(const void* staticParam) override;
  void finalizeImpl() override;
  tvr_err_t applyImpl(const void* input, void* output) override;
  tvr_err_t applyDebugImpl(const void* input, void* output, void* debug) override;

 private:
  tvr_err_t processFrame(const tvr_input_param_t* input, MeanColourOutput* output, bool dump);
  tvr_err_t bindNetworkBuffers();
  void releaseNetworkBuffers();
  void deleteImages();

  static constexpr unsigned int kNetwork = 0;  // the index of the processing's only network

  // The debug object, which also names files in its data directory.
  class Debug : public DebugBase {
   public:
    std::string pathOf(const std::string& name) const { return mDataDir + "/" + name; }
    void dumpEverythingTo(const std::string& dir) {
      mConfig = {{"DumpSource", "true"}, {"DumpNetworkInput", "true"}, {"DumpNetworkTensor", "true"},
                 {"DumpNetworkOutput", "true"}};
      mDataDir = dir;
      mDebugEnabled = true;
    }
  };

  MeanColourConfig mConfig;
  Debug mDebug;
  std::string mDumpDir;
  StageTimes mTimes;
  uint32_t mFrames = 0;

  // Network 0's buffers, bound at setup: the float input (a tensor image record over its memory)
  // of the picture's size, taken from the model, and the outputs.
  NetworkBinding mBinding;
  uint32_t mInputWidth = 0;
  uint32_t mInputHeight = 0;
  tvr_image_buf_t* mTensor = nullptr;
  std::array<float, 3> mResult{};
  float mSharpness = 0;
  bool mHasSharpness = false;

  // Intermediate images, made at initialize for the stream and the picture's size.
  tvr_image_buf_t* mY = nullptr;  // the crop's luma
  tvr_image_buf_t* mCC = nullptr;  // the crop's interleaved chroma
  tvr_image_buf_t* mDownY = nullptr;  // shrunk on each axis where the crop is too large
  tvr_image_buf_t* mDownCC = nullptr;
  tvr_image_buf_t* mScaledY = nullptr;  // grown to the network's (unturned) size
  tvr_image_buf_t* mScaledCC = nullptr;
  tvr_image_buf_t* mTurnedY = nullptr;  // turned by the input's rotation
  tvr_image_buf_t* mTurnedCC = nullptr;
  tvr_image_buf_t* mRgb = nullptr;  // the network's picture, RGB888
};

}  // namespace tivora::examples
