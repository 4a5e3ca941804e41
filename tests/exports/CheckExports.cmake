# Checks the dynamic symbol table of libvexa_tivorabase.so: only the public API (namespaces tivora
# and hvx, with their classes' virtual tables and type information) is exported, and the API a
# processing links against is all there.
# Usage: cmake -DNM=<nm> -DLIB=<library> -P CheckExports.cmake
execute_process(COMMAND ${NM} -D -C --defined-only ${LIB} OUTPUT_VARIABLE table RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${NM} failed on ${LIB}")
endif()

string(REPLACE "\n" ";" lines "${table}")
set(exported "")
foreach(line IN LISTS lines)
  if(line MATCHES "^[0-9a-fA-F]+ [A-Za-z] (.*)$")
    set(symbol "${CMAKE_MATCH_1}")
    # Symbol versions and the linker's own markers are not API.
    if(symbol MATCHES "^(_init|_fini|_edata|_end|__bss_start)$")
      continue()
    endif()
    if(NOT symbol MATCHES "^((vtable|typeinfo|typeinfo name) for )?(tivora|hvx)::")
      list(APPEND unexpected "${symbol}")
    endif()
    list(APPEND exported "${symbol}")
  endif()
endforeach()

if(unexpected)
  list(JOIN unexpected "\n  " unexpected)
  message(FATAL_ERROR "exported but not public API:\n  ${unexpected}")
endif()

foreach(required
    "tivora::TivoraLogger::getInstance()"
    "tivora::TivoraLogger::logPrint("
    "vtable for tivora::TivoraLogger"
    "tivora::gTracingOn"
    "tivora::gTraceMarkerFd"
    "tivora::gTraceMarkerLock"
    "tivora::ScopedTrace::ScopedTrace(char const*, char const*)"
    "tivora::getTraceFd()"
    "tivora::format"
    "tivora::SNPEParam::operator=="
    "tivora::convert(tvr_runtime_t)"
    "tivora::SNPEMgr::getInstance()"
    "tivora::SNPEMgr::mSingleLock"
    "tivora::SNPEMgr::execute(unsigned int)"
    "tivora::NetworkBinding::bind()"
    "vtable for tivora::SNPEMgr"
    "tivora::TivoraBase::TivoraBase(unsigned int)"
    "tivora::TivoraBase::executeSNPE(unsigned int)"
    "vtable for tivora::TivoraBase"
    "typeinfo for hvx::IProcessing"
    "tivora::TivoraBase::DebugBase::DebugBase()"
    "tivora::TivoraBase::DebugBase::loadConfig("
    "tivora::TivoraBase::DebugBase::dumpBaseInputParam("
    "tivora::TivoraBase::DebugBase::dumpBufferByKey("
    "vtable for tivora::TivoraBase::DebugBase"
    "tivora::loadContainer("
    "tivora::getBufferSize(void*)"
    "tivora::TivoraBase::createImageBuf("
    "tivora::TivoraBase::deleteImageBuf("
    "tivora::TivoraBase::convertNv12ToRgb888("
    "tivora::TivoraBase::convertRGB888ToFloat("
    "tivora::convertRGB888ToNormalisedFloat("
    "tivora::TivoraBase::splitYUV420SP("
    "tivora::TivoraBase::splitYUV420P("
    "tivora::convert(tvr_rotation_t)"
    "(tvr_image_format_t)"
    "tivora::readFromFile("
    "tivora::outputRawImage("
    "tivora::clip(float, float, float)")
  string(FIND "${table}" "${required}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "public API not exported: ${required}")
  endif()
endforeach()
list(LENGTH exported count)
message(STATUS "${count} exported symbols, all public API")
