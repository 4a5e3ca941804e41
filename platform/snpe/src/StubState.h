// Process-wide state of the stand-in: failure scripts and the call journal, shared by every
// function of the C interface.
#pragma once

#include <string>

namespace snpe_stub::detail {

// Journals the call and consumes one scripted failure; true when this call must fail.
bool enter(const char* name, std::string args);

void setLastError(std::string text);

}  // namespace snpe_stub::detail
