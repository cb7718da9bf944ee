// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "translatedtexts.h"

#include <engineerpropertysettingwidget.h>

#include <support/answerbook.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <widgets/fixedbitlineeditex.h>

#include <QAccessible>
#include <QClipboard>
#include <QFile>
#include <QFontMetrics>
#include <QFrame>
#include <QHBoxLayout>
#include <QInputMethodEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QStandardPaths>
#include <QTextEdit>
#include <QVBoxLayout>

#include <memory>

using namespace TestSupport;
using Corvel::Widgets::FixedBitLineEditEx;

namespace {

const QString emoji = QString::fromUtf8("\xF0\x9F\x8E\xAC");

/// Documents + the fixed folders, spelled out here to test the product's own path too.
QString projectFilesPath()
{
    return QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation).value(0) +
           QStringLiteral("/Velmora/Tarvo/ProjectFiles/");
}

bool makeProjectFile(const QString &name)
{
    QFile file(projectFilesPath() + name + QStringLiteral(".corvelpro"));
    return file.open(QIODevice::WriteOnly);
}

int textWidth(const QWidget &widget, const QString &text)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return widget.fontMetrics().width(text);
    QT_WARNING_POP
}

bool hasWholeCharactersOnly(const QString &text)
{
    return QString::fromUcs4(text.toUcs4().constData(), text.toUcs4().size()) == text &&
           !text.toUcs4().contains(QChar::ReplacementCharacter);
}

} // namespace

/// The shown dialog and its visible parts.
class ShownDialog
{
public:
    explicit ShownDialog(const QString &name = QString(), const QString &comment = QString())
        : dialog(nullptr, QString(), QString())
    {
        dialog.setProjectName(name);
        dialog.setComment(comment);
        dialog.show();
    }

    QWidget *content() const { return dialog.findChild<QWidget *>(QStringLiteral("FramelessDialogContent")); }
    QVBoxLayout *mainLayout() const { return qobject_cast<QVBoxLayout *>(content()->layout()); }
    QHBoxLayout *row(int index) const { return qobject_cast<QHBoxLayout *>(mainLayout()->itemAt(index)->layout()); }
    template<typename T>
    T *inRow(int rowIndex, int index) const
    {
        return qobject_cast<T *>(row(rowIndex)->itemAt(index)->widget());
    }

    QLabel *nameLabel() const { return inRow<QLabel>(0, 0); }
    FixedBitLineEditEx *nameEdit() const { return inRow<FixedBitLineEditEx>(0, 1); }
    QLabel *commentLabel() const { return inRow<QLabel>(2, 0); }
    QTextEdit *commentEdit() const { return inRow<QTextEdit>(2, 1); }
    QLabel *blankLabel() const { return inRow<QLabel>(3, 0); }
    QLabel *countLabel() const { return inRow<QLabel>(3, 1); }
    QFrame *separator() const { return qobject_cast<QFrame *>(mainLayout()->itemAt(4)->widget()); }
    QPushButton *okButton() const { return inRow<QPushButton>(5, 1); }
    QPushButton *cancelButton() const { return inRow<QPushButton>(5, 2); }

    void placeCaret(int position)
    {
        QTextCursor cursor = commentEdit()->textCursor();
        cursor.setPosition(position);
        commentEdit()->setTextCursor(cursor);
    }
    int caret() const { return commentEdit()->textCursor().position(); }
    bool hasSelection() const { return commentEdit()->textCursor().hasSelection(); }
    QString shownComment() const { return commentEdit()->toPlainText(); }

    void paste(QWidget *field, const QString &text)
    {
        QApplication::clipboard()->setText(text);
        QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
    }

    EngineerPropertySettingWidget dialog;
};

class TstEngineerPropertySettingWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void slots_are_in_their_fixed_order();
    void texts_are_those_of_the_dialog();
    void texts_follow_the_language();
    void size_and_margins_are_fixed();
    void rows_are_in_their_order();
    void properties_mark_what_the_style_sheet_selects();
    void labels_share_one_column();
    void the_dialog_has_one_pair_of_buttons();

    void constructor_leaves_the_fields_empty();
    void counter_is_shown_without_a_comment();
    void setters_fill_the_fields();
    void counter_follows_the_comment();

    void comment_of_exactly_100_characters_is_kept_whole();
    void typing_the_101st_character_drops_exactly_that_one_data();
    void typing_the_101st_character_drops_exactly_that_one();
    void pasting_30_before_90_keeps_the_first_10();
    void pasting_far_too_much_keeps_what_fits();
    void setting_a_long_comment_keeps_100_characters_data();
    void setting_a_long_comment_keeps_100_characters();
    void emoji_that_does_not_fit_is_dropped_whole();
    void emoji_before_a_full_comment_is_dropped_whole();
    void emoji_are_never_split_wherever_they_are_pasted();
    void truncating_inside_an_emoji_removes_it_whole();
    void the_field_can_be_edited_after_a_cut();
    void html_in_a_comment_stays_plain_text();
    void formatted_text_is_pasted_as_plain_text();

    void name_holds_64_bytes_of_whole_characters_data();
    void name_holds_64_bytes_of_whole_characters();
    void ok_needs_a_name();
    void enter_confirms_only_while_ok_is_enabled();
    void the_shown_name_is_replaced_by_typing();
    void tab_leaves_the_comment_field();
    void fields_are_named_by_their_labels();

    void ok_accepts_a_free_name();
    void the_name_is_trimmed_when_it_is_read();
    void cancel_escape_and_close_reject_data();
    void cancel_escape_and_close_reject();
    void cancel_ignores_a_taken_name();
    void name_of_another_project_is_refused();
    void unchanged_name_is_accepted_although_its_file_exists_data();
    void unchanged_name_is_accepted_although_its_file_exists();
    void existence_is_tested_with_the_name_as_typed();
};

void TstEngineerPropertySettingWidget::init()
{
    WarningGuard::clear();
    QDir(projectFilesPath()).removeRecursively();
    QVERIFY(QDir().mkpath(projectFilesPath()));
}

void TstEngineerPropertySettingWidget::slots_are_in_their_fixed_order()
{
    const QMetaObject &meta = EngineerPropertySettingWidget::staticMetaObject;
    QCOMPARE(meta.className(), "EngineerPropertySettingWidget");
    QVERIFY(meta.inherits(&HX::Widgets::FramelessDialog::staticMetaObject));
    QByteArrayList own;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(i).access(), QMetaMethod::Private);
        own.append(meta.method(i).methodSignature());
    }
    QCOMPARE(own, QByteArrayList({"slot_CommentTextChanged()", "slot_OkBtnClicked()", "slot_NameTextChanged()"}));
}

void TstEngineerPropertySettingWidget::texts_are_those_of_the_dialog()
{
    const ShownDialog shown(QStringLiteral("Project1"));
    QCOMPARE(shown.dialog.windowTitle(), QStringLiteral("project attribute"));
    QCOMPARE(shown.nameLabel()->text(), QStringLiteral("Project name"));
    QCOMPARE(shown.commentLabel()->text(), QStringLiteral("Commect"));
    QCOMPARE(shown.blankLabel()->text(), QString());
    QCOMPARE(shown.okButton()->text(), QStringLiteral("OK"));
    QCOMPARE(shown.cancelButton()->text(), QStringLiteral("Cancel"));
}

void TstEngineerPropertySettingWidget::texts_follow_the_language()
{
    const TranslatedTexts chinese(QStringLiteral("zh_CN"));
    QVERIFY(chinese.areFound());
    const ShownDialog shown(QStringLiteral("Project1"));
    QCOMPARE(shown.dialog.windowTitle(), QStringLiteral("项目属性"));
    QCOMPARE(shown.nameLabel()->text(), QStringLiteral("项目名称"));
    QCOMPARE(shown.commentLabel()->text(), QStringLiteral("备注"));
    QCOMPARE(shown.okButton()->text(), QStringLiteral("确定"));
    QCOMPARE(shown.cancelButton()->text(), QStringLiteral("取消"));
}

