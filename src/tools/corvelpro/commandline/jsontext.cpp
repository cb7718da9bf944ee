// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "jsontext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QVariant>

namespace Corvelpro {

namespace {

/// A value that is neither an array nor an object.
QByteArray plainText(const QJsonValue &value)
{
    const QVariant number = value.toVariant();
    if (number.type() == QVariant::LongLong)
        return number.toString().toLatin1();
    // Only arrays and objects can be the root of a document.
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return text.mid(1, text.size() - 2);
}

/// Appends the value. `indent` is that of the current line; if negative, there are no line breaks.
void append(QByteArray &text, const QJsonValue &value, int indent)
{
    if (!value.isArray() && !value.isObject()) {
        text += plainText(value);
        return;
    }
    constexpr int step = 4;
    const bool isIndented = indent >= 0;
    const int inner = isIndented ? indent + step : indent;
    bool isFirst = true;
    const auto begin = [&] {
        if (!isFirst)
            text += ',';
        if (isIndented)
            text += (isFirst ? "" : "\n") + QByteArray(inner, ' ');
        isFirst = false;
    };
    text += value.isArray() ? '[' : '{';
    if (isIndented)
        text += '\n';
    const QJsonArray array = value.toArray();
    for (const QJsonValue &element : array) {
        begin();
        append(text, element, inner);
    }
    const QJsonObject object = value.toObject();
    for (auto member = object.begin(); member != object.end(); ++member) {
        begin();
        text += plainText(member.key()) + (isIndented ? ": " : ":");
        append(text, *member, inner);
    }
    if (isIndented)
        text += (isFirst ? "" : "\n") + QByteArray(indent, ' ');
    text += value.isArray() ? ']' : '}';
}

} // namespace

QString jsonText(const QJsonValue &value)
{
    QByteArray text;
    append(text, value, -1);
    return QString::fromUtf8(text);
}

QByteArray jsonDocument(const QJsonObject &object)
{
    QByteArray text;
    append(text, object, 0);
    return text + '\n';
}

} // namespace Corvelpro
