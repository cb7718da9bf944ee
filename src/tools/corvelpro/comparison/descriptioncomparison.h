// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "descriptionpath.h"

#include <QJsonValue>
#include <QVector>

class QByteArray;

namespace Corvelpro {

/// A member or an element that one of two descriptions lacks, or whose values differ.
struct MemberDifference
{
    QString path;
    /// Undefined on the side that lacks it.
    QJsonValue before;
    QJsonValue after;
};

/// Compares two descriptions as an apply reads them: by their members, whatever their order and the white space; of two
/// members with one name the last counts. The elements of an array are compared by their index.
class DescriptionComparison
{
public:
    /// Differences that are kept. The others are counted.
    static constexpr int maxKept = 10000;

    /// `ignored`: values that are left out, with everything below them.
    explicit DescriptionComparison(const QVector<DescriptionPath> &ignored);

    /// False if one of them is not JSON, or is beyond what a package's description may be.
    bool compare(const QByteArray &before, const QByteArray &after);

    /// After compare(), in the order of the paths.
    const QVector<MemberDifference> &differences() const { return m_differences; }
    /// How many more there are.
    int omitted() const { return m_omitted; }

private:
    void compareValues(const QJsonValue &before, const QJsonValue &after);
    void compareObjects(const QJsonObject &before, const QJsonObject &after);
    void compareArrays(const QJsonArray &before, const QJsonArray &after);
    template<typename Key>
    void compareAt(const Key &key, const QJsonValue &before, const QJsonValue &after);

    const QVector<DescriptionPath> m_ignored;
    DescriptionPath m_path;
    QVector<MemberDifference> m_differences;
    int m_omitted = 0;
};

} // namespace Corvelpro
