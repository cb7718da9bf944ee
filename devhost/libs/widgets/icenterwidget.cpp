// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <widgets/icenterwidget.h>

#include <simulation/journal.h>

#include <QEvent>

namespace Corvel {
namespace Widgets {

namespace {

void record(const QString &operation, const HX::Utils::Id &id)
{
    Simulation::Journal::instance()->record(operation, {{QStringLiteral("id"), id.toString()}});
}

} // namespace

ICenterWidget::ICenterWidget(const HX::Utils::Id &id, QWidget *parent)
    : QWidget(parent)
    , m_id(id)
{}

ICenterWidget::~ICenterWidget() = default;

HX::Utils::Id ICenterWidget::id() const
{
    return m_id;
}

void ICenterWidget::raiseWindow()
{
    record(Simulation::Operations::raiseWindow, m_id);
    raise();
}

void ICenterWidget::enterWindow()
{
    record(Simulation::Operations::enterWindow, m_id);
}

void ICenterWidget::leaveWindow()
{
    record(Simulation::Operations::leaveWindow, m_id);
}

void ICenterWidget::retranslateUi() {}

void ICenterWidget::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    QWidget::changeEvent(event);
}

} // namespace Widgets
} // namespace Corvel
