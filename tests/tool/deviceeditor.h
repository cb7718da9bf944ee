// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "devicefiles.h"

#include <QBuffer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

/// Random edits of a device, and what a comparison has to say of them.
namespace ToolTesting {

inline const QByteArray descriptionName("10.0.0.1.json");

inline QByteArray pngOf(const QImage &picture, int quality = -1)
{
    QBuffer file;
    picture.save(&file, "PNG", quality);
    return file.data();
}

inline QImage pictureOf(const QSize &size, quint32 seed)
{
    QImage picture(size, QImage::Format_ARGB32);
    QRandomGenerator random(seed);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            picture.setPixel(x, y, random.generate() | 0xFF000000);
    }
    return picture;
}

inline QByteArray jsonOf(const QJsonObject &object)
{
    return QJsonDocument(object).toJson();
}

inline QJsonObject sampleDescription()
{
    return QJsonDocument::fromJson(R"({
        "name": "main", "id": 7, "enabled": true, "nothing": null,
        "network": {"ip": "10.0.0.1", "mac": "00:11", "dns.name": "main.local"},
        "slots": [{"type": 3, "serial": "A1"}, {"type": 5, "serial": "A2"}],
        "screens": [[0, 0, 1920, 1080], [1920, 0, 1280, 720]]})")
        .object();
}

inline Files sampleFiles()
{
    return {{descriptionName, jsonOf(sampleDescription())},
            {"BKG/", {}},
            {"BKG/BKG_1.png", pngOf(pictureOf({16, 9}, 1))},
            {"BKG/BKG_2.png", pngOf(pictureOf({9, 16}, 2))},
            {"LOGO/", {}},
            {"LOGO/LOGO_1.png", pngOf(pictureOf({8, 8}, 3))},
            {"Preset/", {}},
            {"Preset/1.RPst", QByteArray("\0\0\0\x8"
                                         "a preset",
                                         12)},
            {"Preset/2.RPst", QByteArray("\0\0\0\x0", 4)},
            {"host/settings.ini", "volume=3\n"}};
}

inline QString textOf(const QJsonValue &value)
{
    return value.isUndefined() ? QStringLiteral("-")
                               : QString(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact));
}

