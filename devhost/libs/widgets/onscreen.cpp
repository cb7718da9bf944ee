// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <widgets/onscreen.h>

#ifdef HOST_HAS_X11
#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <QWidget>
#include <QWindow>
#include <QX11Info>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace Corvel {
namespace Widgets {

namespace {

constexpr int patienceMs = 2000;
constexpr int pollIntervalMs = 1;

bool isViewable(xcb_connection_t *connection, WId id)
{
    const xcb_get_window_attributes_cookie_t cookie =
        xcb_get_window_attributes(connection, static_cast<xcb_window_t>(id));
    const std::unique_ptr<xcb_get_window_attributes_reply_t, decltype(&std::free)> attributes(
        xcb_get_window_attributes_reply(connection, cookie, nullptr), &std::free);
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

class LateMappingFilter : public QObject, public QAbstractNativeEventFilter
{
public:
    explicit LateMappingFilter(QWidget *widget)
        : QObject(widget)
        , m_widget(widget)
    {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray &eventType, void *message, long *) override
    {
        if (eventType != "xcb_generic_event_t" || m_widget->isVisible() || !m_widget->internalWinId())
            return false;
        const auto *event = static_cast<xcb_generic_event_t *>(message);
        const int sentByAnotherClient = 0x80;
        return (event->response_type & ~sentByAnotherClient) == XCB_MAP_NOTIFY &&
               static_cast<xcb_map_notify_event_t *>(message)->window == m_widget->internalWinId();
    }

private:
    QWidget *const m_widget;
};

} // namespace

void waitUntilOnScreen(const QWindow *window)
{
    if (!window || !QX11Info::isPlatformX11())
        return;
    QElapsedTimer timer;
    timer.start();
    while (!isViewable(QX11Info::connection(), window->winId()) && !timer.hasExpired(patienceMs))
        QThread::msleep(pollIntervalMs);
}

void ignoreLateMapping(QWidget *widget)
{
    if (QX11Info::isPlatformX11())
        new LateMappingFilter(widget);
}

} // namespace Widgets
} // namespace Corvel

#else

namespace Corvel {
namespace Widgets {

void waitUntilOnScreen(const QWindow *) {}
void ignoreLateMapping(QWidget *) {}

} // namespace Widgets
} // namespace Corvel

#endif
