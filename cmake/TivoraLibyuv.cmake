# Debian's libyuv for this build's architecture (libyuv-dev), as Tivora::libyuv: the image library's
# stand-in does its pixel work with it, and tvrtool converts frames with it. Linked as a shared
# library: Debian's x86-64 archive is not position-independent. Its headers are the same for every
# architecture; a folder of their own keeps a cross build from seeing the host's /usr/include.
if(ANDROID OR TARGET Tivora::libyuv)
  return()
endif()
find_library(TIVORA_LIBYUV_SHARED_LIBRARY NAMES libyuv.so
             PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
if(NOT TIVORA_LIBYUV_SHARED_LIBRARY OR NOT EXISTS /usr/include/libyuv/scale_uv.h)
  message(FATAL_ERROR "libyuv for ${CMAKE_LIBRARY_ARCHITECTURE} was not found. "
                      "Install Debian's libyuv-dev for this architecture (scripts/setup does).")
endif()
set(_libyuv_include ${CMAKE_BINARY_DIR}/libyuv-include)
file(MAKE_DIRECTORY ${_libyuv_include})
file(CREATE_LINK /usr/include/libyuv ${_libyuv_include}/libyuv SYMBOLIC)
add_library(Tivora::libyuv UNKNOWN IMPORTED GLOBAL)
set_target_properties(Tivora::libyuv PROPERTIES
  IMPORTED_LOCATION "${TIVORA_LIBYUV_SHARED_LIBRARY}"
  INTERFACE_INCLUDE_DIRECTORIES "${_libyuv_include}")
