// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "descriptioncomparison.h"

#include "parseddescription.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

/// The document as an apply reads it; null if it is not JSON, or needs more memory than a description may.
QJsonDocument parsed(const QByteArray &content)
{
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    QJsonParseError error;
    return parseDescription(buffer, error);
}

QJsonValue rootOf(const QJsonDocument &document)
{
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

} // namespace

DescriptionComparison::DescriptionComparison(const QVector<DescriptionPath> &ignored)
    : m_ignored(ignored)
{}

bool DescriptionComparison::compare(const QByteArray &before, const QByteArray &after)
{
    const QJsonDocument one = parsed(before);
    const QJsonDocument other = parsed(after);
    if (one.isNull() || other.isNull())
        return false;
    compareValues(rootOf(one), rootOf(other));
    return true;
}

void DescriptionComparison::compareValues(const QJsonValue &before, const QJsonValue &after)
{
    if (before.isObject() && after.isObject())
        compareObjects(before.toObject(), after.toObject());
    else if (before.isArray() && after.isArray())
        compareArrays(before.toArray(), after.toArray());
    else if (before == after)
        return;
    else if (m_differences.size() < maxKept)
        m_differences.append({m_path.text(), before, after});
    else
        ++m_omitted;
}

void DescriptionComparison::compareObjects(const QJsonObject &before, const QJsonObject &after)
{
    QStringList keys = before.keys() + after.keys();
    keys.sort();
    keys.removeDuplicates();
    // value() is Undefined where there is none.
    for (const QString &key : qAsConst(keys))
        compareAt(key, before.value(key), after.value(key));
}

void DescriptionComparison::compareArrays(const QJsonArray &before, const QJsonArray &after)
{
    // at() is Undefined beyond the end.
    for (int i = 0; i < std::max(before.size(), after.size()); ++i)
        compareAt(i, before.at(i), after.at(i));
}

template<typename Key>
void DescriptionComparison::compareAt(const Key &key, const QJsonValue &before, const QJsonValue &after)
{
    m_path.enter(key);
    const bool isIgnored = std::any_of(m_ignored.begin(), m_ignored.end(),
                                       [this](const DescriptionPath &ignored) { return ignored.matches(m_path); });
    if (!isIgnored)
        compareValues(before, after);
    m_path.leave();
}

} // namespace Corvelpro
