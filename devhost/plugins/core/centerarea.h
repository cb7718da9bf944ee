// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <utils/id.h>

#include <QHash>
#include <QPointer>
#include <QStackedWidget>

class QLabel;

namespace Corvel {
namespace Widgets {
class ICenterWidget;
}
} // namespace Corvel

namespace Core {

/// The central-widget area: shows the mode manager's active widget.
class CenterArea : public QStackedWidget
{
    Q_OBJECT

public:
    explicit CenterArea(QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void add(const HX::Utils::Id &id);
    void remove(const HX::Utils::Id &id);
    void activate(const HX::Utils::Id &id);
    void retranslateUi();

    QLabel *m_emptyPage;
    QHash<HX::Utils::Id, QPointer<Corvel::Widgets::ICenterWidget>> m_widgets;
};

} // namespace Core
