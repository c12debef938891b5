# How every target of Mirelo is declared: C++20, warnings as errors, includes from the source root.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(MIRELO_CCACHE ccache)
if(MIRELO_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${MIRELO_CCACHE}")
endif()

set(MIRELO_SANITIZE "" CACHE STRING "Sanitizers to build with, as in -fsanitize=...")

add_library(mirelo_options INTERFACE)
add_library(mirelo::options ALIAS mirelo_options)
target_include_directories(mirelo_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_definitions(mirelo_options INTERFACE MIRELO_VERSION="${PROJECT_VERSION}")
# No contraction to fused multiply-add: every machine computes the same digits.
target_compile_options(mirelo_options INTERFACE
  -Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -ffp-contract=off)
# GCC 12 warns of overlapping copies inside std::string concatenation where there are none (GCC bug 105651).
target_compile_options(mirelo_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(MIRELO_SANITIZE)
  target_compile_options(mirelo_options INTERFACE
    -fsanitize=${MIRELO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # Between its checks GCC loses sight of what was initialised.
  target_compile_options(mirelo_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(mirelo_options INTERFACE -fsanitize=${MIRELO_SANITIZE})
endif()

# mirelo_add_library(image SOURCES ... PUBLIC libraries... PRIVATE libraries...): target mirelo_image, alias mirelo::image.
function(mirelo_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(mirelo_${name} STATIC ${ARG_SOURCES})
  add_library(mirelo::${name} ALIAS mirelo_${name})
  target_link_libraries(mirelo_${name} PUBLIC mirelo::options ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
endfunction()

# mirelo_add_program(mirelo-batch SOURCES ... LIBRARIES ...): an installed executable.
function(mirelo_add_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE mirelo::options ${ARG_LIBRARIES})
  install(TARGETS ${name} EXPORT MireloTargets RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

# mirelo_add_test(numeric SOURCES ... LIBRARIES ...): one GoogleTest program per folder, each case a ctest test. With
# LONG_TESTS, cases whose names begin with Long carry the label of tests that take many minutes.
function(mirelo_add_test name)
  cmake_parse_arguments(ARG "LONG_TESTS" "" "SOURCES;LIBRARIES;PROPERTIES" ${ARGN})
  add_executable(mirelo_${name}_tests ${ARG_SOURCES})
  target_link_libraries(mirelo_${name}_tests PRIVATE mirelo::options ${ARG_LIBRARIES} GTest::gmock GTest::gtest_main)
  set(filter "")
  if(ARG_LONG_TESTS)
    set(filter TEST_FILTER "-*.Long*")
    gtest_discover_tests(mirelo_${name}_tests DISCOVERY_MODE PRE_TEST TEST_FILTER "*.Long*"
      PROPERTIES LABELS long TIMEOUT 3600 ${ARG_PROPERTIES})
  endif()
  gtest_discover_tests(mirelo_${name}_tests DISCOVERY_MODE PRE_TEST ${filter}
    PROPERTIES TIMEOUT 300 ${ARG_PROPERTIES})
endfunction()

# mirelo_add_benchmark(numeric_bench SOURCES ... LIBRARIES ...): one Google Benchmark program.
function(mirelo_add_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} "${PROJECT_SOURCE_DIR}/bench/main.cpp")
  target_link_libraries(${name} PRIVATE mirelo::options ${ARG_LIBRARIES} benchmark::benchmark)
endfunction()

# check-format: fails when a file is not laid out as .clang-format says; format: lays all of them out.
add_custom_target(check-format COMMAND "${PROJECT_SOURCE_DIR}/scripts/format.sh" --check VERBATIM)
add_custom_target(format COMMAND "${PROJECT_SOURCE_DIR}/scripts/format.sh" VERBATIM)
