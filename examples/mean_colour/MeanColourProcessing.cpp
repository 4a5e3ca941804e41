#include "MeanColourProcessing.h"

#include <algorithm>
#include <fstream>
#include <vector>

#include "DlSystem/IUserBuffer.h"
#include "DlSystem/TensorShape.h"
#include "DlSystem/UserBufferMap.h"
#include "SNPE/SNPEUtil.h"

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

// Packed byte strides of a float tensor, the last dimension fastest.
Snpe_TensorShape_Handle_t packedStrides(const std::vector<size_t>& dims) {
  std::vector<size_t> strides(dims.size());
  size_t stride = sizeof(float);
  for (size_t i = dims.size(); i-- > 0;) {
    strides[i] = stride;
    stride *= dims[i];
  }
  return Snpe_TensorShape_CreateDimsSize(strides.data(), strides.size());
}

}  // namespace

MeanColourProcessing::MeanColourProcessing(SNPEMgr::TVRResourceType resourceType, MeanColourConfig config)
    : TivoraBase(resourceType), mConfig(config) {}

// The host calls finalize and teardown before it deletes a processing; this is the safety net.
MeanColourProcessing::~MeanColourProcessing() {
  deleteImages();
  deleteNetworkBuffers();
}

std::string MeanColourProcessing::hostModelText(uint32_t width, uint32_t height) {
  return "TIVORA-HOST-DLC 1\nversion: mean-colour-1.0\ninput: image 1x" + std::to_string(height) + "x" +
         std::to_string(width) + "x3\noutput: mean 1x3\nop: channel_mean\n";
}

// ---- setup and teardown: the network and its user buffers ------------------------------------

tvr_err_t MeanColourProcessing::setupImpl(const void* createParam) {
  const auto* create = static_cast<const tvr_create_param_t*>(createParam);
  // The chroma planes halve the picture: the network's input needs even sides.
  const bool evenInput = mConfig.inputWidth >= 2 && mConfig.inputHeight >= 2 &&
                         ((mConfig.inputWidth | mConfig.inputHeight) & 1u) == 0;
  if (create->dlc_num < 1 || !evenInput || mConfig.divisor == 0) return TVR_ERR_INVALID_ARG;
  mDebug.loadConfig(kDebugConfigFile);  // optional: dumps stay off without it
  if (!mDumpDir.empty()) mDebug.dumpEverythingTo(mDumpDir);
  deleteNetworkBuffers();               // a second setup replaces the buffers of the first

  SNPEParam param(create, kNetwork);
  std::vector<std::string> outputs;  // the model's own outputs
  const tvr_err_t status = createSNPE(kNetwork, param, outputs);
  if (status != TVR_OK) return status;
  return createNetworkBuffers();
}

tvr_err_t MeanColourProcessing::createNetworkBuffers() {
  const unsigned int slot = mResourceType * 5 + kNetwork;
  const std::vector<size_t> dims{1, mConfig.inputHeight, mConfig.inputWidth, 3};

  // The float picture is written straight into the input buffer's memory: the tensor record.
  const uint32_t rowFloats = mConfig.inputWidth * 3;
  mTensor = createImageBuf(rowFloats, mConfig.inputHeight, rowFloats, kPlane, sizeof(float));
  if (mTensor == nullptr) return TVR_ERR_INVALID_ARG;

  mEncoding = Snpe_UserBufferEncodingFloat_Create();
  Snpe_TensorShape_Handle_t inputStrides = packedStrides(dims);
  mInputBuffer = Snpe_Util_CreateUserBuffer(mTensor->buf.p_base, mTensor->buf.buf_size, inputStrides, mEncoding);
  Snpe_TensorShape_Delete(inputStrides);
  Snpe_TensorShape_Handle_t outputStrides = packedStrides({1, 3});
  mOutputBuffer = Snpe_Util_CreateUserBuffer(mResult.data(), sizeof(float) * mResult.size(), outputStrides, mEncoding);
  Snpe_TensorShape_Delete(outputStrides);
  if (mInputBuffer == nullptr || mOutputBuffer == nullptr) return TVR_ERR_NOT_FOUND;

  mpSNPEMgr->mInputMap[slot] = Snpe_UserBufferMap_Create();
  mpSNPEMgr->mOutputMap[slot] = Snpe_UserBufferMap_Create();
  mpSNPEMgr->mInputBuffers[slot].push_back(mInputBuffer);
  mpSNPEMgr->mOutputBuffers[slot].push_back(mOutputBuffer);
  // A map the runtime would not make or fill fails the setup now, not the first frame.
  if (mpSNPEMgr->mInputMap[slot] == nullptr || mpSNPEMgr->mOutputMap[slot] == nullptr ||
      Snpe_UserBufferMap_Add(mpSNPEMgr->mInputMap[slot], mConfig.inputTensor.c_str(), mInputBuffer) != SNPE_SUCCESS ||
      Snpe_UserBufferMap_Add(mpSNPEMgr->mOutputMap[slot], mConfig.outputTensor.c_str(), mOutputBuffer) !=
          SNPE_SUCCESS) {
    return TVR_ERR_NOT_FOUND;
  }
  return TVR_OK;
}

