// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "comparison.h"

#include "content.h"
#include "entrysource.h"
#include "picturesheet.h"

#include "content/oneachcore.h"

#include "packagelayout.h"
#include "picturereader.h"

#include <QIODevice>

#include <algorithm>
#include <atomic>
#include <vector>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

EntryDifference::Kind kindOf(const QString &name)
{
    using Kind = EntryDifference::Kind;
    if (PackageLayout::isFolder(name))
        return Kind::Folder;
    if (PackageLayout::isDescription(name))
        return Kind::Description;
    if (PackageLayout::isPicture(name))
        return Kind::Picture;
    return PackageLayout::isPreset(name) ? Kind::Preset : Kind::Other;
}

/// The only description at the top; empty if there is none or more than one.
QString deviceDescription(const EntrySource &side)
{
    QString found;
    for (const QString &file : side.files()) {
        if (!PackageLayout::isDescription(file) || file.contains(QLatin1Char('/')))
            continue;
        if (!found.isEmpty())
            return QString();
        found = file;
    }
    return found;
}

QString quoted(const QString &text)
{
    return QStringLiteral("\"%1\"").arg(text);
}

} // namespace

Comparison::Comparison(EntrySource &before, EntrySource &after, const Options &options)
    : m_before(before)
    , m_after(after)
    , m_options(options)
{
    pairFiles();
}

void Comparison::pairFiles()
{
    const QString ours = deviceDescription(m_before);
    const QString theirs = deviceDescription(m_after);
    // It is called after the device's address, and an apply takes it by any name.
    const bool isOtherDevice = !ours.isEmpty() && !theirs.isEmpty() && ours != theirs;
    if (isOtherDevice) {
        m_pairs.append({ours, theirs});
        m_notes.append(QStringLiteral("the description is called %1 -> %2").arg(ours, theirs));
    }
    const auto isPaired = [&](const QString &file) { return isOtherDevice && (file == ours || file == theirs); };
    const QSet<QString> after(m_after.files().begin(), m_after.files().end());
    QSet<QString> common;
    for (const QString &file : m_before.files()) {
        if (isPaired(file))
            continue;
        if (after.contains(file)) {
            m_pairs.append({file, file});
            common.insert(file);
        } else {
            addOneSided(file, EntryDifference::Change::OnlyBefore);
        }
    }
    for (const QString &file : m_after.files()) {
        if (!isPaired(file) && !common.contains(file))
            addOneSided(file, EntryDifference::Change::OnlyAfter);
    }
}

qint64 Comparison::totalSize() const
{
    qint64 size = 0;
    for (const Pair &pair : m_pairs)
        size += m_before.size(pair.before) + m_after.size(pair.after);
    return size;
}

void Comparison::run()
{
    noteRecords();
    compareFolders();
    const QVector<Pair> pairs = pairsToRead();
    std::future<Content> next = beginReading(pairs, 0);
    for (int i = 0; i < pairs.size(); ++i) {
        const Content before = next.get();
        next = beginReading(pairs, i + 1);
        compareFiles(pairs.at(i), before);
    }
    std::sort(m_differences.begin(), m_differences.end(),
              [](const EntryDifference &one, const EntryDifference &other) { return one.name < other.name; });
}

void Comparison::noteRecords()
{
    const std::optional<EntrySource::Record> before = m_before.record();
    const std::optional<EntrySource::Record> after = m_after.record();
    if (!before || !after)
        return;
    if (before->name != after->name)
        m_notes.append(QStringLiteral("the project's name is %1 -> %2").arg(quoted(before->name), quoted(after->name)));
    if (before->comment != after->comment)
        m_notes.append(
            QStringLiteral("the project's comment is %1 -> %2").arg(quoted(before->comment), quoted(after->comment)));
}

void Comparison::compareFolders()
{
    for (const QString &folder : m_before.folders()) {
        if (!m_after.folders().contains(folder))
            addOneSided(folder, EntryDifference::Change::OnlyBefore);
    }
    for (const QString &folder : m_after.folders()) {
        if (!m_before.folders().contains(folder))
            addOneSided(folder, EntryDifference::Change::OnlyAfter);
    }
}

void Comparison::addOneSided(const QString &name, EntryDifference::Change change)
{
    EntryDifference difference;
    difference.name = name;
    difference.kind = kindOf(name);
    difference.change = change;
    difference.bytes.before = change == EntryDifference::Change::OnlyBefore ? m_before.size(name) : 0;
    difference.bytes.after = change == EntryDifference::Change::OnlyAfter ? m_after.size(name) : 0;
    m_differences.append(difference);
}

