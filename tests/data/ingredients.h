// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "hostilepackages.h"
#include "pngmaker.h"
#include "ziparchive.h"

#include <support/customsite.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

/// The building blocks of the hostile packages.
namespace TestData {

using TestSupport::PackageBuilder;
using Bytes = std::function<QByteArray()>;

constexpr int MiB = 1024 * 1024;
constexpr quint32 GiB = 1024u * MiB;

// ---------------------------------------------------------------------------------------------------------------------
// Building blocks

/// All bytes of the literal, including zero bytes.
template<int sizeWithEnd>
inline QByteArray raw(const char (&bytes)[sizeWithEnd])
{
    return QByteArray(bytes, sizeWithEnd - 1);
}

inline QByteArray picture()
{
    return TestSupport::pngOf(TestSupport::noisePicture({16, 9}, 1));
}

inline Simulation::HardwareState source(int model = TestSupport::mainModel)
{
    Simulation::HardwareState state = TestSupport::plainDevice(QString::fromLatin1(sourceAddress), model);
    state.backgrounds.insert(1, {QStringLiteral("Opening"), TestSupport::noisePicture({16, 9}, 1)});
    state.logos.insert(2, {QStringLiteral("Sponsor"), TestSupport::noisePicture({8, 8}, 2, QImage::Format_ARGB32)});
    state.presets.insert(1, {QStringLiteral("Walk-in"), QByteArray("a preset")});
    return state;
}

/// A description, its pictures and its preset.
inline PackageBuilder honest()
{
    return TestSupport::packageOf(source());
}

inline QByteArray sealed(PackageBuilder package)
{
    return package.record(QStringLiteral("hostile"), QStringLiteral("a package for tests")).build();
}

/// The valid package plus one entry, which is a picture if its name says so.
inline Bytes withEntry(const QByteArray &name)
{
    return [name] { return sealed(honest().file(name, picture(), PackageBuilder::Stored)); };
}

inline Bytes withMode(const QByteArray &name, quint32 mode, const QByteArray &content)
{
    return [=] { return sealed(honest().file(name, content, PackageBuilder::Stored, mode)); };
}

/// The valid package plus one entry, modified in the finished archive.
inline Bytes patched(const std::function<void(ZipArchive &)> &patch,
                     PackageBuilder::Method method = PackageBuilder::Deflated)
{
    return [=] {
        ZipArchive archive(sealed(honest().file("notes.png", picture(), method)));
        patch(archive);
        return archive.bytes;
    };
}

// ---------------------------------------------------------------------------------------------------------------------
// Descriptions and pictures

inline QByteArray description(const std::function<void(QJsonObject &)> &change = {})
{
    QJsonObject object = QJsonDocument::fromJson(TestSupport::descriptionOf(source())).object();
    if (change)
        change(object);
    return QJsonDocument(object).toJson();
}

inline Bytes withDescription(const std::function<QByteArray()> &text)
{
    return [text] { return sealed(PackageBuilder().file("device.json", text())); };
}

inline Bytes withChange(const std::function<void(QJsonObject &)> &change)
{
    return withDescription([change] { return description(change); });
}

/// A valid description plus `member`.
inline Bytes withMember(const std::function<QByteArray()> &member)
{
    return withDescription([member] {
        const QByteArray text = description().trimmed();
        return text.left(text.size() - 1) + ", " + member() + "}";
    });
}

/// A package whose only picture is background 1, with that size in the description.
inline Bytes withPicture(quint32 width, quint32 height, const Bytes &png)
{
    return [=] {
        const QByteArray text = description([=](QJsonObject &object) {
            object.insert(QStringLiteral("materials"),
                          QJsonArray{QJsonObject{{QStringLiteral("type"), 0},
                                                 {QStringLiteral("keyNo"), 1},
                                                 {QStringLiteral("name"), QStringLiteral("Opening")},
                                                 {QStringLiteral("width"), double(width)},
                                                 {QStringLiteral("height"), double(height)}}});
        });
        return sealed(PackageBuilder().file("device.json", text).file("BKG/BKG_1.png", png()));
    };
}

inline Bytes withPicture(const Bytes &png)
{
    return withPicture(16, 9, png);
}

inline QByteArray changed(QByteArray bytes, int at, const QByteArray &replacement)
{
    return bytes.replace(at, replacement.size(), replacement);
}

inline QByteArray savedAs(const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    TestSupport::noisePicture({16, 9}, 1).save(&buffer, format);
    return bytes;
}

/// A blank 16 by 9 picture with additional chunks after its header.
inline QByteArray pngWith(const QByteArray &chunks)
{
    QByteArray png = PngMaker::blank(16, 9);
    return png.insert(PngMaker::signature().size() + 25, chunks);
}

// ---------------------------------------------------------------------------------------------------------------------
// Records

inline Bytes withComment(const QByteArray &comment)
{
    return [comment] { return honest().archiveComment(comment).build(); };
}

inline QByteArray rightChecksum()
{
    return PackageBuilder::checksum(honest().build(), 0);
}

/// A record with these members and the correct checksum.
inline Bytes withRecord(const QByteArray &members)
{
    return [members] {
        return honest().archiveComment("{\"Checksum\":\"" + rightChecksum() + "\"," + members + "}").build();
    };
}

inline QByteArray recordOfSize(int size)
{
    const QByteArray begin = "{\"Checksum\":\"" + rightChecksum() + "\",\"projectName\":\"hostile\",\"comment\":\"";
    return begin + QByteArray(size - begin.size() - 2, 'x') + "\"}";
}

inline QByteArray zip64Records(quint64 entries, quint64 centralSize, quint64 centralStart, quint64 recordAt)
{
    const auto little = [](auto value) { return ZipArchive::little(value); };
    return raw("PK\6\6") + little(quint64(44)) + little(quint16(45)) + little(quint16(45)) + little(quint32(0)) +
           little(quint32(0)) + little(entries) + little(entries) + little(centralSize) + little(centralStart) +
           raw("PK\6\7") + little(quint32(0)) + little(recordAt) + little(quint32(1));
}

// ---------------------------------------------------------------------------------------------------------------------
// The corpus

/// The packages, table by table of README.md.
class Corpus
{
public:
    QVector<HostilePackage> packages;

    HostilePackage &add(const QByteArray &name, const Bytes &bytes)
    {
        packages.append({name, bytes});
        return packages.last();
    }

    void addNames();
    void addLinksAndModes();
    void addSizes();
    void addTruncations();
    void addEndRecords();
    void addHeaders();
    void addMethods();
    void addPictures();
    void addRecords();
    void addDescriptions();
    void addOtherFiles();
    void addAliases();
    void addLargeNumbers();
    void addOtherWriters();
};

} // namespace TestData
