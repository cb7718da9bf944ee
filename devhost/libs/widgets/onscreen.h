#pragma once

class QWidget;
class QWindow;

namespace Corvel {
namespace Widgets {

// What a window that is shown and hidden while the event loop stands still needs of the window system. Only X11 needs
// any of it; elsewhere, and where the X11 libraries were missing at build time, these do nothing. User-interface thread
// only.

/// Waits, without running the event loop, until the window system shows `window`, at most two seconds: what is painted
/// before that is lost, since a window manager takes its time to map a window.
void waitUntilOnScreen(const QWindow *window);

/// Keeps from Qt that `widget` was mapped when it is hidden again by the time at which that becomes known: Qt would
/// give it the focus, which is an X error. For as long as the widget lives.
void ignoreLateMapping(QWidget *widget);

} // namespace Widgets
} // namespace Corvel
