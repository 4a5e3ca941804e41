#include "DlSystem/UserBufferMap.h"

#include "Objects.h"

using namespace snpe_stub::detail;

extern "C" Snpe_UserBufferMap_Handle_t Snpe_UserBufferMap_Create(void) {
  if (enter("Snpe_UserBufferMap_Create")) return nullptr;
  return adopt(std::make_unique<UserBufferMap>());
}

extern "C" Snpe_ErrorCode_t Snpe_UserBufferMap_Delete(Snpe_UserBufferMap_Handle_t map) {
  return deleteObject("Snpe_UserBufferMap_Delete", map, Kind::UserBufferMap);
}

extern "C" Snpe_ErrorCode_t Snpe_UserBufferMap_Add(Snpe_UserBufferMap_Handle_t map, const char* name,
                                                   Snpe_IUserBuffer_Handle_t buffer) {
  static constexpr const char* kName = "Snpe_UserBufferMap_Add";
  if (enter(kName, map, name, buffer)) return SNPE_ERRORCODE_CAPI_BAD_ARGUMENT;
  auto* self = find<UserBufferMap>(map);
  if (!self) return fail(kName, "not a user-buffer map", SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  if (name == nullptr) return fail(kName, "null name", SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
  if (!find<UserBuffer>(buffer)) return fail(kName, "not a user buffer", SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  for (auto& [key, value] : self->buffers) {
    if (key == name) {
      value = buffer;
      return SNPE_SUCCESS;
    }
  }
  self->buffers.emplace_back(name, buffer);
  return SNPE_SUCCESS;
}

extern "C" size_t Snpe_UserBufferMap_Size(Snpe_UserBufferMap_Handle_t map) {
  static constexpr const char* kName = "Snpe_UserBufferMap_Size";
  if (enter(kName, map)) return 0;
  auto* self = find<UserBufferMap>(map);
  if (!self) return fail(kName, "not a user-buffer map", size_t{0});
  return self->buffers.size();
}

extern "C" Snpe_StringList_Handle_t Snpe_UserBufferMap_GetUserBufferNames(Snpe_UserBufferMap_Handle_t map) {
  static constexpr const char* kName = "Snpe_UserBufferMap_GetUserBufferNames";
  if (enter(kName, map)) return nullptr;
  auto* self = find<UserBufferMap>(map);
  if (!self) return fail(kName, "not a user-buffer map", nullptr);
  std::vector<std::string> names;
  for (const auto& entry : self->buffers) names.push_back(entry.first);
  return newStringList(std::move(names));
}

extern "C" Snpe_IUserBuffer_Handle_t Snpe_UserBufferMap_GetUserBuffer_Ref(Snpe_UserBufferMap_Handle_t map,
                                                                          const char* name) {
  static constexpr const char* kName = "Snpe_UserBufferMap_GetUserBuffer_Ref";
  if (enter(kName, map, name)) return nullptr;
  auto* self = find<UserBufferMap>(map);
  if (!self) return fail(kName, "not a user-buffer map", nullptr);
  if (name == nullptr) return fail(kName, "null name", nullptr);
  void* buffer = self->get(name);
  if (!buffer) return fail(kName, std::string("no user buffer named '") + name + "'", nullptr);
  return buffer;
}
