// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "completions.h"

#include "commandline/command.h"
#include "commandline/generaltexts.h"

#include <algorithm>

namespace Corvelpro {

namespace {

/// What a value may be. Project files can be in any folder, so they include folders.
enum class Kind { Anything, File, Folder, ProjectFile };

/// Told from the value's name in the help.
Kind kindOf(const QByteArray &valueName)
{
    if (valueName == "DIR")
        return Kind::Folder;
    if (valueName == "FILE" || valueName == "A" || valueName == "B")
        return Kind::ProjectFile;
    return valueName.endsWith(".png") ? Kind::File : Kind::Anything;
}

Kind kindOf(const Positional &positional)
{
    return kindOf(positional.name);
}

Kind kindOf(const Option &option)
{
    return kindOf(option.value);
}

/// A shell completes all positionals of a command alike: with project files if there is one among them.
Kind kindOfPositionals(const Command &command)
{
    const auto isProjectFile = [](const Positional &positional) { return kindOf(positional) == Kind::ProjectFile; };
    return std::any_of(command.positionals.begin(), command.positionals.end(), isProjectFile) ? Kind::ProjectFile
                                                                                              : Kind::Folder;
}

QVector<Option> optionsOf(const Command &command)
{
    return command.options +
           QVector<Option>{GeneralTexts::jsonOption, GeneralTexts::quietOption, GeneralTexts::helpOption};
}

QVector<Option> generalOptions()
{
    return {GeneralTexts::helpOption, GeneralTexts::versionOption};
}

/// Within single quotes of bash and zsh.
QByteArray quoted(QByteArray text)
{
    return '\'' + text.replace('\'', "'\\''") + '\'';
}

/// Within single quotes of fish.
QByteArray quotedForFish(QByteArray text)
{
    return '\'' + text.replace('\\', "\\\\").replace('\'', "\\'") + '\'';
}

template<typename Rows>
QByteArray wordsOf(const Rows &rows)
{
    QByteArray words;
    for (const auto &row : rows)
        words += (words.isEmpty() ? "" : " ") + QByteArray(row.name);
    return words;
}

QByteArray generated(const QByteArray &shell)
{
    return "# Completions of corvelpro for " + shell + ", made from its table of commands.\n";
}

QByteArray bashCall(Kind kind)
{
    switch (kind) {
    case Kind::File:
        return "_corvelpro_paths files";
    case Kind::Folder:
        return "_corvelpro_paths folders";
    case Kind::ProjectFile:
        return "_corvelpro_paths projects";
    default:
        return ":";
    }
}

QByteArray zshAction(Kind kind)
{
    switch (kind) {
    case Kind::File:
        return "_files";
    case Kind::Folder:
        return "_files -/";
    case Kind::ProjectFile:
        return "_files -g \"(#i)*.corvelpro\"";
    default:
        return " ";
    }
}

/// A text within an argument of zsh's _arguments and _describe.
QByteArray zshText(QByteArray text)
{
    for (const char special : {'\\', '[', ']', ':'})
        text.replace(QByteArray(1, special), QByteArray("\\") + special);
    return text;
}

QByteArray zshOption(const Option &option)
{
    QByteArray text = (option.isRepeatable ? "*" : "") + QByteArray(option.name) + '[' + zshText(option.help) + ']';
    if (option.value)
        text += ':' + zshText(option.value) + ':' + zshAction(kindOf(option));
    return quoted(text);
}

QByteArray fishArguments(Kind kind)
{
    switch (kind) {
    case Kind::Folder:
        return " -a '(__fish_complete_directories)'";
    case Kind::ProjectFile:
        return " -a '(__fish_complete_suffix .corvelpro)'";
    default:
        return QByteArray();
    }
}

QByteArray fishOption(const Option &option)
{
    QByteArray text = " -l " + QByteArray(option.name).mid(2) + " -d " + quotedForFish(option.help);
    if (option.value)
        text += kindOf(option) == Kind::File ? " -r -F" : " -x" + fishArguments(kindOf(option));
    return text;
}

} // namespace

QByteArray bashCompletions()
{
    QByteArray script = generated("bash") +
                        "\n_corvelpro_paths()\n{\n"
                        "    local current=${COMP_WORDS[COMP_CWORD]}\n"
                        "    compopt -o filenames 2>/dev/null\n"
                        "    mapfile -t COMPREPLY < <({\n"
                        "        [[ $1 == files ]] && compgen -f -- \"$current\"\n"
                        "        [[ $1 == projects ]] && compgen -f -X '!*.[cC][oO][rR][vV][eE][lL][pP][rR][oO]' -- "
                        "\"$current\"\n"
                        "        compgen -d -- \"$current\"\n"
                        "    } | sort -u)\n"
                        "}\n"
                        "\n_corvelpro()\n{\n"
                        "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
                        "    local command=${COMP_WORDS[1]} options=\n"
                        "    COMPREPLY=()\n"
                        "    if ((COMP_CWORD == 1)); then\n"
                        "        mapfile -t COMPREPLY < <(compgen -W '" +
                        wordsOf(commandTable()) + ' ' + wordsOf(generalOptions()) +
                        "' -- \"$current\")\n"
                        "        return\n"
                        "    fi\n"
                        "    case $command:$previous in\n";
    for (const Command &command : commandTable()) {
        for (const Option &option : command.options) {
            if (option.value)
                script += QByteArray("        ") + command.name + ':' + option.name + ") " + bashCall(kindOf(option)) +
                          "; return ;;\n";
        }
    }
    script += "    esac\n"
              "    case $command in\n";
    for (const Command &command : commandTable())
        script += QByteArray("        ") + command.name + ") options='" + wordsOf(optionsOf(command)) + "' ;;\n";
    script += "        *) return ;;\n"
              "    esac\n"
              "    if [[ $current == -* ]]; then\n"
              "        mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$current\")\n"
              "        return\n"
              "    fi\n"
              "    case $command in\n";
    for (const Command &command : commandTable())
        script += QByteArray("        ") + command.name + ") " + bashCall(kindOfPositionals(command)) + " ;;\n";
    script += "    esac\n"
              "}\n"
              "\ncomplete -F _corvelpro corvelpro\n";
    return script;
}

QByteArray zshCompletions()
{
    QByteArray script = "#compdef corvelpro\n" + generated("zsh") +
                        "\n_corvelpro()\n{\n"
                        "    local curcontext=$curcontext state line\n"
                        "    typeset -A opt_args\n"
                        "    local -a commands=(\n";
    for (const Command &command : commandTable())
        script += "        " + quoted(zshText(command.name) + ':' + zshText(command.summary)) + '\n';
    script += "    )\n"
              "    _arguments -C";
    for (const Option &option : generalOptions())
        script += " \\\n        '(- *)'" + zshOption(option);
    script += " \\\n        '1:command:->command' \\\n        '*::argument:->argument'\n"
              "    case $state in\n"
              "        command) _describe command commands ;;\n"
              "        argument)\n"
              "            case $line[1] in\n";
    for (const Command &command : commandTable()) {
        script += QByteArray("                ") + command.name + ")\n                    _arguments";
        for (const Option &option : optionsOf(command))
            script += " \\\n                        " + zshOption(option);
        for (const Positional &positional : command.positionals)
            script += " \\\n                        " +
                      quoted((positional.count == Positional::Count::OneOrMore  ? "*:"
                              : positional.count == Positional::Count::Optional ? "::"
                                                                                : ":") +
                             zshText(positional.help) + ':' +
                             zshAction(positional.count == Positional::Count::OneOrMore ? kindOfPositionals(command)
                                                                                        : kindOf(positional)));
        script += "\n                    ;;\n";
    }
    script += "            esac\n"
              "            ;;\n"
              "    esac\n"
              "}\n"
              "\nif [[ $zsh_eval_context[-1] == loadautofunc ]]; then\n"
              "    _corvelpro \"$@\"\n"
              "else\n"
              "    compdef _corvelpro corvelpro\n"
              "fi\n";
    return script;
}

QByteArray fishCompletions()
{
    QByteArray script = generated("fish") + "\ncomplete -c corvelpro -f\n";
    for (const Option &option : generalOptions())
        script += "complete -c corvelpro -n __fish_use_subcommand" + fishOption(option) + '\n';
    for (const Command &command : commandTable())
        script += QByteArray("complete -c corvelpro -n __fish_use_subcommand -a ") + command.name + " -d " +
                  quotedForFish(command.summary) + '\n';
    for (const Command &command : commandTable()) {
        const QByteArray within =
            QByteArray("complete -c corvelpro -n '__fish_seen_subcommand_from ") + command.name + '\'';
        for (const Option &option : optionsOf(command))
            script += within + fishOption(option) + '\n';
        script += within + fishArguments(kindOfPositionals(command)) + '\n';
    }
    return script;
}

} // namespace Corvelpro