void TstEngineerPropertySettingWidget::size_and_margins_are_fixed()
{
    const ShownDialog shown;
    QCOMPARE(shown.dialog.minimumSize(), QSize(748, 280));
    QCOMPARE(shown.dialog.maximumSize(), QSize(748, 280));
    QCOMPARE(shown.dialog.size(), QSize(748, 280));
    QVERIFY(shown.dialog.windowFlags().testFlag(Qt::FramelessWindowHint));
    QCOMPARE(shown.dialog.contentsMargins(), QMargins(0, 0, 0, 0));

    QCOMPARE(shown.mainLayout()->contentsMargins(), QMargins(0, 16, 0, 16));
    QCOMPARE(shown.mainLayout()->spacing(), 8);
    QCOMPARE(shown.row(0)->contentsMargins(), QMargins(32, 0, 32, 0));
    QCOMPARE(shown.row(0)->spacing(), 12);
    QCOMPARE(shown.row(2)->contentsMargins(), QMargins(32, 0, 32, 0));
    QCOMPARE(shown.row(2)->spacing(), 12);
    QCOMPARE(shown.row(3)->contentsMargins(), QMargins(32, 0, 32, 0));
    QCOMPARE(shown.row(5)->contentsMargins(), QMargins(5, 5, 5, 5));
    QCOMPARE(shown.row(5)->spacing(), 20);

    QCOMPARE(shown.nameEdit()->minimumSize(), QSize(240, 36));
    QCOMPARE(shown.nameEdit()->maximumSize(), QSize(240, 36));
    QCOMPARE(shown.commentEdit()->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding));
}

void TstEngineerPropertySettingWidget::rows_are_in_their_order()
{
    const ShownDialog shown;
    QCOMPARE(shown.mainLayout()->count(), 6);
    QCOMPARE(shown.mainLayout()->itemAt(1)->spacerItem()->sizeHint().height(), 8);

    QCOMPARE(shown.row(0)->count(), 3);
    QVERIFY(shown.nameLabel());
    QVERIFY(shown.nameEdit());
    QVERIFY(shown.row(0)->itemAt(2)->spacerItem()->expandingDirections() & Qt::Horizontal);
    QCOMPARE(shown.nameLabel()->alignment(), Qt::AlignRight | Qt::AlignVCenter);

    QCOMPARE(shown.row(2)->count(), 2);
    QVERIFY(shown.commentLabel());
    QVERIFY(shown.commentEdit());
    QCOMPARE(shown.commentLabel()->alignment(), Qt::AlignRight | Qt::AlignTop);

    QCOMPARE(shown.row(3)->count(), 3);
    QVERIFY(shown.blankLabel());
    QVERIFY(shown.countLabel());
    QVERIFY(shown.row(3)->itemAt(2)->spacerItem()->expandingDirections() & Qt::Horizontal);
    QCOMPARE(shown.countLabel()->alignment(), Qt::AlignLeft | Qt::AlignVCenter);

    QCOMPARE(shown.separator()->minimumHeight(), 1);
    QCOMPARE(shown.separator()->maximumHeight(), 1);
    QCOMPARE(shown.separator()->frameShape(), QFrame::HLine);
    QCOMPARE(shown.separator()->contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(shown.separator()->styleSheet(), QStringLiteral("QFrame{background-color:#222126; color:#222126;}"));

    QCOMPARE(shown.row(5)->count(), 4);
    QVERIFY(shown.row(5)->itemAt(0)->spacerItem()->expandingDirections() & Qt::Horizontal);
    QVERIFY(shown.okButton());
    QVERIFY(shown.cancelButton());
    QCOMPARE(shown.row(5)->itemAt(3)->spacerItem()->sizeHint().width(), 32);
}

void TstEngineerPropertySettingWidget::properties_mark_what_the_style_sheet_selects()
{
    const ShownDialog shown;
    for (const QLabel *label : {shown.nameLabel(), shown.commentLabel(), shown.countLabel()})
        QCOMPARE(label->property("StaticLable"), QVariant(true));
    QVERIFY(!shown.blankLabel()->property("StaticLable").isValid());
    QCOMPARE(shown.commentEdit()->property("EngineerDialogEdit"), QVariant(true));
}

void TstEngineerPropertySettingWidget::labels_share_one_column()
{
    for (const QString &language : {QStringLiteral("en"), QStringLiteral("zh_CN")}) {
        const TranslatedTexts texts(language);
        QVERIFY(texts.areFound());
        const ShownDialog shown;
        const int width = qMax(textWidth(shown.dialog, shown.nameLabel()->text()),
                               textWidth(shown.dialog, shown.commentLabel()->text())) +
                          30;
        for (const QLabel *label : {shown.nameLabel(), shown.commentLabel(), shown.blankLabel()}) {
            QCOMPARE(label->minimumWidth(), width);
            QCOMPARE(label->maximumWidth(), width);
            QCOMPARE(label->sizePolicy(), QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed));
        }
        QCOMPARE(shown.nameEdit()->x(), shown.commentEdit()->x());
    }
}

