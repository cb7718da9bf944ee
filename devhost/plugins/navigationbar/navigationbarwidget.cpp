// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <navigationbar/navigationbarwidget.h>

#include <navigationbar/inavigationbarmode.h>
#include <navigationbar/navigationbarmodemanager.h>
#include <utils/icon.h>
#include <utils/textsize.h>

#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

namespace NavigationBar {

namespace {

QIcon buttonIcon(const INavigationBarMode &mode)
{
    QHash<int, QIcon> states;
    const QVector<QPair<int, QIcon>> stateIcons = mode.stateIcons();
    for (const QPair<int, QIcon> &state : stateIcons)
        states.insert(state.first, state.second);
    return Corvel::Utils::Icon::fromStates(states.value(INavigationBarMode::Normal, mode.icon()),
                                           states.value(INavigationBarMode::Hover, mode.icon()),
                                           states.value(INavigationBarMode::Pressed, mode.icon()));
}

} // namespace

NavigationBarWidget::NavigationBarWidget(NavigationBarModeManager *manager, QWidget *parent)
    : QWidget(parent)
    , m_manager(manager)
    , m_title(new QLabel(this))
    , m_layout(new QVBoxLayout(this))
{
    setObjectName(QStringLiteral("NavigationBar"));
    setAttribute(Qt::WA_StyledBackground);
    setFixedWidth(Corvel::Utils::inTextSize(184));
    m_title->setObjectName(QStringLiteral("NavigationBarTitle"));
    m_title->setFixedHeight(Corvel::Utils::inTextSize(44));
    m_layout->setContentsMargins(0, 0, 0, 8);
    m_layout->setSpacing(2);
    m_layout->addWidget(m_title);
    m_layout->addStretch();
    connect(manager, &NavigationBarModeManager::modesChanged, this, &NavigationBarWidget::rebuild);
    connect(manager, &NavigationBarModeManager::currentModeChanged, this, &NavigationBarWidget::showCurrent);
    rebuild();
}

void NavigationBarWidget::setTitle(const QString &title)
{
    m_title->setText(title);
}

QToolButton *NavigationBarWidget::button(const HX::Utils::Id &id) const
{
    return m_buttons.value(id);
}

void NavigationBarWidget::rebuild()
{
    qDeleteAll(m_buttons);
    m_buttons.clear();
    const QVector<HX::Utils::Id> ids = m_manager->modes();
    for (int i = 0; i < ids.size(); ++i) {
        const HX::Utils::Id &id = ids.at(i);
        const INavigationBarMode *mode = m_manager->mode(id);
        auto *button = new QToolButton(this);
        button->setObjectName(QStringLiteral("NavigationButton"));
        button->setText(mode->displayName());
        button->setToolTip(mode->toolTip());
        button->setIcon(buttonIcon(*mode));
        button->setIconSize(QSize(20, 20));
        button->setEnabled(mode->enabled());
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setAutoRaise(true);
        button->setCheckable(true);
        button->setFixedHeight(Corvel::Utils::inTextSize(40));
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        connect(button, &QToolButton::clicked, this, [this, id]() {
            m_manager->activateMode(id);
            showCurrent();
        });
        const int belowTheTitle = 1;
        m_layout->insertWidget(belowTheTitle + i, button);
        m_buttons.insert(id, button);
    }
    showCurrent();
}

void NavigationBarWidget::showCurrent()
{
    for (auto button = m_buttons.cbegin(); button != m_buttons.cend(); ++button)
        button.value()->setChecked(button.key() == m_manager->currentModeId());
}

} // namespace NavigationBar
