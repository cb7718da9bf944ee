// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QEvent>
#include <QObject>
#include <QString>

#include <functional>

namespace ProjectFileCfg {
namespace Internal {

/// Composes a text for the operator in the language at the time of the call. Empty, and so not callable, if there is
/// none.
using TranslatedText = std::function<QString()>;

/// Calls `refresh` whenever the language changes, during the lifetime of this object and of `widget`. User-interface
/// thread.
class LanguageFollower : public QObject
{
public:
    LanguageFollower(QObject *widget, std::function<void()> refresh)
        : m_refresh(std::move(refresh))
    {
        widget->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::LanguageChange)
            m_refresh();
        return QObject::eventFilter(watched, event);
    }

private:
    const std::function<void()> m_refresh;
};

} // namespace Internal
} // namespace ProjectFileCfg
