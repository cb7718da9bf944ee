// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCryptographicHash>
#include <QIODevice>

#include <functional>

namespace Corvelpro {

/// Passes on what is written to it, and digests it.
class DigestingDevice : public QIODevice
{
public:
    /// `target` may be null. `step` is called with the size of each portion; a write for which it returns false fails.
    /// Opens itself, for writing only.
    DigestingDevice(QIODevice *target, const std::function<bool(qint64 size)> &step);

    QByteArray digest() const { return m_digest.result(); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 size) override;

private:
    QIODevice *const m_target;
    const std::function<bool(qint64 size)> m_step;
    /// Against accidents on the way, not against an attacker.
    QCryptographicHash m_digest{QCryptographicHash::Sha1};
};

} // namespace Corvelpro
