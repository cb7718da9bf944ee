// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>
#include <QTranslator>

namespace TestSupport {

/// A language in which every text is its English original with accents, longer by half, and in brackets: what has none
/// was not translated, and what has no room would be clipped in a language with longer words.
///
///     "Save as %1"  "⟦Šåvé åš %1 Šåvé ⟧"
///
/// The texts of the product, of the host and of Qt are in this language during its lifetime. Existing widgets follow
/// when the event loop runs. User-interface thread.
class PseudoLanguage
{
public:
    PseudoLanguage() { QCoreApplication::installTranslator(&m_translator); }
    ~PseudoLanguage() { QCoreApplication::removeTranslator(&m_translator); }
    Q_DISABLE_COPY(PseudoLanguage)

    /// `text` in this language.
    static QString of(const QString &text);
    /// What is left of a text without the parts that are in this language.
    static QString untranslatedIn(QString text);

private:
    class Translator : public QTranslator
    {
    public:
        bool isEmpty() const override { return false; }
        QString translate(const char *context, const char *text, const char *, int) const override;
    };

    Translator m_translator;
};

} // namespace TestSupport
