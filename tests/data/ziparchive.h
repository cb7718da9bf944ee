// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QtEndian>

namespace TestData {

/// The bytes of a valid zip archive whose structures can be located and patched. Positions are those of a structure's
/// signature; the offsets of its fields follow the zip format.
class ZipArchive
{
public:
    explicit ZipArchive(const QByteArray &archive)
        : bytes(archive)
        , m_end(archive.lastIndexOf(QByteArray("PK\5\6", 4)))
    {}

    QByteArray bytes;

    int end() const { return m_end; }
    int count() const { return get16(m_end + 10); }
    int centralStart() const { return int(get32(m_end + 16)); }
    /// The central directory header of an entry, and its local header.
    int central(int entry) const
    {
        int at = centralStart();
        for (; entry > 0; --entry)
            at += 46 + get16(at + 28) + get16(at + 30) + get16(at + 32);
        return at;
    }
    int local(int entry) const { return int(get32(central(entry) + 42)); }
    int lastCentral() const { return central(count() - 1); }
    int lastLocal() const { return local(count() - 1); }
    int lastContent() const { return lastLocal() + 30 + get16(lastLocal() + 26) + get16(lastLocal() + 28); }

    quint16 get16(int at) const { return qFromLittleEndian<quint16>(bytes.constData() + at); }
    quint32 get32(int at) const { return qFromLittleEndian<quint32>(bytes.constData() + at); }
    ZipArchive &set16(int at, quint16 value)
    {
        bytes.replace(at, 2, little(value));
        return *this;
    }
    ZipArchive &set32(int at, quint32 value)
    {
        bytes.replace(at, 4, little(value));
        return *this;
    }
    /// Adds an extra field to the last entry, in the central directory only.
    ZipArchive &addCentralExtra(const QByteArray &extra)
    {
        const int at = lastCentral();
        set16(at + 30, quint16(get16(at + 30) + extra.size()));
        set32(m_end + 12, get32(m_end + 12) + quint32(extra.size()));
        bytes.insert(at + 46 + get16(at + 28), extra);
        m_end += extra.size();
        return *this;
    }
    /// Bytes between the central directory and the end record.
    ZipArchive &insertBeforeEnd(const QByteArray &inserted)
    {
        bytes.insert(m_end, inserted);
        m_end += inserted.size();
        return *this;
    }

    template<typename Number>
    static QByteArray little(Number value)
    {
        const Number swapped = qToLittleEndian(value);
        return QByteArray(reinterpret_cast<const char *>(&swapped), sizeof swapped);
    }

private:
    int m_end;
};

} // namespace TestData
