#pragma once

#include <QString>

#include <memory>

namespace TestSupport {

/// Holds the first thread that opens a file to read it, before the file is opened, until it is let go; who comes later
/// is not held. So work of other threads can be stopped in the middle. Let go at the latest when it is destroyed, so
/// that a test that fails on the way leaves nobody waiting.
class HeldFile
{
public:
    /// `path` as it is opened: another spelling, or a link to the file, is not held.
    explicit HeldFile(const QString &path);
    ~HeldFile();
    Q_DISABLE_COPY(HeldFile)

    /// Returns when a thread waits. False when none comes within a minute.
    bool waitForReader();
    void release();

    /// For systemcalls.cpp: a thread is about to open that file.
    static void waitIfHeld(const char *path);

    struct State;

private:
    const std::shared_ptr<State> m_state;
};

} // namespace TestSupport
