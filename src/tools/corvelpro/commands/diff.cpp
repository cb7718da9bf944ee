// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "diff.h"

#include "commandline/arguments.h"
#include "commandline/jsontext.h"
#include "commandline/outcome.h"
#include "commandline/output.h"
#include "commandline/progress.h"
#include "comparison/comparison.h"
#include "comparison/entrysource.h"
#include "comparison/picturesheet.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <optional>

namespace Corvelpro {

namespace {

using Change = EntryDifference::Change;

/// One side, or a message.
std::unique_ptr<EntrySource> openSide(const QString &path, Output &output)
{
    const QFileInfo side(path);
    QString reason = side.exists() ? QStringLiteral("not a plain file or a directory") : QStringLiteral("no such file");
    if (side.isFile() || side.isDir()) {
        if (auto source = EntrySource::open(path, &reason))
            return source;
    }
    output.message(reason.contains(path) ? reason : QStringLiteral("%1: %2").arg(path, reason));
    return nullptr;
}

/// None if one of them is not a path; then there is a message.
std::optional<QVector<DescriptionPath>> ignoredPaths(const QStringList &texts, Output &output)
{
    QVector<DescriptionPath> paths;
    for (const QString &text : texts) {
        QString reason;
        const std::optional<DescriptionPath> path = DescriptionPath::parse(text, &reason);
        if (!path) {
            output.message(QStringLiteral("--ignore: %1").arg(reason));
            return std::nullopt;
        }
        paths.append(*path);
    }
    return paths;
}

/// On one line that can be read.
QString shortText(const QJsonValue &value)
{
    constexpr int longest = 100;
    const QString text = jsonText(value);
    return text.size() <= longest ? text : text.left(longest) + QStringLiteral("...");
}

QString sizeText(const QSize &size)
{
    return QStringLiteral("%1 x %2").arg(QString::number(size.width()), QString::number(size.height()));
}

QString memberText(const MemberDifference &member)
{
    if (member.before.isUndefined())
        return QStringLiteral("%1: only in B: %2").arg(member.path, shortText(member.after));
    if (member.after.isUndefined())
        return QStringLiteral("%1: only in A: %2").arg(member.path, shortText(member.before));
    return QStringLiteral("%1: %2 -> %3").arg(member.path, shortText(member.before), shortText(member.after));
}

QString pictureText(const PictureDifference &picture)
{
    if (picture.before != picture.after)
        return QStringLiteral("%1 -> %2 pixels").arg(sizeText(picture.before), sizeText(picture.after));
    return QStringLiteral("%1 of %2 pixels differ (%3 %), by at most %4 of 255")
        .arg(QString::number(picture.pixels), sizeText(picture.before), QString::number(picture.share() * 100, 'g', 3),
             QString::number(picture.largest));
}

QString byteText(const ByteDifference &bytes)
{
    const QString common = QStringLiteral("%1 of %2 bytes differ")
                               .arg(QString::number(bytes.count), QString::number(std::min(bytes.before, bytes.after)));
    const QString first = QStringLiteral("the first difference is at offset %1").arg(bytes.firstOffset);
    if (bytes.before == bytes.after)
        return QStringLiteral("%1, %2").arg(common, first);
    return QStringLiteral("%1 -> %2 bytes, %3")
        .arg(QString::number(bytes.before), QString::number(bytes.after),
             bytes.count == 0 ? first : QStringLiteral("%1, %2").arg(common, first));
}

void printChange(const EntryDifference &difference, Output &output)
{
    const auto print = [&](const QString &text) { output.line(QStringLiteral("%1: %2").arg(difference.name, text)); };
    switch (difference.by) {
    case EntryDifference::By::Members:
        for (const MemberDifference &member : difference.members)
            print(memberText(member));
        if (difference.omittedMembers > 0)
            print(QStringLiteral("%1 more differences").arg(difference.omittedMembers));
        break;
    case EntryDifference::By::Pixels:
        print(pictureText(difference.picture) + (difference.sheetRow > 0
                                                     ? QStringLiteral(" (row %1 of the sheet)").arg(difference.sheetRow)
                                                     : QString()));
        break;
    case EntryDifference::By::Bytes:
        print(byteText(difference.bytes));
        break;
    }
}

void print(const EntryDifference &difference, Output &output)
{
    if (difference.change == Change::Changed)
        printChange(difference, output);
    else
        output.line(QStringLiteral("%1: only in %2")
                        .arg(difference.name,
                             difference.change == Change::OnlyBefore ? QStringLiteral("A") : QStringLiteral("B")));
}

QJsonObject sizeJson(const QSize &size)
{
    return {{QStringLiteral("width"), size.width()}, {QStringLiteral("height"), size.height()}};
}

QString changeWord(bool isOnlyBefore, bool isOnlyAfter)
{
    return isOnlyBefore ? QStringLiteral("removed") : isOnlyAfter ? QStringLiteral("added") : QStringLiteral("changed");
}

QJsonObject memberJson(const MemberDifference &member)
{
    QJsonObject json{{QStringLiteral("path"), member.path},
                     {QStringLiteral("change"), changeWord(member.after.isUndefined(), member.before.isUndefined())}};
    if (!member.before.isUndefined())
        json.insert(QStringLiteral("a"), member.before);
    if (!member.after.isUndefined())
        json.insert(QStringLiteral("b"), member.after);
    return json;
}

QString kindWord(EntryDifference::Kind kind)
{
    switch (kind) {
    case EntryDifference::Kind::Folder:
        return QStringLiteral("folder");
    case EntryDifference::Kind::Description:
        return QStringLiteral("description");
    case EntryDifference::Kind::Picture:
        return QStringLiteral("picture");
    case EntryDifference::Kind::Preset:
        return QStringLiteral("preset");
    default:
        return QStringLiteral("other");
    }
}

void insertChange(const EntryDifference &difference, QJsonObject &json)
{
    const ByteDifference &bytes = difference.bytes;
    json.insert(QStringLiteral("bytes"), QJsonObject{{QStringLiteral("firstOffset"), bytes.firstOffset},
                                                     {QStringLiteral("differing"), bytes.count},
                                                     {QStringLiteral("sizeA"), bytes.before},
                                                     {QStringLiteral("sizeB"), bytes.after}});
    if (difference.by == EntryDifference::By::Members) {
        QJsonArray members;
        for (const MemberDifference &member : difference.members)
            members.append(memberJson(member));
        json.insert(QStringLiteral("members"), members);
        json.insert(QStringLiteral("omittedMembers"), difference.omittedMembers);
    } else if (difference.by == EntryDifference::By::Pixels) {
        const PictureDifference &picture = difference.picture;
        QJsonObject pixels{{QStringLiteral("a"), sizeJson(picture.before)},
                           {QStringLiteral("b"), sizeJson(picture.after)}};
        if (picture.before == picture.after) {
            pixels.insert(QStringLiteral("differing"), picture.pixels);
            pixels.insert(QStringLiteral("share"), picture.share());
            pixels.insert(QStringLiteral("largest"), picture.largest);
        }
        if (difference.sheetRow > 0)
            pixels.insert(QStringLiteral("sheetRow"), difference.sheetRow);
        json.insert(QStringLiteral("pixels"), pixels);
    }
}

QJsonObject toJson(const EntryDifference &difference)
{
    QJsonObject json{{QStringLiteral("entry"), difference.name},
                     {QStringLiteral("kind"), kindWord(difference.kind)},
                     {QStringLiteral("change"),
                      changeWord(difference.change == Change::OnlyBefore, difference.change == Change::OnlyAfter)}};
    if (difference.change == Change::Changed)
        insertChange(difference, json);
    return json;
}

ExitCode verdictOn(const Comparison &comparison)
{
    if (!comparison.unreadable().isEmpty())
        return ExitCode::Unknown;
    return comparison.differences().isEmpty() ? ExitCode::Yes : ExitCode::No;
}

void printResult(const Comparison &comparison, const QString &a, const QString &b, Output &output)
{
    for (const EntryDifference &difference : comparison.differences())
        print(difference, output);
    for (const QString &note : comparison.notes())
        output.line(QStringLiteral("does not count: %1").arg(note));
    for (const UnreadableEntry &entry : comparison.unreadable())
        output.message(QStringLiteral("%1: %2").arg(entry.isBefore ? a : b, entry.reason));
    if (verdictOn(comparison) == ExitCode::Yes)
        output.line(QStringLiteral("equal (%1 files)").arg(comparison.commonFiles()));
}

QJsonObject toJson(const Comparison &comparison, const QString &a, const QString &b)
{
    QJsonArray differences;
    for (const EntryDifference &difference : comparison.differences())
        differences.append(toJson(difference));
    QJsonArray unreadable;
    for (const UnreadableEntry &entry : comparison.unreadable()) {
        unreadable.append(
            QJsonObject{{QStringLiteral("entry"), entry.name},
                        {QStringLiteral("side"), entry.isBefore ? QStringLiteral("a") : QStringLiteral("b")},
                        {QStringLiteral("reason"), entry.reason}});
    }
    const ExitCode verdict = verdictOn(comparison);
    return {{QStringLiteral("a"), a},
            {QStringLiteral("b"), b},
            {QStringLiteral("result"), verdict == ExitCode::Yes  ? QStringLiteral("equal")
                                       : verdict == ExitCode::No ? QStringLiteral("different")
                                                                 : QStringLiteral("unknown")},
            {QStringLiteral("differences"), differences},
            {QStringLiteral("notes"), QJsonArray::fromStringList(comparison.notes())},
            {QStringLiteral("unreadable"), unreadable}};
}

/// True if the sheet is on the disk, or none was asked for or needed. Otherwise there is a message.
bool writeSheet(const PictureSheet &sheet, const QString &path, Output &output)
{
    QString reason;
    if (path.isEmpty())
        return true;
    if (sheet.rows() == 0) {
        output.message(QStringLiteral("no picture has changed, so there is no sheet"));
        return true;
    }
    if (sheet.leftOut() > 0)
        output.message(QStringLiteral("%1 more changed pictures are not on the sheet").arg(sheet.leftOut()));
    if (sheet.write(path, &reason))
        return true;
    output.message(reason);
    return false;
}

} // namespace

ExitCode runDiff(const Arguments &arguments, Output &output)
{
    const QString a = arguments.value(QStringLiteral("A"));
    const QString b = arguments.value(QStringLiteral("B"));
    const QString sheetPath = arguments.value(QStringLiteral("--sheet"));
    const auto ignored = ignoredPaths(arguments.values(QStringLiteral("--ignore")), output);
    if (!ignored)
        return ExitCode::Unknown;
    const Outcome sheetName = sheetPath.isEmpty() ? Outcome() : wantFreeName(sheetPath);
    if (!sheetName.isDone()) {
        output.message(sheetName.reason);
        return ExitCode::Unknown;
    }
    const auto before = openSide(a, output);
    const auto after = openSide(b, output);
    if (!before || !after)
        return ExitCode::Unknown;

    PictureSheet sheet;
    std::optional<Progress> progress;
    Comparison::Options options;
    options.ignored = *ignored;
    options.sheet = sheetPath.isEmpty() ? nullptr : &sheet;
    options.progress = [&progress](qint64 bytes) { progress->advance(bytes); };
    Comparison comparison(*before, *after, options);
    progress.emplace(output, comparison.totalSize());
    comparison.run();
    progress.reset();

    printResult(comparison, a, b, output);
    output.json(toJson(comparison, a, b));
    return writeSheet(sheet, sheetPath, output) ? verdictOn(comparison) : ExitCode::Unknown;
}

} // namespace Corvelpro
