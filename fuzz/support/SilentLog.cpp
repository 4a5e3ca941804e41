// The fuzz targets' Android log: every record is formatted (so a format fault still shows under
// the sanitizers) and dropped, so that millions of runs neither flood the terminal nor wait on I/O.
#include <cstdarg>
#include <cstdio>

extern "C" __attribute__((visibility("default"))) int __android_log_print(int /*priority*/, const char* /*tag*/,
                                                                            const char* format, ...) {
  char text[1024];
  va_list args;
  va_start(args, format);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // the library's own, checked at its call site
  const int length = std::vsnprintf(text, sizeof text, format, args);
#pragma GCC diagnostic pop
  va_end(args);
  return length < 0 ? -1 : 1;
}