inline QString sizeText(const QSize &size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

/// What is known of a difference, one line each, so that lists of them can be compared.
namespace Line {

inline QString oneSided(const QString &entry, bool isBefore)
{
    return entry + (isBefore ? " only A" : " only B");
}

inline QString member(const QString &entry, const QString &path, const QJsonValue &before, const QJsonValue &after)
{
    return QStringList{entry, path, textOf(before), textOf(after)}.join(' ');
}

inline QString bytes(const QString &entry, qint64 before, qint64 after, qint64 first, qint64 count)
{
    return QStringLiteral("%1 %2->%3 from %4 count %5").arg(entry).arg(before).arg(after).arg(first).arg(count);
}

inline QString pixels(const QString &entry, const QSize &before, const QSize &after, qint64 count, int largest)
{
    return QStringLiteral("%1 %2->%3 pixels %4 by %5")
        .arg(entry, sizeText(before), sizeText(after))
        .arg(count)
        .arg(largest);
}

} // namespace Line

/// Changes a random device at random places, and knows what a comparison has to say in both directions.
class DeviceEditor
{
public:
    explicit DeviceEditor(quint32 seed)
        : m_random(seed)
    {}

    Files before = sampleFiles();
    Files after = before;
    QStringList forth;
    QStringList back;

    void editSomething()
    {
        QVector<void (DeviceEditor::*)()> edits{&DeviceEditor::changeMembers, &DeviceEditor::changePicture,
                                                &DeviceEditor::resizePicture, &DeviceEditor::changePreset,
                                                &DeviceEditor::cutPreset,     &DeviceEditor::addEntries,
                                                &DeviceEditor::removeEntries, &DeviceEditor::changeOther};
        const int count = 1 + m_random.bounded(edits.size());
        for (int i = 0; i < count; ++i)
            (this->*edits.takeAt(m_random.bounded(edits.size())))();
        forth.sort();
        back.sort();
    }

private:
    void expect(const QString &there, const QString &returned)
    {
        forth.append(there);
        back.append(returned);
    }

    void expectMember(const QString &path, const QJsonValue &old, const QJsonValue &edited)
    {
        expect(Line::member(descriptionName, path, old, edited), Line::member(descriptionName, path, edited, old));
    }

    void changeMembers()
    {
        QJsonObject description = sampleDescription();
        const QJsonValue undefined(QJsonValue::Undefined);
        if (m_random.bounded(2)) {
            const QString name = QStringLiteral("other%1").arg(m_random.bounded(1000));
            description["name"] = name;
            expectMember("name", "main", name);
        }
        if (m_random.bounded(2)) {
            QJsonObject network = description["network"].toObject();
            network.remove("dns.name");
            network["mask"] = 24;
            description["network"] = network;
            expectMember("network[\"dns.name\"]", "main.local", undefined);
            expectMember("network.mask", undefined, 24);
        }
        if (m_random.bounded(2)) {
            QJsonArray screens = description["screens"].toArray();
            screens.removeLast();
            description["screens"] = screens;
            expectMember("screens[1]", QJsonArray{1920, 0, 1280, 720}, undefined);
        }
        QJsonArray cards = description["slots"].toArray();
        const int index = m_random.bounded(2);
        QJsonObject card = cards[index].toObject();
        const QJsonValue type = card["type"];
        card["type"] = "none";
        cards[index] = card;
        description["slots"] = cards;
        expectMember(QStringLiteral("slots[%1].type").arg(index), type, "none");
        after[descriptionName] = jsonOf(description);
    }

    void changePicture()
    {
        QImage picture = pictureOf({16, 9}, 1);
        const int count = 1 + m_random.bounded(5);
        const int distance = 1 + m_random.bounded(127);
        for (int i = 0; i < count; ++i) {
            const QRgb old = picture.pixel(i, i);
            const int red = qRed(old) < 128 ? qRed(old) + distance : qRed(old) - distance;
            picture.setPixel(i, i, qRgba(red, qGreen(old), qBlue(old), qAlpha(old)));
        }
        after["BKG/BKG_1.png"] = pngOf(picture);
        const QString line = Line::pixels("BKG/BKG_1.png", {16, 9}, {16, 9}, count, distance);
        expect(line, line);
    }

    void resizePicture()
    {
        const QSize size(1 + m_random.bounded(8), 8);
        after["BKG/BKG_2.png"] = pngOf(pictureOf(size, 4));
        expect(Line::pixels("BKG/BKG_2.png", {9, 16}, size, 0, 0), Line::pixels("BKG/BKG_2.png", size, {9, 16}, 0, 0));
    }

    void changePreset()
    {
        QByteArray &preset = after["Preset/1.RPst"];
        const int first = m_random.bounded(6);
        const int count = 1 + m_random.bounded(6);
        for (int i = first; i < first + count; ++i)
            preset[i] = char(preset.at(i) ^ 0x55);
        const QString line = Line::bytes("Preset/1.RPst", 12, 12, first, count);
        expect(line, line);
    }

    void cutPreset()
    {
        const int left = m_random.bounded(4);
        after["Preset/2.RPst"].truncate(left);
        expect(Line::bytes("Preset/2.RPst", 4, left, left, 0), Line::bytes("Preset/2.RPst", left, 4, left, 0));
    }

    void addEntries()
    {
        const QByteArray preset = "Preset/" + QByteArray::number(3 + m_random.bounded(60000)) + ".RPst";
        for (const QByteArray &name : {preset, QByteArray("empty/"), QByteArray("host/sub/new.bin")})
            after.insert(name, QByteArray());
        for (const QString &name :
             {QString(preset), QString("empty/"), QString("host/sub/"), QString("host/sub/new.bin")})
            expect(Line::oneSided(name, false), Line::oneSided(name, true));
    }

    void removeEntries()
    {
        after.remove("LOGO/LOGO_1.png");
        expect(Line::oneSided("LOGO/LOGO_1.png", true), Line::oneSided("LOGO/LOGO_1.png", false));
    }

    void changeOther()
    {
        after["host/settings.ini"] = "volume=11\n";
        expect(Line::bytes("host/settings.ini", 9, 10, 7, 2), Line::bytes("host/settings.ini", 10, 9, 7, 2));
    }

    QRandomGenerator m_random;
};

} // namespace ToolTesting
