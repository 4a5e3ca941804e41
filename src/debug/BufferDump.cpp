// Raw memory to files: any byte range, or a whole image buffer switched on by a configuration key.
#include <cstdio>
#include <string>

#include "TivoraBase.h"
#include "common/BootClock.h"

namespace tivora {

void TivoraBase::DebugBase::dumpBuffer(std::string path, const unsigned char* data, int32_t size) {
  if (size < 1 || data == nullptr || !mDebugEnabled) return;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return;
  std::fwrite(data, 1, static_cast<size_t>(size), file);
  std::fclose(file);
}

void TivoraBase::DebugBase::dumpBufferByKey(std::string name, const tvr_image_buf_t* buffer, std::string key,
                                            std::string extension) {
  if (buffer == nullptr || !mDebugEnabled || buffer->buf.buf_size == 0) return;
  const auto value = mConfig.find(key);
  if (value == mConfig.end() || value->second != "true") return;

  // Stride and height, not width and scanline: they tell a reader how the rows lie.
  const std::string path =
      format("%s/%lld_%s_%dx%d.%s", mDataDir.c_str(), static_cast<long long>(bootTimeNs()), name.c_str(),
             static_cast<int>(buffer->stride), static_cast<int>(buffer->size.h), extension.c_str());
  // A size beyond 2 GiB wraps negative, and dumpBuffer writes nothing for it.
  dumpBuffer(path, buffer->buf.p_base, static_cast<int32_t>(buffer->buf.buf_size));
}

}  // namespace tivora
