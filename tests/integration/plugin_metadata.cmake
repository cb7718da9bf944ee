# Compares what is embedded in PLUGIN, read by QTPLUGININFO, with the file EXPECTED. Qt's own entries
# depend on the Qt that the plugin is built against: they must be there, and are then left out.
cmake_minimum_required(VERSION 3.19)

execute_process(COMMAND "${QTPLUGININFO}" --full-json "${PLUGIN}"
    OUTPUT_VARIABLE actual RESULT_VARIABLE result ERROR_VARIABLE error)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PLUGIN} has no plugin metadata that can be read: ${error}")
endif()
# The document stands after a line of text in the tool's output.
string(FIND "${actual}" "{" begin)
string(SUBSTRING "${actual}" ${begin} -1 actual)
foreach(entry archreq debug version)
    string(JSON value GET "${actual}" ${entry})
    string(JSON actual REMOVE "${actual}" ${entry})
endforeach()

file(READ "${EXPECTED}" expected)
string(JSON equal EQUAL "${actual}" "${expected}")
if(NOT equal)
    message(FATAL_ERROR "Metadata of ${PLUGIN}:\n${actual}\nExpected:\n${expected}")
endif()
