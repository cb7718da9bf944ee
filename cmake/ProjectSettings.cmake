# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# What every target of this repository shares: language level, warnings, hidden symbols, output folders.

set(CMAKE_CXX_STANDARD 17 CACHE STRING "Level of the language, 17 or above")
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(HOST_PLUGIN_DIRECTORY "${PROJECT_BINARY_DIR}/plugins")
set(HOST_TRANSLATION_DIRECTORY "${PROJECT_BINARY_DIR}/translations")

# Where the development host is installed: its libraries in a folder of their own, since nobody else links them, and the
# plugins below it. Each part finds the others by relative paths (RUNPATH), so that the tree may be moved.
include(GNUInstallDirs)
set(HOST_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/devhost")
set(HOST_INSTALL_LIBDIR "${CMAKE_INSTALL_LIBDIR}/devhost")
set(HOST_INSTALL_PLUGINDIR "${HOST_INSTALL_LIBDIR}/plugins")
set(HOST_INSTALL_TRANSLATIONDIR "${CMAKE_INSTALL_DATADIR}/devhost/translations")
set(HOST_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/Host")

# Use ccache if it is installed; precompiled headers need the sloppiness.
find_program(PROJECTFILECFG_CCACHE ccache)
if(PROJECTFILECFG_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER
        "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${PROJECTFILECFG_CCACHE}")
endif()

# mold saves a third of a second for each of more than sixty programs. Release builds use the system's linker.
find_program(PROJECTFILECFG_MOLD mold)
if(PROJECTFILECFG_MOLD)
    add_link_options($<$<CONFIG:Debug>:-fuse-ld=mold>)
endif()

add_compile_options(-Wall -Wextra)
option(PROJECTFILECFG_WERROR "Treat warnings as errors" OFF)
if(PROJECTFILECFG_WERROR)
    add_compile_options(-Werror)
endif()

add_compile_definitions(QT_MESSAGELOGCONTEXT)

# One of "", "address;undefined", "thread": instruments all targets.
set(PROJECTFILECFG_SANITIZE "" CACHE STRING "Sanitizers to build with")
if(PROJECTFILECFG_SANITIZE)
    string(REPLACE ";" "," _sanitizers "${PROJECTFILECFG_SANITIZE}")
    add_compile_options(-fsanitize=${_sanitizers} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=${_sanitizers})
endif()

# Tests are compiled more often than they run, and compute little themselves. Fuzzers do nothing but run.
set(TEST_COMPILE_OPTIONS)
if(NOT PROJECTFILECFG_BUILD_FUZZERS)
    set(TEST_COMPILE_OPTIONS $<$<CONFIG:Debug>:-O0>)
endif()

# Compiles what a folder adds from here on without UndefinedBehaviorSanitizer. Undefined behaviour is looked for in the
# product and its tool, and makes a source take up to half as long again to compile.
macro(leave_out_undefined_behaviour_sanitizer)
    if("undefined" IN_LIST PROJECTFILECFG_SANITIZE)
        add_compile_options(-fno-sanitize=undefined)
    endif()
endmacro()

# Parsing Qt's headers dominates the compile time of a source. use_qt_headers(<target>...) precompiles the most used ones,
# once for all targets, whatever they link: the folders in which a target finds headers stay its own, so that it cannot
# include those of a module that it does not link. The product also compiles without it: a test builds it alone,
# another one checks that each of its sources includes what it names.
function(use_qt_headers)
    if(NOT TARGET QtHeaders)
        add_library(QtHeaders STATIC "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/qtheaders.cpp")
        set_target_properties(QtHeaders PROPERTIES AUTOMOC OFF AUTORCC OFF)
        # Every target must define what was defined here: nothing of a module that only some link.
        target_link_libraries(QtHeaders PRIVATE Qt5::Core)
        target_include_directories(QtHeaders SYSTEM PRIVATE ${Qt5Widgets_INCLUDE_DIRS})
        target_precompile_headers(QtHeaders PRIVATE
            <QByteArray> <QCoreApplication> <QDateTime> <QDebug> <QDir> <QFile> <QFileInfo> <QHash> <QJsonArray>
            <QJsonDocument> <QJsonObject> <QMap> <QMutex> <QObject> <QPointer> <QSet> <QString> <QStringList> <QThread>
            <QTimer> <QVariant> <QVector>
            <QApplication> <QBoxLayout> <QComboBox> <QDialog> <QEvent> <QIcon> <QImage> <QLabel> <QLineEdit> <QPainter>
            <QPushButton> <QTableWidget> <QTextEdit> <QToolButton> <QWidget>
            <algorithm> <atomic> <functional> <map> <memory> <mutex> <vector>)
    endif()
    foreach(target IN LISTS ARGN)
        target_precompile_headers(${target} REUSE_FROM QtHeaders)
    endforeach()
endfunction()

include(CompileInBatches)
include(HostTargets)
