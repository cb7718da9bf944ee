// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/outcome.h"

#include <QSize>

class QImage;

namespace Corvelpro {

/// A small picture of a project file: its background with the lowest number, as a PNG. Reads the archive's directory
/// and that one entry, in bounded memory.
class ProjectThumbnail
{
public:
    /// The picture is written to `target`, completely or not at all. An existing file is replaced only if it is a PNG,
    /// or empty: file managers make an empty one beforehand.
    ProjectThumbnail(const QString &package, const QString &target);

    /// At most `side` pixels wide and high. Refuses a file that is not a valid project file, or has no background.
    Outcome draw(int side);

    const QString &package() const { return m_package; }
    const QString &target() const { return m_target; }
    /// After draw(): the entry that is shown, and the size of the thumbnail.
    const QString &entry() const { return m_entry; }
    const QSize &size() const { return m_size; }

private:
    Outcome read(QImage &picture, int side);
    Outcome write(const QImage &picture) const;
    Outcome unreadable(const QString &reason) const;

    const QString m_package;
    const QString m_target;
    QString m_entry;
    QSize m_size;
};

} // namespace Corvelpro