void TstEngineerPropertySettingWidget::the_dialog_has_one_pair_of_buttons()
{
    const ShownDialog shown;
    QStringList visible;
    for (const QPushButton *button : shown.dialog.findChildren<QPushButton *>()) {
        if (button->isVisible())
            visible.append(button->text());
    }
    QCOMPARE(visible, QStringList({QStringLiteral("OK"), QStringLiteral("Cancel")}));
}

void TstEngineerPropertySettingWidget::constructor_leaves_the_fields_empty()
{
    EngineerPropertySettingWidget dialog(nullptr, QStringLiteral("Project1"), QStringLiteral("remembered"));
    QCOMPARE(dialog.findChild<FixedBitLineEditEx *>()->text(), QString());
    QCOMPARE(dialog.findChild<QTextEdit *>()->toPlainText(), QString());
    QCOMPARE(dialog.getComment(), QStringLiteral("remembered"));
    QCOMPARE(dialog.getProjectName(), QString());
}

void TstEngineerPropertySettingWidget::counter_is_shown_without_a_comment()
{
    const EngineerPropertySettingWidget dialog(nullptr, QString(), QString());
    QStringList texts;
    for (const QLabel *label : dialog.findChildren<QLabel *>())
        texts.append(label->text());
    QVERIFY2(texts.contains(QStringLiteral("0/100")), qPrintable(texts.join(QLatin1Char('|'))));
}

void TstEngineerPropertySettingWidget::setters_fill_the_fields()
{
    ShownDialog shown(QStringLiteral("Project2"), QStringLiteral("before the show"));
    QCOMPARE(shown.nameEdit()->text(), QStringLiteral("Project2"));
    QCOMPARE(shown.shownComment(), QStringLiteral("before the show"));
    QCOMPARE(shown.dialog.getProjectName(), QStringLiteral("Project2"));
    QCOMPARE(shown.dialog.getComment(), QStringLiteral("before the show"));
    shown.dialog.setComment(QString());
    QCOMPARE(shown.shownComment(), QString());
    QCOMPARE(shown.dialog.getComment(), QString());
}

void TstEngineerPropertySettingWidget::counter_follows_the_comment()
{
    ShownDialog shown(QStringLiteral("Project1"));
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("0/100"));
    shown.dialog.setComment(QString(37, QLatin1Char('c')));
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("37/100"));
    QTest::keyClicks(shown.commentEdit(), QStringLiteral("ab"));
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("39/100"));
    QTest::keyClick(shown.commentEdit(), Qt::Key_Backspace);
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("38/100"));
    QCOMPARE(shown.dialog.getComment(), shown.shownComment());
}

void TstEngineerPropertySettingWidget::comment_of_exactly_100_characters_is_kept_whole()
{
    const QString comment = QString(50, QLatin1Char('a')) + QString(50, QLatin1Char('b'));
    ShownDialog shown(QStringLiteral("Project1"), comment);
    QCOMPARE(shown.shownComment(), comment);
    QCOMPARE(shown.dialog.getComment(), comment);
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("100/100"));

    shown.dialog.setComment(comment.left(99));
    shown.placeCaret(99);
    QTest::keyClick(shown.commentEdit(), Qt::Key_B);
    QCOMPARE(shown.shownComment(), comment);
    QCOMPARE(shown.caret(), 100);
}

void TstEngineerPropertySettingWidget::typing_the_101st_character_drops_exactly_that_one_data()
{
    QTest::addColumn<int>("position");
    for (const int position : {0, 1, 50, 99, 100})
        QTest::addRow("at %d", position) << position;
}

void TstEngineerPropertySettingWidget::typing_the_101st_character_drops_exactly_that_one()
{
    QFETCH(int, position);
    QString comment;
    while (comment.length() < 100)
        comment += QString::number(comment.length() % 10);
    ShownDialog shown(QStringLiteral("Project1"), comment);
    shown.placeCaret(position);
    QTest::keyClick(shown.commentEdit(), Qt::Key_X);
    QCOMPARE(shown.shownComment(), comment);
    QCOMPARE(shown.dialog.getComment(), comment);
    QCOMPARE(shown.caret(), position);
    QVERIFY(!shown.hasSelection());
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("100/100"));
}

void TstEngineerPropertySettingWidget::pasting_30_before_90_keeps_the_first_10()
{
    const QString old(90, QLatin1Char('o'));
    ShownDialog shown(QStringLiteral("Project1"), old);
    shown.placeCaret(0);
    shown.paste(shown.commentEdit(), QStringLiteral("abcdefghijklmnopqrstuvwxyz0123"));
    QCOMPARE(shown.shownComment(), QStringLiteral("abcdefghij") + old);
    QCOMPARE(shown.dialog.getComment(), QStringLiteral("abcdefghij") + old);
    QCOMPARE(shown.caret(), 10);
    QVERIFY(!shown.hasSelection());
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("100/100"));
}

