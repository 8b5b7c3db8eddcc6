# SPDX-License-Identifier: Apache-2.0
# What a builder can choose, and the settings that the project's own targets share.

option(DATABINDING_FAULT_GUARD "Survive hardware faults in property listeners" ON)
option(DATABINDING_BUILD_ADAPTERS "Build an adapter for each toolkit that is found"
       ${PROJECT_IS_TOP_LEVEL})
option(DATABINDING_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(DATABINDING_BUILD_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(DATABINDING_BUILD_BENCHMARKS "Build the benchmarks" ${PROJECT_IS_TOP_LEVEL})
option(DATABINDING_WERROR "Compile with the project's warnings, as errors" OFF)
set(DATABINDING_SANITIZE "" CACHE STRING
    "Sanitizers for everything built here, such as address,undefined or thread")
set(DATABINDING_GOOGLETEST "" CACHE PATH
    "Sources of GoogleTest, to be built where the installed one is for another system or library")
option(DATABINDING_FUZZ "Build the fuzz targets for libFuzzer; needs Clang" OFF)

if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_CXX_EXTENSIONS OFF)
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
  set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
  find_program(DATABINDING_CCACHE ccache)
  mark_as_advanced(DATABINDING_CCACHE)
  if(DATABINDING_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${DATABINDING_CCACHE})
  endif()
endif()

if(DATABINDING_SANITIZE)
  set(databindingSanitizeFlags -fsanitize=${DATABINDING_SANITIZE} -fno-sanitize-recover=all
                               -fno-omit-frame-pointer)
  add_compile_options(${databindingSanitizeFlags})
  add_link_options(${databindingSanitizeFlags})
endif()

# The library and what it is fuzzed with tell the fuzzer which branches an input took.
if(DATABINDING_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Programs that are cross-built for Windows find the compiler's runtime beside them.
if(MINGW AND CMAKE_CROSSCOMPILING)
  foreach(runtime libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime}
                    OUTPUT_VARIABLE runtimePath OUTPUT_STRIP_TRAILING_WHITESPACE)
    file(COPY ${runtimePath} DESTINATION ${PROJECT_BINARY_DIR}/bin)
  endforeach()
endif()

# Turns the project's warnings on for one of its own targets.
function(databinding_warnings target)
  if(NOT DATABINDING_WERROR)
    return()
  endif()
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /WX)
  else()
    target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
      $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wthread-safety>)
  endif()
endfunction()

# Random scripts take most of the time of a run under the address sanitizer, and a third of it where
# they and the library are optimised a little.
function(databinding_optimise_for_scripts target)
  if(DATABINDING_SANITIZE MATCHES "address" AND NOT MSVC)
    target_compile_options(${target} PRIVATE -O1)
  endif()
endfunction()
