// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>

#include <optional>

class QWidget;

namespace ProjectFileCfg {
namespace Internal {

/// The name and comment of a project that is about to be saved. User-interface thread.
class NewProject
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// What the operator accepted.
    struct Properties
    {
        QString strName;
        QString strComment;
    };

    /// The translated word "Project" and the first number from 1 to 999 with which no package exists in `directory`,
    /// which ends in a separator. Empty if all are taken.
    static QString generateProjectName(const QString &directory);
    /// The current time, as a comment.
    static QString timeStamp();
    /// Proposes both in the property dialog. None if the operator cancels, or if the panel is deleted meanwhile.
    static std::optional<Properties> ask(QWidget *panel, const QString &directory);
};

} // namespace Internal
} // namespace ProjectFileCfg
