// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QImage>
#include <QVector>

namespace Corvelpro {

/// A picture of changed pictures, one below the other: the old one, the new one, and where they differ, the brighter
/// the more. A pixel there shows the largest difference of those that it stands for, so that none is lost. It has no
/// texts, which would need a display.
class PictureSheet
{
public:
    /// Beyond these, pictures are left out: the sheet has to fit in memory.
    static constexpr int maxRows = 100;

    /// Returns the number of its row, counted from 1; 0 if it is left out. Both are of Format_ARGB32. Of two pictures
    /// of different sizes the third cell shows one plain colour.
    int add(const QImage &before, const QImage &after);

    int rows() const { return m_rows.size(); }
    int leftOut() const { return m_leftOut; }

    /// Writes a PNG file, completely or not at all. False if there is anything at `path`; `reason` says why.
    bool write(const QString &path, QString *reason) const;

private:
    struct Row
    {
        QImage before;
        QImage after;
        QImage difference;
    };

    QImage drawn() const;

    QVector<Row> m_rows;
    int m_leftOut = 0;
};

} // namespace Corvelpro
