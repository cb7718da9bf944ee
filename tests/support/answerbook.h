// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <widgets/framelessmessagebox.h>

#include <QAbstractButton>
#include <QFileDialog>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVector>

#include <functional>

namespace TestSupport {

/// Answers message boxes, dialogs and file dialogs like a person: with clicks and keys on the real widgets, in the
/// order the test expects them.
///
/// A modal dialog that is unexpected or out of order is a failure and is closed with Escape, so that a test never
/// hangs. The host's waiting dialog is left alone. End a test with
///
///     QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
///
/// or leave it to the destructor, which then fails the running test function. User-interface thread.
class AnswerBook : public QObject
{
    Q_OBJECT

public:
    using Kind = HX::Widgets::FramelessMessageBox::Kind;

    /// A dialog that was shown.
    struct Seen
    {
        QString className;
        QString title;
        /// Message boxes only.
        Kind kind = Kind::Information;
        QString text;
        QMessageBox::StandardButtons buttons = QMessageBox::NoButton;
        /// File dialogs only. The folder without a trailing separator.
        QString directory;
        QStringList nameFilters;
        QFileDialog::FileMode fileMode = QFileDialog::AnyFile;
        QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
        bool onlyDirectories = false;
    };

    explicit AnswerBook(QObject *parent = nullptr);
    ~AnswerBook() override;

    /// A host message box; clicks `answer`, or presses Escape if it is NoButton. An empty `title` or `text` matches
    /// any; others must match exactly.
    void expectBox(Kind kind, const QString &title, const QString &text, QMessageBox::StandardButton answer);
    /// The same for a single OK, which is clicked.
    void expectInformation(const QString &title, const QString &text);
    void expectWarning(const QString &title, const QString &text);
    /// A question; `answer` must be one of its buttons, or NoButton for Escape.
    void expectQuestion(const QString &title, const QString &text, QMessageBox::StandardButton answer);

    /// Any other dialog, by its meta-object's class name (with namespaces). `act` fills its fields and clicks its
    /// buttons; the dialog must be closed when `act` returns.
    void expectDialog(const QString &className, std::function<void(QDialog *)> act);

    /// A file dialog: types `paths` (absolute) and clicks the accepting button, or presses Escape if there are none.
    /// `title` must match exactly unless it is empty.
    void expectFileDialog(const QString &title, const QStringList &paths);

    /// From now on unexpected dialogs are no failures: `act` gets each once it is shown, and must make sure that it
    /// closes.
    void answerOthers(std::function<void(QDialog *)> act) { m_answerOthers = std::move(act); }

    /// All dialogs so far, in order, unexpected ones included.
    const QVector<Seen> &seen() const { return m_seen; }
    /// True if exactly the expected dialogs were shown, in order.
    bool isSatisfied() const;
    /// Missing dialogs and failures, for a failure message.
    QString report() const;
    /// Clears expectations and failures.
    void clear();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    struct Expectation
    {
        QString description;
        /// Why this dialog is not the expected one; empty if it is.
        std::function<QString(QDialog *)> mismatch;
        std::function<void(QDialog *)> act;
    };

    void answer(QDialog *dialog);

    QVector<Expectation> m_expectations;
    std::function<void(QDialog *)> m_answerOthers;
    QVector<Seen> m_seen;
    QStringList m_failures;
};

/// Types the (absolute) paths into a file dialog and clicks its accepting button.
void typePaths(QFileDialog *dialog, const QStringList &paths);

/// Clicks with the left mouse button; fails the running test function if a person could not, because the button is
/// missing, hidden or disabled. Returns whether it clicked.
bool click(QAbstractButton *button);
/// Clicks the button below `parent` whose text is exactly `text` (mnemonics ignored).
bool click(QWidget *parent, const QString &text);

} // namespace TestSupport
