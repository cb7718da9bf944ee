// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

namespace Corvelpro {

class ArchiveDirectory;
class Findings;

/// Finds names that no load accepts, or that do not stay apart everywhere: unsafe ones, and those that several entries
/// share, exactly, as aliases of one path, or but for their case.
void checkNames(const ArchiveDirectory &directory, Findings &findings);

} // namespace Corvelpro
