// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <widgets/framelessdialog.h>

#include <widgets/titlebar.h>

#include <QDialogButtonBox>
#include <QEvent>
#include <QFrame>
#include <QPushButton>
#include <QVBoxLayout>

namespace HX {
namespace Widgets {

class FramelessDialog::Private
{
public:
    QWidget *content = nullptr;
    QWidget *bottomBar = nullptr;
    QPushButton *okButton = nullptr;
    QPushButton *cancelButton = nullptr;
};

FramelessDialog::FramelessDialog(QWidget *parent, Qt::WindowFlags flags)
    : QDialog(parent, flags | Qt::Dialog | Qt::FramelessWindowHint)
    , d(new Private)
{
    // A style sheet cannot draw a border around a dialog, but it can around a frame inside.
    auto *frame = new QFrame(this);
    frame->setObjectName(QStringLiteral("FramelessDialogFrame"));
    auto *titleBar = new TitleBar(this);
    connect(titleBar, &TitleBar::closeRequested, this, &QDialog::reject);
    d->content = new QWidget(frame);
    d->content->setObjectName(QStringLiteral("FramelessDialogContent"));

    d->bottomBar = new QWidget(frame);
    d->bottomBar->setObjectName(QStringLiteral("FramelessDialogBottomBar"));
    d->bottomBar->setAttribute(Qt::WA_StyledBackground);
    d->okButton = new QPushButton(d->bottomBar);
    d->okButton->setObjectName(QStringLiteral("FramelessDialogOk"));
    d->cancelButton = new QPushButton(d->bottomBar);
    d->cancelButton->setObjectName(QStringLiteral("FramelessDialogCancel"));
    connect(d->okButton, &QPushButton::clicked, this, &QDialog::accept);
    connect(d->cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    auto *bottomLayout = new QHBoxLayout(d->bottomBar);
    bottomLayout->setContentsMargins(16, 10, 16, 10);
    bottomLayout->setSpacing(12);
    bottomLayout->addStretch();
    bottomLayout->addWidget(d->okButton);
    bottomLayout->addWidget(d->cancelButton);

    auto *frameLayout = new QVBoxLayout(frame);
    frameLayout->setContentsMargins(1, 1, 1, 1);
    frameLayout->setSpacing(0);
    frameLayout->addWidget(titleBar);
    frameLayout->addWidget(d->content, 1);
    frameLayout->addWidget(d->bottomBar);

    auto *outerLayout = new QVBoxLayout;
    outerLayout->setContentsMargins(0, 0, 0, 0);
    outerLayout->addWidget(frame);
    QDialog::setLayout(outerLayout);
    retranslateUi();
}

FramelessDialog::~FramelessDialog()
{
    delete d;
}

void FramelessDialog::setBottomBarVisible(bool visible)
{
    d->bottomBar->setVisible(visible);
    // Hidden buttons must not become the dialog's default button.
    d->okButton->setAutoDefault(visible);
    d->cancelButton->setAutoDefault(visible);
}

void FramelessDialog::setLayout(QLayout *layout)
{
    delete d->content->layout();
    d->content->setLayout(layout);
}

void FramelessDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    QDialog::changeEvent(event);
}

void FramelessDialog::retranslateUi()
{
    d->okButton->setText(tr("OK"));
    d->cancelButton->setText(tr("Cancel"));
}

} // namespace Widgets
} // namespace HX
