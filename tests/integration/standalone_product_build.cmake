# Installs the host of HOST_BUILD into WORK and builds the folder PRODUCT against that installation only.
cmake_minimum_required(VERSION 3.18)

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "Failed (${result}): ${ARGN}")
    endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
run("${CMAKE_COMMAND}" --install "${HOST_BUILD}" --prefix "${WORK}/host")
# Only the installed host may be found, not the plugin next to it.
file(GLOB_RECURSE shipped "${WORK}/host/*projectfilecfg*")
if(shipped)
    file(REMOVE ${shipped})
endif()
run("${CMAKE_COMMAND}" -S "${PRODUCT}" -B "${WORK}/build" -G "${GENERATOR}" -D CMAKE_BUILD_TYPE=Debug
    -D "CMAKE_CXX_COMPILER=${COMPILER}" -D "CMAKE_PREFIX_PATH=${WORK}/host")
run("${CMAKE_COMMAND}" --build "${WORK}/build")
if(NOT EXISTS "${WORK}/build/plugins/libprojectfilecfg.so")
    message(FATAL_ERROR "No plugin in ${WORK}/build/plugins")
endif()
