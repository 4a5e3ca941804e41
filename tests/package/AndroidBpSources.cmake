# The vendor tree's build (Android.bp) cannot be run here; this keeps its library sources those
# the CMake build compiles into libvexa_tivorabase.so (src/CMakeLists.txt, kernels included).
# Usage: cmake -DSOURCE_DIR=<top of the repository> -P AndroidBpSources.cmake
file(READ ${SOURCE_DIR}/src/CMakeLists.txt cmake_text)
file(READ ${SOURCE_DIR}/Android.bp bp_text)
string(REGEX MATCHALL "[A-Za-z0-9_/]+\\.cpp" cmake_sources "${cmake_text}")
list(TRANSFORM cmake_sources PREPEND "src/")
string(REGEX MATCHALL "\"src/[A-Za-z0-9_/]+\\.cpp\"" bp_sources "${bp_text}")
list(TRANSFORM bp_sources REPLACE "\"" "")

set(missing ${cmake_sources})
list(REMOVE_ITEM missing ${bp_sources})
set(extra ${bp_sources})
list(REMOVE_ITEM extra ${cmake_sources})
if(missing OR extra OR NOT cmake_sources)
  message(FATAL_ERROR "Android.bp and src/CMakeLists.txt name different sources. "
                      "Only in src/CMakeLists.txt: ${missing}. Only in Android.bp: ${extra}.")
endif()
list(LENGTH bp_sources count)
message(STATUS "Android.bp names the ${count} sources of the CMake build")
