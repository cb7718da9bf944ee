// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <widgets/titlebar.h>

#include <utils/icon.h>
#include <utils/textsize.h>

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QToolButton>
#include <QWindow>

namespace HX {
namespace Widgets {

TitleBar::TitleBar(QWidget *window)
    : QWidget(window)
    , m_layout(new QHBoxLayout(this))
{
    setObjectName(QStringLiteral("TitleBar"));
    setAttribute(Qt::WA_StyledBackground);
    setFixedHeight(Corvel::Utils::inTextSize(40));

    auto *title = new QLabel(window->windowTitle(), this);
    title->setObjectName(QStringLiteral("TitleBarText"));
    title->setTextFormat(Qt::PlainText);
    title->setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(window, &QWidget::windowTitleChanged, title, &QLabel::setText);

    m_layout->setContentsMargins(16, 0, 4, 0);
    m_layout->setSpacing(0);
    m_layout->addWidget(title, 1);
    m_closeButton = addButton(QStringLiteral("window_close"));
    m_closeButton->setObjectName(QStringLiteral("TitleBarCloseButton"));
    connect(m_closeButton, &QToolButton::clicked, this, &TitleBar::closeRequested);
    retranslateUi();
}

QToolButton *TitleBar::addButton(const QString &iconName)
{
    auto *button = new QToolButton(this);
    button->setIcon(Corvel::Utils::Icon::fromTheme(iconName, QString()));
    button->setFixedSize(36, 32);
    button->setFocusPolicy(Qt::NoFocus);
    insert(button);
    return button;
}

QToolButton *TitleBar::addMenuButton(QMenu *menu)
{
    auto *button = new QToolButton(this);
    button->setMenu(menu);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setFocusPolicy(Qt::TabFocus);
    insert(button);
    return button;
}

void TitleBar::insert(QToolButton *button)
{
    m_layout->insertWidget(m_closeButton ? m_layout->indexOf(m_closeButton) : m_layout->count(), button);
}

void TitleBar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_dragging = true;
    m_grip = event->globalPos() - window()->pos();
}

void TitleBar::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_dragging || window()->isMaximized())
        return;
    // Lets the window system move the window if it can: it snaps, and some platforms allow nothing else.
    if (window()->windowHandle() && window()->windowHandle()->startSystemMove())
        m_dragging = false;
    else
        window()->move(event->globalPos() - m_grip);
}

void TitleBar::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        m_dragging = false;
}

void TitleBar::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
}

void TitleBar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    QWidget::changeEvent(event);
}

void TitleBar::retranslateUi()
{
    m_closeButton->setToolTip(tr("Close"));
    m_closeButton->setAccessibleName(tr("Close"));
}

} // namespace Widgets
} // namespace HX
