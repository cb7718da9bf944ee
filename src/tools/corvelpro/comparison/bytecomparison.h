// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "content/writeonlydevice.h"

namespace Corvelpro {

/// What differs in two contents, byte by byte.
struct ByteDifference
{
    /// Bytes of each.
    qint64 before = 0;
    qint64 after = 0;
    /// The first one that differs, also the first one that only the longer content has; -1 if there is none.
    qint64 firstOffset = -1;
    /// How many differ of those that both have.
    qint64 count = 0;

    bool isEmpty() const { return firstOffset < 0; }
};

/// Compares what is written to it with another content, as it comes.
class ByteComparison : public WriteOnlyDevice
{
public:
    /// `before`: readable, at its beginning, and not used elsewhere meanwhile.
    explicit ByteComparison(QIODevice &before);

    /// What differs if nothing more is written.
    ByteDifference difference() const;

protected:
    qint64 writeData(const char *data, qint64 size) override;

private:
    QIODevice &m_before;
    QByteArray m_block;
    ByteDifference m_found;
};

} // namespace Corvelpro
