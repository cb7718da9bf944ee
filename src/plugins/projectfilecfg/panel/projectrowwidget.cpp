// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectrowwidget.h"

#include <QFocusEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QToolButton>
#include <QVariant>

namespace ProjectFileCfg {
namespace Internal {

namespace {

bool leadsToAnotherRow(const QKeyEvent &event)
{
    const bool isModified = (event.modifiers() & ~Qt::KeypadModifier) != 0;
    const QList<int> keys{Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End};
    return !isModified && keys.contains(event.key());
}

} // namespace

ProjectRowWidget::Icons::Icons()
    : edit(QStringLiteral(":resource/images/icon_setting_project_edit.png"))
    , apply(QStringLiteral(":resource/images/icon_setting_project_apply.png"))
    , saveAs(QStringLiteral(":resource/images/icon_setting_project_save.png"))
    , remove(QStringLiteral(":resource/images/icon_setting_project_del.png"))
{}

ProjectRowWidget::ProjectRowWidget(const Icons &icons, QWidget *parent)
    : QWidget(parent)
{
    setLayout(new QHBoxLayout);
    m_pEditBtn = addButton("EngineerDocOperBlue", icons.edit);
    addSeparator("EngineerFunctionLine");
    m_pApplyBtn = addButton("EngineerDocOperBlue", icons.apply);
    addSeparator("EngineerFunctionLine");
    m_pSaveAsBtn = addButton("EngineerDocOperBlue", icons.saveAs);
    // The host's style sheet draws this one differently.
    addSeparator("DeviceFunctionLine");
    m_pDeleteBtn = addButton("EngineerDocOperRed", icons.remove);
}

ProjectRowWidget::~ProjectRowWidget() = default;

QToolButton *ProjectRowWidget::addButton(const char *styleProperty, const QIcon &icon)
{
    QToolButton *button = new QToolButton(this);
    button->setProperty(styleProperty, true);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setIcon(icon);
    button->installEventFilter(this);
    layout()->addWidget(button);
    return button;
}

void ProjectRowWidget::addSeparator(const char *styleProperty)
{
    QFrame *line = new QFrame(this);
    line->setProperty(styleProperty, true);
    line->setFixedWidth(1);
    line->setFrameShape(QFrame::VLine);
    layout()->addWidget(line);
}

void ProjectRowWidget::setFilePath(const QString &path)
{
    m_strFilePath = path;
    for (QToolButton *button : buttons())
        button->setProperty("FilePath", path);
}

void ProjectRowWidget::setTexts(const Texts &texts)
{
    m_pEditBtn->setText(texts.strEdit);
    m_pApplyBtn->setText(texts.strApply);
    m_pSaveAsBtn->setText(texts.strSaveAs);
    m_pDeleteBtn->setText(texts.strRemove);
}

void ProjectRowWidget::setProjectName(const QString &name)
{
    for (QToolButton *button : buttons()) {
        const QString accessibleName = QStringLiteral("%1, %2").arg(button->text(), name);
        // Each call notifies screen readers, even if the name does not change.
        if (button->accessibleName() != accessibleName)
            button->setAccessibleName(accessibleName);
    }
}

void ProjectRowWidget::followInTabOrder(QWidget *widget) const
{
    for (QToolButton *button : buttons()) {
        setTabOrder(widget, button);
        widget = button;
    }
}

int ProjectRowWidget::focusedButton() const
{
    return buttons().indexOf(qobject_cast<QToolButton *>(window()->focusWidget()));
}

void ProjectRowWidget::focusButton(int index) const
{
    buttons().at(index)->setFocus(Qt::OtherFocusReason);
}

bool ProjectRowWidget::eventFilter(QObject *watched, QEvent *event)
{
    // Activating the window must not scroll the list.
    if (event->type() == QEvent::FocusIn && static_cast<QFocusEvent *>(event)->reason() != Qt::ActiveWindowFocusReason)
        emit signal_buttonFocused();
    if (event->type() == QEvent::KeyPress && leadsToAnotherRow(*static_cast<QKeyEvent *>(event))) {
        emit signal_rowLeft(static_cast<QKeyEvent *>(event)->key());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Internal
} // namespace ProjectFileCfg
