// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "pseudolanguage.h"

#include <QRegularExpression>

namespace TestSupport {

namespace {

QChar accented(QChar letter)
{
    static const QString plain = QStringLiteral("ACDEGHIJKLNORSTUWYZacdeghijklnorstuwyz");
    static const QString accents = QString::fromUtf8("ÅÇÐÉĜĤÎĴĶĻÑÖŔŠŢÛŴÝŽåçðéĝĥîĵķļñöŕšţûŵýž");
    const int index = plain.indexOf(letter);
    return index < 0 ? letter : accents.at(index);
}

} // namespace

QString PseudoLanguage::of(const QString &text)
{
    if (text.isEmpty())
        return text;
    // What stands for a value or is part of the markup stays.
    static const QRegularExpression fixed(QStringLiteral("%(?:L?\\d+|n)|<[^>]*>"));
    QString result;
    int written = 0;
    const auto write = [&](int end) {
        for (; written < end; ++written)
            result += accented(text.at(written));
    };
    for (auto matches = fixed.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        write(match.capturedStart());
        result += match.captured();
        written = match.capturedEnd();
    }
    write(text.length());
    // Once more its first half, without values, mnemonics and ends of paragraphs.
    QString more = text;
    more.remove(fixed).remove(QLatin1Char('&')).remove(QLatin1Char('\n'));
    result += QLatin1Char(' ');
    for (const QChar letter : more.leftRef((more.length() + 1) / 2))
        result += accented(letter);
    return QChar(0x27E6) + result + QChar(0x27E7);
}

QString PseudoLanguage::untranslatedIn(QString text)
{
    static const QRegularExpression translated(QStringLiteral("\u27E6[^\u27E6\u27E7]*\u27E7"));
    // A text may have taken another one as its value.
    while (text.contains(translated))
        text.remove(translated);
    return text;
}

QString PseudoLanguage::Translator::translate(const char *context, const char *text, const char *, int) const
{
    // Qt asks for these to learn the direction of writing and the names of keys, and for the formats of dates.
    static const QStringList noTexts{QStringLiteral("QGuiApplication"), QStringLiteral("QApplication"),
                                     QStringLiteral("QShortcut"), QStringLiteral("QLocale")};
    return noTexts.contains(QLatin1String(context)) ? QString() : of(QString::fromUtf8(text));
}

} // namespace TestSupport
