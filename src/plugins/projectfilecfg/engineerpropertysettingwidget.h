// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <host/dialogs.h>

class QLabel;
class QPushButton;
class QTextEdit;

/// The dialog for a project's name and comment.
///
/// It limits the comment to 100 characters and refuses the name of another project. It writes nothing: read the name
/// and the comment after exec() returned QDialog::Accepted. Its texts follow a change of the language; typed text
/// stays.
class EngineerPropertySettingWidget : public HX::Widgets::FramelessDialog
{
    Q_OBJECT

public:
    /// Only stores `name` and `comment`; setProjectName() and setComment() show them.
    EngineerPropertySettingWidget(QWidget *parent, const QString &name, const QString &comment);
    ~EngineerPropertySettingWidget() override;

    /// Shows `name`, selected so that typing replaces it, and stores it as the one existing name that is accepted.
    void setProjectName(const QString &name);
    /// Shows `comment`, cut to 100 characters.
    void setComment(const QString &comment);

    /// The text of the name field, without leading and trailing blanks.
    QString getProjectName();
    QString getComment() const;

protected:
    void changeEvent(QEvent *event) override;

private slots:
    void slot_CommentTextChanged();
    void slot_OkBtnClicked();
    void slot_NameTextChanged();

private:
    void initUI();
    void initConnects();
    void retranslateUi();
    void updateCounter();

    QLabel *m_pNameLabel = nullptr;
    QLabel *m_pCommentLabel = nullptr;
    QLabel *m_pBlankLabel = nullptr;
    QLabel *m_pCountLabel = nullptr;
    QPushButton *m_pOkBtn = nullptr;
    QPushButton *m_pCancelBtn = nullptr;
    Corvel::Widgets::FixedBitLineEditEx *m_pNameEdit = nullptr;
    QTextEdit *m_pCommentEdit = nullptr;
    QString m_strOldName;
    QString m_strName;
    QString m_strComment;
};
