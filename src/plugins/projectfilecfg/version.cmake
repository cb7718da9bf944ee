# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# The one place of the version. It goes from here into the plugin's metadata, the tool, its manual page, the Debian packages,
# the host's CMake package and the pages of the classes; CHANGELOG.md has it as the heading of its newest release.
set(PROJECTFILECFG_VERSION 2.0.0)
