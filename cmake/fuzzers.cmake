# clipfio_add_fuzzer(NAME FUNCTION [LIBRARY...]): the fuzzer of fuzz/NAME.cpp, which defines FUNCTION, over LIBRARYs.
# With CLIPFIO_FUZZ it is the program fuzz_NAME; with the tests its function is a part of unit_tests, which run it over
# the files of fuzz/seeds/NAME. It needs a row in fuzz/fuzzers.h as well.
if(CLIPFIO_FUZZ)
  add_custom_target(fuzzers)
endif()

function(clipfio_add_fuzzer name function)
  set(source ${PROJECT_SOURCE_DIR}/fuzz/${name}.cpp)
  if(TARGET unit_tests)
    target_sources(unit_tests PRIVATE ${source})
    target_link_libraries(unit_tests PRIVATE ${ARGN})
  endif()
  if(CLIPFIO_FUZZ)
    add_executable(fuzz_${name} ${source} ${PROJECT_SOURCE_DIR}/fuzz/libfuzzer_entry.cpp
      ${PROJECT_SOURCE_DIR}/tests/support/leak_suppressions.cpp)
    target_include_directories(fuzz_${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(fuzz_${name} PRIVATE FUZZ_FUNCTION=${function})
    target_link_libraries(fuzz_${name} PRIVATE ${ARGN} clipfio_platform clipfio_flags)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    add_dependencies(fuzzers fuzz_${name})
  endif()
endfunction()
