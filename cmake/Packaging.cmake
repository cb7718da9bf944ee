# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# Debian packages, one for each part that somebody may want alone; ./package builds and tries them.
#
#   component  package                     contents
#   plugin     projectfilecfg              the plugin's library and translations
#   tool       corvelpro                   the command-line tool
#   desktop    corvelpro-desktop           the media type of project files, its icon and their thumbnails
#   devhost    projectfilecfg-devhost      the development host with its own plugins
#   sdk        projectfilecfg-devhost-dev  its headers and its CMake package, to build a plugin against
#   doc        projectfilecfg-doc          manuals and developers' pages

function(_describe component package summary description)
    string(TOUPPER ${component} upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package} PARENT_SCOPE)
    set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
    set(folder "${CMAKE_INSTALL_DATADIR}/doc/${package}")
    install(FILES "${DEBIAN_DOCUMENTS}/changelog.gz" "${PROJECT_SOURCE_DIR}/THIRD-PARTY.md"
        DESTINATION "${folder}" COMPONENT ${component})
    # The tool has notices of others besides.
    set(copyright "${DEBIAN_DOCUMENTS}/copyright")
    if(component STREQUAL tool)
        set(copyright "${DEBIAN_DOCUMENTS}/tool/copyright")
    endif()
    install(FILES "${copyright}" DESTINATION "${folder}" COMPONENT ${component})
endfunction()

# Debian's own tools want the changes of a package and its licence, each in a form of its own.
set(DEBIAN_DOCUMENTS "${PROJECT_BINARY_DIR}/debian")
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)
add_custom_command(OUTPUT "${DEBIAN_DOCUMENTS}/changelog.gz" "${DEBIAN_DOCUMENTS}/copyright" "${DEBIAN_DOCUMENTS}/tool/copyright"
    COMMAND "${Python3_EXECUTABLE}" -B scripts/debian-documents . "${DEBIAN_DOCUMENTS}"
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    DEPENDS CHANGELOG.md LICENSE scripts/debian-documents VERBATIM)
add_custom_target(debian_documents ALL DEPENDS "${DEBIAN_DOCUMENTS}/changelog.gz")

_describe(plugin projectfilecfg "plugin that keeps device configurations in project files"
    "Saves a video-processing device with its pictures and presets into a\nproject file (.corvelpro), and applies it again.")
_describe(tool corvelpro "command-line tool for project files"
    "Lists, checks, compares, copies and extracts project files (.corvelpro)\nwithout the control application.")
_describe(desktop corvelpro-desktop "media type of project files"
    "Lets file managers recognise project files (.corvelpro) and show them with\ntheir first background, or an icon of their own.")
_describe(devhost projectfilecfg-devhost "development host for plugins, with simulated devices"
    "Stands in for the control application: loads plugins and runs them against\na simulated site of devices.")
_describe(sdk projectfilecfg-devhost-dev "development host for plugins, headers"
    "Headers and CMake package of the development host, to build plugins against\nand to test them with simulated devices.")
_describe(doc projectfilecfg-doc "plugin that keeps device configurations in project files, manuals"
    "Manuals for operators in English and Chinese, and pages for developers.")

install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/projectfilecfg-doc"
    COMPONENT doc)
install(FILES README.md SECURITY.md DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/projectfilecfg-doc"
    COMPONENT doc)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL plugin tool desktop devhost sdk doc)
set(CPACK_PACKAGE_NAME projectfilecfg)
set(CPACK_PACKAGE_VENDOR Velmora)
set(CPACK_PACKAGE_CONTACT "Velmora <support@velmora.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://www.velmora.example")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_SDK_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
foreach(component PLUGIN TOOL DEVHOST)
    set(CPACK_DEBIAN_${component}_PACKAGE_SHLIBDEPS ON)
endforeach()
foreach(component DESKTOP DOC)
    set(CPACK_DEBIAN_${component}_PACKAGE_ARCHITECTURE all)
endforeach()
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY};${HOST_PLUGIN_DIRECTORY}")
set(CPACK_DEBIAN_PLUGIN_PACKAGE_DEPENDS "projectfilecfg-devhost (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PLUGIN_PACKAGE_RECOMMENDS "corvelpro, corvelpro-desktop")
set(CPACK_DEBIAN_DESKTOP_PACKAGE_DEPENDS shared-mime-info)
# It draws the thumbnails.
set(CPACK_DEBIAN_DESKTOP_PACKAGE_RECOMMENDS "corvelpro (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_SDK_PACKAGE_DEPENDS "projectfilecfg-devhost (= ${PROJECT_VERSION}), qtbase5-dev")
set(CPACK_DEBIAN_DEVHOST_PACKAGE_RECOMMENDS
    "fonts-dejavu-core, fonts-wqy-microhei, fonts-noto-color-emoji, qttranslations5-l10n")
include(CPack)
