// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "output.h"

#include "jsontext.h"
#include "messagestream.h"
#include "progress.h"

#include <QJsonObject>

#include <algorithm>
#include <cstdio>

namespace Corvelpro {

namespace {

bool isControl(QChar character)
{
    // Also those that turn the direction of what follows: they can make one name look like another.
    return character.category() == QChar::Other_Control || character.category() == QChar::Other_Format ||
           character.category() == QChar::Separator_Line || character.category() == QChar::Separator_Paragraph;
}

QString escaped(QChar character)
{
    switch (character.unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\t':
        return QStringLiteral("\\t");
    default:
        return QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
    }
}

} // namespace

Output::Output(Form form)
    : m_form(form)
{}

void Output::line(const QString &text)
{
    if (m_form == Form::Text)
        write(printable(text).toUtf8() + '\n');
}

void Output::json(const QJsonObject &result)
{
    if (m_form == Form::Json)
        write(jsonDocument(result));
}

void Output::message(const QString &text)
{
    if (m_progress)
        m_progress->hide();
    const QByteArray line = "corvelpro: " + printable(text).toUtf8() + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), messageStream());
}

bool Output::flush()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

void Output::write(const QByteArray &text)
{
    if (m_progress)
        m_progress->hide();
    std::fwrite(text.constData(), 1, size_t(text.size()), stdout);
}

QString printable(const QString &text)
{
    if (std::none_of(text.begin(), text.end(), isControl))
        return text;
    QString result;
    for (const QChar character : text) {
        if (character == QLatin1Char('\\'))
            result += QStringLiteral("\\\\");
        else
            result += isControl(character) ? escaped(character) : QString(character);
    }
    return result;
}

} // namespace Corvelpro
