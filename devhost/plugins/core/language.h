// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/core_global.h>

#include <QString>
#include <QVector>

namespace Core {

struct HOST_CORE_EXPORT Language
{
    QString code;
    /// Written in the language itself.
    QString name;
};

/// The languages to choose from.
HOST_CORE_EXPORT QVector<Language> languages();

/// Installs the translations of the host and of Qt for the configured language. User-interface thread only.
HOST_CORE_EXPORT void installHostTexts();

/// Changes the language at run time: the host's texts, those of every plugin in the object pool, then every mode.
/// Widgets get a LanguageChange event. User-interface thread only.
HOST_CORE_EXPORT void switchLanguage(const QString &code);

} // namespace Core
