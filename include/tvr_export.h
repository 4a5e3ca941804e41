// Marks the library's public classes, functions and globals: the only symbols that
// libvexa_tivorabase.so exports (everything else is built with hidden visibility).
#pragma once

#define TVR_EXPORT __attribute__((visibility("default")))
