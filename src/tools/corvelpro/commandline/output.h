// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

class QJsonObject;

namespace Corvelpro {

class Progress;

/// Results go to stdout, messages to stderr, both in UTF-8 and line by line. Main thread.
class Output
{
public:
    enum class Form {
        Text,
        /// One document at the end, no lines.
        Json,
        /// No result at all.
        Quiet
    };

    explicit Output(Form form);

    Form form() const { return m_form; }

    /// A line of the result, as text only. Control characters, which a package's names and comment may contain, are
    /// escaped: they could command the terminal. So are line breaks; print each line of a comment by itself.
    void line(const QString &text);

    /// The whole result, as JSON only. Call it once.
    void json(const QJsonObject &result);

    /// An error or warning, on stderr in every form: "corvelpro: TEXT".
    void message(const QString &text);

    /// True if everything printed so far has reached stdout; false if the reader of a pipe has exited, or the disk of a
    /// redirection is full.
    bool flush();

private:
    friend class Progress;
    void setProgress(Progress *progress) { m_progress = progress; }
    void write(const QByteArray &text);

    const Form m_form;
    /// The bar to hide while something is printed; null if there is none.
    Progress *m_progress = nullptr;
};

/// `text` with its control characters as "\n", "\t" or "\u001b", and each backslash doubled if there are any.
QString printable(const QString &text);

} // namespace Corvelpro
