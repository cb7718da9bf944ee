// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "jsontext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QString>
#include <QVariant>

namespace Corvelpro {

QString jsonText(const QJsonValue &value)
{
    // A document writes 9007199254740993 as 9007199254740992.
    const QVariant number = value.toVariant();
    if (number.type() == QVariant::LongLong)
        return number.toString();
    // Only arrays and objects can be the root of a document.
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(text.mid(1, text.size() - 2));
}

} // namespace Corvelpro
