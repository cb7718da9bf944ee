// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// How a scan, and the check before an import or an apply, treat one file.
#include "fuzzing.h"

#include <zippackagehandle.h>

using namespace ProjectFileCfg::Internal;

int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::beQuiet();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Fuzzing::MemoryFile file;
    file.setContent(data, size);
    EngineerPacketInfo info;
    info.strFilePath = file.path();
    const bool isListed = ZipPackageHandle::getZipFileEngineerInfo(info);
    FUZZ_VERIFY(ZipPackageHandle::isValidEngineerPacket(file.path()) == isListed);
    if (isListed) {
        FUZZ_VERIFY(ZipPackageHandle::checkPacketChecksum(file.path()));
        FUZZ_VERIFY(info.strChecksum == ZipPackageHandle::calcPacketChecksum(file.path()));
    }
    // A central directory header has at least 46 bytes.
    FUZZ_VERIFY(std::size_t(ZipPackageHandle::getFileList(file.path()).size()) <= size / 46);
    return 0;
}
