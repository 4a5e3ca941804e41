# Checks that the arm64 RGB888 to float kernel, compiled with optimisation, runs on NEON vectors:
# a de-interleaving load of 16 bytes per channel, vector subtract, int-to-float conversion and
# multiply on four float lanes, and an interleaving store. Called with -DOBJDUMP=... -DOBJECT=...
execute_process(COMMAND ${OBJDUMP} -d --no-show-raw-insn -C ${OBJECT}
                OUTPUT_VARIABLE listing RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "cannot disassemble ${OBJECT}")
endif()
string(FIND "${listing}" "<tivora::image::rgbRowToFloatNeon(" start)
if(start EQUAL -1)
  message(FATAL_ERROR "rgbRowToFloatNeon not found in ${OBJECT}")
endif()
string(SUBSTRING "${listing}" ${start} -1 kernel)
foreach(pattern
    "ld3\t{v[0-9]+\\.16b-v[0-9]+\\.16b}"
    "uxtl2?\tv[0-9]+\\.4s"
    "sub\tv[0-9]+\\.4s"
    "scvtf\tv[0-9]+\\.4s"
    "fmul\tv[0-9]+\\.4s"
    "st3\t{v[0-9]+\\.4s-v[0-9]+\\.4s}")
  if(NOT kernel MATCHES "${pattern}")
    message(FATAL_ERROR "the NEON kernel lacks an instruction matching '${pattern}'")
  endif()
endforeach()
# The de-interleaved vectors must stay in registers: no vector spill to the stack in the loop.
if(kernel MATCHES "st1\t{v[0-9]+\\.16b-v[0-9]+\\.16b}, \\[sp")
  message(FATAL_ERROR "the NEON kernel spills its vectors to the stack")
endif()
message(STATUS "NEON kernel: ld3 / uxtl / sub / scvtf / fmul / st3 on vector lanes")
