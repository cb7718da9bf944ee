// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <utils/id.h>
#include <widgets/widgets_global.h>

#include <QWidget>

namespace Corvel {
namespace Widgets {

/// Stands for the base class of a mode's page in the central area of the window.
///
/// The host finds it by its id in the object pool once `Core::ModeManager::addCenterWidget` was called.
class HOST_WIDGETS_EXPORT ICenterWidget : public QWidget
{
    Q_OBJECT

public:
    explicit ICenterWidget(const HX::Utils::Id &id, QWidget *parent = nullptr);
    ~ICenterWidget() override;

    HX::Utils::Id id() const;

    /// Brings the widget to the front of the central area.
    void raiseWindow();
    /// Called when the widget is shown.
    virtual void enterWindow();
    /// Called when the widget is left.
    virtual void leaveWindow();
    /// Sets every text again. Called after each change of the language.
    virtual void retranslateUi();

protected:
    void changeEvent(QEvent *event) override;

private:
    const HX::Utils::Id m_id;
};

} // namespace Widgets
} // namespace Corvel
