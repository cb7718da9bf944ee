// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "bytecomparison.h"
#include "descriptioncomparison.h"
#include "descriptionpath.h"
#include "picturecomparison.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <future>
#include <memory>
#include <optional>

class QIODevice;

namespace Corvelpro {

class EntrySource;
class PictureSheet;

/// An entry that one side lacks, or whose contents differ.
struct EntryDifference
{
    enum class Kind { Folder, Description, Picture, Preset, Other };
    enum class Change { OnlyBefore, OnlyAfter, Changed };
    /// What its members, its pixels or its bytes say.
    enum class By { Members, Pixels, Bytes };

    QString name;
    Kind kind = Kind::Other;
    Change change = Change::Changed;

    /// The rest is that of a change. Pictures that cannot be decoded and descriptions that are not JSON are compared by
    /// their bytes.
    By by = By::Bytes;
    ByteDifference bytes;
    PictureDifference picture;
    /// Its row on the sheet; 0: none.
    int sheetRow = 0;
    QVector<MemberDifference> members;
    int omittedMembers = 0;
};

/// An entry of one side that cannot be read, and so not be compared.
struct UnreadableEntry
{
    QString name;
    bool isBefore;
    QString reason;
};

/// Compares what a device would get from two sides: descriptions by members, pictures by pixels, all other files by
/// bytes. Times, order, compression and the info record do not matter.
class Comparison
{
public:
    struct Options
    {
        /// Values of the description to ignore.
        QVector<DescriptionPath> ignored;
        /// Receives the changed pictures; may be null.
        PictureSheet *sheet = nullptr;
        /// Called with numbers of bytes that were read since; totalSize() together.
        std::function<void(qint64 bytes)> progress = [](qint64) {};
    };

    Comparison(EntrySource &before, EntrySource &after, const Options &options);

    /// Bytes of all files to be read.
    qint64 totalSize() const;
    /// The required memory does not depend on the sizes of the packages.
    void run();

    /// After run(), sorted by name.
    const QVector<EntryDifference> &differences() const { return m_differences; }
    const QVector<UnreadableEntry> &unreadable() const { return m_unreadable; }
    /// Differences that do not count, as sentences.
    const QStringList &notes() const { return m_notes; }
    /// The number of files that both sides have.
    int commonFiles() const { return m_pairs.size(); }

private:
    struct Pair
    {
        QString before;
        QString after;
    };
    /// The content of a file, or why there is none.
    struct Content
    {
        std::unique_ptr<QIODevice> device;
        QString reason;
    };

    void pairFiles();
    void noteRecords();
    void compareFolders();
    static Content contentOf(EntrySource &side, const QString &file);
    QVector<Pair> pairsToRead();
    std::future<Content> beginReading(const QVector<Pair> &pairs, int index);
    void compareFiles(const Pair &pair, const Content &before);
    bool isEqualOtherwise(QIODevice &before, QIODevice &after, EntryDifference &difference);
    bool compareDescriptions(QIODevice &before, QIODevice &after, EntryDifference &difference) const;
    bool comparePixels(QIODevice &before, QIODevice &after, EntryDifference &difference) const;
    bool isRead(const Content &content, const QString &file, bool isBefore);
    void addOneSided(const QString &name, EntryDifference::Change change);

    EntrySource &m_before;
    EntrySource &m_after;
    const Options m_options;
    QVector<Pair> m_pairs;
    QVector<EntryDifference> m_differences;
    QVector<UnreadableEntry> m_unreadable;
    QStringList m_notes;
};

} // namespace Corvelpro
