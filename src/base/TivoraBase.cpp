// The lifecycle the host drives: checks, trace markers, failure messages, hooks.
#include "TivoraBase.h"

#include "ScopedTrace.h"
#include "fastcv.h"
#include "log/Log.h"

namespace tivora {

TivoraBase::TivoraBase(SNPEMgr::TVRResourceType resourceType)
    : mResourceType(resourceType), mpLogger(TivoraLogger::getInstance()), mpSNPEMgr(nullptr) {
  std::lock_guard<std::mutex> guard(SNPEMgr::mSingleLock);
  if (SNPEMgr::mpInstance == nullptr) SNPEMgr::mpInstance = new SNPEMgr();
  mpSNPEMgr = SNPEMgr::mpInstance;
}

TivoraBase::~TivoraBase() {
  mpLogger = nullptr;
  mpSNPEMgr = nullptr;
}

const char* TivoraBase::getProcessingName() { return "TivoraBase"; }

std::string TivoraBase::getClassName() { return "TivoraBase"; }

tvr_err_t TivoraBase::setup(const void* createParam) {
  const std::string className = getClassName();
  ScopedTrace trace(className.c_str(), "setup");
  tvr_err_t result;
  if (mpSNPEMgr == nullptr) {
    TVR_LOG(mpLogger, ERROR, className, "setup", "Tivora is not ready");
    result = TVR_ERR_NOT_READY;
  } else if (createParam == nullptr) {
    TVR_LOG(mpLogger, ERROR, className, "setup", "Create parameter is null");
    result = TVR_ERR_INVALID_ARG;
  } else {
    result = setupImpl(createParam);
    if (result == TVR_OK) return TVR_OK;
  }
  teardownImpl();
  return result;
}

tvr_err_t TivoraBase::initialize(const void* staticParam) {
  const std::string className = getClassName();
  ScopedTrace trace(className.c_str(), "initialize");
  tvr_err_t result;
  if (mpSNPEMgr == nullptr) {
    TVR_LOG(mpLogger, ERROR, className, "initialize", "Tivora is not ready");
    result = TVR_ERR_NOT_READY;
  } else if (staticParam == nullptr) {
    TVR_LOG(mpLogger, ERROR, className, "initialize", "Static parameter is null");
    result = TVR_ERR_INVALID_ARG;
  } else if (fcvSetOperationMode(FASTCV_OP_CPU_PERFORMANCE) != 0) {
    TVR_LOG(mpLogger, ERROR, className, "initialize", "Failed to set fastCV operation mode");
    result = TVR_ERR_OPERATION_MODE;
  } else {
    result = initializeImpl(staticParam);
    if (result == TVR_OK) return TVR_OK;
  }
  finalizeImpl();
  return result;
}

tvr_err_t TivoraBase::apply(const void* input, void* output, void* debug) {
  const std::string className = getClassName();
  ScopedTrace trace(className.c_str(), "apply");
  if (mpSNPEMgr == nullptr) {
    TVR_LOG(mpLogger, ERROR, className, "apply", "Tivora is not ready");
    return TVR_ERR_NOT_READY;
  }
  if (input == nullptr) {
    TVR_LOG(mpLogger, ERROR, className, "apply", "Input parameter is null");
    return TVR_ERR_INVALID_ARG;
  }
  if (output == nullptr) {
    TVR_LOG(mpLogger, ERROR, className, "apply", "Output parameter is null");
    return TVR_ERR_INVALID_ARG;
  }
  return debug != nullptr ? applyDebugImpl(input, output, debug) : applyImpl(input, output);
}

tvr_err_t TivoraBase::abort() {
  const std::string className = getClassName();
  ScopedTrace trace(className.c_str(), "abort");
  return TVR_OK;
}

tvr_err_t TivoraBase::finalize() {
  const std::string className = getClassName();
  ScopedTrace trace(className.c_str(), "finalize");
  finalizeImpl();
  return TVR_OK;
}

tvr_err_t TivoraBase::teardown() {
  const std::string className = getClassName();
  ScopedTrace trace(className.c_str(), "teardown");
  teardownImpl();
  return TVR_OK;
}

}  // namespace tivora
