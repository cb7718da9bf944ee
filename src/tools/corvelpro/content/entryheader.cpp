// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "entryheader.h"

#include "zipformat.h"

#include <QtEndian>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal::ZipFormat;

namespace {

/// Reads a header's numbers one after the other.
class Numbers
{
public:
    explicit Numbers(const char *bytes)
        : m_next(bytes)
    {}

    Numbers &operator>>(quint16 &value) { return take(value); }
    Numbers &operator>>(quint32 &value) { return take(value); }

private:
    template<typename Number>
    Numbers &take(Number &value)
    {
        value = qFromLittleEndian<Number>(m_next);
        m_next += sizeof value;
        return *this;
    }

    const char *m_next;
};

constexpr int signatureSize = 4;
/// From "version needed" to the length of the extra fields.
constexpr int sharedSize = localHeaderSize - signatureSize;

bool hasSignature(const QByteArray &bytes, const char *signature, int size)
{
    return bytes.size() == size && bytes.startsWith(signature);
}

} // namespace

void EntryHeader::readFrom(const char *bytes)
{
    Numbers(bytes) >> versionNeeded >> flags >> method >> time >> date >> crc >> packedSize >> size >> nameLength >>
        extraLength;
}

bool LocalHeader::read(const QByteArray &bytes)
{
    if (!hasSignature(bytes, "PK\x03\x04", localHeaderSize))
        return false;
    readFrom(bytes.constData() + signatureSize);
    return true;
}

bool DirectoryHeader::read(const QByteArray &bytes)
{
    if (!hasSignature(bytes, "PK\x01\x02", centralHeaderSize))
        return false;
    Numbers(bytes.constData() + signatureSize) >> madeBy;
    const char *shared = bytes.constData() + signatureSize + sizeof madeBy;
    readFrom(shared);
    Numbers(shared + sharedSize) >> commentLength >> disk >> internalAttributes >> externalAttributes >> localOffset;
    return true;
}

QByteArray EndRecord::signature()
{
    return QByteArrayLiteral("PK\x05\x06");
}

void EndRecord::read(const QByteArray &bytes)
{
    Numbers(bytes.constData() + signatureSize) >> disk >> directoryDisk >> entriesOnDisk >> entries >> directorySize >>
        directoryOffset >> commentLength;
}

bool EndRecord::isExtended() const
{
    return entries == 0xFFFF || directorySize == 0xFFFFFFFF || directoryOffset == 0xFFFFFFFF;
}

bool isExtraSound(const QByteArray &extra)
{
    constexpr int headSize = 4;
    int at = 0;
    while (at + headSize <= extra.size())
        at += headSize + qFromLittleEndian<quint16>(extra.constData() + at + 2);
    return at == extra.size();
}

} // namespace Corvelpro