void TstEngineerPropertySettingWidget::pasting_far_too_much_keeps_what_fits()
{
    ShownDialog shown(QStringLiteral("Project1"), QStringLiteral("old"));
    shown.placeCaret(1);
    shown.paste(shown.commentEdit(), QString(100000, QLatin1Char('n')));
    QCOMPARE(shown.shownComment(), QLatin1Char('o') + QString(97, QLatin1Char('n')) + QStringLiteral("ld"));
    QCOMPARE(shown.caret(), 98);
}

void TstEngineerPropertySettingWidget::setting_a_long_comment_keeps_100_characters_data()
{
    QTest::addColumn<int>("length");
    for (const int length : {101, 150, 200, 201, 5000})
        QTest::addRow("%d", length) << length;
}

void TstEngineerPropertySettingWidget::setting_a_long_comment_keeps_100_characters()
{
    QFETCH(int, length);
    QString comment;
    while (comment.length() < length)
        comment += QString::number(comment.length()) + QLatin1Char(' ');
    comment.truncate(length);
    ShownDialog shown(QStringLiteral("Project1"), comment);
    QCOMPARE(shown.shownComment(), comment.left(100));
    QCOMPARE(shown.dialog.getComment(), comment.left(100));
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("100/100"));
}

void TstEngineerPropertySettingWidget::emoji_that_does_not_fit_is_dropped_whole()
{
    const QString comment(99, QLatin1Char('c'));
    ShownDialog shown(QStringLiteral("Project1"), comment);
    shown.placeCaret(99);
    QInputMethodEvent typed;
    typed.setCommitString(emoji);
    QApplication::sendEvent(shown.commentEdit(), &typed);
    QCOMPARE(shown.shownComment(), comment);
    QCOMPARE(shown.dialog.getComment(), comment);
    QCOMPARE(shown.caret(), 99);
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("99/100"));
}

void TstEngineerPropertySettingWidget::emoji_before_a_full_comment_is_dropped_whole()
{
    // Only its first half fits.
    const QString comment(99, QLatin1Char('c'));
    ShownDialog shown(QStringLiteral("Project1"), comment);
    shown.placeCaret(0);
    shown.paste(shown.commentEdit(), emoji);
    QCOMPARE(shown.shownComment(), comment);
    QCOMPARE(shown.dialog.getComment(), comment);
    QCOMPARE(shown.caret(), 0);
}

void TstEngineerPropertySettingWidget::emoji_are_never_split_wherever_they_are_pasted()
{
    // Old texts with room for half an emoji, with emoji of their own; the pasted text starts at even and odd positions.
    const QString old = QString(45, QLatin1Char('a')) + emoji + QString(48, QLatin1Char('b'));
    for (const QString &pasted : {emoji.repeated(5), QLatin1Char('x') + emoji.repeated(5)}) {
        for (int position = 0; position <= old.length(); ++position) {
            if (position == 46) // inside the emoji, where no caret can be
                continue;
            ShownDialog shown(QStringLiteral("Project1"), old);
            shown.placeCaret(position);
            shown.paste(shown.commentEdit(), pasted);
            const QString text = shown.shownComment();
            QVERIFY(hasWholeCharactersOnly(text));
            QCOMPARE(shown.dialog.getComment(), text);
            // As many whole characters of the pasted text as fit, with the old text around them untouched.
            const int kept = text.length() - old.length();
            QCOMPARE(text, old.left(position) + pasted.left(kept) + old.mid(position));
            QCOMPARE(kept, pasted.startsWith(QLatin1Char('x')) ? 5 : 4);
            QCOMPARE(shown.caret(), position + kept);
        }
    }
}

void TstEngineerPropertySettingWidget::truncating_inside_an_emoji_removes_it_whole()
{
    const QString start(99, QLatin1Char('s'));
    ShownDialog shown(QStringLiteral("Project1"), start + emoji.repeated(20));
    QCOMPARE(shown.shownComment(), start);
    QCOMPARE(shown.dialog.getComment(), start);
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("99/100"));
}

