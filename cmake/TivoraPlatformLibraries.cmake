# Finds the platform libraries that libvexa_tivorabase.so links, on the machine running CMake. The
# build uses these functions (TivoraPlatform.cmake), and so does the installed package
# (tivorabaseConfig.cmake), so that a project using the library finds them on its own machine.
# Each function makes an imported target, or sets `error_var` to why it cannot ("" on success).

# An imported shared library at `location` with its headers in `include_dir`.
function(tivora_add_imported target location include_dir)
  add_library(${target} SHARED IMPORTED)
  set_target_properties(${target} PROPERTIES IMPORTED_LOCATION "${location}" INTERFACE_INCLUDE_DIRECTORIES "${include_dir}")
endfunction()

# The Android log library: the NDK's on a device, Debian's android-liblog-dev for the target
# architecture elsewhere.
function(tivora_find_liblog target error_var)
  if(ANDROID)
    find_library(TIVORA_LIBLOG_LIBRARY log)
    set(include_dir "")  # the NDK's sysroot holds the header
    set(wanted "The NDK's Android log library (liblog)")
  elseif(CMAKE_LIBRARY_ARCHITECTURE)
    find_path(TIVORA_LIBLOG_INCLUDE_DIR android/log.h
              PATHS /usr/include/android NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    find_library(TIVORA_LIBLOG_LIBRARY log
                 PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
    set(include_dir "${TIVORA_LIBLOG_INCLUDE_DIR}")
    set(wanted "The Android log library for ${CMAKE_LIBRARY_ARCHITECTURE} (Debian's android-liblog-dev)")
  else()
    set(${error_var} "CMAKE_LIBRARY_ARCHITECTURE is unknown; cannot locate the Debian multiarch liblog" PARENT_SCOPE)
    return()
  endif()
  if(NOT TIVORA_LIBLOG_LIBRARY OR include_dir MATCHES "-NOTFOUND$")
    set(${error_var} "${wanted} was not found" PARENT_SCOPE)
    return()
  endif()
  tivora_add_imported(${target} "${TIVORA_LIBLOG_LIBRARY}" "${include_dir}")
  set(${error_var} "" PARENT_SCOPE)
endfunction()

# Makes `target` the vendor's library `lib` (found in `lib_dirs`) with the header `header` (found
# in `include_dirs`), or says what the SDK at `root` lacks.
function(tivora_import_vendor target root header include_dirs lib lib_dirs error_var)
  string(MAKE_C_IDENTIFIER "${target}" id)
  find_path(${id}_INCLUDE_DIR ${header} PATHS ${include_dirs} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  find_library(${id}_LIBRARY ${lib} PATHS ${lib_dirs} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT ${id}_INCLUDE_DIR OR NOT ${id}_LIBRARY)
    set(${error_var} "${root} does not hold ${header} (looked in ${include_dirs}) and lib${lib}.so (looked in ${lib_dirs})"
        PARENT_SCOPE)
    return()
  endif()
  tivora_add_imported(${target} "${${id}_LIBRARY}" "${${id}_INCLUDE_DIR}")
  set(${error_var} "" PARENT_SCOPE)
endfunction()

# The vendor NN runtime's SDK: include/SNPE and lib/<target>/libSNPE.so.
function(tivora_import_snpe target root error_var)
  if(ANDROID)
    set(lib_dir "${root}/lib/aarch64-android")
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    set(lib_dir "${root}/lib/x86_64-linux-clang")
  else()
    set(${error_var} "SNPE_ROOT has no runtime library for ${CMAKE_SYSTEM_NAME}/${CMAKE_SYSTEM_PROCESSOR}" PARENT_SCOPE)
    return()
  endif()
  tivora_import_vendor(${target} "SNPE_ROOT=${root}" SNPE/SNPEUtil.h "${root}/include/SNPE" SNPE "${lib_dir}" error)
  set(${error_var} "${error}" PARENT_SCOPE)
endfunction()

# The vendor image library's SDK: fastcv.h and libfastcvopt.so.
function(tivora_import_fastcv target root error_var)
  tivora_import_vendor(${target} "FASTCV_ROOT=${root}" fastcv.h "${root}/inc;${root}/include"
                       fastcvopt "${root}/lib;${root}/lib64;${root}/lib/aarch64-android" error)
  set(${error_var} "${error}" PARENT_SCOPE)
endfunction()
