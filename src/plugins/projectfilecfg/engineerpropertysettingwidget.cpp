// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "engineerpropertysettingwidget.h"

#include "packagelayout.h"
#include "projectpaths.h"
#include "translatedbox.h"

#include <host/dialogs.h>

#include <QEvent>
#include <QFile>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTextCursor>
#include <QTextEdit>
#include <QVBoxLayout>

using Corvel::Widgets::FixedBitLineEditEx;
namespace PackageLayout = ProjectFileCfg::Internal::PackageLayout;
namespace TranslatedBox = ProjectFileCfg::Internal::TranslatedBox;
namespace ProjectPaths = ProjectFileCfg::Internal::ProjectPaths;

namespace {

constexpr int maxCommentLength = 100;

bool splitsSurrogatePair(const QString &text, int position)
{
    return position > 0 && position < text.length() && text.at(position).isLowSurrogate() &&
           text.at(position - 1).isHighSurrogate();
}

/// Removes the excess just before the caret, where it was typed or pasted. If there is too little text before the
/// caret, as after setComment(), keeps the first 100 characters. Never splits a surrogate pair.
QString cutToLimit(const QString &typed, int *caret)
{
    const int excess = typed.length() - maxCommentLength;
    if (excess <= 0)
        return typed;

    int from = *caret - excess;
    int to = *caret;
    *caret = qMax(0, from);
    if (from < 0) {
        from = maxCommentLength;
        to = typed.length();
    }
    if (splitsSurrogatePair(typed, to))
        ++to;
    if (splitsSurrogatePair(typed, from)) {
        --from;
        *caret = qMin(*caret, from);
    }
    return typed.left(from) + typed.mid(to);
}

} // namespace

EngineerPropertySettingWidget::EngineerPropertySettingWidget(QWidget *parent, const QString &name,
                                                             const QString &comment)
    : HX::Widgets::FramelessDialog(parent)
    , m_strName(name)
    , m_strComment(comment)
{
    initUI();
    initConnects();
}

EngineerPropertySettingWidget::~EngineerPropertySettingWidget() = default;

void EngineerPropertySettingWidget::setProjectName(const QString &name)
{
    m_strName = name;
    m_strOldName = name;
    m_pNameEdit->setEditText(name);
    m_pNameEdit->selectAll();
    m_pNameEdit->setFocus();
}

void EngineerPropertySettingWidget::setComment(const QString &comment)
{
    m_strComment = comment;
    // Not setText(), which would render a comment that looks like HTML.
    m_pCommentEdit->setPlainText(comment);
    updateCounter();
}

QString EngineerPropertySettingWidget::getProjectName()
{
    m_strName = m_pNameEdit->text().trimmed();
    return m_strName;
}

QString EngineerPropertySettingWidget::getComment() const
{
    return m_strComment;
}

void EngineerPropertySettingWidget::initUI()
{
    setBottomBarVisible(false);
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint);
    setContentsMargins(0, 0, 0, 0);
    setFixedSize(748, 280);

    m_pNameLabel = new QLabel;
    m_pNameLabel->setProperty("StaticLable", true);
    m_pNameLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_pNameEdit = new FixedBitLineEditEx;
    m_pNameEdit->setFixedSize(240, 36);
    m_pNameLabel->setBuddy(m_pNameEdit);
    QHBoxLayout *nameRow = new QHBoxLayout;
    nameRow->setContentsMargins(32, 0, 32, 0);
    nameRow->setSpacing(12);
    nameRow->addWidget(m_pNameLabel);
    nameRow->addWidget(m_pNameEdit);
    nameRow->addStretch();

    m_pCommentLabel = new QLabel;
    m_pCommentLabel->setProperty("StaticLable", true);
    m_pCommentLabel->setAlignment(Qt::AlignRight | Qt::AlignTop);
    m_pCommentEdit = new QTextEdit;
    m_pCommentEdit->setProperty("EngineerDialogEdit", true);
    m_pCommentEdit->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_pCommentEdit->setAcceptRichText(false);
    m_pCommentEdit->setTabChangesFocus(true);
    m_pCommentLabel->setBuddy(m_pCommentEdit);
    QHBoxLayout *commentRow = new QHBoxLayout;
    commentRow->setContentsMargins(32, 0, 32, 0);
    commentRow->setSpacing(12);
    commentRow->addWidget(m_pCommentLabel);
    commentRow->addWidget(m_pCommentEdit);

    m_pBlankLabel = new QLabel;
    m_pCountLabel = new QLabel;
    m_pCountLabel->setProperty("StaticLable", true);
    m_pCountLabel->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    QHBoxLayout *counterRow = new QHBoxLayout;
    counterRow->setContentsMargins(32, 0, 32, 0);
    counterRow->addWidget(m_pBlankLabel);
    counterRow->addWidget(m_pCountLabel);
    counterRow->addStretch();

    QFrame *separator = new QFrame;
    separator->setFixedHeight(1);
    separator->setStyleSheet(QStringLiteral("QFrame{background-color:#222126; color:#222126;}"));
    separator->setFrameShape(QFrame::HLine);
    separator->setContentsMargins(0, 0, 0, 0);

    m_pOkBtn = new QPushButton;
    m_pCancelBtn = new QPushButton;
    QHBoxLayout *buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->setSpacing(20);
    buttonRow->addWidget(m_pOkBtn);
    buttonRow->addWidget(m_pCancelBtn);
    buttonRow->addSpacing(32);
    buttonRow->setContentsMargins(5, 5, 5, 5);

    QVBoxLayout *mainLayout = new QVBoxLayout;
    mainLayout->setContentsMargins(0, 16, 0, 16);
    mainLayout->setSpacing(8);
    mainLayout->addLayout(nameRow);
    mainLayout->addSpacing(8);
    mainLayout->addLayout(commentRow);
    mainLayout->addLayout(counterRow);
    mainLayout->addWidget(separator);
    mainLayout->addLayout(buttonRow);
    setLayout(mainLayout);

    retranslateUi();
}