void TstEngineerPropertySettingWidget::the_field_can_be_edited_after_a_cut()
{
    ShownDialog shown(QStringLiteral("Project1"), QString(100, QLatin1Char('c')));
    shown.placeCaret(100);
    QTest::keyClick(shown.commentEdit(), Qt::Key_X);
    QTest::keyClick(shown.commentEdit(), Qt::Key_Backspace);
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("99/100"));
    QTest::keyClicks(shown.commentEdit(), QStringLiteral("yz"));
    QCOMPARE(shown.shownComment(), QString(99, QLatin1Char('c')) + QLatin1Char('y'));
    QCOMPARE(shown.dialog.getComment(), shown.shownComment());
    QCOMPARE(shown.caret(), 100);
}

void TstEngineerPropertySettingWidget::html_in_a_comment_stays_plain_text()
{
    const QString comment = QStringLiteral("<b>Keynote</b> &amp; <img src=\"x\"> <!-- 1 -->");
    ShownDialog shown(QStringLiteral("Project1"), comment);
    QCOMPARE(shown.shownComment(), comment);
    QCOMPARE(shown.dialog.getComment(), comment);
    QCOMPARE(shown.countLabel()->text(), QStringLiteral("%1/100").arg(comment.length()));

    // The same when the comment is cut and set again.
    const QString full = comment + QString(100 - comment.length(), QLatin1Char('.'));
    shown.dialog.setComment(full);
    shown.placeCaret(100);
    QTest::keyClick(shown.commentEdit(), Qt::Key_X);
    QCOMPARE(shown.shownComment(), full);
    QCOMPARE(shown.dialog.getComment(), full);
}

