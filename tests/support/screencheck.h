// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QStringList>

class QWidget;

namespace TestSupport {

/// Defects of the texts of a window as shown on the screen, each with its widget; empty if there are none. Only visible
/// widgets count. User-interface thread.
namespace ScreenCheck {

/// The texts of the window and of what is visible in it: titles, labels, buttons, entries of lists, headers, tool tips,
/// and names for assistive technology. Line edits and text edits contain what the operator has typed and do not count.
QStringList texts(QWidget *window);

/// Texts that are not in the pseudo-language, which must be installed. `ofTheUser` are names and the like, which are
/// never translated; digits, paths and punctuation are not either.
QStringList untranslated(QWidget *window, const QStringList &ofTheUser = {});

/// Widgets that clip their text without showing all of it in a tool tip, and widgets that do not fit into their parent.
QStringList clipped(QWidget *window);

} // namespace ScreenCheck

} // namespace TestSupport
