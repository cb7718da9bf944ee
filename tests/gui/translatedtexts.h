// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>
#include <QTranslator>

/// Installs the product's translations for a language during its lifetime, like the plugin does. Existing widgets get
/// their LanguageChange events when the event loop runs. TRANSLATION_DIRECTORY is the folder of the built translations.
class TranslatedTexts
{
public:
    explicit TranslatedTexts(const QString &language)
    {
        m_found =
            m_translator.load(QStringLiteral("projectfilecfg_") + language, QStringLiteral(TRANSLATION_DIRECTORY));
        QCoreApplication::installTranslator(&m_translator);
    }
    ~TranslatedTexts() { QCoreApplication::removeTranslator(&m_translator); }
    Q_DISABLE_COPY(TranslatedTexts)

    /// False if the translations were not built.
    bool areFound() const { return m_found; }

private:
    QTranslator m_translator;
    bool m_found = false;
};
