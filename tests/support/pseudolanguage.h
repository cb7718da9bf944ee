// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>
#include <QTranslator>

namespace TestSupport {

/// A language in which every text is its English original with accents, half as long again, and in brackets. A text
/// without brackets was not translated; one that does not fit would be clipped in a language with longer words.
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
    /// The rest of a text without the parts in this language.
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
