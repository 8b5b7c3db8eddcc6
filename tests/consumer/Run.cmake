# SPDX-License-Identifier: Apache-2.0
# Comes by the library in one of the ways that a stranger's project has, then builds and runs the
# consumer with it. -D way= is one of
#   installed     cmake --install of the library just built, to a folder that is moved afterwards
#   debian        the Debian packages of the library just built, unpacked
#   subdirectory  add_subdirectory, which builds the library again: as a static one, for which the
#                 consumer's project then has an installed tree, too
# -D adapters= names the adapters that were built with the library, and are installed with it.

set(work ${buildDir}/consumer/${way})
file(REMOVE_RECURSE ${work}/prefix ${work}/moved ${work}/project ${work}/packages)

if(config)
  set(ofConfig --config ${config})
endif()

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(ask variable)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE
                  COMMAND_ERROR_IS_FATAL ANY)
  set(${variable} "${answer}" PARENT_SCOPE)
endfunction()

function(expect text pattern)
  if(NOT "${text}\n" MATCHES "${pattern}")
    message(FATAL_ERROR "no match of ${pattern}")
  endif()
endfunction()

function(refuse text pattern)
  if("${text}\n" MATCHES "${pattern}")
    message(FATAL_ERROR "a match of ${pattern}")
  endif()
endfunction()

# Configures, builds and runs the consumer.
function(consume project)
  run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${project} -G ${generator}
      -D CMAKE_BUILD_TYPE=${config} -D CMAKE_CXX_COMPILER=${compiler} -D CMAKE_CXX_FLAGS=${flags}
      -D CMAKE_CXX_COMPILER_LAUNCHER=${launcher} -D CMAKE_FIND_USE_PACKAGE_REGISTRY=OFF ${ARGN})
  run(${CMAKE_COMMAND} --build ${project} ${ofConfig})
  run(${project}/consumer)
endfunction()

# Builds and runs the consumers of the library, and of the adapters that are given, against an installed
# tree, by find_package and by pkg-config.
function(consume_tree prefix)
  list(JOIN ARGN , adapterNames)  # a list would come apart on its way
  consume(${work}/project -D CMAKE_PREFIX_PATH=${prefix} -D ADAPTERS=${adapterNames})
  ask(cache ${CMAKE_COMMAND} -L -N ${work}/project)
  expect("${cache}" "DataBinding_DIR:PATH=${prefix}/")

  set(ENV{PKG_CONFIG_PATH} ${prefix}/${libDir}/pkgconfig)
  ask(packageFlags ${pkgConfig} --cflags --libs databinding)
  separate_arguments(packageFlags UNIX_COMMAND ${packageFlags})
  separate_arguments(flags UNIX_COMMAND ${flags})
  run(${compiler} -std=c++20 ${flags} ${CMAKE_CURRENT_LIST_DIR}/main.cpp
      -o ${work}/project/consumer-pkg-config ${packageFlags} -Wl,-rpath,${prefix}/${libDir})
  run(${work}/project/consumer-pkg-config)

  foreach(adapter IN LISTS ARGN)
    run(${work}/project/consumer-${adapter})
    string(TOLOWER databinding-${adapter} module)
    ask(adapterFlags ${pkgConfig} --cflags --libs ${module})
    expect("${adapterFlags}" "-lDataBinding${adapter} .*-lDataBinding ")
  endforeach()
endfunction()

# Installs a build, and moves what was installed.
function(install_and_move build)
  run(${CMAKE_COMMAND} --install ${build} ${ofConfig} --prefix ${work}/prefix)
  file(RENAME ${work}/prefix ${work}/moved)
endfunction()

function(installed)
  install_and_move(${buildDir})
  consume_tree(${work}/moved ${adapters})
endfunction()

# Builds the library within the consumer's project. This is a unity build, which some projects make
# of all that they embed, and which takes less time. The adapters are used in the other ways. There is
# no build type, since debug information would bind what ccache keeps to this folder.
function(subdirectory)
  set(config)
  set(ofConfig)
  consume(${work}/embedding -D DATABINDING_SOURCES=${CMAKE_CURRENT_LIST_DIR}/../..
          -D BUILD_SHARED_LIBS=OFF -D CMAKE_INSTALL_LIBDIR=${libDir} -D CMAKE_UNITY_BUILD=ON
          -D DATABINDING_BUILD_ADAPTERS=OFF)
  install_and_move(${work}/embedding)
  consume_tree(${work}/moved)
endfunction()

function(debian)
  run(${CMAKE_COMMAND} -E make_directory ${work}/packages)
  run(${CMAKE_CPACK_COMMAND} -G DEB --config ${buildDir}/CPackConfig.cmake -B ${work}/packages)
  file(GLOB library ${work}/packages/libdatabinding0_*.deb)
  file(GLOB development ${work}/packages/libdatabinding-dev_*.deb)

  ask(files dpkg-deb -c ${library})
  message("${files}")
  expect("${files}" "/usr/${libDir}/libDataBinding[.]so[.]0 -> libDataBinding[.]so[.]0[.]")
  expect("${files}" "/usr/share/doc/libdatabinding0/copyright\n")
  refuse("${files}" "[.](h|pc|cmake|py|natvis|so)[\n ]")
  ask(files dpkg-deb -c ${development})
  message("${files}")
  expect("${files}" "/usr/${libDir}/libDataBinding[.]so -> libDataBinding[.]so[.]0\n")
  expect("${files}" "/usr/share/doc/libdatabinding-dev/copyright\n")
  expect("${files}" "/gdb/auto-load/usr/${libDir}/libDataBinding[.]so[.]0[.0-9]*-gdb[.]py\n")
  refuse("${files}" "/libDataBinding[.]so[.][0-9.]+[\n ]")

  ask(control dpkg-deb -f ${library})
  message("${control}")
  expect("${control}" "Package: libdatabinding0\n")
  expect("${control}" "Depends: [^\n]*libc6 [^\n]*libstdc[+][+]6 ")
  refuse("${control}" "libdatabinding-dev")
  ask(version dpkg-deb -f ${library} Version)
  ask(architecture dpkg-deb -f ${library} Architecture)
  ask(depends dpkg-deb -f ${development} Depends)
  expect("${depends}" "^libdatabinding0 [(]= ${version}[)]\n$")
  ask(shlibs dpkg-deb -I ${library} shlibs)
  expect("${shlibs}" "^libDataBinding 0 libdatabinding0 [(]>= ${version}[)]\n$")
  ask(triggers dpkg-deb -I ${library} triggers)
  expect("${triggers}" "activate-noawait ldconfig")

  set(packages ${library} ${development})
  foreach(adapter IN LISTS adapters)
    string(TOLOWER libdatabinding-${adapter} name)
    ask(depends dpkg-deb -f ${work}/packages/${name}-dev_${version}_${architecture}.deb Depends)
    expect("${depends}" "^libdatabinding-dev .*, ${name}-0 [(]= ${version}[)]\n$")
    ask(files dpkg-deb -c ${work}/packages/${name}-0_${version}_${architecture}.deb)
    expect("${files}" "/usr/${libDir}/libDataBinding${adapter}[.]so[.]0 -> ")
    refuse("${files}" "[.](h|pc|cmake|so)[\n ]")
    list(APPEND packages ${work}/packages/${name}-dev_${version}_${architecture}.deb
         ${work}/packages/${name}-0_${version}_${architecture}.deb)
  endforeach()
  foreach(package IN LISTS packages)
    run(dpkg-deb -x ${package} ${work}/prefix)
  endforeach()
  consume_tree(${work}/prefix/usr ${adapters})
endfunction()

cmake_language(CALL ${way})
