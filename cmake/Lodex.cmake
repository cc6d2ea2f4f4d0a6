# The few rules that every target of the house follows.

find_package(PkgConfig REQUIRED)
find_package(fmt REQUIRED)

add_library(lodex_options INTERFACE)
target_include_directories(lodex_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(lodex_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow=local
  -Wnon-virtual-dtor -Woverloaded-virtual)
# The same sums on every machine: no fused multiply-add behind the program's back.
target_compile_options(lodex_options INTERFACE -ffp-contract=off)
# Two false alarms of GCC 12 when it optimises: overlapping copies in plain string additions (GCC
# bug 105651), and uninitialised strings in moved variants (GCC bug 105562). The sanitizer preset
# and clang still look for the real thing.
target_compile_options(lodex_options INTERFACE
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict -Wno-maybe-uninitialized>)
if(LODEX_WARNINGS_AS_ERRORS)
  target_compile_options(lodex_options INTERFACE -Werror)
endif()
if(LODEX_SANITIZE)
  target_compile_options(lodex_options INTERFACE -fsanitize=${LODEX_SANITIZE}
    -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(lodex_options INTERFACE -fsanitize=${LODEX_SANITIZE})
endif()

# Precompiled headers, for the presets that are rebuilt all day: the standard library takes longer to
# read than our own code. The release preset does without, so that a missing include still shows.
set(standard_headers <algorithm> <array> <charconv> <cmath> <cstdint> <deque>
  <functional> <limits> <map> <memory> <optional> <ostream> <set> <string> <string_view>
  <unordered_map> <utility> <vector>)
function(lodex_precompile target first)
  if(NOT LODEX_PRECOMPILE)
    return()
  endif()
  if(target STREQUAL first)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  else()
    target_precompile_headers(${target} REUSE_FROM ${first})
  endif()
endfunction()

# lodex_library(<folder> LINKS <targets>...): one static library per folder of src/, named
# lodex_<folder>, from every .cpp below it.
function(lodex_library folder)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
  add_library(lodex_${folder} STATIC ${sources})
  target_link_libraries(lodex_${folder} PUBLIC lodex_options ${ARG_LINKS})
  lodex_precompile(lodex_${folder} lodex_basic ${standard_headers})
endfunction()

# lodex_test(<folder> LINKS <targets>...): tests/<folder>/*.cpp as the program test_<folder>.
# Tests find the source tree through LODEX_SOURCE_DIR and the laid-out installation through
# LODEX_BIN_DIR.
function(lodex_test folder)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
  add_executable(test_${folder} ${sources})
  target_include_directories(test_${folder} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_compile_definitions(test_${folder} PRIVATE
    LODEX_SOURCE_DIR="${CMAKE_SOURCE_DIR}" LODEX_BIN_DIR="${CMAKE_BINARY_DIR}/bin")
  target_link_libraries(test_${folder} PRIVATE ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  # Qt asks for other code generation, which keeps its tests from sharing.
  set(first test_basic)
  if(folder STREQUAL gui)
    set(first test_gui)
    set(qt_headers <QtWidgets> <QtTest>)
  endif()
  lodex_precompile(test_${folder} ${first} ${standard_headers} ${qt_headers} <gmock/gmock.h>
    <gtest/gtest.h>)
  gtest_discover_tests(test_${folder} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60)
endfunction()
