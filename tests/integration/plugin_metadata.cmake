# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# Compares the metadata embedded in PLUGIN, read by QTPLUGININFO, with the file EXPECTED and the VERSION. Qt's own entries vary with the
# Qt version: they must exist, and are otherwise ignored.
cmake_minimum_required(VERSION 3.19)

execute_process(COMMAND "${QTPLUGININFO}" --full-json "${PLUGIN}"
    OUTPUT_VARIABLE actual RESULT_VARIABLE result ERROR_VARIABLE error)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PLUGIN} has no plugin metadata that can be read: ${error}")
endif()
# The tool prints a line of text before the document.
string(FIND "${actual}" "{" begin)
string(SUBSTRING "${actual}" ${begin} -1 actual)
foreach(entry archreq debug version)
    string(JSON value GET "${actual}" ${entry})
    string(JSON actual REMOVE "${actual}" ${entry})
endforeach()

file(READ "${EXPECTED}" expected)
string(CONFIGURE "${expected}" expected @ONLY)
string(JSON equal EQUAL "${actual}" "${expected}")
if(NOT equal)
    message(FATAL_ERROR "Metadata of ${PLUGIN}:\n${actual}\nExpected:\n${expected}")
endif()
