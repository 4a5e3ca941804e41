#include "DlSystem/TensorShape.h"

#include "Objects.h"

using namespace snpe_stub::detail;

void* snpe_stub::detail::newTensorShape(std::vector<size_t> dims) {
  auto shape = std::make_unique<TensorShape>();
  shape->dims = std::move(dims);
  return adopt(std::move(shape));
}

namespace {

// The journal writes the dimensions themselves, e.g. "[1,224,224,3], 4".
std::string dimsText(const size_t* dims, size_t rank) {
  if (dims == nullptr) return "null";
  std::string text = "[";
  for (size_t i = 0; i < rank && i < 16; ++i) text += (i ? "," : "") + std::to_string(dims[i]);
  return text + (rank > 16 ? ",...]" : "]");
}

}  // namespace

extern "C" Snpe_TensorShape_Handle_t Snpe_TensorShape_CreateDimsSize(const size_t* dims, size_t rank) {
  static constexpr const char* kName = "Snpe_TensorShape_CreateDimsSize";
  if (enter(kName, journaling() ? dimsText(dims, rank) + ", " + std::to_string(rank) : std::string())) return nullptr;
  if (dims == nullptr && rank != 0) return fail(kName, "null dimensions", nullptr);
  return newTensorShape(rank ? std::vector<size_t>(dims, dims + rank) : std::vector<size_t>());
}

extern "C" Snpe_ErrorCode_t Snpe_TensorShape_Delete(Snpe_TensorShape_Handle_t shape) {
  return deleteObject("Snpe_TensorShape_Delete", shape, Kind::TensorShape);
}

extern "C" const size_t* Snpe_TensorShape_GetDimensions(Snpe_TensorShape_Handle_t shape) {
  static constexpr const char* kName = "Snpe_TensorShape_GetDimensions";
  if (enter(kName, shape)) return nullptr;
  auto* self = find<TensorShape>(shape);
  if (!self) return fail(kName, "not a tensor shape", nullptr);
  return self->dims.empty() ? nullptr : self->dims.data();
}

extern "C" size_t Snpe_TensorShape_Rank(Snpe_TensorShape_Handle_t shape) {
  static constexpr const char* kName = "Snpe_TensorShape_Rank";
  if (enter(kName, shape)) return 0;
  auto* self = find<TensorShape>(shape);
  if (!self) return fail(kName, "not a tensor shape", size_t{0});
  return self->dims.size();
}

extern "C" size_t Snpe_TensorShape_At(Snpe_TensorShape_Handle_t shape, size_t index) {
  static constexpr const char* kName = "Snpe_TensorShape_At";
  if (enter(kName, shape, index)) return 0;
  auto* self = find<TensorShape>(shape);
  if (!self) return fail(kName, "not a tensor shape", size_t{0});
  if (index >= self->dims.size()) return fail(kName, "index " + std::to_string(index) + " out of range", size_t{0});
  return self->dims[index];
}
