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

# --- Android log library ---------------------------------------------------------------------
if(ANDROID)
  find_library(TIVORA_LIBLOG_LIBRARY log REQUIRED)
  add_library(Tivora::liblog INTERFACE IMPORTED)
  set_target_properties(Tivora::liblog PROPERTIES INTERFACE_LINK_LIBRARIES "${TIVORA_LIBLOG_LIBRARY}")
else()
  if(NOT CMAKE_LIBRARY_ARCHITECTURE)
    message(FATAL_ERROR "CMAKE_LIBRARY_ARCHITECTURE is unknown; cannot locate the Debian multiarch liblog")
  endif()
  find_path(TIVORA_LIBLOG_INCLUDE_DIR android/log.h
            PATHS /usr/include/android NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  find_library(TIVORA_LIBLOG_LIBRARY log
               PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT TIVORA_LIBLOG_INCLUDE_DIR OR NOT TIVORA_LIBLOG_LIBRARY)
    message(FATAL_ERROR "The Android log library for ${CMAKE_LIBRARY_ARCHITECTURE} was not found. "
                        "Install Debian's android-liblog-dev for this architecture (scripts/setup does).")
  endif()
  add_library(Tivora::liblog UNKNOWN IMPORTED)
  set_target_properties(Tivora::liblog PROPERTIES
    IMPORTED_LOCATION "${TIVORA_LIBLOG_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${TIVORA_LIBLOG_INCLUDE_DIR}")
endif()

# Makes `target` the vendor's library `lib` (found in `lib_dirs`) with the header `header` (found in
# `include_dirs`), or stops naming what the SDK at `root` lacks.
function(tivora_import_vendor target root header include_dirs lib lib_dirs)
  string(MAKE_C_IDENTIFIER "${target}" id)
  find_path(${id}_INCLUDE_DIR ${header} PATHS ${include_dirs} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  find_library(${id}_LIBRARY ${lib} PATHS ${lib_dirs} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT ${id}_INCLUDE_DIR OR NOT ${id}_LIBRARY)
    message(FATAL_ERROR "${root} does not hold ${header} (looked in ${include_dirs}) "
                        "and lib${lib}.so (looked in ${lib_dirs})")
  endif()
  add_library(${target} SHARED IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES
    IMPORTED_LOCATION "${${id}_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${${id}_INCLUDE_DIR}")
endfunction()

# --- NN runtime ------------------------------------------------------------------------------
if(SNPE_ROOT)
  if(ANDROID)
    set(_snpe_lib_dir "${SNPE_ROOT}/lib/aarch64-android")
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    set(_snpe_lib_dir "${SNPE_ROOT}/lib/x86_64-linux-clang")
  else()
    message(FATAL_ERROR "SNPE_ROOT has no runtime library for ${CMAKE_SYSTEM_NAME}/${CMAKE_SYSTEM_PROCESSOR}")
  endif()
  tivora_import_vendor(Tivora::SNPE "SNPE_ROOT=${SNPE_ROOT}" SNPE/SNPEUtil.h "${SNPE_ROOT}/include/SNPE"
                       SNPE "${_snpe_lib_dir}")
  set(TIVORA_SNPE_STANDIN OFF)
else()
  add_subdirectory(platform/snpe)
  add_library(Tivora::SNPE ALIAS SNPE)
  set(TIVORA_SNPE_STANDIN ON)
endif()

# --- Image library ---------------------------------------------------------------------------
if(FASTCV_ROOT)
  tivora_import_vendor(Tivora::FastCV "FASTCV_ROOT=${FASTCV_ROOT}" fastcv.h "${FASTCV_ROOT}/inc;${FASTCV_ROOT}/include"
                       fastcvopt "${FASTCV_ROOT}/lib;${FASTCV_ROOT}/lib64;${FASTCV_ROOT}/lib/aarch64-android")
  set(TIVORA_FASTCV_STANDIN OFF)
else()
  add_subdirectory(platform/fastcv)
  add_library(Tivora::FastCV ALIAS fastcvopt)
  set(TIVORA_FASTCV_STANDIN ON)
endif()
