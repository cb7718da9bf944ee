// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "columns.h"

#include <algorithm>

namespace Corvelpro {

namespace {

int placesOf(uint character)
{
    const QChar::Category category = QChar::category(character);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing)
        return 0;
    // Hangul, the Chinese and Japanese blocks, wide forms, pictographs.
    static const QVector<QPair<uint, uint>> wide = {{0x1100, 0x115F}, {0x2E80, 0xA4CF},   {0xAC00, 0xD7A3},
                                                    {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                                                    {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};
    return std::any_of(wide.begin(), wide.end(),
                       [character](const QPair<uint, uint> &range) {
                           return character >= range.first && character <= range.second;
                       })
               ? 2
               : 1;
}

int placesOf(const QString &text)
{
    int places = 0;
    for (const uint character : text.toUcs4())
        places += placesOf(character);
    return places;
}

} // namespace

QStringList inColumns(const QVector<QStringList> &rows)
{
    QVector<int> widths;
    for (const QStringList &row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (int i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths.at(i), placesOf(row.at(i)));
    }
    QStringList lines;
    for (const QStringList &row : rows) {
        QString line;
        for (int i = 0; i < row.size(); ++i) {
            line += row.at(i);
            if (i + 1 < row.size())
                line += QString(widths.at(i) - placesOf(row.at(i)) + 2, QLatin1Char(' '));
        }
        lines.append(line);
    }
    return lines;
}

} // namespace Corvelpro
