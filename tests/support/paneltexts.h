// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

/// The panel's texts for copying, importing and deleting projects, spelled out here to test the product's own texts
/// too.
namespace PanelTexts {

inline const QString remind = QStringLiteral("Remind");
inline const QString warning = QStringLiteral("Warning");
inline const QString chooserTitle = QStringLiteral("Project file");
inline const QString saveTitle = QStringLiteral("choose Des Directory");
inline const QString deleteQuestion = QStringLiteral("Confirm to delete the selected project file?");
inline const QString deleteAllQuestion = QStringLiteral("Confirm to delete all project file?");
inline const QString saveSucceeded = QStringLiteral("save as success");
inline const QString importSucceeded = QStringLiteral("Import as success");
inline const QString saveWaiting = QStringLiteral("save as project file,please wait...");
inline const QString importWaiting = QStringLiteral("Import project files,please wait...");

} // namespace PanelTexts
