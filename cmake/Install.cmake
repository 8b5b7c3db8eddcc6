# SPDX-License-Identifier: Apache-2.0
# The installed package: library, headers, CMake package and pkg-config file. All of it finds its
# parts relative to itself, so that an installed tree can be moved.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(databindingPackageDir ${CMAKE_INSTALL_LIBDIR}/cmake/DataBinding)

# Runtime is what a program needs to run, Development what it takes to build one.
install(TARGETS DataBinding EXPORT DataBindingTargets
        RUNTIME COMPONENT Runtime
        LIBRARY COMPONENT Runtime NAMELINK_COMPONENT Development
        ARCHIVE COMPONENT Development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/DataBinding DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT Development FILES_MATCHING PATTERN "*.h")
# The documents link each other, and the programs of the guide.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT Development)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT Development
        PATTERN Doxyfile EXCLUDE PATTERN "doxygen-*" EXCLUDE PATTERN "*.dox" EXCLUDE
        PATTERN reference.md EXCLUDE PATTERN rooms.svg EXCLUDE)
install(DIRECTORY examples/guide DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
        COMPONENT Development FILES_MATCHING PATTERN "*.cpp" PATTERN "*.h")

install(EXPORT DataBindingTargets NAMESPACE DataBinding:: DESTINATION ${databindingPackageDir}
        COMPONENT Development)
configure_package_config_file(cmake/DataBindingConfig.cmake.in
  ${PROJECT_BINARY_DIR}/DataBindingConfig.cmake
  INSTALL_DESTINATION ${databindingPackageDir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/DataBindingConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/DataBindingConfig.cmake
              ${PROJECT_BINARY_DIR}/DataBindingConfigVersion.cmake
        DESTINATION ${databindingPackageDir} COMPONENT Development)

string(REGEX REPLACE "[^/]+" ".." databindingPrefixFromLibDir ${CMAKE_INSTALL_LIBDIR})
if(databindingLinkage STREQUAL "STATIC")
  set(databindingPkgConfigCflags " -DDATABINDING_STATIC")
  foreach(library IN LISTS CMAKE_THREAD_LIBS_INIT CMAKE_DL_LIBS)
    string(APPEND databindingPkgConfigLibs " -l${library}")
  endforeach()
  string(REPLACE "-l-" "-" databindingPkgConfigLibs "${databindingPkgConfigLibs}")
endif()
configure_file(cmake/databinding.pc.in ${PROJECT_BINARY_DIR}/databinding.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/databinding.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT Development)

# GDB loads its views by the path of the library that it sees, if it trusts the prefix; where there
# is no such library, users source them.
if(UNIX AND databindingLinkage STREQUAL "SHARED")
  install(FILES debuggers/databinding_gdb.py
          DESTINATION "share/gdb/auto-load\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}"
          RENAME libDataBinding.so.${PROJECT_VERSION}-gdb.py COMPONENT Development)
else()
  install(FILES debuggers/databinding_gdb.py DESTINATION ${CMAKE_INSTALL_DATADIR}/DataBinding
          COMPONENT Development)
endif()
# Visual Studio takes its views from the projects that it opens; Valgrind is given its file.
install(FILES debuggers/DataBinding.natvis debuggers/valgrind.supp
        DESTINATION ${CMAKE_INSTALL_DATADIR}/DataBinding COMPONENT Development)
if(MSVC)
  target_sources(DataBinding INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/debuggers/DataBinding.natvis>
    $<INSTALL_INTERFACE:$<INSTALL_PREFIX>/${CMAKE_INSTALL_DATADIR}/DataBinding/DataBinding.natvis>)
endif()
