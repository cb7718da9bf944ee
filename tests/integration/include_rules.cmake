# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# Product and development host meet only in the host's public headers: the product includes its own files, the host's
# public headers, Qt, QuaZip and the standard library; the development host includes nothing of the product.
cmake_minimum_required(VERSION 3.18)

set(product "${ROOT}/src/plugins/projectfilecfg")
set(violations)

file(GLOB_RECURSE own_paths RELATIVE "${product}" "${product}/*.h")
foreach(path IN LISTS own_paths)
    get_filename_component(name "${path}" NAME)
    list(APPEND own_headers "${name}")
endforeach()
file(GLOB_RECURSE product_sources "${product}/*.h" "${product}/*.cpp")
file(GLOB_RECURSE host_sources "${ROOT}/devhost/*.h" "${ROOT}/devhost/*.cpp")
list(LENGTH product_sources product_count)
list(LENGTH host_sources host_count)
if(product_count EQUAL 0 OR host_count EQUAL 0)
    message(FATAL_ERROR "No sources below ${ROOT}")
endif()

foreach(source IN LISTS product_sources)
    file(STRINGS "${source}" includes REGEX "^[ \t]*#[ \t]*include")
    foreach(line IN LISTS includes)
        string(REGEX REPLACE "^[^<\"]*[<\"]([^>\"]+)[>\"].*$" "\\1" header "${line}")
        if(header IN_LIST own_headers OR header MATCHES "^[a-z0-9_]+\\.moc$" OR header MATCHES "^[a-z_0-9]+$"
           OR header MATCHES "^((sys|linux)/)?[a-z]+\\.h$" OR header MATCHES "^(Q[A-Za-z]+|Qt[A-Za-z]+/Q[A-Za-z]+)$"
           OR header MATCHES "^(quazip/)?(quazip[a-z]*|JlCompress)\\.h$")
            continue()
        endif()
        if(header MATCHES "^(core|extensionsystem|imagestorager|model|modelcontrol|navigationbar|settingcfg|utils|widgets)/[a-z]+\\.h$")
            continue()
        endif()
        list(APPEND violations "${source}: ${header}")
    endforeach()
    file(STRINGS "${source}" conditional REGEX "#[ \t]*if.*(SIMULATION|DEVHOST)")
    if(conditional)
        list(APPEND violations "${source}: ${conditional}")
    endif()
endforeach()

foreach(source IN LISTS host_sources)
    file(STRINGS "${source}" includes REGEX "^[ \t]*#[ \t]*include")
    foreach(line IN LISTS includes)
        string(REGEX REPLACE "^[^<\"]*[<\"]([^>\"]+)[>\"].*$" "\\1" header "${line}")
        get_filename_component(name "${header}" NAME)
        if(name IN_LIST own_headers)
            list(APPEND violations "${source}: ${header}")
        endif()
    endforeach()
endforeach()

if(violations)
    list(JOIN violations "\n  " text)
    message(FATAL_ERROR "Includes that do not belong there:\n  ${text}")
endif()
