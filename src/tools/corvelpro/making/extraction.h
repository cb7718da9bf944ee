// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/outcome.h"

#include <QStringList>

namespace Corvelpro {

/// Extracts a package's entries into a new directory, all of them or none.
class Extraction
{
public:
    /// `entry`: the only one to extract; empty: all of them.
    Extraction(const QString &package, const QString &directory, const QString &entry);

    /// Asks Interrupt between the entries.
    Outcome run();

    /// After run(): where the entries are, and what they are called there.
    QString directory() const { return m_directory; }
    QStringList entries() const { return m_entries; }

private:
    const QString m_package;
    QString m_directory;
    const QString m_entry;
    QStringList m_entries;
};

} // namespace Corvelpro
