# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# compile_in_batches(<target>...): compiles up to twelve sources as one, since most of the time goes into reading
# headers. For builds in which nobody waits for a single edited source. scripts/lint-sources separates sources whose
# anonymous namespaces would collide.
function(compile_in_batches)
    find_program(PYTHON3 python3 REQUIRED)
    foreach(target IN LISTS ARGN)
        get_target_property(sources ${target} SOURCES)
        get_target_property(folder ${target} SOURCE_DIR)
        list(FILTER sources INCLUDE REGEX "^[^$]*\\.cpp$")
        list(TRANSFORM sources PREPEND "${folder}/")
        execute_process(
            COMMAND "${PYTHON3}" -B "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../scripts/lint-sources" --batches ${sources}
            OUTPUT_VARIABLE batches OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE result)
        if(NOT result EQUAL 0)
            message(FATAL_ERROR "scripts/lint-sources --batches failed for ${target}")
        endif()
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${sources})
        set(number 0)
        while(batches MATCHES "^([^\n]+)\n?(.*)$")
            set(batch "${CMAKE_MATCH_1}")
            set(batches "${CMAKE_MATCH_2}")
            math(EXPR number "${number} + 1")
            set_source_files_properties(${batch} TARGET_DIRECTORY ${target} PROPERTIES UNITY_GROUP ${number})
        endwhile()
    endforeach()
endfunction()
