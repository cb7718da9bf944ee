// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "packagetesting.h"
#include "zippackagehandle.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace PackageTesting {

/// The archive comment, read by an independent program.
inline QByteArray rawComment(const QString &path)
{
    return runPython("import sys, zipfile\n"
                     "sys.stdout.buffer.write(zipfile.ZipFile(sys.argv[1]).comment)\n",
                     {path})
        .output;
}

inline QString jsonRecord(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson());
}

/// Shared by the tests of packages and their comments: a device's directory, and a package made from it.
class PackedPackage
{
protected:
    using EngineerPacketInfo = ProjectFileCfg::Internal::EngineerPacketInfo;
    using ZipPackageHandle = ProjectFileCfg::Internal::ZipPackageHandle;

    void setUp()
    {
        m_temp = std::make_unique<QTemporaryDir>();
        QVERIFY(m_temp->isValid());
        m_device = m_temp->path() + "/device";
        m_folder = m_temp->path() + "/ProjectFiles";
        m_package = m_folder + "/Project1.corvelpro";
        QVERIFY(QDir().mkpath(m_folder));
        QVERIFY(makeDeviceTree(m_device));
    }
    void tearDown() { m_temp.reset(); }

    EngineerPacketInfo packed(const QString &name = "Project1", const QString &comment = "20240229_101530")
    {
        EngineerPacketInfo info;
        info.strFilePath = m_package;
        info.strProjectName = name;
        info.strComment = comment;
        if (!ZipPackageHandle::compressEngineerPacket(m_device, info))
            qWarning("the package could not be made");
        return info;
    }
    /// The package is alone in its folder.
    void verifyNoFragment() const { QCOMPARE(contents(m_folder), QStringList{"Project1.corvelpro"}); }

    std::unique_ptr<QTemporaryDir> m_temp;
    QString m_device;
    QString m_folder;
    QString m_package;
};

} // namespace PackageTesting
