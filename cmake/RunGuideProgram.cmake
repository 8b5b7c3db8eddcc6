# SPDX-License-Identifier: Apache-2.0
# Runs the program of a page of the guide, and fails where it prints anything but what the page shows
# in its ```text block. Takes page, program and, for programs of other systems, emulator.

file(READ ${page} text)
if(NOT text MATCHES "```text\n([^`]*)```")
  message(FATAL_ERROR "${page} shows no output")
endif()
set(shown "${CMAKE_MATCH_1}")

execute_process(COMMAND ${emulator} ${program}
                OUTPUT_VARIABLE printed ERROR_VARIABLE complaints RESULT_VARIABLE status)
string(REPLACE "\r\n" "\n" printed "${printed}")
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${program} ended with ${status}\n${printed}${complaints}")
elseif(NOT printed STREQUAL shown)
  message(FATAL_ERROR "${page} shows\n${shown}\nbut its program prints\n${printed}${complaints}")
endif()
