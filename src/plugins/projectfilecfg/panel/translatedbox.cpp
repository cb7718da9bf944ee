// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "translatedbox.h"

#include <host/dialogs.h>

#include <QVariant>

using HX::Widgets::FramelessMessageBox;

namespace ProjectFileCfg {
namespace Internal {

namespace {

QList<FramelessMessageBox *> boxesOf(const QWidget *parent)
{
    return parent->findChildren<FramelessMessageBox *>(QString(), Qt::FindDirectChildrenOnly);
}

/// Keeps the texts of the next box of `parent` in the current language.
///
/// The host opens a box and returns its answer in one call, so the box is looked up among the parent's children. Like
/// QMessageBox, a box updates its text when its property "text" is set.
class Texts
{
public:
    Texts(QWidget *parent, const TranslatedText &title, const TranslatedText &text)
        : m_follower(parent, [parent, others = boxesOf(parent), title, text] {
            for (FramelessMessageBox *box : boxesOf(parent)) {
                if (others.contains(box))
                    continue;
                box->setWindowTitle(title());
                box->setProperty("text", text());
                // Any further box is another caller's.
                return;
            }
        })
    {}

private:
    const LanguageFollower m_follower;
};

} // namespace

void TranslatedBox::information(QWidget *parent, const TranslatedText &title, const TranslatedText &text)
{
    const Texts texts(parent, title, text);
    FramelessMessageBox::information(parent, title(), text(), QMessageBox::Ok);
}

void TranslatedBox::warning(QWidget *parent, const TranslatedText &title, const TranslatedText &text)
{
    const Texts texts(parent, title, text);
    FramelessMessageBox::warning(parent, title(), text(), QMessageBox::Ok);
}

QMessageBox::StandardButton TranslatedBox::question(QWidget *parent, const TranslatedText &title,
                                                    const TranslatedText &text, QMessageBox::StandardButtons buttons)
{
    const Texts texts(parent, title, text);
    return FramelessMessageBox::question(parent, title(), text(), buttons);
}

} // namespace Internal
} // namespace ProjectFileCfg
