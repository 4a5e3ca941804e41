#include "SNPEParam.h"

#include <cstring>

namespace tivora {

namespace {

// The path is held inline; copies stop at the buffer's end even if a source lacks its NUL.
void copyPath(char (&to)[256], const char* from) {
  const size_t length = strnlen(from, sizeof to - 1);
  std::memcpy(to, from, length);
  std::memset(to + length, 0, sizeof to - length);
}

// Switches are copied and compared as the bytes the host wrote (1 and 2 both mean true but are not
// equal); reading such a byte as a bool would not be defined.
void copyByte(bool& to, const bool& from) { std::memcpy(&to, &from, 1); }

bool sameByte(const bool& a, const bool& b) {
  return *reinterpret_cast<const unsigned char*>(&a) == *reinterpret_cast<const unsigned char*>(&b);
}

}  // namespace

SNPEParam::SNPEParam()
    : dlc_path{},
      runtime{},
      profile{},
      profiling_level{},
      priority{},
      cpu_fallback_mode{},
      use_user_buffers{},
      debug_mode{} {}

SNPEParam::SNPEParam(const tvr_create_param_t* param, unsigned int index)
    : dlc_path{},
      runtime(param->runtime),
      profile(param->profile),
      profiling_level(TVR_PROFILING_LEVEL_OFF),
      priority(param->priority),
      cpu_fallback_mode{},
      use_user_buffers{},
      debug_mode{} {
  copyPath(dlc_path, param->dlc_path[index]);
  copyByte(cpu_fallback_mode, param->cpu_fallback_mode);
  copyByte(use_user_buffers, param->use_user_buffers);
  copyByte(debug_mode, param->debug_mode);
}

SNPEParam& SNPEParam::operator=(const SNPEParam& other) {
  if (this == &other) return *this;
  copyPath(dlc_path, other.dlc_path);
  runtime = other.runtime;
  profile = other.profile;
  profiling_level = other.profiling_level;
  priority = other.priority;
  copyByte(cpu_fallback_mode, other.cpu_fallback_mode);
  copyByte(use_user_buffers, other.use_user_buffers);
  copyByte(debug_mode, other.debug_mode);
  return *this;
}

bool SNPEParam::operator==(const SNPEParam& other) const {
  return std::strncmp(dlc_path, other.dlc_path, sizeof dlc_path) == 0 && runtime == other.runtime &&
         profile == other.profile && profiling_level == other.profiling_level && priority == other.priority &&
         sameByte(cpu_fallback_mode, other.cpu_fallback_mode) && sameByte(use_user_buffers, other.use_user_buffers) &&
         sameByte(debug_mode, other.debug_mode);
}

}  // namespace tivora
