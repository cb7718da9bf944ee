// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// Empty on purpose: CMake ties a precompiled header to a target, and a target needs a source.
