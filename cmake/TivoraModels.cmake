# The ONNX models scripts/make-models makes, generated at build time rather than kept as binary
# files: where the NN runtime's stand-in runs ONNX (TIVORA_SNPE_ONNX) and Debian's python3-onnx
# is installed. TIVORA_MODELS says whether they are; without them the sample takes its text model
# and the tests and benchmarks that need a model skip.
set(TIVORA_MODELS OFF)
if(TIVORA_SNPE_ONNX)
  execute_process(COMMAND /usr/bin/python3 -c "import onnx" RESULT_VARIABLE _tivora_onnx_python
                  OUTPUT_QUIET ERROR_QUIET)
  if(_tivora_onnx_python EQUAL 0)
    set(TIVORA_MODELS ON)
  else()
    message(STATUS "/usr/bin/python3 has no onnx module (python3-onnx): the ONNX models are not made")
  endif()
endif()

# Where the models go: the sample's beside its plugin, which takes it when the host names no model;
# the benchmark's beside the benchmarks.
set(TIVORA_SAMPLE_MODEL ${PROJECT_BINARY_DIR}/examples/mean_colour.onnx)
set(TIVORA_BENCH_MODEL ${PROJECT_BINARY_DIR}/bench/mobilenet_shaped.onnx)

# tivora_model(TARGET OUTPUT ARGS...): a target that makes OUTPUT with `scripts/make-models ARGS...`,
# built by default.
function(tivora_model target output)
  add_custom_command(OUTPUT ${output}
                     COMMAND /usr/bin/python3 ${PROJECT_SOURCE_DIR}/scripts/make-models ${ARGN}
                     DEPENDS ${PROJECT_SOURCE_DIR}/scripts/make-models
                     COMMENT "Making the ONNX model ${output}" VERBATIM)
  add_custom_target(${target} ALL DEPENDS ${output})
endfunction()
