# Checks that the arm64 image kernels, compiled with optimisation, run on NEON vectors, and that no
# multiply-add was fused in them (the portable references have none, so outputs stay bit-identical).
# Called with -DOBJDUMP=... -DRGB_TO_FLOAT=<object> -DNORMALISE=<object>.

# The disassembly of `object` from `function`'s start on (from its start when `function` is empty),
# which must hold an instruction matching each pattern after the first two arguments.
function(check_kernel object function)
  execute_process(COMMAND ${OBJDUMP} -d --no-show-raw-insn -C ${object}
                  OUTPUT_VARIABLE listing RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "cannot disassemble ${object}")
  endif()
  if(function)
    string(FIND "${listing}" "<tivora::image::${function}(" start)
    if(start EQUAL -1)
      message(FATAL_ERROR "${function} not found in ${object}")
    endif()
    string(SUBSTRING "${listing}" ${start} -1 listing)
  endif()
  foreach(pattern ${ARGN})
    if(NOT listing MATCHES "${pattern}")
      message(FATAL_ERROR "${object}: the NEON kernel lacks an instruction matching '${pattern}'")
    endif()
  endforeach()
  # The vectors must stay in registers: no vector spill to the stack.
  if(listing MATCHES "(st1\t{v[0-9]+\\.16b-v[0-9]+\\.16b}|st[rp]\tq[0-9]+,( q[0-9]+,)?) \\[sp")
    message(FATAL_ERROR "${object}: the NEON kernel spills its vectors to the stack")
  endif()
  if(listing MATCHES "\t(fmla|fmls|fmadd|fmsub|fnmadd|fnmsub)\t")
    message(FATAL_ERROR "${object}: a multiply-add was fused")
  endif()
endfunction()

# A de-interleaving load of 16 bytes per channel, vector subtract, int-to-float conversion and
# multiply on four float lanes, and an interleaving store.
check_kernel(${RGB_TO_FLOAT} rgbRowToFloatNeon
  "ld3\t{v[0-9]+\\.16b-v[0-9]+\\.16b}" "uxtl2?\tv[0-9]+\\.4s" "sub\tv[0-9]+\\.4s" "scvtf\tv[0-9]+\\.4s"
  "fmul\tv[0-9]+\\.4s" "st3\t{v[0-9]+\\.4s-v[0-9]+\\.4s}")
# The same load, conversion, float subtract and multiply; interleaving and plain vector stores.
check_kernel(${NORMALISE} ""
  "ld3\t{v[0-9]+\\.16b-v[0-9]+\\.16b}" "uxtl2?\tv[0-9]+\\.4s" "ucvtf\tv[0-9]+\\.4s" "fsub\tv[0-9]+\\.4s"
  "fmul\tv[0-9]+\\.4s" "st3\t{v[0-9]+\\.4s-v[0-9]+\\.4s}" "(stp?\tq[0-9]+|st1\t{v[0-9]+\\.4s)")
message(STATUS "NEON kernels: ld3 / uxtl / convert / subtract / fmul / stores on vector lanes, no fused multiply-add")
