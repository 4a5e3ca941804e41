// Image format names and the image library's rotation values.
#include <iterator>

#include "TivoraUtil.h"

namespace tivora {

fcvRotateDegree convert(tvr_rotation_t rotation) {
  switch (rotation) {
    case TVR_ROTATION_180:
      return FASTCV_ROTATE_180;
    case TVR_ROTATION_270:
      return FASTCV_ROTATE_270;
    default:
      return FASTCV_ROTATE_90;
  }
}

std::string convert(tvr_image_format_t format) {
  // Indexed by value. Value 6 is the format allocated through the image library, yet the name
  // "FastCV" belongs to value 9: the names follow their own table.
  static constexpr const char* kNames[] = {
      "YUV420P_UV",       "YUV420P_VU",           "nv12",   "nv21", "YUV420SP_UV_UBWC",
      "YUV420SP_UV_TP10", "YUV420SP_UV_TP10_UBWC", "YUV400", "RAW",  "FastCV"};
  const auto index = static_cast<uint32_t>(format);
  return index < std::size(kNames) ? kNames[index] : "";
}

}  // namespace tivora
