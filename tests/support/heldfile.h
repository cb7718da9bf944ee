// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

#include <memory>

namespace TestSupport {

/// Blocks the first thread that opens a file for reading, before the file is opened, until it is released; later ones
/// pass. Use it to stop work of other threads halfway. Released at the latest in the destructor, so that a failing test
/// never hangs.
class HeldFile
{
public:
    /// `path` exactly as it is opened: other spellings and links to the file do not match.
    explicit HeldFile(const QString &path);
    ~HeldFile();
    Q_DISABLE_COPY(HeldFile)

    /// Returns when a thread is blocked; false if none arrives within a minute.
    bool waitForReader();
    void release();

    /// Called by systemcalls.cpp before a thread opens that file.
    static void waitIfHeld(const char *path);

    struct State;

private:
    const std::shared_ptr<State> m_state;
};

} // namespace TestSupport