void EngineerPropertySettingWidget::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    HX::Widgets::FramelessDialog::changeEvent(event);
}

void EngineerPropertySettingWidget::initConnects()
{
    connect(m_pNameEdit, &QLineEdit::textChanged, this, &EngineerPropertySettingWidget::slot_NameTextChanged);
    connect(m_pCommentEdit, &QTextEdit::textChanged, this, &EngineerPropertySettingWidget::slot_CommentTextChanged);
    connect(m_pCancelBtn, &QAbstractButton::clicked, this, &QDialog::reject);
    connect(m_pOkBtn, &QAbstractButton::clicked, this, &EngineerPropertySettingWidget::slot_OkBtnClicked);
}

void EngineerPropertySettingWidget::retranslateUi()
{
    setWindowTitle(tr("project attribute"));
    m_pNameLabel->setText(tr("Project name"));
    m_pCommentLabel->setText(tr("Commect"));
    m_pOkBtn->setText(tr("OK"));
    m_pCancelBtn->setText(tr("Cancel"));
    updateCounter();

    // One width for all labels, so that the fields line up in every language.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    const int labelWidth =
        qMax(fontMetrics().width(m_pNameLabel->text()), fontMetrics().width(m_pCommentLabel->text())) + 30;
    QT_WARNING_POP
    for (QLabel *label : {m_pNameLabel, m_pCommentLabel, m_pBlankLabel}) {
        label->setFixedWidth(labelWidth);
        label->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }
}

void EngineerPropertySettingWidget::updateCounter()
{
    m_pCountLabel->setText(QStringLiteral("%1/%2").arg(QString::number(m_pCommentEdit->toPlainText().length()),
                                                       QString::number(maxCommentLength)));
}

void EngineerPropertySettingWidget::slot_CommentTextChanged()
{
    const QString typed = m_pCommentEdit->toPlainText();
    int caret = m_pCommentEdit->textCursor().position();
    const QString text = cutToLimit(typed, &caret);
    if (text != typed) {
        disconnect(m_pCommentEdit, &QTextEdit::textChanged, this,
                   &EngineerPropertySettingWidget::slot_CommentTextChanged);
        m_pCommentEdit->setPlainText(text);
        QTextCursor cursor = m_pCommentEdit->textCursor();
        cursor.setPosition(caret);
        m_pCommentEdit->setTextCursor(cursor);
        connect(m_pCommentEdit, &QTextEdit::textChanged, this, &EngineerPropertySettingWidget::slot_CommentTextChanged);
    }
    m_strComment = text;
    updateCounter();
}

void EngineerPropertySettingWidget::slot_OkBtnClicked()
{
    m_strName = m_pNameEdit->text();
    const QString path = ProjectPaths::projectFilesPath() + m_strName + PackageLayout::packageExtension;
    if (QFile::exists(path) && m_strOldName.toUpper() != m_strName.toUpper()) {
        TranslatedBox::warning(
            this, [] { return tr("Remind"); }, [] { return tr("The current file already exists"); });
        return;
    }
    accept();
}

void EngineerPropertySettingWidget::slot_NameTextChanged()
{
    m_pOkBtn->setEnabled(!m_pNameEdit->text().isEmpty());
}
