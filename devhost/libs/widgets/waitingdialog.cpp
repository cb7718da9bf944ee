#include <widgets/waitingdialog.h>

#include <simulation/journal.h>
#include <widgets/spinner.h>

#include <QApplication>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace Operations = Simulation::Operations;
using Simulation::Journal;

namespace Corvel {
namespace Widgets {

namespace {

QPointer<WaitingDialog> theInstance;

} // namespace

class WaitingDialog::Private
{
public:
    QLabel *text = nullptr;
    QPushButton *cancelButton = nullptr;
};

WaitingDialog *WaitingDialog::instance(QWidget *parent, int level)
{
    Q_UNUSED(level)
    if (!theInstance) {
        theInstance = new WaitingDialog(parent);
        // A dialog without a parent is nobody's: it goes with the application, before its windows' platform goes.
        qAddPostRoutine(&WaitingDialog::deleteInstance);
    }
    return theInstance;
}

void WaitingDialog::deleteInstance()
{
    delete theInstance;
}

WaitingDialog::WaitingDialog(QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
    , d(new Private)
{
    setObjectName(QStringLiteral("WaitingDialog"));
    setWindowModality(Qt::ApplicationModal);
    setFocusPolicy(Qt::StrongFocus);
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
    setButtonText(tr("Cancel"));
    connect(d->cancelButton, &QPushButton::clicked, this, &WaitingDialog::signal_canelLoad);

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
    Q_UNUSED(level)
    Journal::instance()->record(Operations::showWaitingDialog, {{QStringLiteral("text"), text}});
    setWindowTitle(text);
    d->text->setText(text);
    fitToText();
    if (!isVisible())
        show();
    // Until its first expose event comes, which takes the event loop, a widget refuses to paint.
    setAttribute(Qt::WA_Mapped);
    repaint();
}

void WaitingDialog::hideWaitingDialog()
{
    Journal::instance()->record(Operations::hideWaitingDialog);
    hide();
}

void WaitingDialog::setCanelVisible(bool visible)
{
    Journal::instance()->record(Operations::setCanelVisible, {{QStringLiteral("visible"), visible}});
    d->cancelButton->setVisible(visible);
    fitToText();
}

void WaitingDialog::setButtonText(const QString &text)
{
    d->cancelButton->setText(text);
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

void WaitingDialog::keyPressEvent(QKeyEvent *event)
{
    event->accept();
}

void WaitingDialog::showEvent(QShowEvent *event)
{
    // A cancel button that had the focus would be pressed by the next blank that is typed.
    setFocus();
    QWidget *window = parentWidget() ? parentWidget()->window() : QApplication::activeWindow();
    if (window && window != this)
        move(window->frameGeometry().center() - rect().center());
    QDialog::showEvent(event);
}

void WaitingDialog::fitToText()
{
    const int previousHeight = height();
    layout()->activate();
    resize(width(), layout()->totalHeightForWidth(width()));
    if (isVisible())
        move(x(), y() + (previousHeight - height()) / 2);
}

} // namespace Widgets
} // namespace Corvel
