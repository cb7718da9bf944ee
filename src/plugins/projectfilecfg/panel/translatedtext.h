// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QEvent>
#include <QObject>
#include <QString>

#include <functional>

namespace ProjectFileCfg {
namespace Internal {

/// A text for the operator, composed anew at each call, in the language of that moment. Empty, not callable, for none.
using TranslatedText = std::function<QString()>;

/// Calls `refresh` whenever the language changes, as long as this object and `widget` live. User-interface thread.
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
