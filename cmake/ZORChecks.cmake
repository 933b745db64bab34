# SPDX-License-Identifier: Apache-2.0
#
# Tests, fuzz targets and benchmarks link the library's objects, not the shared library, so that they reach what it
# hides. Only tests/package/ goes through the installed library.

# What the thread sanitizer's build needs, and no more.
add_custom_target(threaded-tests)

# zor_add_tests(<name> SOURCES <file>... [LABELS <label>...] [LIBRARIES <library>...])
#
# One executable a source folder, one ctest entry an executable. Labels with a meaning: "threads" also runs under the
# thread sanitizer, "long" only in the release build.
function(zor_add_tests name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LABELS;LIBRARIES")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE
    ZORFoundationObjects ZORPlatformObjects ZORTestSupport GTest::gmock GTest::gtest_main ${arg_LIBRARIES})
  add_test(NAME ${name} COMMAND ${name})
  # What has the most sources is begun first, so that no long one runs on alone at the end.
  list(LENGTH arg_SOURCES cost)
  set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}" COST ${cost})
  if("threads" IN_LIST arg_LABELS)
    add_dependencies(threaded-tests ${name})
  endif()
endfunction()

# zor_uses_fontconfig(<test>): what fontconfig keeps for the process is no leak.
function(zor_uses_fontconfig test)
  set_property(TEST ${test} PROPERTY ENVIRONMENT
    LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/leak-suppressions.txt:print_suppressions=0)
endfunction()

# zor_add_fuzz_target(<name> SOURCES <file>... [LIBRARIES <library>...])
#
# Seeds are the files of corpus/<name>/. As a test, every seed is replayed once; an instrumented build also makes the
# target a libFuzzer program.
function(zor_add_fuzz_target name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
  set(target fuzz-${name})
  add_executable(${target} ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE ZORFoundationObjects ZORPlatformObjects ${arg_LIBRARIES})
  set(corpus ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
  if(CMAKE_CXX_FLAGS MATCHES "fuzzer-no-link")
    target_link_options(${target} PRIVATE -fsanitize=fuzzer)
    add_test(NAME ${target} COMMAND ${target} -runs=0 ${corpus})
  else()
    target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz/ReplayMain.cpp)
    add_test(NAME ${target} COMMAND ${target} ${corpus})
  endif()
  set_tests_properties(${target} PROPERTIES LABELS fuzz)
  set_property(GLOBAL APPEND PROPERTY ZOR_FUZZ_TARGETS ${target})
endfunction()

# zor_add_benchmark(<name> SOURCES <file>... [LIBRARIES <library>...])
function(zor_add_benchmark name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
  set(target bench-${name})
  add_executable(${target} ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE
    ZORFoundationObjects ZORPlatformObjects ZORComparison ${arg_LIBRARIES})
  # Every benchmark runs once wherever it is built, so that none rots.
  add_test(NAME ${target} COMMAND ${target} --smoke)
  set_tests_properties(${target} PROPERTIES LABELS bench)
  set_property(GLOBAL APPEND PROPERTY ZOR_BENCHMARKS ${name})
endfunction()

# The names that ./bench and the gate go through, one file each.
function(zor_write_check_lists)
  get_property(targets GLOBAL PROPERTY ZOR_FUZZ_TARGETS)
  list(JOIN targets " " line)
  file(WRITE ${PROJECT_BINARY_DIR}/fuzz-targets.txt "${line}\n")
  get_property(names GLOBAL PROPERTY ZOR_BENCHMARKS)
  list(JOIN names " " line)
  file(WRITE ${PROJECT_BINARY_DIR}/benchmarks.txt "${line}\n")
endfunction()

# zor_add_compile_failures(<name> SOURCE <file> CASES <macro> <regex> [<macro> <regex>...])
#
# One ctest entry a case: compiling the source with the macro defined must fail with a message that matches. One more
# compiles it without any, so that no case fails for a reason of the others.
function(zor_add_compile_failures name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SOURCE" "CASES")
  set(compile ${CMAKE_CXX_COMPILER} -std=c++20 -fsyntax-only -I${PROJECT_SOURCE_DIR}
    ${CMAKE_CURRENT_SOURCE_DIR}/${arg_SOURCE})
  add_test(NAME ${name}-misuse-none COMMAND ${compile})
  while(arg_CASES)
    list(POP_FRONT arg_CASES case message)
    add_test(NAME ${name}-misuse-${case} COMMAND ${compile} -D${case})
    set_tests_properties(${name}-misuse-${case} PROPERTIES PASS_REGULAR_EXPRESSION "error: [^\n]*(${message})")
  endwhile()
endfunction()
