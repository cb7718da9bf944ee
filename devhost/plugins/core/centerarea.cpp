// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/centerarea.h>

#include <core/modemanager.h>
#include <extensionsystem/objectpool.h>
#include <widgets/icenterwidget.h>

#include <QDebug>
#include <QEvent>
#include <QLabel>

namespace Core {

CenterArea::CenterArea(QWidget *parent)
    : QStackedWidget(parent)
    , m_emptyPage(new QLabel(this))
{
    setObjectName(QStringLiteral("CenterArea"));
    m_emptyPage->setObjectName(QStringLiteral("QuietText"));
    m_emptyPage->setAlignment(Qt::AlignCenter);
    addWidget(m_emptyPage);
    retranslateUi();
    const ModeManager *manager = ModeManager::instance();
    connect(manager, &ModeManager::centerWidgetAdded, this, &CenterArea::add);
    connect(manager, &ModeManager::centerWidgetRemoved, this, &CenterArea::remove);
    connect(manager, &ModeManager::centerWidgetActivated, this, &CenterArea::activate);
}

void CenterArea::add(const HX::Utils::Id &id)
{
    const auto widgets = HX::ExtensionSystem::ObjectPool::instance()->objectsOfType<Corvel::Widgets::ICenterWidget>();
    for (Corvel::Widgets::ICenterWidget *widget : widgets) {
        if (widget->id() == id) {
            m_widgets.insert(id, widget);
            addWidget(widget);
            return;
        }
    }
    qWarning() << "The object pool holds no central widget" << id;
}

void CenterArea::remove(const HX::Utils::Id &id)
{
    QWidget *widget = m_widgets.take(id);
    if (!widget)
        return;
    removeWidget(widget);
    // Reparented to its owner, or it would be deleted with the window.
    widget->setParent(nullptr);
}

void CenterArea::activate(const HX::Utils::Id &id)
{
    QWidget *widget = m_widgets.value(id);
    setCurrentWidget(widget ? widget : m_emptyPage);
}

void CenterArea::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    QStackedWidget::changeEvent(event);
}

void CenterArea::retranslateUi()
{
    m_emptyPage->setText(tr("Choose an entry at the left."));
}

} // namespace Core
