// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QVariantAnimation>
#include <QWidget>

namespace Corvel {
namespace Widgets {

/// A rotating arc that shows activity; animated only while visible.
class Spinner : public QWidget
{
    Q_OBJECT

public:
    explicit Spinner(QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QVariantAnimation m_angle;
};

} // namespace Widgets
} // namespace Corvel
