// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>
#include <QTemporaryDir>

namespace TestSupport {

/// A private home for one test program: Documents, configuration and data are in a temporary folder, so that a test
/// never sees or changes the user's own project files.
///
/// Construct it before the application object: Qt reads the environment once. The test mode of QStandardPaths does not
/// redirect Documents, so it does not help. Also sets the locale to C.UTF-8 and the platform to offscreen, unless
/// another one is requested.
class TestHome
{
public:
    TestHome();
    Q_DISABLE_COPY(TestHome)

    /// The private home, without a trailing separator.
    QString path() const { return m_dir.path(); }
    /// The private Documents folder, without a trailing separator. It exists.
    QString documentsPath() const;

private:
    QTemporaryDir m_dir;
};

} // namespace TestSupport
