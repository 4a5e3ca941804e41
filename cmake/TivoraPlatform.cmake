# The platform seam. The library calls the platform by its real C names; which library answers is
# decided here, at link level:
#   - Android log library: the NDK's liblog on a device, Debian's android-liblog-dev elsewhere.
#   - NN runtime: the vendor SDK when SNPE_ROOT is given, else our host stand-in (platform/snpe).
#   - Image library: the vendor SDK when FASTCV_ROOT is given, else our host stand-in (platform/fastcv).
# Each choice ends in one target that the library links: Tivora::liblog, Tivora::SNPE, Tivora::FastCV.

set(SNPE_ROOT "" CACHE PATH "Root of the vendor NN runtime SDK (include/SNPE, lib/<target>/libSNPE.so)")
set(FASTCV_ROOT "" CACHE PATH "Root of the vendor image library SDK (fastcv.h, libfastcvopt.so)")

if(ANDROID)
  set(_tivora_missing "")
  foreach(_var SNPE_ROOT FASTCV_ROOT)
    if(NOT ${_var})
      list(APPEND _tivora_missing ${_var})
    endif()
  endforeach()
  if(_tivora_missing)
    string(REPLACE ";" ", " _tivora_missing "${_tivora_missing}")
    message(FATAL_ERROR "An Android build links the vendor SDKs, not the host stand-ins. Missing: ${_tivora_missing}")
  endif()
endif()

include(${CMAKE_CURRENT_LIST_DIR}/TivoraPlatformLibraries.cmake)

# --- Android log library ---------------------------------------------------------------------
tivora_find_liblog(Tivora::liblog _tivora_error)
if(_tivora_error)
  message(FATAL_ERROR "${_tivora_error}")
endif()

# --- NN runtime ------------------------------------------------------------------------------
if(SNPE_ROOT)
  tivora_import_snpe(Tivora::SNPE "${SNPE_ROOT}" _tivora_error)
  if(_tivora_error)
    message(FATAL_ERROR "${_tivora_error}")
  endif()
  set(TIVORA_SNPE_STANDIN OFF)
else()
  add_subdirectory(platform/snpe)
  add_library(Tivora::SNPE ALIAS SNPE)
  set(TIVORA_SNPE_STANDIN ON)
endif()

# --- Image library ---------------------------------------------------------------------------
if(FASTCV_ROOT)
  tivora_import_fastcv(Tivora::FastCV "${FASTCV_ROOT}" _tivora_error)
  if(_tivora_error)
    message(FATAL_ERROR "${_tivora_error}")
  endif()
  set(TIVORA_FASTCV_STANDIN OFF)
else()
  add_subdirectory(platform/fastcv)
  add_library(Tivora::FastCV ALIAS fastcvopt)
  set(TIVORA_FASTCV_STANDIN ON)
endif()
