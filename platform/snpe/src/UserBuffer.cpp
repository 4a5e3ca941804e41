#include "DlSystem/IUserBuffer.h"
#include "Objects.h"
#include "SNPE/SNPEUtil.h"

using namespace snpe_stub::detail;

extern "C" Snpe_UserBufferEncoding_Handle_t Snpe_UserBufferEncodingFloat_Create(void) {
  if (enter("Snpe_UserBufferEncodingFloat_Create")) return nullptr;
  return adopt(std::make_unique<Encoding>());
}

extern "C" Snpe_ErrorCode_t Snpe_UserBufferEncodingFloat_Delete(Snpe_UserBufferEncoding_Handle_t encoding) {
  return deleteObject("Snpe_UserBufferEncodingFloat_Delete", encoding, Kind::Encoding);
}

// The strides and the element size are copied: the shape and the encoding may be deleted at once.
extern "C" Snpe_IUserBuffer_Handle_t Snpe_Util_CreateUserBuffer(void* buffer, size_t bufSize,
                                                                Snpe_TensorShape_Handle_t strides,
                                                                Snpe_IUserBuffer_Handle_t encoding) {
  static constexpr const char* kName = "Snpe_Util_CreateUserBuffer";
  if (enter(kName, Memory{buffer}, bufSize, strides, encoding)) return nullptr;
  if (buffer == nullptr) return fail(kName, "null buffer", nullptr);
  auto* shape = find<TensorShape>(strides);
  if (!shape) return fail(kName, "strides are not a tensor shape", nullptr);
  if (shape->dims.empty()) return fail(kName, "no strides", nullptr);
  auto* format = find<Encoding>(encoding);
  if (!format) return fail(kName, "not an encoding", nullptr);
  auto self = std::make_unique<UserBuffer>();
  self->memory = static_cast<unsigned char*>(buffer);
  self->size = bufSize;
  self->strides = shape->dims;
  self->elementSize = format->elementSize;
  return adopt(std::move(self));
}

extern "C" Snpe_ErrorCode_t Snpe_IUserBuffer_Delete(Snpe_IUserBuffer_Handle_t buffer) {
  return deleteObject("Snpe_IUserBuffer_Delete", buffer, Kind::UserBuffer);
}

extern "C" size_t Snpe_IUserBuffer_GetSize(Snpe_IUserBuffer_Handle_t buffer) {
  static constexpr const char* kName = "Snpe_IUserBuffer_GetSize";
  if (enter(kName, buffer)) return 0;
  auto* self = find<UserBuffer>(buffer);
  if (!self) return fail(kName, "not a user buffer", size_t{0});
  return self->size;
}
