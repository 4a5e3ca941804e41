// The objects behind the C interface's handles. Each source file implements the functions of one
// kind; the builder and the network reach into the others' objects through these definitions.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "DlSystem/DlEnums.h"
#include "Model.h"
#include "StubState.h"

namespace snpe_stub::detail {

struct Container : Object {
  static constexpr Kind kKind = Kind::Container;
  std::shared_ptr<const Model> model;
};

struct RuntimeList : Object {
  static constexpr Kind kKind = Kind::RuntimeList;
  std::vector<Snpe_Runtime_t> runtimes;
};

struct StringList : Object {
  static constexpr Kind kKind = Kind::StringList;
  std::vector<std::string> strings;
};

struct PlatformConfig : Object {
  static constexpr Kind kKind = Kind::PlatformConfig;
  std::vector<std::string> options;
};

struct Builder : Object {
  static constexpr Kind kKind = Kind::Builder;
  std::shared_ptr<const Model> model;
  NetworkSettings settings;
};

struct Network : Object {
  static constexpr Kind kKind = Kind::Network;
  std::shared_ptr<const Model> model;
  NetworkSettings settings;
  std::vector<Tensor> outputs;  // the tensors it produces
  std::unique_ptr<Engine> engine;
};

struct Encoding : Object {
  static constexpr Kind kKind = Kind::Encoding;
  size_t elementSize = sizeof(float);
};

struct UserBuffer : Object {
  static constexpr Kind kKind = Kind::UserBuffer;
  unsigned char* memory = nullptr;
  size_t size = 0;
  std::vector<size_t> strides;  // bytes, one per dimension
  size_t elementSize = 0;
};

struct UserBufferMap : Object {
  static constexpr Kind kKind = Kind::UserBufferMap;
  std::vector<std::pair<std::string, void*>> buffers;  // in order of adding; handles, not owned

  void* get(const std::string& name) const {
    for (const auto& [key, buffer] : buffers) {
      if (key == name) return buffer;
    }
    return nullptr;
  }
};

struct TensorShape : Object {
  static constexpr Kind kKind = Kind::TensorShape;
  std::vector<size_t> dims;
};

// New objects handed to the caller, who deletes them.
void* newStringList(std::vector<std::string> strings);
void* newTensorShape(std::vector<size_t> dims);

}  // namespace snpe_stub::detail
