// RGB888 to a network's float input, normalised per channel: out = (in - mean) x scale for each
// colour, in the channel order and memory layout the network wants.
//
//   // ImageNet: mean (0.485, 0.456, 0.406) and standard deviation (0.229, 0.224, 0.225) of 0..1
//   // samples, here on 0..255: mean x 255 and 1 / (deviation x 255).
//   const tivora::ChannelNormalisation imageNet{{123.675f, 116.28f, 103.53f},
//                                               {1 / 58.395f, 1 / 57.12f, 1 / 57.375f}};
//   const tivora::FloatTensor input{inputMemory, inputBytes, 224, 224, tivora::TensorLayout::kPlanar,
//                                   tivora::ChannelOrder::kRgb};
//   tivora::convertRGB888ToNormalisedFloat(mRgb, input, imageNet);
#pragma once

#include <cstddef>
#include <cstdint>

#include "tvr_export.h"
#include "tvr_types.h"

namespace tivora {

// The order of the colours in the tensor.
enum class ChannelOrder : int32_t { kRgb = 0, kBgr = 1 };

// How one image's floats lie: interleaved H x W x C (the three channels of a pixel side by side;
// the device runtime's layout for images) or planar C x H x W (a plane of H x W per channel).
enum class TensorLayout : int32_t { kInterleaved = 0, kPlanar = 1 };

// Per colour, red, green and blue whatever the tensor's order: out = (float(in) - mean) x scale,
// the subtraction rounded to float before the multiplication.
struct ChannelNormalisation {
  float mean[3];
  float scale[3];
};

// One image of a network's input in caller memory: width x height pixels of 3 floats, packed (no
// padding between rows or planes). For image n of a batch, point `data` at data + n x width x
// height x 3.
struct FloatTensor {
  float* data;
  std::size_t bytes;  // memory at data: at least width x height x 3 floats
  uint32_t width;     // pixels
  uint32_t height;
  TensorLayout layout;
  ChannelOrder order;
};

// `source` is RGB888 (size.w = 3 x pixels, stride in bytes) of the tensor's width and height. The
// outputs are bit-identical on every processor. Returns TVR_ERR_INVALID_ARG with an ERROR message
// naming the fault, before anything is written, for: a null source, source memory or tensor data;
// a source width that is no whole number of pixels; sizes that differ; a layout or order that is
// none of the above; tensor memory smaller than the image; a mean or scale that is not finite.
// An empty image writes nothing and succeeds.
TVR_EXPORT tvr_err_t convertRGB888ToNormalisedFloat(const tvr_image_buf_t* source, const FloatTensor& tensor,
                                                    const ChannelNormalisation& normalisation);

}  // namespace tivora
