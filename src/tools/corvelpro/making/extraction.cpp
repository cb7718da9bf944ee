// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "extraction.h"

#include "commandline/interrupt.h"
#include "newdirectory.h"

#include "packagelayout.h"
#include "packagereader.h"

#include <algorithm>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

bool isRefused(const QString &entry)
{
    return !PackageLayout::isSafeName(entry) || PackageLayout::blocksLaterPackages(entry);
}

} // namespace

Extraction::Extraction(const QString &package, const QString &directory, const QString &entry)
    : m_package(package)
    , m_directory(directory)
    , m_entry(entry)
{}

Outcome Extraction::run()
{
    if (m_directory.isEmpty())
        return Outcome::failed(QStringLiteral("the new directory has no name"));
    NewDirectory target(m_directory);
    m_directory = target.path();
    Outcome name = wantFreeName(m_directory);
    if (!name.isDone())
        return name;

    PackageReader reader(m_package);
    QString reason;
    if (!reader.isListable(&reason))
        return Outcome::failed(reason);
    m_entries = reader.entries();
    if (!m_entry.isEmpty()) {
        if (!m_entries.contains(m_entry) || PackageLayout::isFolder(m_entry))
            return Outcome::refused(QStringLiteral("%1: no file \"%2\" in it").arg(m_package, m_entry));
        m_entries = QStringList{m_entry};
    }
    const auto refused = std::find_if(m_entries.begin(), m_entries.end(), isRefused);
    if (refused != m_entries.end())
        return Outcome::refused(
            QStringLiteral("%1: \"%2\" is not a name that a project file may hold").arg(m_package, *refused));

    if (!target.create(&reason))
        return Outcome::failed(reason);
    for (const QString &entry : qAsConst(m_entries)) {
        if (Interrupt::came())
            return Outcome::failed(QStringLiteral("interrupted, nothing was extracted"));
        if (reader.extractFile(entry, QStringLiteral("%1/%2").arg(target.hiddenPath(), entry), &reason).isEmpty())
            return Outcome::failed(QStringLiteral("%1: %2").arg(m_package, reason));
    }
    return target.commit(&reason) ? Outcome() : Outcome::failed(reason);
}

} // namespace Corvelpro
