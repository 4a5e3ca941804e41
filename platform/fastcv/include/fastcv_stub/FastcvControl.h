// Test control of the host stand-in of the image library (libfastcvopt.so from platform/fastcv).
// Exists only in the stand-in; a build against the vendor SDK has no such header.
#pragma once

#include <vector>

namespace fastcv_stub {

// What fcvSetOperationMode returns from now on (0 at load: success).
void setOperationModeResult(int result);

// Every mode fcvSetOperationMode was called with, in order.
std::vector<int> operationModeCalls();

}  // namespace fastcv_stub
