# Deep terms through every recursive walk, with the large stack and (outside
# sanitizer builds, which cannot run under an address-space limit) with a
# stack cut short by `ulimit -v`.
if(TARN_SANITIZE)
  add_test(NAME depth COMMAND ${CMAKE_SOURCE_DIR}/tests/depth/run.sh $<TARGET_FILE:tarn>)
else()
  add_test(NAME depth COMMAND ${CMAKE_SOURCE_DIR}/tests/depth/run.sh $<TARGET_FILE:tarn> --limited)
endif()

# The libFuzzer target over the whole pipeline (tests/fuzz), built only in a
# clang build that asks for it:
#   cmake -S . -B build-fuzz -DCMAKE_CXX_COMPILER=clang++ \
#         -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARN_SANITIZE=ON -DTARN_FUZZ=ON
# `make fuzz` does this and runs it. Every subsystem gets libFuzzer's coverage
# instrumentation; the harness brings its own main (it runs the fuzzer on the
# large stack), so it links libFuzzer's library without main.
option(TARN_FUZZ "Build the libFuzzer target pipeline_fuzz (clang)" OFF)
if(TARN_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "TARN_FUZZ needs clang++ (libFuzzer)")
  endif()
  foreach(dir ${TARN_SUBSYSTEMS})
    target_compile_options(tarn_${dir} PRIVATE -fsanitize=fuzzer-no-link)
  endforeach()
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} --print-runtime-dir
                  OUTPUT_VARIABLE TARN_CLANG_RUNTIME_DIR OUTPUT_STRIP_TRAILING_WHITESPACE)
  find_library(TARN_FUZZER_NO_MAIN NAMES clang_rt.fuzzer_no_main-x86_64 clang_rt.fuzzer_no_main
               PATHS ${TARN_CLANG_RUNTIME_DIR} NO_DEFAULT_PATH REQUIRED)
  add_executable(pipeline_fuzz tests/fuzz/pipeline_fuzz.cpp)
  target_compile_options(pipeline_fuzz PRIVATE -fsanitize=fuzzer-no-link ${TARN_WARNINGS})
  # The harness sends the numb trace file to /dev/null through a wrapped fopen.
  target_link_options(pipeline_fuzz PRIVATE -fsanitize=fuzzer-no-link -Wl,--wrap=fopen)
  target_link_libraries(pipeline_fuzz PRIVATE tarn_core ${TARN_FUZZER_NO_MAIN})
  set_target_properties(pipeline_fuzz PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
endif()
