# The installed package: library, headers, CMake package and pkg-config file. All of it finds its
# parts relative to itself, so that an installed tree can be moved.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(databindingPackageDir ${CMAKE_INSTALL_LIBDIR}/cmake/DataBinding)

install(TARGETS DataBinding EXPORT DataBindingTargets
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/DataBinding DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h")

install(EXPORT DataBindingTargets NAMESPACE DataBinding:: DESTINATION ${databindingPackageDir})
configure_package_config_file(cmake/DataBindingConfig.cmake.in
  ${PROJECT_BINARY_DIR}/DataBindingConfig.cmake
  INSTALL_DESTINATION ${databindingPackageDir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/DataBindingConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/DataBindingConfig.cmake
              ${PROJECT_BINARY_DIR}/DataBindingConfigVersion.cmake
        DESTINATION ${databindingPackageDir})

string(REGEX REPLACE "[^/]+" ".." databindingPrefixFromLibDir ${CMAKE_INSTALL_LIBDIR})
if(databindingLinkage STREQUAL "STATIC")
  set(databindingPkgConfigCflags " -DDATABINDING_STATIC")
  foreach(library IN LISTS CMAKE_THREAD_LIBS_INIT CMAKE_DL_LIBS)
    string(APPEND databindingPkgConfigLibs " -l${library}")
  endforeach()
  string(REPLACE "-l-" "-" databindingPkgConfigLibs "${databindingPkgConfigLibs}")
endif()
configure_file(cmake/databinding.pc.in ${PROJECT_BINARY_DIR}/databinding.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/databinding.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
