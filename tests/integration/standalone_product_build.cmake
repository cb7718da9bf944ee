# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# Installs the host and its SDK of HOST_BUILD into WORK, builds the folder PRODUCT against that installation only, installs
# the plugin beside the host, and expects it to find all its libraries by itself.
cmake_minimum_required(VERSION 3.18)

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "Failed (${result}): ${ARGN}")
    endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
foreach(component devhost sdk)
    run("${CMAKE_COMMAND}" --install "${HOST_BUILD}" --prefix "${WORK}/host" --component ${component})
endforeach()
file(GLOB_RECURSE stray "${WORK}/host/*projectfilecfg*" "${WORK}/host/*_p.h")
if(stray)
    message(FATAL_ERROR "These are no part of the host or its SDK: ${stray}")
endif()
# Whether it compiles depends neither on debug information nor on the number of sources compiled at a time. That each
# includes what it needs is for sources_include_what_they_name.
run("${CMAKE_COMMAND}" -S "${PRODUCT}" -B "${WORK}/build" -G "${GENERATOR}" -D CMAKE_BUILD_TYPE=Debug
    -D "CMAKE_CXX_FLAGS_DEBUG=-O0" -D "CMAKE_CXX_COMPILER=${COMPILER}" -D "CMAKE_PREFIX_PATH=${WORK}/host"
    -D "CMAKE_PROJECT_projectfilecfg_INCLUDE=${CMAKE_CURRENT_LIST_DIR}/standalone_batches.cmake")
run("${CMAKE_COMMAND}" --build "${WORK}/build")
run("${CMAKE_COMMAND}" --install "${WORK}/build" --prefix "${WORK}/host")
file(GLOB_RECURSE plugin "${WORK}/host/*/libprojectfilecfg.so")
execute_process(COMMAND ldd "${plugin}" RESULT_VARIABLE result OUTPUT_VARIABLE libraries ERROR_VARIABLE libraries)
if(NOT plugin OR NOT result EQUAL 0 OR libraries MATCHES "not found")
    message(FATAL_ERROR "The installed plugin, ${plugin}, does not find its libraries:\n${libraries}")
endif()
