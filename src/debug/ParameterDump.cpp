// Host records as comma-nested text lines: leading commas give the nesting, one flush a line.
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

#include "TivoraBase.h"

namespace tivora {

namespace {

// The guard of every parameter dump.
bool mayWrite(bool debugEnabled, const std::ofstream& stream, const void* record) {
  return debugEnabled && !stream.fail() && record != nullptr && stream.is_open();
}

template <typename... Parts>
void writeLine(std::ofstream& stream, const Parts&... parts) {
  (stream << ... << parts) << std::endl;  // std::endl: the line is flushed on its own
}

// Addresses are printed by their low 32 bits only, in at least eight hex digits.
std::string address(const void* pointer) {
  return format("%08x", static_cast<unsigned int>(reinterpret_cast<uintptr_t>(pointer)));
}

// Enumerations print as signed numbers, also values outside the enumeration.
int32_t number(int32_t value) { return value; }

void writeImageBuffer(std::ofstream& stream, const tvr_image_buf_t& image) {
  writeLine(stream, ",p_src");
  writeLine(stream, ",,buf");
  writeLine(stream, ",,,p_base,", address(image.buf.p_base));
  writeLine(stream, ",,,buf_size,", image.buf.buf_size);
  writeLine(stream, ",,,heap_id,", image.buf.heap_id);
  writeLine(stream, ",,,native,", address(image.buf.native));
  writeLine(stream, ",,,native_handle,", address(image.buf.native_handle));
  writeLine(stream, ",,format,", number(image.format));
  writeLine(stream, ",,size");
  writeLine(stream, ",,,w,", image.size.w);
  writeLine(stream, ",,,h,", image.size.h);
  for (int i = 0; i < 3; ++i) writeLine(stream, ",,offset[", i, "],", image.offset[i]);
  writeLine(stream, ",,stride,", image.stride);
  writeLine(stream, ",,scanline,", image.scanline);
  writeLine(stream, ",,crop");
  writeLine(stream, ",,,pos");
  writeLine(stream, ",,,,x,", image.crop.pos.x);
  writeLine(stream, ",,,,y,", image.crop.pos.y);
  writeLine(stream, ",,,size");
  writeLine(stream, ",,,,w,", image.crop.size.w);
  writeLine(stream, ",,,,h,", image.crop.size.h);
}

}  // namespace

void TivoraBase::DebugBase::dumpBaseCreateParam(std::ofstream& stream, const tvr_create_param_t* param) {
  if (!mayWrite(mDebugEnabled, stream, param)) return;
  writeLine(stream, "Create parameter,");
  writeLine(stream, ",dlc_num,", param->dlc_num);
  // A count beyond the record's five paths is the host's fault; reading past the record for it
  // would turn a debug dump into a crash.
  constexpr uint32_t kPaths = sizeof param->dlc_path / sizeof param->dlc_path[0];
  for (uint32_t i = 0; i < param->dlc_num && i < kPaths; ++i) {
    const char* path = param->dlc_path[i];
    writeLine(stream, ",dlc_path[", i, "],", std::string(path, strnlen(path, sizeof param->dlc_path[i])));
  }
  writeLine(stream, ",runtime,", number(param->runtime));
  writeLine(stream, ",profile,", number(param->profile));
  writeLine(stream, ",priority,", number(param->priority));
  writeLine(stream, ",cpu_fallback_mode,", param->cpu_fallback_mode);
  writeLine(stream, ",use_user_buffers,", param->use_user_buffers);
}

void TivoraBase::DebugBase::dumpBaseStaticParam(std::ofstream& stream, const tvr_static_param_t* param) {
  if (!mayWrite(mDebugEnabled, stream, param)) return;
  const tvr_stream_info_t& source = param->src_info;
  writeLine(stream, "Static parameter,");
  writeLine(stream, ",src_info");
  writeLine(stream, ",,format,", number(source.format));
  writeLine(stream, ",,size");
  writeLine(stream, ",,,w,", source.size.w);
  writeLine(stream, ",,,h,", source.size.h);
  writeLine(stream, ",,stride,", source.stride);
  writeLine(stream, ",,scanline,", source.scanline);
}

void TivoraBase::DebugBase::dumpBaseInputParam(std::ofstream& stream, const tvr_input_param_t* param) {
  if (!mayWrite(mDebugEnabled, stream, param)) return;
  writeLine(stream, "Input parameter,");
  writeLine(stream, ",rotation,", number(param->rotation));
  if (param->p_src == nullptr) {
    writeLine(stream, ",p_src,NULL");
    return;
  }
  writeImageBuffer(stream, *param->p_src);
}

void TivoraBase::DebugBase::dumpBaseOutputParam(std::ofstream& stream, const tvr_output_param_t* param) {
  if (!mayWrite(mDebugEnabled, stream, param)) return;
  writeLine(stream, "Output parameter,");
}

void TivoraBase::DebugBase::dumpBaseDebugParam(std::ofstream& stream, const tvr_debug_param_t* param) {
  if (!mayWrite(mDebugEnabled, stream, param)) return;
  writeLine(stream, "Debug parameter,");
}

}  // namespace tivora
