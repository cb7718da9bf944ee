# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# The host's CMake package, unless the host is part of this build, and its targets. The version is the oldest that will do.
if(NOT TARGET Host::Core)
    find_package(Host 2.0.0 REQUIRED)
endif()
set(HOST_TARGETS_FOR_JOBS Host::Core Host::ImageStorager Host::Model Host::ModelControl)
set(HOST_TARGETS_FOR_PANEL Host::SettingCfg Host::Utils Host::Widgets)
