# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# compile_in_batches(<size> <target>...): compiles up to so many sources as one, since most of the time goes into reading
# headers. scripts/lint-sources separates sources whose local names would clash. An edit makes it check again, which takes
# a tenth of a second; CMake runs again only if other sources go together now.
function(compile_in_batches size)
    find_program(PYTHON3 python3 REQUIRED)
    set(arguments)
    foreach(target IN LISTS ARGN)
        get_target_property(sources ${target} SOURCES)
        get_target_property(folder ${target} SOURCE_DIR)
        list(FILTER sources INCLUDE REGEX "^[^$]*\\.cpp$")
        list(TRANSFORM sources PREPEND "${folder}/")
        list(APPEND arguments -- ${target} ${sources})
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    endforeach()
    list(GET ARGN 0 name)
    set(list_file "${CMAKE_CURRENT_BINARY_DIR}/${name}_batches.txt")
    set(script "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../scripts/lint-sources")
    set(command "${PYTHON3}" -B "${script}" --batches ${size} "${list_file}" ${arguments})
    execute_process(COMMAND ${command} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "scripts/lint-sources --batches failed")
    endif()
    # Ninja brings it up to date before it compares its time with that of its own rules. The script names the sources as what
    # it depends on: unlike DEPENDS, that is no error after one was removed.
    add_custom_command(OUTPUT "${list_file}" COMMAND ${command} DEPENDS "${script}" DEPFILE "${list_file}.d" VERBATIM
        COMMENT "Choosing which sources are compiled together")
    add_custom_target(${name}_batches DEPENDS "${list_file}")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list_file}")

    file(READ "${list_file}" batches)
    set(number 0)
    while(batches MATCHES "^([^\n]+)\n?(.*)$")
        set(batch "${CMAKE_MATCH_1}")
        set(batches "${CMAKE_MATCH_2}")
        list(POP_FRONT batch target)
        math(EXPR number "${number} + 1")
        set_source_files_properties(${batch} TARGET_DIRECTORY ${target} PROPERTIES UNITY_GROUP ${number})
    endwhile()
endfunction()
