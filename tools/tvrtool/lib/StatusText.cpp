#include "StatusText.h"

namespace tvrtool {

std::string statusText(tvr_err_t status) {
  const char* meaning = "unknown status";
  switch (status) {
    case TVR_OK:
      return "ok";
    case TVR_ERR_NOT_FOUND:
      meaning = "not found: network, slot or user buffers missing";
      break;
    case TVR_ERR_RUNTIME_UNAVAILABLE:
      meaning = "runtime unavailable";
      break;
    case TVR_ERR_NOT_READY:
      meaning = "not ready: no network manager";
      break;
    case TVR_ERR_CONTAINER_OPEN:
      meaning = "the model container could not be opened";
      break;
    case TVR_ERR_BUILD:
      meaning = "the network could not be built";
      break;
    case TVR_ERR_EXECUTE:
      meaning = "the network's execution failed";
      break;
    case TVR_ERR_MODEL_READ:
      meaning = "the model file cannot be read";
      break;
    case TVR_ERR_INVALID_ARG:
      meaning = "invalid argument";
      break;
    case TVR_ERR_OPERATION_MODE:
      meaning = "the image library's operation mode cannot be set";
      break;
    case TVR_ERR_FILE_READ:
      meaning = "a file could not be read";
      break;
    default:
      break;
  }
  return std::to_string(status) + " (" + meaning + ")";
}

}  // namespace tvrtool
