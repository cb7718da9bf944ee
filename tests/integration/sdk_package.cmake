# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# Installs the SDK of the build HOST_BUILD into WORK. Expects that its headers are public ones with all that they
# include, and that find_package accepts only its own major version, and otherwise names the version that it found.
# Without the host itself, find_package names the library that is missing: so it has taken the version.
cmake_minimum_required(VERSION 3.18)

file(REMOVE_RECURSE "${WORK}")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${HOST_BUILD}" --prefix "${WORK}/host" --component sdk
    RESULT_VARIABLE result OUTPUT_QUIET)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "The SDK cannot be installed: ${result}")
endif()

set(root "${WORK}/host/include/devhost")
file(GLOB_RECURSE headers RELATIVE "${root}" "${root}/*")
list(LENGTH headers count)
if(count LESS 50)
    message(FATAL_ERROR "The SDK has ${count} headers only")
endif()
set(included)
foreach(header IN LISTS headers)
    file(STRINGS "${root}/${header}" lines REGEX "^#include [<\"][a-z/_]+\\.h[>\"]")
    list(TRANSFORM lines REPLACE ".*[<\"](.*)[>\"].*" "\\1")
    list(APPEND included ${lines})
endforeach()
list(REMOVE_DUPLICATES included)
foreach(header IN LISTS included)
    if(NOT EXISTS "${root}/${header}")
        message(FATAL_ERROR "A header of the SDK includes ${header}, which is missing")
    endif()
endforeach()
# The static library that starts a site exports all that it has.
set(public simulation/session/session.h)
foreach(header IN LISTS headers)
    file(STRINGS "${root}/${header}" exported REGEX "_EXPORT")
    if(NOT exported AND NOT header IN_LIST included AND NOT header IN_LIST public)
        message(FATAL_ERROR "${header} exports nothing, and no public header needs it: a private header of the host")
    endif()
endforeach()

file(WRITE "${WORK}/plugin/CMakeLists.txt" "cmake_minimum_required(VERSION 3.18)
project(plugin LANGUAGES CXX)
find_package(Host \${WANTED} REQUIRED CONFIG)
")
# find(<version> <message>): expects to be refused with that message.
function(find wanted expected)
    execute_process(COMMAND "${CMAKE_COMMAND}" -S "${WORK}/plugin" -B "${WORK}/plugin/${wanted}" -D "WANTED=${wanted}"
            -G "${GENERATOR}" -D "CMAKE_CXX_COMPILER=${COMPILER}" -D "CMAKE_PREFIX_PATH=${WORK}/host"
        RESULT_VARIABLE result OUTPUT_QUIET ERROR_VARIABLE errors)
    string(REGEX REPLACE "[ \n]+" " " errors "${errors}")
    if(result EQUAL 0 OR NOT errors MATCHES "${expected}")
        message(FATAL_ERROR "Version ${wanted} ended with ${result}, without \"${expected}\": ${errors}")
    endif()
endfunction()
string(REGEX MATCH "^[0-9]+" major "${VERSION}")
math(EXPR previous "${major} - 1")
math(EXPR next "${major} + 1")
foreach(same "${VERSION}" "${major}.0")
    find("${same}" "libHostSimulation.so\" but this file does not exist")
endforeach()
foreach(other "${previous}.0" "${next}.0" "${major}.99")
    find("${other}" "compatible with requested version \"${other}\".*HostConfig.cmake, version: ${VERSION}")
endforeach()
