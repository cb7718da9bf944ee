// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "answerbook.h"

#include <widgets/waitingdialog.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QEvent>
#include <QLineEdit>
#include <QMetaEnum>
#include <QPushButton>
#include <QtTest>

namespace TestSupport {

using HX::Widgets::FramelessMessageBox;

namespace {

QString kindName(AnswerBook::Kind kind)
{
    return QString::fromLatin1(QMetaEnum::fromType<AnswerBook::Kind>().valueToKey(kind)).toLower();
}

QString buttonName(QMessageBox::StandardButton button)
{
    if (button == QMessageBox::NoButton)
        return QStringLiteral("Escape");
    return QString::fromLatin1(QMetaEnum::fromType<QMessageBox::StandardButtons>().valueToKey(button));
}

QString className(const QDialog *dialog)
{
    return QString::fromLatin1(dialog->metaObject()->className());
}

QString describe(const QDialog *dialog)
{
    if (const auto *box = qobject_cast<const FramelessMessageBox *>(dialog))
        return QStringLiteral("%1 box \"%2\": \"%3\"").arg(kindName(box->kind()), box->windowTitle(), box->text());
    return QStringLiteral("%1 \"%2\"").arg(className(dialog), dialog->windowTitle());
}

AnswerBook::Seen look(const QDialog *dialog)
{
    AnswerBook::Seen seen;
    seen.className = className(dialog);
    seen.title = dialog->windowTitle();
    if (const auto *box = qobject_cast<const FramelessMessageBox *>(dialog)) {
        seen.kind = box->kind();
        seen.text = box->text();
        seen.buttons = box->standardButtons();
    }
    if (const auto *files = qobject_cast<const QFileDialog *>(dialog)) {
        seen.directory = files->directory().path();
        seen.nameFilters = files->nameFilters();
        seen.fileMode = files->fileMode();
        seen.acceptMode = files->acceptMode();
        seen.onlyDirectories = files->testOption(QFileDialog::ShowDirsOnly);
    }
    return seen;
}

void pressEscape(QDialog *dialog)
{
    QTest::keyClick(dialog, Qt::Key_Escape);
}

} // namespace

AnswerBook::AnswerBook(QObject *parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
}

AnswerBook::~AnswerBook()
{
    if (!isSatisfied() && !QTest::currentTestFailed())
        QTest::qFail(qPrintable(report()), "", 0);
}

void AnswerBook::expectBox(Kind kind, const QString &title, const QString &text, QMessageBox::StandardButton answer)
{
    Expectation expected;
    expected.description =
        QStringLiteral("%1 box \"%2\": \"%3\", answered by %4").arg(kindName(kind), title, text, buttonName(answer));
    expected.mismatch = [=](QDialog *dialog) {
        const auto *box = qobject_cast<FramelessMessageBox *>(dialog);
        const bool matches = box && box->kind() == kind && (title.isEmpty() || box->windowTitle() == title) &&
                             (text.isEmpty() || box->text() == text);
        if (!matches)
            return QStringLiteral("it is another one");
        if (answer != QMessageBox::NoButton && !box->button(answer))
            return QStringLiteral("it has no such button");
        return QString();
    };
    expected.act = [=](QDialog *dialog) {
        if (answer == QMessageBox::NoButton)
            pressEscape(dialog);
        else
            click(qobject_cast<FramelessMessageBox *>(dialog)->button(answer));
    };
    m_expectations.append(expected);
}

void AnswerBook::expectInformation(const QString &title, const QString &text)
{
    expectBox(FramelessMessageBox::Information, title, text, QMessageBox::Ok);
}

void AnswerBook::expectWarning(const QString &title, const QString &text)
{
    expectBox(FramelessMessageBox::Warning, title, text, QMessageBox::Ok);
}

void AnswerBook::expectQuestion(const QString &title, const QString &text, QMessageBox::StandardButton answer)
{
    expectBox(FramelessMessageBox::Question, title, text, answer);
}

void AnswerBook::expectDialog(const QString &expectedClass, std::function<void(QDialog *)> act)
{
    Expectation expected;
    expected.description = expectedClass;
    expected.mismatch = [=](QDialog *dialog) {
        return dialog->inherits(expectedClass.toLatin1()) ? QString() : QStringLiteral("it is of another class");
    };
    expected.act = std::move(act);
    m_expectations.append(expected);
}

void AnswerBook::expectFileDialog(const QString &title, const QStringList &paths)
{
    Expectation expected;
    expected.description =
        QStringLiteral("file dialog \"%1\", answered by %2")
            .arg(title, paths.isEmpty() ? buttonName(QMessageBox::NoButton) : paths.join(QStringLiteral(", ")));
    expected.mismatch = [=](QDialog *dialog) {
        const bool matches = qobject_cast<QFileDialog *>(dialog) && (title.isEmpty() || dialog->windowTitle() == title);
        return matches ? QString() : QStringLiteral("it is another one");
    };
    expected.act = [=](QDialog *dialog) {
        if (paths.isEmpty())
            pressEscape(dialog);
        else
            typePaths(qobject_cast<QFileDialog *>(dialog), paths);
    };
    m_expectations.append(expected);
}

bool AnswerBook::isSatisfied() const
{
    return m_expectations.isEmpty() && m_failures.isEmpty();
}

QString AnswerBook::report() const
{
    QStringList lines = m_failures;
    for (const Expectation &missing : m_expectations)
        lines.append(QStringLiteral("Never came: ") + missing.description);
    return lines.join(QLatin1Char('\n'));
}

void AnswerBook::clear()
{
    m_expectations.clear();
    m_failures.clear();
}

bool AnswerBook::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Show) {
        auto *dialog = qobject_cast<QDialog *>(object);
        if (dialog && dialog->isModal() && !qobject_cast<Corvel::Widgets::WaitingDialog *>(dialog)) {
            // Answered from the dialog's own event loop once it runs.
            const QPointer<QDialog> shown = dialog;
            QMetaObject::invokeMethod(
                this,
                [this, shown]() {
                    if (shown && shown->isVisible())
                        answer(shown);
                },
                Qt::QueuedConnection);
        }
    }
    return QObject::eventFilter(object, event);
}

