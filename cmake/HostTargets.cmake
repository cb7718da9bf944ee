# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# Functions that define the targets of the development host and its tests.

# add_host_library(<Name> SOURCES ... [PRIVATE_HEADERS <headers>] [PUBLIC <targets>] [PRIVATE <targets>])
# Makes the shared library Host<Name>, known to the product as Host::<Name>. Its headers are included
# as <name in lower case/header.h>. Private headers, and those that end in "_p.h", are not installed.
function(add_host_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PRIVATE_HEADERS;PUBLIC;PRIVATE" ${ARGN})
    _add_host_shared(${name} "${CMAKE_CURRENT_SOURCE_DIR}/.." ${ARG_PRIVATE_HEADERS})
    target_sources(Host${name} PRIVATE ${ARG_SOURCES})
    target_link_libraries(Host${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
    set_target_properties(Host${name} PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(TARGETS Host${name} EXPORT HostTargets
        LIBRARY DESTINATION "${HOST_INSTALL_LIBDIR}" COMPONENT devhost)
endfunction()

# add_host_plugin(<Name> SOURCES ... [PRIVATE_HEADERS <headers>] [PUBLIC <targets>] [PRIVATE <targets>])
# The same for a plugin of the host: a library that the plugin manager loads and that other plugins link.
function(add_host_plugin name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PRIVATE_HEADERS;PUBLIC;PRIVATE" ${ARGN})
    _add_host_shared(${name} "${CMAKE_CURRENT_SOURCE_DIR}/.." ${ARG_PRIVATE_HEADERS})
    string(TOLOWER ${name} lower_name)
    target_sources(Host${name} PRIVATE ${ARG_SOURCES})
    target_link_libraries(Host${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
    set_target_properties(Host${name} PROPERTIES
        OUTPUT_NAME ${lower_name}
        LIBRARY_OUTPUT_DIRECTORY "${HOST_PLUGIN_DIRECTORY}")
    # moc embeds the metadata; a change of the JSON file alone must run it again.
    set_property(TARGET Host${name} APPEND PROPERTY AUTOMOC_DEPEND_FILTERS
        "Q_PLUGIN_METADATA" "[\n][ \t]*Q_PLUGIN_METADATA[ \t]*\\([^\\)]*FILE[ \t]*\"([^\"]+)\"")
    set_target_properties(Host${name} PROPERTIES INSTALL_RPATH "$ORIGIN;$ORIGIN/..")
    install(TARGETS Host${name} EXPORT HostTargets
        LIBRARY DESTINATION "${HOST_INSTALL_PLUGINDIR}" COMPONENT devhost)
endfunction()

function(_add_host_shared name include_root)
    get_filename_component(include_root "${include_root}" ABSOLUTE)
    get_filename_component(folder "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
    string(TOUPPER ${name} upper_name)
    add_library(Host${name} SHARED)
    add_library(Host::${name} ALIAS Host${name})
    set_target_properties(Host${name} PROPERTIES EXPORT_NAME ${name})
    target_compile_definitions(Host${name} PRIVATE HOST_${upper_name}_LIBRARY)
    target_include_directories(Host${name} PUBLIC
        "$<BUILD_INTERFACE:${include_root}>" "$<INSTALL_INTERFACE:${HOST_INSTALL_INCLUDEDIR}>")
    file(GLOB_RECURSE headers RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" "*.h")
    list(FILTER headers EXCLUDE REGEX "_p\\.h$")
    list(REMOVE_ITEM headers ${ARGN} "")
    foreach(header IN LISTS headers)
        get_filename_component(header_folder "${folder}/${header}" DIRECTORY)
        install(FILES "${header}" DESTINATION "${HOST_INSTALL_INCLUDEDIR}/${header_folder}" COMPONENT sdk)
    endforeach()
endfunction()

# add_host_test(<tst_name> SOURCES ... [LIBS <targets>] [LABELS <labels>] [X11_RUNNER <command>])
# Makes a Qt Test program and registers it with CTest: headless, or inside the X server that X11_RUNNER starts. Tests
# that use the warning guard of tests/support fail on unexpected warnings. With the sanitizers, a test labelled "slow" is
# built only by its name, since it does not run there.
function(add_host_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS;X11_RUNNER" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    if(name IN_LIST TESTS_WITHOUT_THREADS AND PROJECTFILECFG_SANITIZE STREQUAL "thread")
        list(APPEND ARG_LABELS slow)
    endif()
    if(PROJECTFILECFG_SANITIZE AND "slow" IN_LIST ARG_LABELS)
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
    endif()
    moc_test_class(${name} ${ARG_SOURCES})
    use_test_headers(${name})
    target_link_libraries(${name} PRIVATE Qt5::Test ${ARG_LIBS})
    if(TARGET QtSynchronisation)
        # Built with ThreadSanitizer only; see tests/sanitizers.
        target_link_libraries(${name} PRIVATE QtSynchronisation)
    endif()
    add_test(NAME ${name} COMMAND ${ARG_X11_RUNNER} $<TARGET_FILE:${name}>)
    set(platform offscreen)
    if(ARG_X11_RUNNER)
        set(platform xcb)
    endif()
    # CTest starts the most expensive tests first.
    list(FIND LONG_TESTS ${name} cost)
    if(cost GREATER_EQUAL 0)
        math(EXPR cost "1000 - ${cost}")
    else()
        set(cost 1)
    endif()
    set_tests_properties(${name} PROPERTIES
        LABELS "${ARG_LABELS}"
        TIMEOUT 1800
        COST ${cost}
        ENVIRONMENT "QT_QPA_PLATFORM=${platform};QTEST_FUNCTION_TIMEOUT=1800000;QT_LOGGING_RULES=*.debug=true\\;qt.*.debug=false;LC_ALL=C.UTF-8")
    if(name IN_LIST TESTS_WITHOUT_THREADS)
        set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT EXPECT_NO_THREADS=1)
    endif()
endfunction()

# use_test_headers(<target>): the shared precompiled header of the tests; requires identical compile options.
function(use_test_headers name)
    target_compile_options(${name} PRIVATE ${TEST_COMPILE_OPTIONS})
    target_precompile_headers(${name} REUSE_FROM TestSupport)
endfunction()

# moc_test_class(<target> <sources>...): AUTOMOC costs each program a scan and one more file to compile. A test has one
# class to moc, in the source that includes "<source>.moc"; only programs with Q_OBJECT in a header need AUTOMOC.
function(moc_test_class name)
    list(FILTER ARGN INCLUDE REGEX "\\.(cpp|h)$")
    foreach(source IN LISTS ARGN)
        file(STRINGS "${source}" declares_object REGEX "^[ \t]*Q_OBJECT" LIMIT_COUNT 1)
        if(declares_object AND source MATCHES "\\.h$")
            return()
        elseif(declares_object)
            list(APPEND test_classes "${source}")
        endif()
    endforeach()
    set_target_properties(${name} PROPERTIES AUTOMOC OFF)
    foreach(source IN LISTS test_classes)
        get_filename_component(base "${source}" NAME_WE)
        set(moc_file "${CMAKE_CURRENT_BINARY_DIR}/${name}_moc/${base}.moc")
        qt5_generate_moc("${source}" "${moc_file}" TARGET ${name})
        target_sources(${name} PRIVATE "${moc_file}")
        target_include_directories(${name} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${name}_moc")
    endforeach()
endfunction()

# add_translations(<target> BASE <file base> LANGUAGES <codes>)
# Releases translations/<base>_<language>.ts of the current folder into the host's translation directory.
function(add_translations target)
    cmake_parse_arguments(ARG "" "BASE" "LANGUAGES" ${ARGN})
    set(ts_files)
    foreach(language IN LISTS ARG_LANGUAGES)
        list(APPEND ts_files "${CMAKE_CURRENT_SOURCE_DIR}/translations/${ARG_BASE}_${language}.ts")
    endforeach()
    set_source_files_properties(${ts_files} PROPERTIES OUTPUT_LOCATION "${HOST_TRANSLATION_DIRECTORY}")
    qt5_add_translation(qm_files ${ts_files})
    add_custom_target(${target}_translations ALL DEPENDS ${qm_files})
    add_dependencies(${target} ${target}_translations)
    install(FILES ${qm_files} DESTINATION "${HOST_INSTALL_TRANSLATIONDIR}" COMPONENT devhost)
endfunction()
