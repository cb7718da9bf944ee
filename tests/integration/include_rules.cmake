# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# Product and development host meet only in the product's folder host/: its headers include the host's public ones and
# give them their names, nothing else. The rest of the product includes its own files, Qt, QuaZip, the standard library and,
# as far as its folder may know the host, <host/...>. The development host includes nothing of the product.
cmake_minimum_required(VERSION 3.18)

set(product "${ROOT}/src/plugins/projectfilecfg")
set(violations)

file(GLOB_RECURSE own_paths RELATIVE "${product}" "${product}/*.h")
list(FILTER own_paths EXCLUDE REGEX "^host/")
foreach(path IN LISTS own_paths)
    get_filename_component(name "${path}" NAME)
    list(APPEND own_headers "${name}")
endforeach()
file(GLOB_RECURSE product_sources "${product}/*.h" "${product}/*.cpp")
list(FILTER product_sources EXCLUDE REGEX "^${product}/host/")
file(GLOB aliasing_headers "${product}/host/*.h")
file(GLOB_RECURSE host_sources "${ROOT}/devhost/*.h" "${ROOT}/devhost/*.cpp")
list(LENGTH product_sources product_count)
list(LENGTH host_sources host_count)
list(LENGTH aliasing_headers aliasing_count)
if(product_count EQUAL 0 OR host_count EQUAL 0 OR aliasing_count EQUAL 0)
    message(FATAL_ERROR "No sources below ${ROOT}")
endif()

# What the sources of each folder may include of the host. A class at the top belongs to the folder that it is built into.
set(host_for_files "^$")
set(host_for_jobs "^host/(core|devicecontrol|devices|fwd|images)\\.h$")
set(host_for_panel "^host/[a-z]+\\.h$")

foreach(source IN LISTS product_sources)
    if(source MATCHES "/(files|package|pictures)/[a-z0-9]+\\.[a-z]+$|/zippackagehandle\\.")
        set(host_headers "${host_for_files}")
    elseif(source MATCHES "/jobs/|/engineerdoc(backup|load)\\.")
        set(host_headers "${host_for_jobs}")
    else()
        set(host_headers "${host_for_panel}")
    endif()
    file(STRINGS "${source}" includes REGEX "^[ \t]*#[ \t]*include")
    foreach(line IN LISTS includes)
        string(REGEX REPLACE "^[^<\"]*[<\"]([^>\"]+)[>\"].*$" "\\1" header "${line}")
        if(header IN_LIST own_headers OR header MATCHES "^[a-z0-9_]+\\.moc$" OR header MATCHES "^[a-z_0-9]+$"
           OR header MATCHES "^((sys|linux)/)?[a-z]+\\.h$" OR header MATCHES "^(Q[A-Za-z]+|Qt[A-Za-z]+/Q[A-Za-z]+)$"
           OR header MATCHES "^(quazip/)?(quazip[a-z]*|JlCompress)\\.h$")
            continue()
        endif()
        if(header MATCHES "${host_headers}")
            continue()
        endif()
        list(APPEND violations "${source}: ${header}")
    endforeach()
    file(STRINGS "${source}" conditional REGEX "#[ \t]*if.*(SIMULATION|DEVHOST)")
    if(conditional)
        list(APPEND violations "${source}: ${conditional}")
    endif()
endforeach()

# Includes, aliases, declarations and numbers, line by line.
set(name "[A-Za-z_][A-Za-z0-9_]*")
set(qualified_name "${name}(::${name})*")
set(host_libraries "(core|extensionsystem|imagestorager|model|modelcontrol|navigationbar|settingcfg|utils|widgets)")
foreach(source IN LISTS aliasing_headers)
    file(READ "${source}" text)
    string(REGEX REPLACE " *//[^\n]*" "" text "${text}")
    # A semicolon separates list elements.
    string(REPLACE ";" "@" text "${text}")
    string(REPLACE "\n" ";" lines "${text}")
    foreach(line IN LISTS lines)
        if(line MATCHES "^(#pragma once|#include <${host_libraries}/[a-z]+\\.h>|} *)$"
           OR line MATCHES "^(class|struct) ${name}@$" OR line MATCHES "^namespace ${name} {$"
           OR line MATCHES "^(namespace|using) ${name} = ${qualified_name}@$" OR line MATCHES "^using ${qualified_name}@$"
           OR line MATCHES "^constexpr auto ${name} = static_cast<${qualified_name}>\\([0-9]+\\)@$"
           OR line MATCHES "^constexpr int ${name} = [0-9]+@$" OR line STREQUAL "")
            continue()
        endif()
        list(APPEND violations "${source}: no include, alias, declaration or number: ${line}")
    endforeach()
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