void MeanColourProcessing::teardownImpl() {
  deleteNetworkBuffers();
  deleteSNPE(kNetwork);
}

// Releases what exists: also after a setup that stopped half way.
void MeanColourProcessing::deleteNetworkBuffers() {
  if (mpSNPEMgr != nullptr) {
    const unsigned int slot = mResourceType * 5 + kNetwork;
    for (Snpe_UserBufferMap_Handle_t* map : {&mpSNPEMgr->mInputMap[slot], &mpSNPEMgr->mOutputMap[slot]}) {
      if (*map != nullptr) Snpe_UserBufferMap_Delete(*map);
      *map = nullptr;
    }
    mpSNPEMgr->mInputBuffers[slot].clear();
    mpSNPEMgr->mOutputBuffers[slot].clear();
  }
  for (Snpe_IUserBuffer_Handle_t* buffer : {&mInputBuffer, &mOutputBuffer}) {
    if (*buffer != nullptr) Snpe_IUserBuffer_Delete(*buffer);
    *buffer = nullptr;
  }
  if (mEncoding != nullptr) Snpe_UserBufferEncodingFloat_Delete(mEncoding);
  mEncoding = nullptr;
  deleteImageBuf(mTensor);
  mTensor = nullptr;
}

// ---- initialize and finalize: the intermediate images ---------------------------------------

tvr_err_t MeanColourProcessing::initializeImpl(const void* staticParam) {
  const tvr_stream_info_t& source = static_cast<const tvr_static_param_t*>(staticParam)->src_info;
  if (source.format != TVR_FORMAT_NV12 || source.size.w < 2 || source.size.h < 2) return TVR_ERR_INVALID_ARG;
  deleteImages();  // a second initialize replaces the images of the first

  // Crops are at most the frame; each frame sets the sizes its crop needs.
  const uint32_t w = source.size.w, h = source.size.h;
  mY = createImageBuf(w, h, w, kPlane, 1);
  mCC = createImageBuf(w, h / 2, w, kPlane, 1);
  // Scaled to the network's size, or to its transpose when a quarter turn follows; each scale
  // buffer is big enough for both.
  const uint32_t side = std::max(mConfig.inputWidth, mConfig.inputHeight);
  mDownY = createImageBuf(side, side, side, kPlane, 1);
  mDownCC = createImageBuf(side, side / 2 + 1, side, kPlane, 1);
  mScaledY = createImageBuf(side, side, side, kPlane, 1);
  mScaledCC = createImageBuf(side, side / 2 + 1, side, kPlane, 1);
  mTurnedY = createImageBuf(side, side, side, kPlane, 1);
  mTurnedCC = createImageBuf(side, side, side, kPlane, 1);
  mRgb = createImageBuf(mConfig.inputWidth * 3, mConfig.inputHeight, mConfig.inputWidth * 3, kPlane, 1);
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
  if (frame == nullptr || mY == nullptr || mTensor == nullptr) return TVR_ERR_INVALID_ARG;
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
  if (!cropFits || (turn && mConfig.inputWidth != mConfig.inputHeight)) return TVR_ERR_INVALID_ARG;
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
  const uint32_t targetW = turn ? mConfig.inputHeight : mConfig.inputWidth;
  const uint32_t targetH = turn ? mConfig.inputWidth : mConfig.inputHeight;
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
    output->frame = ++mFrames;
  }
  return TVR_OK;
}

}  // namespace tivora::examples
