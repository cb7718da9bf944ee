// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "operatorhand.h"

#include <widgets/framelessmessagebox.h>
#include <widgets/waitingdialog.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QThread>
#include <QWindow>

#include <utility>

using Corvel::Widgets::WaitingDialog;
using HX::Widgets::FramelessMessageBox;

namespace {

constexpr int pollIntervalMs = 20;

QString nameOf(QWidget *widget)
{
    const QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(widget);
    const auto labels = interface->relations(QAccessible::Label);
    return labels.isEmpty() ? interface->text(QAccessible::Name) : labels.first().first->text(QAccessible::Name);
}

} // namespace

OperatorHand::OperatorHand(QWidget *window, const QString &pictureDirectory)
    : m_window(window)
    , m_pictureDirectory(pictureDirectory)
{
    connect(&m_poll, &QTimer::timeout, this, &OperatorHand::answerDialog);
    m_poll.start(pollIntervalMs);
}

void OperatorHand::onNextDialog(const std::function<void(QDialog *)> &act)
{
    m_answers.enqueue(act);
}

void OperatorHand::onNextBox(const QString &text, const QString &button)
{
    onNextDialog([this, text, button](QDialog *dialog) {
        const auto *box = qobject_cast<FramelessMessageBox *>(dialog);
        if (!box)
            throw TourFailure(
                QStringLiteral("expected the message \"%1\", met the dialog \"%2\"").arg(text, dialog->windowTitle()));
        if (box->text() != text)
            throw TourFailure(QStringLiteral("expected the message \"%1\", met \"%2\"").arg(text, box->text()));
        press(dialog, button);
    });
}

void OperatorHand::onNextFileDialog(const QStringList &paths)
{
    onNextDialog([paths](QDialog *dialog) {
        auto *fileDialog = qobject_cast<QFileDialog *>(dialog);
        auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        if (!fileDialog || !edit)
            throw TourFailure(QStringLiteral("expected a file dialog, met \"%1\"").arg(dialog->windowTitle()));
        edit->setText(paths.count() == 1 ? paths.first()
                                         : QStringLiteral("\"%1\"").arg(paths.join(QStringLiteral("\" \""))));
        QMetaObject::invokeMethod(fileDialog, "accept");
    });
}

void OperatorHand::answerDialog()
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (m_answering || !dialog || !dialog->isVisible() || qobject_cast<WaitingDialog *>(dialog))
        return;
    // An operator answers only what is visible.
    if (!dialog->windowHandle() || !dialog->windowHandle()->isExposed())
        return;
    m_answering = true;
    // Exceptions must not cross the event loop: stored until waitUntil() throws it.
    try {
        if (m_answers.isEmpty())
            throw TourFailure(QStringLiteral("did not expect the dialog \"%1\"").arg(dialog->windowTitle()));
        m_answers.dequeue()(dialog);
    } catch (const TourFailure &failure) {
        if (m_failure.isEmpty())
            m_failure = failure.text();
        dialog->reject();
    }
    m_answering = false;
}

void OperatorHand::press(QWidget *parent, const QString &text)
{
    const QList<QAbstractButton *> buttons = parent->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (button->text() == text && button->isVisible()) {
            press(button);
            return;
        }
    }
    throw TourFailure(QStringLiteral("there is no button \"%1\"").arg(text));
}

void OperatorHand::press(QAbstractButton *button)
{
    if (!button->isEnabled())
        throw TourFailure(QStringLiteral("the button \"%1\" is disabled").arg(button->text()));
    button->click();
}

QWidget *OperatorHand::frontWindow() const
{
    QWidget *dialog = QApplication::activeModalWidget();
    return dialog ? dialog : m_window;
}

void OperatorHand::sendKey(int key, const QString &text)
{
    ++m_keys;
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        // The press of a key may have closed the window.
        QKeyEvent event(type, key, Qt::NoModifier, text);
        QCoreApplication::sendEvent(frontWindow()->windowHandle(), &event);
    }
}

void OperatorHand::pressKey(Qt::Key key)
{
    sendKey(key, key == Qt::Key_Space ? QStringLiteral(" ") : QString());
}

void OperatorHand::type(const QString &text)
{
    for (const QChar character : text)
        sendKey(Qt::Key_unknown, character);
}

void OperatorHand::tabTo(const QString &name)
{
    // Without a window manager nobody activates the window behind a closed dialog, and the focus is not drawn.
    frontWindow()->activateWindow();
    QApplication::processEvents();
    const QWidget *first = nullptr;
    for (;;) {
        pressKey(Qt::Key_Tab);
        QWidget *focused = frontWindow()->focusWidget();
        if (!focused)
            throw TourFailure(QStringLiteral("nothing has the focus on the way to \"%1\"").arg(name));
        if (focused->visibleRegion().isEmpty())
            throw TourFailure(QStringLiteral("\"%1\" has the focus and cannot be seen").arg(nameOf(focused)));
        if (nameOf(focused) == name)
            return;
        if (focused == first)
            throw TourFailure(QStringLiteral("no Tab reaches \"%1\"").arg(name));
        if (!first)
            first = focused;
    }
}

int OperatorHand::takeKeyCount()
{
    return std::exchange(m_keys, 0);
}

void OperatorHand::waitUntil(const std::function<bool()> &condition, const QString &what, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (m_failure.isEmpty() && !condition()) {
        if (timer.hasExpired(timeoutMs))
            throw TourFailure(QStringLiteral("waited too long for %1").arg(what));
        QApplication::processEvents();
        QThread::msleep(2);
    }
    if (!m_failure.isEmpty())
        throw TourFailure(m_failure);
}

void OperatorHand::waitUntilIdle()
{
    waitUntil([this] { return m_answers.isEmpty() && !WaitingDialog::instance()->isVisible(); },
              QStringLiteral("the operation to end"));
}

void OperatorHand::takePicture(const QString &name)
{
    QApplication::processEvents();
    QPixmap picture = m_window->grab();
    QPainter painter(&picture);
    const QWidgetList topLevels = QApplication::topLevelWidgets();
    for (QWidget *widget : topLevels) {
        if (!widget->isVisible() || !qobject_cast<QDialog *>(widget))
            continue;
        painter.fillRect(picture.rect(), QColor(0, 0, 0, 110));
        const QPixmap dialog = widget->grab();
        const QSizeF free = QSizeF(m_window->size() - widget->size()) / 2;
        painter.drawPixmap(QPointF(free.width(), free.height()), dialog);
    }
    painter.end();
    const QString path = QStringLiteral("%1/%2.png").arg(m_pictureDirectory, name);
    if (!picture.save(path))
        throw TourFailure(QStringLiteral("cannot write %1").arg(path));
}
