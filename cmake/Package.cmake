# SPDX-License-Identifier: Apache-2.0
# Debian packages, made by cpack: libdatabinding<major>, which programs depend on, and
# libdatabinding-dev, which they are built with; for each adapter that is built two more, such as
# libdatabinding-qt6-<major> and libdatabinding-qt6-dev. `./dev package` makes them of a release build.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "DataBinding developers")
set(CPACK_PACKAGE_CONTACT "DataBinding developers <developers@databinding.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_VERBATIM_VARIABLES ON)

# The prefix is a part of what is installed: GDB finds its views by the whole path of the library.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
if(NOT CPACK_DEBIAN_RUNTIME_DEBUGINFO_PACKAGE)  # which takes the debug information for itself
  set(CPACK_STRIP_FILES ON)
endif()
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/PackageNotes.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_COMPONENTS_ALL Development)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libdatabinding-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Headers, CMake package, pkg-config file, debugger views and documentation\nof DataBinding.")

if(databindingLinkage STREQUAL "SHARED")
  list(APPEND CPACK_COMPONENTS_ALL Runtime)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libdatabinding${PROJECT_VERSION_MAJOR})
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
  set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
      "Lets user-interface code bind to application data by name, without knowing\nwhere the \
data lives, and application code broadcast named events.")
  # Programs are told to depend on the version that they were built with, or a later one.
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)
  file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/debian/triggers)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
      "libdatabinding${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
endif()

# The packages of an adapter depend on those of the library, of the same version.
get_property(adapters GLOBAL PROPERTY DATABINDING_ADAPTERS)
foreach(adapter IN LISTS adapters)
  string(TOUPPER ${adapter} upper)
  string(TOLOWER ${adapter} lower)
  get_property(summary GLOBAL PROPERTY DATABINDING_${upper}_SUMMARY)
  get_property(debianPackages GLOBAL PROPERTY DATABINDING_${upper}_DEBIAN)
  set(package libdatabinding-${lower})
  list(APPEND CPACK_COMPONENTS_ALL ${adapter}Development)
  list(JOIN debianPackages ", " depends)
  string(PREPEND depends "libdatabinding-dev (= ${PROJECT_VERSION}), ")
  set(CPACK_DEBIAN_${upper}DEVELOPMENT_PACKAGE_NAME ${package}-dev)
  set(CPACK_DEBIAN_${upper}DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_COMPONENT_${upper}DEVELOPMENT_DESCRIPTION "${summary}:\nheaders, CMake package and \
pkg-config file.")
  if(databindingLinkage STREQUAL "SHARED")
    list(APPEND CPACK_COMPONENTS_ALL ${adapter}Runtime)
    string(APPEND depends ", ${package}-${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
    set(CPACK_DEBIAN_${upper}RUNTIME_PACKAGE_NAME ${package}-${PROJECT_VERSION_MAJOR})
    set(CPACK_DEBIAN_${upper}RUNTIME_PACKAGE_SECTION libs)
    set(CPACK_DEBIAN_${upper}RUNTIME_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_${upper}RUNTIME_DEBUGINFO_PACKAGE ${CPACK_DEBIAN_RUNTIME_DEBUGINFO_PACKAGE})
    set(CPACK_DEBIAN_${upper}RUNTIME_PACKAGE_DEPENDS
        "libdatabinding${PROJECT_VERSION_MAJOR} (>= ${PROJECT_VERSION})")
    set(CPACK_DEBIAN_${upper}RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/debian/triggers)
    set(CPACK_COMPONENT_${upper}RUNTIME_DESCRIPTION "${summary}.")
  endif()
  set(CPACK_DEBIAN_${upper}DEVELOPMENT_PACKAGE_DEPENDS "${depends}")
endforeach()
# The adapters' libraries need one that no installed package has: it lies in the build.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)

include(CPack)
