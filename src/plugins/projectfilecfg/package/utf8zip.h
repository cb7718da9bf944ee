// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "localecodec.h"

#include <quazip.h>

namespace ProjectFileCfg {
namespace Internal {

/// A zip archive in a device that the caller opens and closes, with names and comment in UTF-8. QuaZip takes the codecs
/// of both from the process's locale when it is constructed.
class Utf8Zip : public QuaZip
{
public:
    explicit Utf8Zip(QIODevice &device)
        : QuaZip(withUtf8(device))
    {
        setAutoClose(false);
    }

private:
    static QIODevice *withUtf8(QIODevice &device)
    {
        useUtf8LocaleCodec();
        return &device;
    }
};

} // namespace Internal
} // namespace ProjectFileCfg
