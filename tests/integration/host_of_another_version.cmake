# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# Configures the folder PRODUCT against a host that is not there, and against one of the next major version: both must be
# refused, and the message must name the host with what is wanted and what was found.
cmake_minimum_required(VERSION 3.18)

function(expect_refusal)
    execute_process(COMMAND "${CMAKE_COMMAND}" -S "${PRODUCT}" -B "${WORK}/build" -G "${GENERATOR}"
        -D "CMAKE_CXX_COMPILER=${COMPILER}" -D "CMAKE_PREFIX_PATH=${WORK}/host"
        RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE error)
    foreach(text IN LISTS ARGN)
        if(result EQUAL 0 OR NOT error MATCHES "${text}")
            message(FATAL_ERROR "Not refused with \"${text}\" (${result}):\n${error}")
        endif()
    endforeach()
endfunction()

file(REMOVE_RECURSE "${WORK}")
expect_refusal("\"Host\"" "2\\.0\\.0" "HostConfig\\.cmake")

execute_process(COMMAND "${CMAKE_COMMAND}" --install "${HOST_BUILD}" --prefix "${WORK}/host" --component sdk
    RESULT_VARIABLE result OUTPUT_QUIET)
file(GLOB_RECURSE version "${WORK}/host/HostConfigVersion.cmake")
if(NOT result EQUAL 0 OR NOT version)
    message(FATAL_ERROR "No SDK was installed")
endif()
file(READ "${version}" text)
string(REPLACE "\"2." "\"3." text "${text}")
file(WRITE "${version}" "${text}")
expect_refusal("\"Host\"" "2\\.0\\.0" "HostConfig\\.cmake, version: 3\\.")
