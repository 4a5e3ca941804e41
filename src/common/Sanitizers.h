// Which sanitizer this translation unit is built with (GCC and clang spell it differently).
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#define TVR_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TVR_ADDRESS_SANITIZER 1
#endif
#endif

#if defined(__SANITIZE_THREAD__)
#define TVR_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define TVR_THREAD_SANITIZER 1
#endif
#endif
