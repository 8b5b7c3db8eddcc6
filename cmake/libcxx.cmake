# SPDX-License-Identifier: Apache-2.0
# Builds with the newest Clang that is installed with libc++, its own C++ library.
#
# Debian's newest Clang may come with the headers and the static library of its libc++ beside the
# shared library of an older one, which lacks functions that these headers call. The static library
# cannot take its place, since every module would have exceptions of its own; but a shared one can be
# made of it.
if(NOT CMAKE_CXX_COMPILER)
  file(GLOB headers /usr/lib/llvm-*/include/c++/v1)
  list(SORT headers COMPARE NATURAL ORDER DESCENDING)
  string(REGEX MATCH "llvm-([0-9]+)" version "${headers}")  # that of the first
  set(CMAKE_CXX_COMPILER clang++-${CMAKE_MATCH_1})
endif()

get_filename_component(name ${CMAKE_CXX_COMPILER} NAME)
set(runtime ${CMAKE_CURRENT_LIST_DIR}/../build/libcxx/runtime/${name})
if(NOT EXISTS ${runtime}/libc++.so)
  file(MAKE_DIRECTORY ${runtime})
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libc++.a
                  OUTPUT_VARIABLE archive OUTPUT_STRIP_TRAILING_WHITESPACE
                  COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -shared -nostdlib++ -o ${runtime}/libc++.so
                          -Wl,-soname,libc++.so -Wl,--whole-archive ${archive}
                          -Wl,--no-whole-archive -lm
                  COMMAND_ERROR_IS_FATAL ANY)
endif()

set(CMAKE_CXX_FLAGS_INIT -stdlib=libc++)
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-L${runtime} -Wl,-rpath,${runtime}")
endforeach()
