// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QTextCodec>

namespace ProjectFileCfg {
namespace Internal {

/// Sets the process's locale codec to UTF-8, permanently. Any thread: every caller sets the same value. Utf8Zip calls
/// it, and so do operations on names and records that may run before any archive is opened.
inline void useUtf8LocaleCodec()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

} // namespace Internal
} // namespace ProjectFileCfg
