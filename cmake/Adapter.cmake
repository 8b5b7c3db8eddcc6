# SPDX-License-Identifier: Apache-2.0
# Builds and installs adapters. Each is a library of its own beside DataBinding, with a component of
# the CMake package, a pkg-config file and Debian packages of its own.

# databinding_adapter(<target> <component> SUMMARY text FIND dependency... PKGCONFIG module... DEBIAN
# package...)
#
# Builds and installs the adapter of the calling folder, from src/*/*.cpp and include/<target>/. Its
# users link DataBinding::<component>. FIND is what they call find_dependency with, if anything;
# PKGCONFIG are the modules that its pkg-config file requires, and DEBIAN the packages that a program is built with.
function(databinding_adapter target component)
  cmake_parse_arguments(PARSE_ARGV 2 of "" "SUMMARY" "FIND;PKGCONFIG;DEBIAN")
  string(TOUPPER ${component} upper)
  string(TOLOWER ${component} lower)
  set(folder ${CMAKE_CURRENT_SOURCE_DIR})
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${folder}/include/${target}/*.h)
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/src/*.cpp ${folder}/src/*/*.cpp ${folder}/src/*/*.h)

  add_library(${target} ${databindingLinkage} ${sources} ${headers})
  add_library(DataBinding::${component} ALIAS ${target})
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${folder}/include>)
  target_link_libraries(${target} PUBLIC DataBinding::DataBinding)
  target_compile_definitions(${target} PRIVATE DATABINDING_${upper}_BUILD)
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${component}
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
  databinding_warnings(${target})
  # Nobody replaces the adapter's functions by others of their names: they may be inlined within it.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  endif()

  databinding_install_adapter()
  set_property(GLOBAL APPEND PROPERTY DATABINDING_ADAPTERS ${component})
  set_property(GLOBAL PROPERTY DATABINDING_${upper}_SUMMARY "${of_SUMMARY}")
  set_property(GLOBAL PROPERTY DATABINDING_${upper}_DEBIAN "${of_DEBIAN}")
endfunction()

# Installs the adapter with whose variables it is called: its library, its headers, its part of the
# CMake package, which DataBindingConfig.cmake includes, and its pkg-config file.
macro(databinding_install_adapter)
  install(TARGETS ${target} EXPORT ${target}Targets
          RUNTIME COMPONENT ${component}Runtime
          LIBRARY COMPONENT ${component}Runtime NAMELINK_COMPONENT ${component}Development
          ARCHIVE COMPONENT ${component}Development
          INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(DIRECTORY ${folder}/include/${target} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
          COMPONENT ${component}Development FILES_MATCHING PATTERN "*.h")
  install(EXPORT ${target}Targets NAMESPACE DataBinding:: DESTINATION ${databindingPackageDir}
          COMPONENT ${component}Development)
  set(find "")
  if(of_FIND)
    string(REPLACE ";" " " find "find_dependency(${of_FIND})\n")
  endif()
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}.cmake @ONLY CONTENT
"@find@include(\${CMAKE_CURRENT_LIST_DIR}/@target@Targets.cmake)
")
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${target}.cmake DESTINATION ${databindingPackageDir}
          COMPONENT ${component}Development)
  string(REPLACE ";" " " requires "${of_PKGCONFIG}")
  configure_file(${PROJECT_SOURCE_DIR}/cmake/adapter.pc.in
                 ${CMAKE_CURRENT_BINARY_DIR}/databinding-${lower}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/databinding-${lower}.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component}Development)
endmacro()
