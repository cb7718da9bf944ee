// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QIcon>
#include <QList>
#include <QWidget>

class QToolButton;

namespace ProjectFileCfg {
namespace Internal {

/// The buttons of one row of the project table. The property "FilePath" of each is the path of the row's package.
class ProjectRowWidget : public QWidget
{
    Q_OBJECT

public:
    /// The buttons' texts, translated once for all rows.
    struct Texts
    {
        QString strEdit;
        QString strApply;
        QString strSaveAs;
        QString strRemove;
    };

    /// The buttons' icons, read once for all rows.
    struct Icons
    {
        Icons();

        const QIcon edit;
        const QIcon apply;
        const QIcon saveAs;
        const QIcon remove;
    };

    ProjectRowWidget(const Icons &icons, QWidget *parent);
    ~ProjectRowWidget() override;

    QString filePath() const { return m_strFilePath; }
    void setFilePath(const QString &path);
    void setTexts(const Texts &texts);
    /// Gives the buttons accessible names with the project's name. Call after setTexts().
    void setProjectName(const QString &name);

    /// Puts the buttons after `widget` in the tab order, from left to right.
    void followInTabOrder(QWidget *widget) const;

    /// Index, from the left, of the button that has the focus in its window; -1 if none has.
    int focusedButton() const;
    void focusButton(int index) const;

    QToolButton *editButton() const { return m_pEditBtn; }
    QToolButton *applyButton() const { return m_pApplyBtn; }
    QToolButton *saveAsButton() const { return m_pSaveAsBtn; }
    QToolButton *deleteButton() const { return m_pDeleteBtn; }

signals:
    /// One of the buttons got the focus, but not because its window became active.
    void signal_buttonFocused();
    /// Qt::Key_Up, Qt::Key_Down, Qt::Key_Home or Qt::Key_End was pressed on one of the buttons.
    void signal_rowLeft(int key);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QList<QToolButton *> buttons() const { return {m_pEditBtn, m_pApplyBtn, m_pSaveAsBtn, m_pDeleteBtn}; }
    QToolButton *addButton(const char *styleProperty, const QIcon &icon);
    void addSeparator(const char *styleProperty);

    QString m_strFilePath;
    QToolButton *m_pEditBtn = nullptr;
    QToolButton *m_pApplyBtn = nullptr;
    QToolButton *m_pSaveAsBtn = nullptr;
    QToolButton *m_pDeleteBtn = nullptr;
};

} // namespace Internal
} // namespace ProjectFileCfg
