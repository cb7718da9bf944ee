// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "manualpage.h"

#include "commandline/command.h"
#include "commandline/generaltexts.h"

#include <QByteArrayList>

namespace Corvelpro {

namespace {

/// When the commands last changed.
constexpr const char *date = "2026-11-22";

/// The text as roff in short lines: hyphens stay hyphens, and no line becomes a request.
QByteArray plain(const QByteArray &text)
{
    constexpr int width = 72;
    QByteArray lines;
    int length = 0;
    for (QByteArray word : text.split(' ')) {
        word.replace('\\', "\\(rs").replace('-', "\\-");
        const bool isFirst = length == 0 || length + word.size() > width;
        if (isFirst && !lines.isEmpty())
            lines += '\n';
        if (isFirst && (word.startsWith('.') || word.startsWith('\'')))
            word.prepend("\\&");
        lines += isFirst ? word : ' ' + word;
        length = isFirst ? word.size() : length + 1 + word.size();
    }
    return lines;
}

QByteArray bold(const QByteArray &text)
{
    return "\\fB" + plain(text) + "\\fR";
}

QByteArray italic(const QByteArray &text)
{
    return "\\fI" + plain(text) + "\\fR";
}

QByteArray usageOf(const Positional &positional)
{
    QByteArray name = italic(positional.name);
    switch (positional.count) {
    case Positional::Count::Optional:
        return '[' + name + ']';
    case Positional::Count::OneOrMore:
        return name + " ...";
    default:
        return name;
    }
}

QByteArray usageOf(const Option &option)
{
    return bold(option.name) + (option.value ? ' ' + italic(option.value) : QByteArray());
}

QByteArray usageOf(const Command &command)
{
    QByteArray usage = bold(QByteArray("corvelpro ") + command.name);
    for (const Option &option : command.options)
        usage += " [" + usageOf(option) + ']' + (option.isRepeatable ? " ..." : "");
    for (const Positional &positional : command.positionals)
        usage += ' ' + usageOf(positional);
    return usage;
}

QByteArray item(const QByteArray &term, const QByteArray &text)
{
    return ".TP\n" + term + '\n' + plain(text) + ".\n";
}

QByteArray item(const Option &option)
{
    return item(usageOf(option), QByteArray(option.help) + (option.isRepeatable ? " (may be repeated)" : ""));
}

QByteArray sectionOf(const Command &command)
{
    QByteArray section =
        ".SS " + plain(command.name) + '\n' + usageOf(command) + "\n.PP\n" + plain(command.summary) + ".\n";
    const QByteArray description(command.description);
    for (int begin = 0; begin < description.size();) {
        const int gap = description.indexOf("\n\n", begin);
        const int end = gap < 0 ? description.size() : gap;
        section += ".PP\n" + plain(description.mid(begin, end - begin)) + '\n';
        begin = end + 2;
    }
    for (const Positional &positional : command.positionals)
        section += item(italic(positional.name), positional.help);
    for (const Option &option : command.options)
        section += item(option);
    return section;
}

} // namespace

QByteArray manualPage()
{
    using namespace GeneralTexts;
    QByteArray page = ".TH CORVELPRO 1 " + QByteArray(date) +
                      " \"corvelpro " CORVELPRO_VERSION "\" \"User Commands\"\n"
                      ".SH NAME\n"
                      "corvelpro \\- inspect and handle project files\n"
                      ".SH SYNOPSIS\n";
    for (const Command &command : commandTable())
        page += usageOf(command) + "\n.br\n";
    page += bold("corvelpro") + " [" + bold(helpOption.name) + " | " + bold(versionOption.name) + "]\n";
    page += ".SH DESCRIPTION\n" + plain(purpose) + '\n';
    page += "Results go to the standard output, messages to the standard error.\n"
            "Control characters in names and comments are printed as \"\\(rsn\" or \"\\(rsu001b\".\n";
    page += ".SH COMMANDS\n";
    for (const Command &command : commandTable())
        page += sectionOf(command);
    page += ".SH OPTIONS OF EVERY COMMAND\n";
    for (const Option &option : {jsonOption, quietOption, helpOption})
        page += item(option);
    page += ".SH EXIT STATUS\n"
            ".TP\n0\nYes: valid, equal, done.\n"
            ".TP\n1\nNo: not valid, different, refused.\n"
            ".TP\n2\nNo answer: wrong usage, a file that cannot be read, no room for the result.\n"
            ".PP\nWith several files, the exit status is the highest of theirs.\n"
            ".SH SEE ALSO\n"
            ".BR unzip (1),\n.BR zip (1)\n";
    return page;
}

} // namespace Corvelpro
