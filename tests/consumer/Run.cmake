# Installs the library just built into a fresh folder, then builds and runs the consumer against
# it, once through find_package and once through pkg-config.

set(work ${buildDir}/consumer)
set(prefix ${work}/installed)
file(REMOVE_RECURSE ${work})

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

if(config)
  set(ofConfig --config ${config})
endif()

run(${CMAKE_COMMAND} --install ${buildDir} ${ofConfig} --prefix ${prefix})

run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${work}/build -G ${generator}
    -D CMAKE_BUILD_TYPE=${config} -D CMAKE_CXX_COMPILER=${compiler} -D CMAKE_CXX_FLAGS=${flags}
    -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_FIND_USE_PACKAGE_REGISTRY=OFF)
run(${CMAKE_COMMAND} --build ${work}/build ${ofConfig})
run(${work}/build/consumer)

set(ENV{PKG_CONFIG_PATH} ${prefix}/${libDir}/pkgconfig)
execute_process(COMMAND ${pkgConfig} --cflags --libs databinding
                OUTPUT_VARIABLE packageFlags COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(packageFlags UNIX_COMMAND ${packageFlags})
separate_arguments(flags UNIX_COMMAND ${flags})
run(${compiler} -std=c++20 ${flags} ${CMAKE_CURRENT_LIST_DIR}/main.cpp
    -o ${work}/consumer-pkg-config ${packageFlags} -Wl,-rpath,${prefix}/${libDir})
run(${work}/consumer-pkg-config)
