// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QImage>
#include <QVector>

namespace Corvelpro {

/// A picture that shows changed pictures, one per row: the old one, the new one, and their difference, which is
/// brighter where it is larger. Each pixel there shows the largest difference of those scaled down to it, so that none
/// is lost. There are no texts, since drawing them would need a display.
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
