// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <utils/id.h>

#include <QHash>
#include <QWidget>

class QToolButton;
class QVBoxLayout;

namespace Core {

/// The column of buttons that switches between the top-level modes.
class ModeBar : public QWidget
{
    Q_OBJECT

public:
    explicit ModeBar(QWidget *parent = nullptr);

private:
    void rebuild();
    void showCurrent();

    QVBoxLayout *m_layout;
    QHash<HX::Utils::Id, QToolButton *> m_buttons;
};

} // namespace Core
