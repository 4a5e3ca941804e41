#include "MeanColourProcessing.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <vector>

namespace tivora::examples {

namespace {

// Planes made by the processing hold exactly pixel size x stride x height bytes.
constexpr tvr_image_format_t kPlane = TVR_FORMAT_YUV420SP_UV_UBWC;

int64_t now() {
  timespec t{};
  clock_gettime(CLOCK_MONOTONIC, &t);
  return static_cast<int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec;
}

bool quarterTurn(tvr_rotation_t rotation) { return rotation == TVR_ROTATION_90 || rotation == TVR_ROTATION_270; }

}  // namespace

MeanColourProcessing::MeanColourProcessing(SNPEMgr::TVRResourceType resourceType, MeanColourConfig config)
    : TivoraBase(resourceType), mConfig(config), mBinding(resourceType, kNetwork) {}

// The host calls finalize and teardown before it deletes a processing; this is the safety net.
MeanColourProcessing::~MeanColourProcessing() {
  deleteImages();
  releaseNetworkBuffers();
}

std::string MeanColourProcessing::hostModelText(uint32_t width, uint32_t height) {
  return "TIVORA-HOST-DLC 1\nversion: mean-colour-1.0\ninput: image 1x" + std::to_string(height) + "x" +
         std::to_string(width) + "x3\noutput: mean 1x3\nop: channel_mean\n";
}

// ---- setup and teardown: the network and its buffers --------------------------------------------

tvr_err_t MeanColourProcessing::setupImpl(const void* createParam) {
  const auto* create = static_cast<const tvr_create_param_t*>(createParam);
  if (create->dlc_num < 1 || mConfig.divisor == 0) return TVR_ERR_INVALID_ARG;
  mDebug.loadConfig(kDebugConfigFile);  // optional: dumps stay off without it
  if (!mDumpDir.empty()) mDebug.dumpEverythingTo(mDumpDir);
  releaseNetworkBuffers();              // a second setup replaces the buffers of the first

  SNPEParam param(create, kNetwork);
  std::vector<std::string> outputs;  // the model's own outputs
  const tvr_err_t status = createSNPE(kNetwork, param, outputs);
  if (status != TVR_OK) return status;
  return bindNetworkBuffers();
}

tvr_err_t MeanColourProcessing::bindNetworkBuffers() {
  // The picture's size is the model's, unless the configuration names one: the binding then
  // checks it against the model. The chroma planes halve the picture: the sides must be even.
  uint32_t width = mConfig.inputWidth, height = mConfig.inputHeight;
  std::string shape = "1x" + std::to_string(height) + "x" + std::to_string(width) + "x3 as configured";
  if (width == 0 && height == 0) {
    const std::vector<size_t> dims = mBinding.inputDimensions(mConfig.inputTensor);
    shape.clear();
    for (size_t dim : dims) shape += (shape.empty() ? "" : "x") + std::to_string(dim);
    if (dims.size() == 4 && dims[0] == 1 && dims[3] == 3 && dims[1] <= kMaxInputSide && dims[2] <= kMaxInputSide) {
      height = static_cast<uint32_t>(dims[1]);
      width = static_cast<uint32_t>(dims[2]);
    }
  }
  if (width < 2 || height < 2 || ((width | height) & 1u) != 0) {
    mpLogger->logPrint(getClassName(), "setup", 6, "Input tensor '%s' is %s, not 1xHxWx3 with even sides of 2 to %u",
                       mConfig.inputTensor.c_str(), shape.c_str(), kMaxInputSide);
    return TVR_ERR_INVALID_ARG;
  }
  // The float picture is written straight into the input buffer's memory: the tensor record.
  mTensor = createImageBuf(width * 3, height, width * 3, kPlane, sizeof(float));
  if (mTensor == nullptr) return TVR_ERR_INVALID_ARG;
  std::fill_n(mTensor->buf.p_base, mTensor->buf.buf_size, 0);  // binding runs the network once
  mBinding.addInput(mConfig.inputTensor, reinterpret_cast<float*>(mTensor->buf.p_base), {1, height, width, 3});
  mBinding.addOutput(mConfig.outputTensor, mResult.data(), {1, 3});
  const std::vector<std::string> outputs = mBinding.outputNames();
  mHasSharpness = std::find(outputs.begin(), outputs.end(), mConfig.sharpnessTensor) != outputs.end();
  if (mHasSharpness) mBinding.addOutput(mConfig.sharpnessTensor, &mSharpness, {1, 1});
  const tvr_err_t status = mBinding.bind();
  if (status != TVR_OK) return status;
  mInputWidth = width;
  mInputHeight = height;
  return TVR_OK;
}

void MeanColourProcessing::teardownImpl() {
  releaseNetworkBuffers();
  deleteSNPE(kNetwork);
}

// Releases what exists: also after a setup that stopped half way.
void MeanColourProcessing::releaseNetworkBuffers() {
  mBinding.release();
  deleteImageBuf(mTensor);
  mTensor = nullptr;
  mInputWidth = mInputHeight = 0;
}

// ---- initialize and finalize: the intermediate images ---------------------------------------

tvr_err_t MeanColourProcessing::initializeImpl(const void* staticParam) {
  const tvr_stream_info_t& source = static_cast<const tvr_static_param_t*>(staticParam)->src_info;
  // The images are sized for the network setup bound: no initialize before it.
  if (source.format != TVR_FORMAT_NV12 || source.size.w < 2 || source.size.h < 2 || mInputWidth == 0) {
    return TVR_ERR_INVALID_ARG;
  }
  deleteImages();  // a second initialize replaces the images of the first

  // Crops are at most the frame; each frame sets the sizes its crop needs.
  const uint32_t w = source.size.w, h = source.size.h;
  mY = createImageBuf(w, h, w, kPlane, 1);
  mCC = createImageBuf(w, h / 2, w, kPlane, 1);
  // Scaled to the network's size, or to its transpose when a quarter turn follows; each scale
  // buffer is big enough for both.
  const uint32_t side = std::max(mInputWidth, mInputHeight);
  mDownY = createImageBuf(side, side, side, kPlane, 1);
  mDownCC = createImageBuf(side, side / 2 + 1, side, kPlane, 1);
  mScaledY = createImageBuf(side, side, side, kPlane, 1);
  mScaledCC = createImageBuf(side, side / 2 + 1, side, kPlane, 1);
  mTurnedY = createImageBuf(side, side, side, kPlane, 1);
  mTurnedCC = createImageBuf(side, side, side, kPlane, 1);
  mRgb = createImageBuf(mInputWidth * 3, mInputHeight, mInputWidth * 3, kPlane, 1);
  for (const tvr_image_buf_t* image : {mY, mCC, mDownY, mDownCC, mScaledY, mScaledCC, mTurnedY, mTurnedCC, mRgb}) {
    if (image == nullptr) {
      deleteImages();
      return TVR_ERR_INVALID_ARG;
    }
  }
  return TVR_OK;
}

void MeanColourProcessing::finalizeImpl() { deleteImages(); }

void MeanColourProcessing::deleteImages() {
  for (tvr_image_buf_t** image : {&mY, &mCC, &mDownY, &mDownCC, &mScaledY, &mScaledCC, &mTurnedY, &mTurnedCC, &mRgb}) {
    deleteImageBuf(*image);
    *image = nullptr;
  }
}

// ---- apply: one frame --------------------------------------------------------------------------

tvr_err_t MeanColourProcessing::applyImpl(const void* input, void* output) {
  return processFrame(static_cast<const tvr_input_param_t*>(input), static_cast<MeanColourOutput*>(output), false);
}

tvr_err_t MeanColourProcessing::applyDebugImpl(const void* input, void* output, void* /*debug*/) {
  return processFrame(static_cast<const tvr_input_param_t*>(input), static_cast<MeanColourOutput*>(output), true);
}

tvr_err_t MeanColourProcessing::processFrame(const tvr_input_param_t* input, MeanColourOutput* output, bool dump) {
  const tvr_image_buf_t* frame = input->p_src;
  // A setup since initialize may have bound a network of another size than the images'.
  if (frame == nullptr || mY == nullptr || mTensor == nullptr || mRgb->size.w != mInputWidth * 3 ||
      mRgb->size.h != mInputHeight) {
    return TVR_ERR_INVALID_ARG;
  }
  const tvr_crop_t& crop = frame->crop;
  const uint32_t cropW = crop.size.w, cropH = crop.size.h;
  // An even crop inside the frame and inside the images made at initialize.
  const bool cropFits = crop.pos.x >= 0 && crop.pos.y >= 0 && cropW >= 2 && cropH >= 2 && ((cropW | cropH) & 1u) == 0 &&
                        cropW <= mY->size.w && cropH <= mY->scanline &&
                        uint64_t{static_cast<uint32_t>(crop.pos.x)} + cropW <= frame->size.w &&
                        uint64_t{static_cast<uint32_t>(crop.pos.y)} + cropH <= frame->size.h;
  // The colour stage takes the turned plane's record, which keeps the unturned size: a quarter
  // turn is only consistent for a square network input.
  const bool turn = quarterTurn(input->rotation);
  if (!cropFits || (turn && mInputWidth != mInputHeight)) return TVR_ERR_INVALID_ARG;
  if (dump && mDebug.isDebugEnabled()) {
    mDebug.dumpBufferByKey("source", frame, "DumpSource", "nv12");
    std::ofstream params(mDebug.pathOf("input_param.csv"), std::ios::app);
    mDebug.dumpBaseInputParam(params, input);
  }

  // Split: the crop into planes of its own size.
  int64_t start = now();
  mTimes.splitStart = start;
  mY->size = {cropW, cropH};
  mCC->size = {cropW, cropH / 2};
  tvr_err_t status = splitYUV420SP(frame, mY, mCC);
  if (status != TVR_OK) return status;
  int64_t end = now();
  mTimes.split = end - start;

  // Scale to the network's size (before a quarter turn, its transpose), then turn and colour.
  start = end;
  mTimes.nv12ToRgbStart = start;
  const uint32_t targetW = turn ? mInputHeight : mInputWidth;
  const uint32_t targetH = turn ? mInputWidth : mInputHeight;
  mDownY->size = {std::min(cropW, targetW), std::min(cropH, targetH)};  // shrink each axis too large...
  mDownY->stride = mDownY->size.w;
  mDownCC->size = {mDownY->size.w, mDownY->size.h / 2};
  mDownCC->stride = mDownY->size.w;
  mScaledY->size = {targetW, targetH};  // ...then grow each axis that is too small
  mScaledY->stride = targetW;
  mScaledCC->size = {targetW, targetH / 2};
  mScaledCC->stride = targetW;
  // The turned records keep the unturned size; their rows have the turned length.
  mTurnedY->size = mScaledY->size;
  mTurnedY->stride = turn ? targetH : targetW;
  mTurnedCC->size = mScaledCC->size;
  mTurnedCC->stride = turn ? targetH : targetW;
  status = convertNv12ToRgb888(mY, mCC, mRgb, input->rotation, mDownY, mDownCC, mScaledY, mScaledCC, mTurnedY,
                               mTurnedCC);
  if (status != TVR_OK) return status;
  end = now();
  mTimes.nv12ToRgb = end - start;

  start = end;
  mTimes.rgbToFloatStart = start;
  status = convertRGB888ToFloat(mRgb, mTensor, mConfig.mean, mConfig.divisor, mConfig.order);
  if (status != TVR_OK) return status;
  end = now();
  mTimes.rgbToFloat = end - start;
  if (dump) {
    mDebug.dumpBufferByKey("network_input", mRgb, "DumpNetworkInput", "rgb");
    mDebug.dumpBufferByKey("network_tensor", mTensor, "DumpNetworkTensor", "f32");
  }

  start = dump ? now() : end;  // the dump is no part of the execution
  mTimes.executeStart = start;
  status = executeSNPE(kNetwork);
  if (status != TVR_OK) return status;
  mTimes.execute = now() - start;
  if (dump) {
    // The network's answer as a 1 x 1 float RGB picture: 3 floats, "network_output_3x1.f32".
    tvr_image_buf_t answer{};
    answer.buf.p_base = reinterpret_cast<uint8_t*>(mResult.data());
    answer.buf.buf_size = static_cast<uint32_t>(sizeof mResult);
    answer.format = kPlane;
    answer.size = {3, 1};
    answer.stride = 3;
    answer.scanline = 1;
    mDebug.dumpBufferByKey("network_output", &answer, "DumpNetworkOutput", "f32");
  }

  if (output != nullptr) {
    std::copy(mResult.begin(), mResult.end(), output->mean_rgb);
    output->sharpness = mHasSharpness ? mSharpness : std::nanf("");
    output->frame = ++mFrames;
  }
  return TVR_OK;
}

}  // namespace tivora::examples
