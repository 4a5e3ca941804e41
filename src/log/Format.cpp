#include <cstdarg>
#include <cstdio>
#include <string>

#include "TivoraLogger.h"

namespace tivora {

std::string format(const char* fmt, ...) {
  char buffer[1024];
  buffer[0] = '\0';
  va_list args;
  va_start(args, fmt);
  if (vsnprintf(buffer, sizeof buffer, fmt, args) < 0) buffer[0] = '\0';
  va_end(args);
  return std::string(buffer);
}

}  // namespace tivora
