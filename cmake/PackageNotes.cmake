# SPDX-License-Identifier: Apache-2.0
# Gives each Debian package the notes that Debian wants in a folder of the package's name.
# cpack runs this when the files of all packages lie ready, each in the folder of its component.

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(notes ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr/share/doc)
  string(APPEND notes /${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${notes})
  file(WRITE ${notes}/copyright
       "DataBinding, copyright the DataBinding developers.\n\n"
       "Licensed under the Apache License, Version 2.0, which on Debian systems lies in\n"
       "/usr/share/common-licenses/Apache-2.0.\n")
  execute_process(COMMAND gzip -9nc ${CMAKE_CURRENT_LIST_DIR}/../CHANGELOG.md
                  OUTPUT_FILE ${notes}/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
  file(CHMOD ${notes}/copyright ${notes}/changelog.gz
       FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endforeach()
