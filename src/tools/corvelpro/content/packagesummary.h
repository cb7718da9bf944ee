// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "zippackagehandle.h"

#include <QJsonObject>
#include <QSize>
#include <QString>
#include <QVector>

namespace Corvelpro {

/// The record and the content of a package, as an apply sees them. Does not read pictures to their end; Verification
/// finds damaged ones.
class PackageSummary
{
public:
    struct Picture
    {
        QString entry;
        qint64 bytes;
        /// In pixels, as the file states them; empty if it does not.
        QSize size;
    };
    struct Preset
    {
        QString entry;
        qint64 bytes;
    };
    struct LeftOver
    {
        QString entry;
        qint64 bytes;
        QString reason;
    };

    /// False if the file cannot be opened, or is no archive: `reason` is set then (see reason.h).
    bool read(const QString &path, QString *reason);

    const ProjectFileCfg::Internal::EngineerPacketInfo &record() const { return m_record; }
    /// Why the control application does not list the package; empty if it does.
    QString problem() const { return m_problem; }

    int entries() const { return m_entries; }
    /// Bytes of all entries, unpacked, as the archive states them.
    qint64 contentSize() const { return m_contentSize; }
    /// The entry that a load reads; empty if there is none.
    QString description() const { return m_description; }
    /// Why it cannot be read; empty if it can.
    QString descriptionProblem() const { return m_descriptionProblem; }
    /// The texts, numbers and truth values at the top of the description.
    const QJsonObject &members() const { return m_members; }
    const QVector<Picture> &pictures() const { return m_pictures; }
    const QVector<Preset> &presets() const { return m_presets; }
    /// Entries that no load to an online device uses; one to an offline device copies most of them.
    const QVector<LeftOver> &leftOver() const { return m_leftOver; }

private:
    void readDescription(ProjectFileCfg::Internal::PackageReader &package);
    void readEntry(ProjectFileCfg::Internal::PackageReader &package, const QString &entry);

    ProjectFileCfg::Internal::EngineerPacketInfo m_record;
    QString m_problem;
    int m_entries = 0;
    qint64 m_contentSize = 0;
    QString m_description;
    QString m_descriptionProblem;
    QJsonObject m_members;
    QVector<Picture> m_pictures;
    QVector<Preset> m_presets;
    QVector<LeftOver> m_leftOver;
};

} // namespace Corvelpro
