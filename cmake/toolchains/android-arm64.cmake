# Android arm64 device build: the NDK's own toolchain file, with the vendor SDKs instead of the
# host stand-ins. Stops at once, naming every missing piece, when something is not given.
foreach(_var ANDROID_NDK SNPE_ROOT FASTCV_ROOT)
  if(NOT ${_var} AND DEFINED ENV{${_var}})
    set(${_var} "$ENV{${_var}}")
  endif()
endforeach()

set(_tivora_missing "")
if(NOT ANDROID_NDK OR NOT EXISTS "${ANDROID_NDK}/build/cmake/android.toolchain.cmake")
  list(APPEND _tivora_missing "ANDROID_NDK (the NDK root, holding build/cmake/android.toolchain.cmake)")
endif()
if(NOT SNPE_ROOT)
  list(APPEND _tivora_missing "SNPE_ROOT (the NN runtime SDK)")
endif()
if(NOT FASTCV_ROOT)
  list(APPEND _tivora_missing "FASTCV_ROOT (the image library SDK)")
endif()
if(_tivora_missing)
  string(REPLACE ";" "\n  " _tivora_missing "${_tivora_missing}")
  message(FATAL_ERROR "The android-arm64 build needs, as environment or cache variables:\n  ${_tivora_missing}")
endif()

set(ANDROID_ABI arm64-v8a CACHE STRING "")
set(ANDROID_PLATFORM android-29 CACHE STRING "")
# The vendor NN runtime is built against the shared C++ runtime; one process, one C++ runtime.
set(ANDROID_STL c++_shared CACHE STRING "")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ANDROID_NDK SNPE_ROOT FASTCV_ROOT)

include("${ANDROID_NDK}/build/cmake/android.toolchain.cmake")
