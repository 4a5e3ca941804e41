#include <android/log.h>

#include "TivoraLogPriority.h"
#include "TivoraLogger.h"

// From Android 11 (API 30) on; weak, so that the library still loads on older releases.
extern "C" {
int __android_log_set_minimum_priority(int priority) __attribute__((weak));
int __android_log_get_minimum_priority(void) __attribute__((weak));
}

namespace tivora {

bool lowerAndroidLogMinimumPriority() {
  const TivoraLogger::tvr_loglevel_t level = TivoraLogger::getInstance()->getLogLevel();
  if (level > TivoraLogger::TVR_LOG_DEBUG) return true;  // the log library passes INFO and above anyway
  if (__android_log_set_minimum_priority == nullptr || __android_log_get_minimum_priority == nullptr) return false;
  const int wanted = level == TivoraLogger::TVR_LOG_VERBOSE ? ANDROID_LOG_VERBOSE : ANDROID_LOG_DEBUG;
  const int current = __android_log_get_minimum_priority();
  // ANDROID_LOG_DEFAULT: nobody set a minimum, and the log library keeps to INFO.
  if (current == ANDROID_LOG_DEFAULT || current > wanted) __android_log_set_minimum_priority(wanted);
  return true;
}

}  // namespace tivora
