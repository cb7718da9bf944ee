// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "translatedtext.h"

#include <QMessageBox>

namespace ProjectFileCfg {
namespace Internal {

/// The host's message boxes, whose title and text follow a change of the language while the box is open. User-interface
/// thread. Each function runs a modal box, and `parent` may have been deleted when it returns.
namespace TranslatedBox {

void information(QWidget *parent, const TranslatedText &title, const TranslatedText &text);
void warning(QWidget *parent, const TranslatedText &title, const TranslatedText &text);
QMessageBox::StandardButton question(QWidget *parent, const TranslatedText &title, const TranslatedText &text,
                                     QMessageBox::StandardButtons buttons);

} // namespace TranslatedBox

} // namespace Internal
} // namespace ProjectFileCfg
