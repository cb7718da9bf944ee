// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QPointer>
#include <QString>

namespace ProjectFileCfg {
namespace Internal {

class ProjectRowWidget;

/// The button that was clicked in a row of the project table, and the package of that row. May outlive the button.
class PressedButton
{
public:
    explicit PressedButton(QObject *sender);

    /// False if the sender is not a tool button.
    explicit operator bool() const { return m_bButton; }
    /// The package's path at the time of the click.
    QString filePath() const { return m_strFilePath; }
    /// Call after the package was renamed: sets the new path for the button and the others in its row, if they still
    /// exist.
    void setFilePath(const QString &path) const;

private:
    const QPointer<QObject> m_pSender;
    const QPointer<ProjectRowWidget> m_pRow;
    const bool m_bButton;
    const QString m_strFilePath;
};

} // namespace Internal
} // namespace ProjectFileCfg
