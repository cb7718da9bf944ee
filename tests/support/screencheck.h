// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QStringList>

class QWidget;

namespace TestSupport {

/// What is wrong with the texts of a window as it is on the screen, each with its widget; empty if nothing is. Only
/// visible widgets count. User-interface thread.
namespace ScreenCheck {

/// The texts of the window and of what is visible in it: titles, labels, buttons, entries of lists, headers, tool tips,
/// and names for assistive technology. Line edits and text edits hold what the operator typed and do not count.
QStringList texts(QWidget *window);

/// Texts that are not in the pseudo-language, which must be installed. `ofTheUser` are names and the like, which no
/// language translates; so are digits, paths and punctuation.
QStringList untranslated(QWidget *window, const QStringList &ofTheUser = {});

/// Widgets that clip their text, without a tool tip that has it whole, and widgets that do not fit into their parent.
QStringList clipped(QWidget *window);

} // namespace ScreenCheck

} // namespace TestSupport
