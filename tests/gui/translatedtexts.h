#pragma once

#include <QCoreApplication>
#include <QTranslator>

/// Installs the product's texts in a language while it lives, as the plugin does. Widgets that exist get their
/// LanguageChange events when the event loop runs. TRANSLATION_DIRECTORY is the folder of the built texts.
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

    /// False when the texts were never built.
    bool areFound() const { return m_found; }

private:
    QTranslator m_translator;
    bool m_found = false;
};
