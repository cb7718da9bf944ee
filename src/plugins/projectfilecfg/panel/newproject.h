// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>

#include <optional>

class QWidget;

namespace ProjectFileCfg {
namespace Internal {

/// The name and the comment of a project that is about to be saved. User-interface thread.
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

    /// "Project", translated, and the first number from 1 to 999 that makes the name of no package in `directory`,
    /// which ends in a separator. Empty if all are taken.
    static QString generateProjectName(const QString &directory);
    /// The time now, as a project's comment.
    static QString timeStamp();
    /// Proposes both in the property dialog. None if the operator cancelled, or if the panel has gone.
    static std::optional<Properties> ask(QWidget *panel, const QString &directory);
};

} // namespace Internal
} // namespace ProjectFileCfg
