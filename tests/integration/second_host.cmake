# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# Builds a host that has nothing of the development host, and the plugin against it, in WORK; saves an offline device there;
# and has the tool look at the package.
cmake_minimum_required(VERSION 3.18)

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output)
    message(STATUS "${output}")
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "Failed (${result}): ${ARGN}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${WORK}")
# Whether it works does not depend on debug information, which takes long to write.
run("${CMAKE_COMMAND}" -S "${SOURCES}" -B "${WORK}/build" -G "${GENERATOR}" -D CMAKE_BUILD_TYPE=Debug
    -D "CMAKE_CXX_FLAGS_DEBUG=-O0" -D "CMAKE_CXX_COMPILER=${COMPILER}" -D PROJECTFILECFG_WERROR=ON)
run("${CMAKE_COMMAND}" --build "${WORK}/build")
file(MAKE_DIRECTORY "${WORK}/home")
run("${CMAKE_COMMAND}" -E env QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 "${WORK}/build/bin/saves_a_device"
    "${WORK}/build/plugins/libprojectfilecfg.so" "${WORK}/build/translations" "${WORK}/home")
run("${TOOL}" verify "${WORK}/home/Documents/Velmora/Tarvo/ProjectFiles/Project1.corvelpro")
if(NOT output MATCHES "sound \\([0-9]+ entries, 1 picture,")
    message(FATAL_ERROR "The package has not what was saved")
endif()
