// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QWidget;
class QWindow;

namespace Corvel {
namespace Widgets {

// Support for windows shown and hidden while the event loop is blocked. Only X11 needs it; on other platforms, and if
// built without the X11 libraries, these functions do nothing. User-interface thread only.

/// Waits, without running the event loop, until the window system has mapped `window`, at most two seconds: a window
/// manager maps a window with a delay, and anything painted before is lost.
void waitUntilOnScreen(const QWindow *window);

/// Filters the map event of `widget` if that is hidden again when the event arrives: Qt would give it the focus, which
/// is an X error. Installed for the widget's lifetime.
void ignoreLateMapping(QWidget *widget);

} // namespace Widgets
} // namespace Corvel
