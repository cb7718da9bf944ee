// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "descriptionpath.h"

#include "reason.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>

namespace Corvelpro {

using ProjectFileCfg::Internal::failBecause;

namespace {

constexpr const char *plainName = "[\\p{L}\\p{N}_-]+";

QString inBrackets(const QString &name)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray{name}).toJson(QJsonDocument::Compact));
}

bool isPlain(const QString &name)
{
    static const QRegularExpression pattern(QRegularExpression::anchoredPattern(QLatin1String(plainName)),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern.match(name).hasMatch();
}

/// The parts of a path: "slots", "[2]", ".type". Empty if there is anything else in it.
QVector<QRegularExpressionMatch> partsOf(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\G(?:(?<dot>\\.)?(?<name>%1)|\\[(?<any>\\*)\\]|\\[(?<index>\\d{1,9})\\]|"
                       "(?<quoted>\\[\"(?:[^\"\\\\]|\\\\.)*\"\\]))")
            .arg(QLatin1String(plainName)),
        QRegularExpression::UseUnicodePropertiesOption);
    QVector<QRegularExpressionMatch> parts;
    int position = 0;
    while (position < text.size()) {
        const QRegularExpressionMatch part = pattern.match(text, position);
        const bool isName = !part.captured(QStringLiteral("name")).isEmpty();
        const bool hasDot = !part.captured(QStringLiteral("dot")).isEmpty();
        // Only the first part begins with a name alone.
        if (!part.hasMatch() || (isName && hasDot == parts.isEmpty()))
            return {};
        parts.append(part);
        position = part.capturedEnd();
    }
    return parts;
}

DescriptionPath::Step stepOf(const QRegularExpressionMatch &part)
{
    using Step = DescriptionPath::Step;
    if (!part.captured(QStringLiteral("any")).isEmpty())
        return {Step::Kind::Any, QString(), 0};
    if (!part.captured(QStringLiteral("index")).isEmpty())
        return {Step::Kind::Element, QString(), part.captured(QStringLiteral("index")).toInt()};
    const QString quoted = part.captured(QStringLiteral("quoted"));
    const QString name = quoted.isEmpty() ? part.captured(QStringLiteral("name"))
                                          : QJsonDocument::fromJson(quoted.toUtf8()).array().first().toString();
    return {Step::Kind::Member, name, 0};
}

bool isMatch(const DescriptionPath::Step &pattern, const DescriptionPath::Step &step)
{
    return pattern.kind == DescriptionPath::Step::Kind::Any ||
           (pattern.kind == step.kind && pattern.name == step.name && pattern.index == step.index);
}

} // namespace

std::optional<DescriptionPath> DescriptionPath::parse(const QString &text, QString *reason)
{
    const QVector<QRegularExpressionMatch> parts = partsOf(text);
    if (parts.isEmpty()) {
        failBecause(reason, QStringLiteral("\"%1\" is not a path like network.mac, slots[2].type, slots[*].serial or "
                                           "[\"a.b\"]")
                                .arg(text));
        return std::nullopt;
    }
    DescriptionPath path;
    std::transform(parts.begin(), parts.end(), std::back_inserter(path.m_steps), stepOf);
    return path;
}

bool DescriptionPath::matches(const DescriptionPath &path) const
{
    return std::equal(m_steps.begin(), m_steps.end(), path.m_steps.begin(), path.m_steps.end(), isMatch);
}

QString DescriptionPath::text() const
{
    if (m_steps.isEmpty())
        return QStringLiteral("(root)");
    QString text;
    for (const Step &step : m_steps) {
        if (step.kind == Step::Kind::Any)
            text += QStringLiteral("[*]");
        else if (step.kind == Step::Kind::Element)
            text += QStringLiteral("[%1]").arg(step.index);
        else if (isPlain(step.name))
            text += (text.isEmpty() ? QString() : QStringLiteral(".")) + step.name;
        else
            text += inBrackets(step.name);
    }
    return text;
}

} // namespace Corvelpro
