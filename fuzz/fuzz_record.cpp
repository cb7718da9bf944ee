// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// From an archive comment to its info record.
#include "fuzzing.h"

#include <zippackagehandle.h>

#include <support/packagebuilder.h>

using namespace ProjectFileCfg::Internal;

namespace {

/// Lone surrogates do not survive UTF-8; any other text does.
bool isWellFormed(const QString &text)
{
    return QString::fromUtf8(text.toUtf8()) == text;
}

} // namespace

int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::beQuiet();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString untouched = QStringLiteral("untouched");
    EngineerPacketInfo info{untouched, untouched, untouched, untouched};
    const QString comment = QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
    if (!ZipPackageHandle::parseEngineerInfo(info, comment)) {
        FUZZ_VERIFY(info.strProjectName == untouched && info.strComment == untouched && info.strChecksum == untouched);
        return 0;
    }
    FUZZ_VERIFY(info.strFilePath == untouched);

    // A record written with the values read must read the same.
    if (isWellFormed(info.strProjectName) && isWellFormed(info.strComment) && isWellFormed(info.strChecksum)) {
        const QByteArray record =
            TestSupport::PackageBuilder::infoRecord(info.strChecksum, info.strProjectName, info.strComment);
        EngineerPacketInfo again;
        FUZZ_VERIFY(ZipPackageHandle::parseEngineerInfo(again, QString::fromUtf8(record)));
        FUZZ_VERIFY(again.strProjectName == info.strProjectName && again.strComment == info.strComment &&
                    again.strChecksum == info.strChecksum);
    }
    return 0;
}
