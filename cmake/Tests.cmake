# SPDX-License-Identifier: Apache-2.0
# GoogleTest, and how its tests are found; for the library's tests and those of the adapters.

if(DATABINDING_GOOGLETEST)
  add_subdirectory(${DATABINDING_GOOGLETEST} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
else()
  find_package(GTest REQUIRED)
endif()
include(GoogleTest)

# The tests of a target bear its name as their label: what `./dev check changed` builds, it runs.
# Faulting frames are left without running their destructors, so suites that fault on purpose,
# named Fault..., run without leak checking.
function(databinding_discover_tests target)
  if(CMAKE_CROSSCOMPILING)
    add_test(NAME ${target} COMMAND ${target})  # starting the emulator takes longer than the tests
    return()
  endif()
  if(NOT DATABINDING_SANITIZE MATCHES "address")
    gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS ${target})
    return()
  endif()
  gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60 TEST_FILTER -Fault*:*/Fault*
                       PROPERTIES LABELS ${target})
  gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60 TEST_FILTER Fault*:*/Fault*
                       PROPERTIES LABELS ${target} ENVIRONMENT ASAN_OPTIONS=detect_leaks=0)
endfunction()

# Tests of programs of Qt need no display. Qt's libraries keep some of what they allocate until the
# process ends.
set(databindingQtEnvironment QT_QPA_PLATFORM=offscreen)
if(DATABINDING_SANITIZE MATCHES "address")
  list(APPEND databindingQtEnvironment
       LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/adapters/qt6/tests/leaks.supp)
endif()