Comparison::Content Comparison::contentOf(EntrySource &side, const QString &file)
{
    Content content;
    content.device = Corvelpro::contentOf(side, file, &content.reason);
    return content;
}

/// Without those whose packed bytes are equal, so that nothing more is to be found out: most, usually.
QVector<Comparison::Pair> Comparison::pairsToRead()
{
    struct PackedPair
    {
        std::optional<PackedFile> before;
        std::optional<PackedFile> after;
        bool isEqual = false;
    };
    std::vector<PackedPair> packed;
    for (const Pair &pair : qAsConst(m_pairs))
        packed.push_back({m_before.packed(pair.before), m_after.packed(pair.after)});
    std::atomic<qint64> passed{0};
    const auto compare = [&](int number) {
        PackedPair &pair = packed[std::size_t(number)];
        pair.isEqual = pair.before && pair.after && areSoundAndEqual(*pair.before, *pair.after);
        passed += pair.isEqual ? 2 * qint64(pair.before->header.size) : 0;
    };
    onEachCore(m_pairs.size(), compare, [&] { m_options.progress(passed.exchange(0)); });

    QVector<Pair> left;
    for (int i = 0; i < m_pairs.size(); ++i) {
        if (!packed[std::size_t(i)].isEqual)
            left.append(m_pairs.at(i));
    }
    return left;
}

/// Reads the file of the first side while the second side's file of the pair before it is read and compared: each side
/// is read by one thread at a time.
std::future<Comparison::Content> Comparison::beginReading(const QVector<Pair> &pairs, int index)
{
    // Below that, a thread of its own takes longer.
    constexpr qint64 worthAThread = 256 * 1024;
    if (index >= pairs.size())
        return {};
    const QString file = pairs.at(index).before;
    return std::async(m_before.size(file) < worthAThread ? std::launch::deferred : std::launch::async,
                      [this, file] { return contentOf(m_before, file); });
}

bool Comparison::isRead(const Content &content, const QString &file, bool isBefore)
{
    if (!content.device)
        m_unreadable.append({file, isBefore, content.reason});
    return content.device != nullptr;
}

void Comparison::compareFiles(const Pair &pair, const Content &before)
{
    const bool isBeforeRead = isRead(before, pair.before, true);
    m_options.progress(m_before.size(pair.before) + m_after.size(pair.after));
    if (!isBeforeRead) {
        // So that it is named too if it is unreadable.
        isRead(contentOf(m_after, pair.after), pair.after, false);
        return;
    }
    QString reason;
    ByteComparison bytes(*before.device);
    if (!m_after.read(pair.after, bytes, &reason)) {
        m_unreadable.append({pair.after, false, reason});
        return;
    }
    if (bytes.difference().isEmpty())
        return;

    EntryDifference difference;
    difference.name = pair.before;
    difference.kind = kindOf(pair.before);
    difference.bytes = bytes.difference();
    if (difference.kind == EntryDifference::Kind::Description || difference.kind == EntryDifference::Kind::Picture) {
        const Content after = contentOf(m_after, pair.after);
        before.device->seek(0);
        if (!isRead(after, pair.after, false) || isEqualOtherwise(*before.device, *after.device, difference))
            return;
    }
    m_differences.append(difference);
}

/// Says what differs in two descriptions or pictures of different bytes; true if that is nothing.
bool Comparison::isEqualOtherwise(QIODevice &before, QIODevice &after, EntryDifference &difference)
{
    if (difference.kind == EntryDifference::Kind::Description)
        return compareDescriptions(before, after, difference) && difference.members.isEmpty();
    const bool isEqual = comparePixels(before, after, difference) && difference.picture.isEmpty();
    if (isEqual)
        m_notes.append(QStringLiteral("%1 is encoded differently, with the same pixels").arg(difference.name));
    return isEqual;
}

bool Comparison::compareDescriptions(QIODevice &before, QIODevice &after, EntryDifference &difference) const
{
    DescriptionComparison comparison(m_options.ignored);
    if (!comparison.compare(before.readAll(), after.readAll()))
        return false;
    difference.by = EntryDifference::By::Members;
    difference.members = comparison.differences();
    difference.omittedMembers = comparison.omitted();
    return true;
}

bool Comparison::comparePixels(QIODevice &before, QIODevice &after, EntryDifference &difference) const
{
    const QImage one = PictureReader(&before).read();
    const QImage other = one.isNull() ? QImage() : PictureReader(&after).read();
    if (other.isNull())
        return false;
    difference.by = EntryDifference::By::Pixels;
    difference.picture = comparePictures(one, other);
    if (m_options.sheet && !difference.picture.isEmpty())
        difference.sheetRow = m_options.sheet->add(one, other);
    return true;
}

} // namespace Corvelpro
