# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

set(HOST_TARGETS_FOR_JOBS acme)
set(HOST_TARGETS_FOR_PANEL acme)
