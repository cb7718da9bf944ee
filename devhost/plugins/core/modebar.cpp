// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/modebar.h>

#include <core/imode.h>
#include <core/modemanager.h>
#include <utils/textsize.h>

#include <QToolButton>
#include <QVBoxLayout>

namespace Core {

ModeBar::ModeBar(QWidget *parent)
    : QWidget(parent)
    , m_layout(new QVBoxLayout(this))
{
    setObjectName(QStringLiteral("ModeBar"));
    setAttribute(Qt::WA_StyledBackground);
    m_layout->setContentsMargins(0, 8, 0, 8);
    m_layout->setSpacing(4);
    m_layout->addStretch();
    connect(ModeManager::instance(), &ModeManager::modesChanged, this, &ModeBar::rebuild);
    connect(ModeManager::instance(), &ModeManager::currentModeChanged, this, &ModeBar::showCurrent);
    rebuild();
}

void ModeBar::rebuild()
{
    qDeleteAll(m_buttons);
    m_buttons.clear();
    int width = Corvel::Utils::inTextSize(92);
    const QVector<IMode *> modes = ModeManager::modes();
    for (int i = 0; i < modes.size(); ++i) {
        const HX::Utils::Id id = modes.at(i)->id();
        auto *button = new QToolButton(this);
        button->setObjectName(QStringLiteral("ModeButton"));
        button->setText(modes.at(i)->displayName());
        button->setIcon(modes.at(i)->icon());
        button->setIconSize(QSize(24, 24));
        button->setEnabled(modes.at(i)->enabled());
        button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        button->setAutoRaise(true);
        button->setCheckable(true);
        button->ensurePolished();
        width = qMax(width, button->sizeHint().width());
        connect(button, &QToolButton::clicked, this, [this, id]() {
            ModeManager::activateMode(id);
            showCurrent();
        });
        m_layout->insertWidget(i, button);
        m_buttons.insert(id, button);
    }
    // One width for all, in every language.
    for (QToolButton *button : qAsConst(m_buttons))
        button->setFixedSize(width, Corvel::Utils::inTextSize(68));
    setFixedWidth(width);
    showCurrent();
}

void ModeBar::showCurrent()
{
    for (auto button = m_buttons.cbegin(); button != m_buttons.cend(); ++button)
        button.value()->setChecked(button.key() == ModeManager::currentMode());
}

} // namespace Core
