#include "DlSystem/StringList.h"

#include "Objects.h"

using namespace snpe_stub::detail;

void* snpe_stub::detail::newStringList(std::vector<std::string> strings) {
  auto list = std::make_unique<StringList>();
  list->strings = std::move(strings);
  return adopt(std::move(list));
}

extern "C" Snpe_StringList_Handle_t Snpe_StringList_Create(void) {
  if (enter("Snpe_StringList_Create")) return nullptr;
  return newStringList({});
}

extern "C" Snpe_ErrorCode_t Snpe_StringList_Delete(Snpe_StringList_Handle_t list) {
  return deleteObject("Snpe_StringList_Delete", list, Kind::StringList);
}

extern "C" Snpe_ErrorCode_t Snpe_StringList_Append(Snpe_StringList_Handle_t list, const char* text) {
  static constexpr const char* kName = "Snpe_StringList_Append";
  if (enter(kName, list, text)) return SNPE_ERRORCODE_CAPI_BAD_ARGUMENT;
  auto* self = find<StringList>(list);
  if (!self) return fail(kName, "not a string list", SNPE_ERRORCODE_CAPI_BAD_HANDLE);
  if (text == nullptr) return fail(kName, "null string", SNPE_ERRORCODE_CAPI_BAD_ARGUMENT);
  self->strings.emplace_back(text);
  return SNPE_SUCCESS;
}

// Failures answer "" too, so that a caller printing the result never sees null.
extern "C" const char* Snpe_StringList_At(Snpe_StringList_Handle_t list, size_t index) {
  static constexpr const char* kName = "Snpe_StringList_At";
  if (enter(kName, list, index)) return "";
  auto* self = find<StringList>(list);
  if (!self) return fail(kName, "not a string list", "");
  if (index >= self->strings.size()) return fail(kName, "index " + std::to_string(index) + " out of range", "");
  return self->strings[index].c_str();
}

extern "C" size_t Snpe_StringList_Size(Snpe_StringList_Handle_t list) {
  static constexpr const char* kName = "Snpe_StringList_Size";
  if (enter(kName, list)) return 0;
  auto* self = find<StringList>(list);
  if (!self) return fail(kName, "not a string list", size_t{0});
  return self->strings.size();
}
