// A derived processing for tests: records which hooks ran and with which records, answers with
// scripted statuses, and can be unbound from the network manager.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "TivoraBase.h"

namespace tivora::test {

class RecordingProcessing : public TivoraBase {
 public:
  explicit RecordingProcessing(SNPEMgr::TVRResourceType type = 0, bool* destroyed = nullptr)
      : TivoraBase(type), mpDestroyed(destroyed) {}
  ~RecordingProcessing() override {
    if (mpDestroyed != nullptr) *mpDestroyed = true;
  }

  // Statuses the hooks return.
  tvr_err_t setupStatus = 0, initializeStatus = 0, applyStatus = 0, applyDebugStatus = 0;
  // Hook names in call order, and the records the last hook was given.
  std::vector<std::string> hooks;
  const void* args[3] = {};
  // Called inside every hook with its name.
  std::function<void(const std::string&)> onHook;

  // Not ready: as if the manager had not been bound.
  void unbind() { mpSNPEMgr = nullptr; }

  const char* getProcessingName() override { return "RecordingProcessing"; }

  using TivoraBase::convertNv12ToRgb888, TivoraBase::convertRGB888ToFloat, TivoraBase::splitYUV420P,
      TivoraBase::splitYUV420SP, TivoraBase::createImageBuf, TivoraBase::deleteImageBuf;
  using TivoraBase::createSNPE, TivoraBase::deleteSNPE, TivoraBase::executeSNPE, TivoraBase::getModelVersion,
      TivoraBase::getInputBufferName, TivoraBase::getOutputBufferName;

 protected:
  std::string getClassName() override { return "RecordingProcessing"; }

  tvr_err_t setupImpl(const void* p) override { return record("setupImpl", setupStatus, p); }
  void teardownImpl() override { record("teardownImpl", 0); }
  tvr_err_t initializeImpl(const void* p) override { return record("initializeImpl", initializeStatus, p); }
  void finalizeImpl() override { record("finalizeImpl", 0); }
  tvr_err_t applyImpl(const void* in, void* out) override { return record("applyImpl", applyStatus, in, out); }
  tvr_err_t applyDebugImpl(const void* in, void* out, void* dbg) override {
    return record("applyDebugImpl", applyDebugStatus, in, out, dbg);
  }

 private:
  tvr_err_t record(const char* hook, tvr_err_t status, const void* a = nullptr, const void* b = nullptr,
                   const void* c = nullptr) {
    hooks.emplace_back(hook);
    args[0] = a;
    args[1] = b;
    args[2] = c;
    if (onHook) onHook(hook);
    return status;
  }

  bool* mpDestroyed;
};

}  // namespace tivora::test
