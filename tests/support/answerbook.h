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

/// Answers message boxes, dialogs and file dialogs as a person would: with clicks and keys on the real
/// widgets, in the order in which the test expects them.
///
/// A modal dialog that nobody expected, or that is not the next one, is a failure and is closed by
/// Escape, so that a test never hangs. The host's waiting dialog is left alone. Say at the end
///
///     QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
///
/// or leave it to the destructor, which fails the running test function then. User-interface thread.
class AnswerBook : public QObject
{
    Q_OBJECT

public:
    using Kind = HX::Widgets::FramelessMessageBox::Kind;

    /// A dialog as it was met.
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

    /// A host message box; `answer` is clicked, or Escape pressed when it is NoButton.
    /// An empty `title` or `text` stands for any; else they must be exactly so.
    void expectBox(Kind kind, const QString &title, const QString &text, QMessageBox::StandardButton answer);
    /// The same with a single OK, which is clicked.
    void expectInformation(const QString &title, const QString &text);
    void expectWarning(const QString &title, const QString &text);
    /// A question; `answer` must be one of its buttons, or NoButton for Escape.
    void expectQuestion(const QString &title, const QString &text, QMessageBox::StandardButton answer);

    /// Any other dialog, by the class name that its meta-object gives (with namespaces). `act` fills its
    /// fields and clicks its buttons; the dialog must be closed when `act` returns.
    void expectDialog(const QString &className, std::function<void(QDialog *)> act);

    /// A file dialog: `paths` (absolute) are typed in and the accepting button is clicked, or Escape is
    /// pressed when there are none. `title` must be exactly so, unless it is empty.
    void expectFileDialog(const QString &title, const QStringList &paths);

    /// From now on a dialog that nobody expects is no failure: `act` gets it once it is shown, and sees to it that it
    /// closes, at once or later.
    void answerOthers(std::function<void(QDialog *)> act) { m_answerOthers = std::move(act); }

    /// Everything that was met so far, in order, the unexpected ones too.
    const QVector<Seen> &seen() const { return m_seen; }
    /// True when all that was expected came, in order, and nothing else.
    bool isSatisfied() const;
    /// What is missing and what went wrong, for a failure message.
    QString report() const;
    /// Forgets expectations and failures.
    void clear();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    struct Expectation
    {
        QString description;
        /// Returns why this dialog is not the expected one; empty when it is.
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

/// Clicks with the left mouse button, and fails the running test function when a person could not: when
/// the button is missing, hidden or disabled. Returns whether it clicked.
bool click(QAbstractButton *button);
/// Clicks the button below `parent` whose text is exactly `text` (mnemonics ignored).
bool click(QWidget *parent, const QString &text);

} // namespace TestSupport
