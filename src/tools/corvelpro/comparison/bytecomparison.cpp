// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "bytecomparison.h"

#include <algorithm>
#include <cstring>

namespace Corvelpro {

ByteComparison::ByteComparison(QIODevice &before)
    : m_before(before)
{}

ByteDifference ByteComparison::difference() const
{
    ByteDifference difference = m_found;
    difference.before = m_before.size();
    if (difference.isEmpty() && difference.before != difference.after)
        difference.firstOffset = std::min(difference.before, difference.after);
    return difference;
}

qint64 ByteComparison::writeData(const char *data, qint64 size)
{
    m_block.resize(int(size));
    const qint64 common = m_before.read(m_block.data(), size);
    if (common < 0) {
        setErrorString(m_before.errorString());
        return -1;
    }
    if (std::memcmp(data, m_block.constData(), size_t(common)) != 0) {
        for (qint64 i = 0; i < common; ++i) {
            if (data[i] == m_block.at(int(i)))
                continue;
            if (m_found.isEmpty())
                m_found.firstOffset = m_found.after + i;
            ++m_found.count;
        }
    }
    m_found.after += size;
    return size;
}

} // namespace Corvelpro
