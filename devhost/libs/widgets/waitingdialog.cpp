// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <widgets/waitingdialog.h>

#include <simulation/journal.h>
#include <widgets/onscreen.h>
#include <widgets/spinner.h>

#include <QAccessible>
#include <QApplication>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QMetaMethod>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace Operations = Simulation::Operations;
using Simulation::Journal;

namespace Corvel {
namespace Widgets {

namespace {

QPointer<WaitingDialog> s_instance; // clazy:exclude=non-pod-global-static

} // namespace

class WaitingDialog::Private
{
public:
    QLabel *text = nullptr;
    QPushButton *cancelButton = nullptr;
    /// The caller's text; empty for the button's default.
    QString wantedText;
    QString wantedButtonText;
    /// Cancel was pressed.
    bool stopping = false;
};

WaitingDialog *WaitingDialog::instance(QWidget *parent, int level)
{
    Q_UNUSED(level)
    if (!s_instance) {
        s_instance = new WaitingDialog(parent);
        // Without a parent the dialog is deleted with the application, before the platform integration is destroyed.
        qAddPostRoutine(&WaitingDialog::deleteInstance);
    }
    return s_instance;
}

void WaitingDialog::deleteInstance()
{
    delete s_instance;
}

WaitingDialog::WaitingDialog(QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
    , d(new Private)
{
    setObjectName(QStringLiteral("WaitingDialog"));
    setWindowModality(Qt::ApplicationModal);
    setFocusPolicy(Qt::StrongFocus);
    ignoreLateMapping(this);
    setFixedWidth(420);

    auto *frame = new QFrame(this);
    frame->setObjectName(QStringLiteral("FramelessDialogFrame"));
    auto *spinner = new Spinner(frame);
    d->text = new QLabel(frame);
    d->text->setObjectName(QStringLiteral("WaitingDialogText"));
    d->text->setTextFormat(Qt::PlainText);
    d->text->setAlignment(Qt::AlignCenter);
    d->text->setWordWrap(true);
    d->cancelButton = new QPushButton(frame);
    d->cancelButton->setObjectName(QStringLiteral("WaitingDialogCancel"));
    d->cancelButton->setAutoDefault(false);
    d->cancelButton->hide();
    setButtonText(QString());
    connect(d->cancelButton, &QPushButton::clicked, this, &WaitingDialog::cancel);
    refreshCancelButton();

    auto *layout = new QVBoxLayout(frame);
    layout->setContentsMargins(32, 32, 32, 28);
    layout->setSpacing(20);
    layout->addWidget(spinner, 0, Qt::AlignHCenter);
    layout->addWidget(d->text, 1);
    layout->addWidget(d->cancelButton, 0, Qt::AlignHCenter);
    auto *outerLayout = new QVBoxLayout(this);
    outerLayout->setContentsMargins(0, 0, 0, 0);
    outerLayout->addWidget(frame);
}

WaitingDialog::~WaitingDialog()
{
    delete d;
}

void WaitingDialog::showWaitingDialog(const QString &text, int level)
{
    Journal::instance()->record(Operations::showWaitingDialog,
                                {{QStringLiteral("text"), text}, {QStringLiteral("level"), level}});
    d->wantedText = text;
    refreshText();
    if (!isVisible()) {
        show();
        waitUntilOnScreen(windowHandle());
    }
    refreshCancelButton();
    paintNow();
}

void WaitingDialog::hideWaitingDialog()
{
    Journal::instance()->record(Operations::hideWaitingDialog);
    hide();
    d->stopping = false;
    refreshCancelButton();
}

void WaitingDialog::setCanelVisible(bool visible)
{
    Journal::instance()->record(Operations::setCanelVisible, {{QStringLiteral("visible"), visible}});
    d->cancelButton->setVisible(visible);
    fitToText();
}

void WaitingDialog::setButtonText(const QString &text)
{
    d->wantedButtonText = text;
    d->cancelButton->setText(text.isEmpty() ? tr("Cancel") : text);
}

QString WaitingDialog::text() const
{
    return d->text->text();
}

bool WaitingDialog::isCanelVisible() const
{
    return !d->cancelButton->isHidden();
}

void WaitingDialog::reject() {}

bool WaitingDialog::isObeyed() const
{
    return isSignalConnected(QMetaMethod::fromSignal(&WaitingDialog::signal_canelLoad));
}

void WaitingDialog::refreshCancelButton()
{
    d->cancelButton->setEnabled(isObeyed() && !d->stopping);
}

void WaitingDialog::connectNotify(const QMetaMethod &signal)
{
    refreshCancelButtonLater();
    QDialog::connectNotify(signal);
}

void WaitingDialog::disconnectNotify(const QMetaMethod &signal)
{
    refreshCancelButtonLater();
    QDialog::disconnectNotify(signal);
}

void WaitingDialog::refreshCancelButtonLater()
{
    // Qt holds its connection lock while a receiver's destructor sends this notification: querying the connections now
    // would deadlock.
    QMetaObject::invokeMethod(
        this, [this] { refreshCancelButton(); }, Qt::QueuedConnection);
}

void WaitingDialog::cancel()
{
    // A deleted receiver sends no disconnect notification.
    if (!isObeyed()) {
        refreshCancelButton();
        return;
    }
    d->stopping = true;
    setFocus();
    refreshCancelButton();
    refreshText();
    // Receivers may block in a call to the device.
    paintNow();
    emit signal_canelLoad();
}

void WaitingDialog::keyPressEvent(QKeyEvent *event)
{
    // An Escape still held from a box it closed is not meant for this dialog.
    if (event->key() == Qt::Key_Escape && !event->isAutoRepeat() && d->cancelButton->isVisible())
        d->cancelButton->click();
    event->accept();
}

void WaitingDialog::showEvent(QShowEvent *event)
{
    // A focused cancel button would be pressed by the next space that is typed.
    setFocus();
    QWidget *window = parentWidget() ? parentWidget()->window() : QApplication::activeWindow();
    if (window && window != this)
        move(window->frameGeometry().center() - rect().center());
    QDialog::showEvent(event);
}

void WaitingDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        setButtonText(d->wantedButtonText);
        refreshText();
    }
    QDialog::changeEvent(event);
}

void WaitingDialog::refreshText()
{
    const QString text = d->stopping ? tr("Stopping, please wait...") : d->wantedText;
    const bool isNews = text != windowTitle() || !isVisible();
    setWindowTitle(text);
    d->text->setText(text);
    fitToText();
    if (!isNews)
        return;
    // An alert would be right, but AT-SPI only passes on name changes.
    for (const QAccessible::Event type : {QAccessible::NameChanged, QAccessible::Alert}) {
        QAccessibleEvent announcement(this, type);
        QAccessible::updateAccessibility(&announcement);
    }
}

void WaitingDialog::paintNow()
{
    // A widget refuses to paint before its first expose event, which needs the event loop.
    setAttribute(Qt::WA_Mapped);
    repaint();
}

void WaitingDialog::fitToText()
{
    const int previousHeight = height();
    // The frame inside answers for its label only once its own layout knows the new text.
    d->text->parentWidget()->layout()->activate();
    layout()->activate();
    resize(width(), layout()->totalHeightForWidth(width()));
    if (isVisible())
        move(x(), y() + (previousHeight - height()) / 2);
}

} // namespace Widgets
} // namespace Corvel
