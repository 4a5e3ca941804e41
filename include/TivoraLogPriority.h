// Letting the logger's DEBUG and VERBOSE records reach the Android log's output.
//
// The logger filters by its own threshold (TivoraLogLevel in VEXA_TVR.dat), and then the Android
// log library filters again by its minimum priority for the process. That minimum is INFO unless
// someone lowers it (on a workstation Debian's liblog always starts there; on a device the
// "log.tag" properties decide), so records below INFO that the configuration asks for are lost.
// A host that wants them, tvrtool for one, calls this once after the logger exists:
//
//   tivora::lowerAndroidLogMinimumPriority();
//
// It lowers the log library's minimum priority to the logger's threshold when that threshold is
// DEBUG or VERBOSE and the minimum is higher; it never raises it.
//
// The log library offers the minimum priority from Android 11 (API 30) on. The library refers to
// it weakly, so it still loads on older releases; there the call does nothing and returns false.
#pragma once

#include "tvr_export.h"

namespace tivora {

// True when the log library now lets every record through that the logger's threshold allows;
// false when the log library cannot be told (an Android release before 11).
TVR_EXPORT bool lowerAndroidLogMinimumPriority();

}  // namespace tivora
