#include "ScopedTrace.h"

namespace tivora {

ScopedTrace::ScopedTrace(const char* className, const char* functionName)
    : mClassName(className), mFunctionName(functionName) {
  ftraceBegin(className, functionName);
}

ScopedTrace::~ScopedTrace() {
  try {
    ftraceEnd(mClassName.c_str(), mFunctionName.c_str());
  } catch (...) {
    // A failed lock must not take the host down from a destructor; the marker is lost.
  }
}

}  // namespace tivora
