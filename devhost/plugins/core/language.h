#pragma once

#include <core/core_global.h>

#include <QString>
#include <QVector>

namespace Core {

struct HOST_CORE_EXPORT Language
{
    QString code;
    /// In the language itself.
    QString name;
};

/// The languages between which the user can choose.
HOST_CORE_EXPORT QVector<Language> languages();

/// Installs the texts of the host and of Qt for the language of the settings. User-interface thread only.
HOST_CORE_EXPORT void installHostTexts();

/// Changes the language while the program runs: the host's texts, those of every plugin in the object pool,
/// then every mode. Widgets get a LanguageChange event. User-interface thread only.
HOST_CORE_EXPORT void switchLanguage(const QString &code);

} // namespace Core
