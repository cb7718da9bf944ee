// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QPointer>
#include <QString>

namespace ProjectFileCfg {
namespace Internal {

class ProjectRowWidget;

/// The sender of a click in a row of the project table, and the package whose row it is. It may outlive the button.
class PressedButton
{
public:
    explicit PressedButton(QObject *sender);

    /// False if the sender is not a tool button.
    explicit operator bool() const { return m_bButton; }
    /// The package's path at the time of the click.
    QString filePath() const { return m_strFilePath; }
    /// After the package was renamed: the new path for the button, and for the others of its row, as far as they exist.
    void setFilePath(const QString &path) const;

private:
    const QPointer<QObject> m_pSender;
    const QPointer<ProjectRowWidget> m_pRow;
    const bool m_bButton;
    const QString m_strFilePath;
};

} // namespace Internal
} // namespace ProjectFileCfg
