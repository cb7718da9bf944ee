// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "parser.h"

#include "command.h"
#include "generaltexts.h"

#include <CLI/CLI.hpp>

#include <QFile>

#include <list>

namespace Corvelpro {

namespace {

/// The variables that CLI11 writes to, one for each argument of each command.
struct Target
{
    const Command *command;
    QString name;
    bool isFlag;
    CLI::Option *option;
    std::vector<std::string> values;
    /// The repeated positional right before it: CLI11 gives that one all values.
    Target *repeated = nullptr;
};

void addPositional(CLI::App &app, const Command &command, const Positional &positional, std::list<Target> &targets)
{
    Target *const previous = targets.empty() || targets.back().command != &command ? nullptr : &targets.back();
    Target &target = targets.emplace_back(Target{&command, QString::fromUtf8(positional.name), false, nullptr, {}});
    if (previous && previous->option->get_allow_extra_args())
        target.repeated = previous;
    target.option = app.add_option(positional.name, target.values, positional.help)->type_name("");
    if (positional.count == Positional::Count::OneOrMore)
        target.option->expected(1, CLI::detail::expected_max_vector_size);
    else
        target.option->expected(1)->allow_extra_args(false);
    target.option->required(positional.count != Positional::Count::Optional && !target.repeated);
}

/// The last value of a repeated positional belongs to the positional after it.
void takeFromRepeated(std::list<Target> &targets)
{
    for (Target &target : targets) {
        if (!target.repeated || target.repeated->values.empty())
            continue;
        if (target.repeated->values.size() == 1)
            throw CLI::RequiredError(target.name.toStdString());
        target.values.push_back(target.repeated->values.back());
        target.repeated->values.pop_back();
    }
}

void addOption(CLI::App &app, const Command &command, const Option &option, std::list<Target> &targets)
{
    const bool isFlag = !option.value;
    Target &target = targets.emplace_back(Target{&command, QString::fromUtf8(option.name), isFlag, nullptr, {}});
    if (isFlag) {
        target.option = app.add_flag(option.name, option.help);
    } else {
        // One value each time it is given, so that what follows is a positional again.
        target.option = app.add_option(option.name, target.values, option.help)
                            ->type_name(option.value)
                            ->expected(1)
                            ->allow_extra_args(false);
        target.option->multi_option_policy(option.isRepeatable ? CLI::MultiOptionPolicy::TakeAll
                                                               : CLI::MultiOptionPolicy::Throw);
    }
}

} // namespace

Request parse(int count, const char *const *values)
{
    using namespace GeneralTexts;
    CLI::App app{purpose, "corvelpro"};
    app.set_version_flag("--version", "corvelpro " CORVELPRO_VERSION);
    app.require_subcommand(1);

    std::list<Target> targets;
    bool isJson = false;
    bool isQuiet = false;
    for (const Command &command : commandTable()) {
        CLI::App &sub = *app.add_subcommand(command.name, command.summary);
        sub.footer(std::string("\n") + command.description);
        for (const Positional &positional : command.positionals)
            addPositional(sub, command, positional, targets);
        for (const Option &option : command.options)
            addOption(sub, command, option, targets);
        CLI::Option *json = sub.add_flag(jsonOption.name, isJson, jsonOption.help);
        sub.add_flag(quietOption.name, isQuiet, quietOption.help)->excludes(json);
    }

    Request request;
    try {
        app.parse(count, values);
        takeFromRepeated(targets);
    } catch (const CLI::ParseError &error) {
        // As the help has to show it.
        for (Target &target : targets) {
            if (target.repeated)
                target.option->required();
        }
        std::ostringstream out;
        std::ostringstream problem;
        request.isUsageError = app.exit(error, out, problem) != 0;
        request.text = QString::fromStdString(request.isUsageError ? problem.str() : out.str());
        return request;
    }

    const std::string chosen = app.get_subcommands().front()->get_name();
    for (const Command &command : commandTable()) {
        if (chosen == command.name)
            request.command = &command;
    }
    for (const Target &target : targets) {
        if (target.command != request.command)
            continue;
        if (target.isFlag && target.option->count() > 0)
            request.arguments.add(target.name, QString());
        for (const std::string &value : target.values)
            request.arguments.add(target.name, QFile::decodeName(value.c_str()));
    }
    if (isJson)
        request.form = Output::Form::Json;
    else if (isQuiet)
        request.form = Output::Form::Quiet;
    return request;
}

} // namespace Corvelpro