void AnswerBook::answer(QDialog *dialog)
{
    m_seen.append(look(dialog));
    const QString description = describe(dialog);
    const QPointer<QDialog> open = dialog;

    if (m_expectations.isEmpty() && m_answerOthers) {
        m_answerOthers(dialog);
        return;
    }
    if (m_expectations.isEmpty()) {
        m_failures.append(QStringLiteral("Nobody expected: ") + description);
    } else {
        const QString mismatch = m_expectations.first().mismatch(dialog);
        if (!mismatch.isEmpty()) {
            m_failures.append(QStringLiteral("Came: %1, but %2. Expected next: %3")
                                  .arg(description, mismatch, m_expectations.first().description));
        } else {
            // Removed first: `act` may open the next dialog.
            const Expectation expected = m_expectations.takeFirst();
            expected.act(dialog);
            if (open && open->isVisible())
                m_failures.append(QStringLiteral("Still open after its answer: ") + description);
        }
    }

    if (open && open->isVisible())
        open->reject();
}

void typePaths(QFileDialog *dialog, const QStringList &paths)
{
    QString typed = QDir::toNativeSeparators(paths.first());
    if (paths.size() > 1) {
        QStringList quoted;
        for (const QString &path : paths)
            quoted.append(QLatin1Char('"') + QDir::toNativeSeparators(path) + QLatin1Char('"'));
        typed = quoted.join(QLatin1Char(' '));
    }
    // The completer's popup would swallow the following click.
    auto *field = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    field->setCompleter(nullptr);
    field->setText(typed);
    auto *buttons = dialog->findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"));
    click(buttons->button(dialog->acceptMode() == QFileDialog::AcceptSave ? QDialogButtonBox::Save
                                                                          : QDialogButtonBox::Open));
}

bool click(QAbstractButton *button)
{
    if (!button || !button->isVisible() || !button->isEnabled()) {
        const QString name = button ? button->text() : QStringLiteral("(none)");
        const QString why = !button ? QStringLiteral("missing")
                                    : (button->isVisible() ? QStringLiteral("disabled") : QStringLiteral("hidden"));
        QTest::qFail(qPrintable(QStringLiteral("The button \"%1\" cannot be clicked: %2").arg(name, why)), "", 0);
        return false;
    }
    QTest::mouseClick(button, Qt::LeftButton);
    return true;
}

bool click(QWidget *parent, const QString &text)
{
    for (QAbstractButton *button : parent->findChildren<QAbstractButton *>()) {
        if (button->text().remove(QLatin1Char('&')) == text)
            return click(button);
    }
    return click(static_cast<QAbstractButton *>(nullptr));
}

} // namespace TestSupport
