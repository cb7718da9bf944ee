// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

namespace Corvelpro {

class ArchiveDirectory;
class Findings;

/// Finds names that no apply accepts, or that are not distinct on every system: unsafe ones, and those shared by
/// several entries, exactly, as aliases of one path, or except for their case.
void checkNames(const ArchiveDirectory &directory, Findings &findings);

} // namespace Corvelpro