void TstEngineerPropertySettingWidget::formatted_text_is_pasted_as_plain_text()
{
    ShownDialog shown(QStringLiteral("Project1"));
    auto *mime = new QMimeData;
    mime->setText(QStringLiteral("Act 1"));
    mime->setHtml(QStringLiteral("<h1 style=\"color:red\">Act <i>1</i></h1>"));
    QApplication::clipboard()->setMimeData(mime);
    QTest::keyClick(shown.commentEdit(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(shown.dialog.getComment(), QStringLiteral("Act 1"));
    QVERIFY(!shown.commentEdit()->toHtml().contains(QStringLiteral("<h1")));
    QVERIFY(!shown.commentEdit()->toHtml().contains(QStringLiteral("italic")));
}

void TstEngineerPropertySettingWidget::name_holds_64_bytes_of_whole_characters_data()
{
    QTest::addColumn<QString>("character");
    QTest::addColumn<int>("fitting");
    QTest::newRow("one byte") << QStringLiteral("a") << 64;
    QTest::newRow("two bytes") << QStringLiteral("ü") << 32;
    QTest::newRow("three bytes") << QStringLiteral("项") << 21;
    QTest::newRow("four bytes") << emoji << 16;
}

void TstEngineerPropertySettingWidget::name_holds_64_bytes_of_whole_characters()
{
    QFETCH(QString, character);
    QFETCH(int, fitting);
    const QString longest = character.repeated(fitting);

    ShownDialog pasted;
    pasted.paste(pasted.nameEdit(), character.repeated(80));
    QCOMPARE(pasted.dialog.getProjectName(), longest);

    ShownDialog typed(longest);
    QCOMPARE(typed.dialog.getProjectName(), longest);
    QTest::keyClick(typed.nameEdit(), Qt::Key_End);
    QInputMethodEvent commit;
    commit.setCommitString(character);
    QApplication::sendEvent(typed.nameEdit(), &commit);
    QCOMPARE(typed.dialog.getProjectName(), longest);
}

void TstEngineerPropertySettingWidget::ok_needs_a_name()
{
    EngineerPropertySettingWidget fresh(nullptr, QString(), QString());
    fresh.show();
    for (const QPushButton *button : fresh.findChildren<QPushButton *>()) {
        if (button->isVisible())
            QVERIFY(button->isEnabled());
    }

    ShownDialog shown(QStringLiteral("P"));
    QVERIFY(shown.okButton()->isEnabled());
    QTest::keyClick(shown.nameEdit(), Qt::Key_Backspace);
    QVERIFY(!shown.okButton()->isEnabled());
    QTest::keyClick(shown.nameEdit(), Qt::Key_Space);
    QVERIFY(shown.okButton()->isEnabled());
    QVERIFY(shown.cancelButton()->isEnabled());
}

void TstEngineerPropertySettingWidget::enter_confirms_only_while_ok_is_enabled()
{
    ShownDialog shown(QStringLiteral("P"));
    const SignalRecorder<int> finished(&shown.dialog, &QDialog::finished);
    QTest::keyClick(shown.nameEdit(), Qt::Key_Backspace);
    QTest::keyClick(shown.nameEdit(), Qt::Key_Return);
    QVERIFY(shown.dialog.isVisible());
    QTest::keyClick(shown.nameEdit(), Qt::Key_Q);
    QTest::keyClick(shown.nameEdit(), Qt::Key_Return);
    QVERIFY(!shown.dialog.isVisible());
    QTRY_COMPARE(finished.values(), QVector<int>{QDialog::Accepted});
}

void TstEngineerPropertySettingWidget::the_shown_name_is_replaced_by_typing()
{
    ShownDialog shown(QStringLiteral("Project1"), QStringLiteral("comment"));
    QVERIFY(QTest::qWaitForWindowActive(&shown.dialog));
    QCOMPARE(QApplication::focusWidget(), shown.nameEdit());
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Show"));
    QCOMPARE(shown.dialog.getProjectName(), QStringLiteral("Show"));
    QCOMPARE(shown.shownComment(), QStringLiteral("comment"));
}

void TstEngineerPropertySettingWidget::tab_leaves_the_comment_field()
{
    ShownDialog shown(QStringLiteral("Project1"), QStringLiteral("comment"));
    QVERIFY(QTest::qWaitForWindowActive(&shown.dialog));
    shown.nameEdit()->setFocus();
    for (QWidget *next : QList<QWidget *>{shown.commentEdit(), shown.okButton(), shown.cancelButton()}) {
        QTest::keyClick(shown.dialog.windowHandle(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), next);
    }
    QTest::keyClick(shown.dialog.windowHandle(), Qt::Key_Backtab, Qt::ShiftModifier);
    QTest::keyClick(shown.dialog.windowHandle(), Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(QApplication::focusWidget(), shown.commentEdit());
    QCOMPARE(shown.shownComment(), QStringLiteral("comment"));
}

void TstEngineerPropertySettingWidget::fields_are_named_by_their_labels()
{
    const ShownDialog shown;
    const auto name = [](QWidget *field) {
        return QAccessible::queryAccessibleInterface(field)->text(QAccessible::Name);
    };
    QCOMPARE(name(shown.nameEdit()), QStringLiteral("Project name"));
    QCOMPARE(name(shown.commentEdit()), QStringLiteral("Commect"));
    const TranslatedTexts chinese(QStringLiteral("zh_CN"));
    const ShownDialog inChinese;
    QCOMPARE(name(inChinese.nameEdit()), inChinese.nameLabel()->text());
    QCOMPARE(name(inChinese.commentEdit()), inChinese.commentLabel()->text());
    QVERIFY(inChinese.nameLabel()->text() != shown.nameLabel()->text());
}

void TstEngineerPropertySettingWidget::ok_accepts_a_free_name()
{
    EngineerPropertySettingWidget dialog(nullptr, QString(), QString());
    dialog.setProjectName(QStringLiteral("Project4"));
    dialog.setComment(QStringLiteral("20261121_120000"));
    AnswerBook book;
    book.expectDialog(QStringLiteral("EngineerPropertySettingWidget"),
                      [](QDialog *shown) { click(shown, QStringLiteral("OK")); });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(dialog.getProjectName(), QStringLiteral("Project4"));
    QCOMPARE(dialog.getComment(), QStringLiteral("20261121_120000"));
    QVERIFY2(QDir(projectFilesPath()).isEmpty(), "the dialog writes nothing");
}

void TstEngineerPropertySettingWidget::the_name_is_trimmed_when_it_is_read()
{
    ShownDialog shown;
    QTest::keyClicks(shown.nameEdit(), QStringLiteral("  My show \t"));
    QVERIFY(click(shown.okButton()));
    QCOMPARE(shown.dialog.result(), int(QDialog::Accepted));
    QCOMPARE(shown.dialog.getProjectName(), QStringLiteral("My show"));
}

void TstEngineerPropertySettingWidget::cancel_escape_and_close_reject_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("cancel") << 0;
    QTest::newRow("escape") << 1;
    QTest::newRow("close") << 2;
}

void TstEngineerPropertySettingWidget::cancel_escape_and_close_reject()
{
    QFETCH(int, way);
    EngineerPropertySettingWidget dialog(nullptr, QString(), QString());
    dialog.setProjectName(QStringLiteral("Project1"));
    AnswerBook book;
    book.expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [way](QDialog *shown) {
        if (way == 0)
            click(shown, QStringLiteral("Cancel"));
        else if (way == 1)
            QTest::keyClick(shown, Qt::Key_Escape);
        else
            shown->close();
    });
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstEngineerPropertySettingWidget::cancel_ignores_a_taken_name()
{
    QVERIFY(makeProjectFile(QStringLiteral("Project3")));
    ShownDialog shown(QStringLiteral("Project2"));
    shown.nameEdit()->selectAll();
    QTest::keyClicks(shown.nameEdit(), QStringLiteral("Project3"));
    AnswerBook book;
    QVERIFY(click(shown.cancelButton()));
    QVERIFY(!shown.dialog.isVisible());
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstEngineerPropertySettingWidget::name_of_another_project_is_refused()
{
    QVERIFY(makeProjectFile(QStringLiteral("Project2")));
    QVERIFY(makeProjectFile(QStringLiteral("Project3")));
    EngineerPropertySettingWidget dialog(nullptr, QString(), QString());
    dialog.setProjectName(QStringLiteral("Project2"));

    AnswerBook book;
    bool stayedOpen = false;
    book.expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [&stayedOpen](QDialog *shown) {
        auto *name = shown->findChild<FixedBitLineEditEx *>();
        name->selectAll();
        QTest::keyClicks(name, QStringLiteral("Project3"));
        click(shown, QStringLiteral("OK"));
        stayedOpen = shown->isVisible();
        QTest::keyClicks(name, QStringLiteral("b"));
        click(shown, QStringLiteral("OK"));
    });
    book.expectWarning(QStringLiteral("Remind"), QStringLiteral("The current file already exists"));
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QVERIFY(stayedOpen);
    QCOMPARE(book.seen().at(1).buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(dialog.getProjectName(), QStringLiteral("Project3b"));
}

void TstEngineerPropertySettingWidget::unchanged_name_is_accepted_although_its_file_exists_data()
{
    QTest::addColumn<QString>("confirmed");
    QTest::newRow("unchanged") << QStringLiteral("Project2");
    QTest::newRow("other letter case") << QStringLiteral("project2");
}

void TstEngineerPropertySettingWidget::unchanged_name_is_accepted_although_its_file_exists()
{
    QFETCH(QString, confirmed);
    QVERIFY(makeProjectFile(QStringLiteral("Project2")));
    QVERIFY(makeProjectFile(QStringLiteral("project2")));
    ShownDialog shown(QStringLiteral("Project2"));
    shown.nameEdit()->selectAll();
    QTest::keyClicks(shown.nameEdit(), confirmed);
    AnswerBook book;
    QVERIFY(click(shown.okButton()));
    QCOMPARE(shown.dialog.result(), int(QDialog::Accepted));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(shown.dialog.getProjectName(), confirmed);
}

void TstEngineerPropertySettingWidget::existence_is_tested_with_the_name_as_typed()
{
    QVERIFY(makeProjectFile(QStringLiteral("Project3")));
    QVERIFY(makeProjectFile(QStringLiteral(" Project5")));
    AnswerBook book;

    // click() does not move the focus, so the blanks are not trimmed yet.
    ShownDialog padded;
    QTest::keyClicks(padded.nameEdit(), QStringLiteral(" Project3 "));
    padded.okButton()->click();
    QCOMPARE(padded.dialog.result(), int(QDialog::Accepted));
    QCOMPARE(padded.dialog.getProjectName(), QStringLiteral("Project3"));

    ShownDialog taken;
    QTest::keyClicks(taken.nameEdit(), QStringLiteral(" Project5"));
    book.expectWarning(QStringLiteral("Remind"), QStringLiteral("The current file already exists"));
    taken.okButton()->click();
    QVERIFY(taken.dialog.isVisible());
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));

    // A real click moves the focus first, so the trimmed name is checked.
    ShownDialog left;
    QApplication::setActiveWindow(&left.dialog);
    QTest::keyClicks(left.nameEdit(), QStringLiteral(" Project3 "));
    book.expectWarning(QStringLiteral("Remind"), QStringLiteral("The current file already exists"));
    QVERIFY(click(left.okButton()));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(left.nameEdit()->text(), QStringLiteral("Project3"));
}

TEST_MAIN(TstEngineerPropertySettingWidget)
#include "tst_engineerpropertysettingwidget.moc"
