// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <widgets/fixedbitlineeditex.h>

#include <support/testmain.h>

#include <QClipboard>
#include <QInputMethodEvent>
#include <QSignalSpy>

#include <functional>

using Corvel::Widgets::FixedBitLineEditEx;

namespace {

const QString grin = QString::fromUcs4(U"\U0001F600", 1);

} // namespace

class TstFixedBitLineEditEx : public QObject
{
    Q_OBJECT

private slots:
    void a_text_of_exactly_the_limit_is_kept_data();
    void a_text_of_exactly_the_limit_is_kept();
    void text_beyond_the_limit_is_cut_between_characters_data();
    void text_beyond_the_limit_is_cut_between_characters();
    void typing_into_a_full_field_drops_the_input();
    void pasting_keeps_what_fits();
    void signals_never_carry_overlong_text();
    void a_smaller_limit_cuts_at_once();

    void characters_illegal_in_file_names_are_dropped_data();
    void characters_illegal_in_file_names_are_dropped();
    void each_character_is_accepted_or_dropped_alone();
    void deleting_never_leaves_a_leading_dot();
    void cursor_stays_among_the_kept_characters();
    void undo_never_restores_dropped_text();
    void leaving_the_field_trims_its_text_data();
    void leaving_the_field_trims_its_text();
    void blank_can_be_typed_between_words();
};

void TstFixedBitLineEditEx::a_text_of_exactly_the_limit_is_kept_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("Latin, 64 of 1 byte") << QString(64, QLatin1Char('a'));
    QTest::newRow("Chinese, 21 of 3 bytes and 1") << QStringLiteral("项").repeated(21) + QLatin1Char('a');
    QTest::newRow("emoji, 16 of 4 bytes") << grin.repeated(16);
}

void TstFixedBitLineEditEx::a_text_of_exactly_the_limit_is_kept()
{
    QFETCH(QString, text);
    FixedBitLineEditEx edit;
    QCOMPARE(edit.maxByteCount(), 64);
    QCOMPARE(text.toUtf8().size(), 64);
    edit.setEditText(text);
    QCOMPARE(edit.text(), text);
}

void TstFixedBitLineEditEx::text_beyond_the_limit_is_cut_between_characters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("kept");
    QTest::newRow("Latin") << QString(65, QLatin1Char('a')) << QString(64, QLatin1Char('a'));
    QTest::newRow("Chinese") << QStringLiteral("项").repeated(22) << QStringLiteral("项").repeated(21);
    QTest::newRow("emoji") << grin.repeated(17) << grin.repeated(16);
    const QString start(61, QLatin1Char('a'));
    QTest::newRow("emoji across the limit") << start + grin << start;
    const QString composed = QStringLiteral("e\u0301");
    QTest::newRow("accent across the limit")
        << QString(63, QLatin1Char('a')) + composed << QString(63, QLatin1Char('a'));
}

void TstFixedBitLineEditEx::text_beyond_the_limit_is_cut_between_characters()
{
    QFETCH(QString, text);
    QFETCH(QString, kept);
    FixedBitLineEditEx edit;
    edit.setEditText(text);
    QCOMPARE(edit.text(), kept);
    edit.clear();
    edit.insert(text);
    QCOMPARE(edit.text(), kept);
}

void TstFixedBitLineEditEx::typing_into_a_full_field_drops_the_input()
{
    FixedBitLineEditEx edit;
    const QString full = QString(32, QLatin1Char('a')) + QString(32, QLatin1Char('b'));
    edit.setEditText(full);
    edit.setCursorPosition(32);
    QTest::keyClicks(&edit, QStringLiteral("x"));
    QCOMPARE(edit.text(), full);
    QCOMPARE(edit.cursorPosition(), 32);
}

void TstFixedBitLineEditEx::pasting_keeps_what_fits()
{
    FixedBitLineEditEx edit;
    edit.setEditText(QString(54, QLatin1Char('b')));
    edit.setCursorPosition(0);
    QApplication::clipboard()->setText(grin.repeated(5));
    edit.paste();
    QCOMPARE(edit.text(), grin.repeated(2) + QString(54, QLatin1Char('b')));
    QCOMPARE(edit.cursorPosition(), grin.repeated(2).size());
}

void TstFixedBitLineEditEx::signals_never_carry_overlong_text()
{
    FixedBitLineEditEx edit;
    QSignalSpy changed(&edit, &QLineEdit::textChanged);
    edit.setEditText(QString(200, QLatin1Char('a')));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().toString().size(), 64);
}

void TstFixedBitLineEditEx::a_smaller_limit_cuts_at_once()
{
    FixedBitLineEditEx edit;
    edit.setEditText(QStringLiteral("项目文件"));
    edit.setMaxByteCount(7);
    QCOMPARE(edit.text(), QStringLiteral("项目"));
}

void TstFixedBitLineEditEx::characters_illegal_in_file_names_are_dropped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("kept");
    QTest::newRow("separators") << "a/b\\c"
                                << "abc";
    QTest::newRow("wildcards") << "What? *now*"
                               << "What now";
    QTest::newRow("others") << "<a>:\"b|c"
                            << "abc";
    QTest::newRow("control characters") << QStringLiteral("a\tb\nc\u0001d\u007fe\u0085f") << "abcdef";
    QTest::newRow("zero") << QStringLiteral("a") + QChar(0) + QStringLiteral("b") << "ab";
    QTest::newRow("dot in front") << ".hidden"
                                  << "hidden";
    QTest::newRow("dots in front") << "../../etc"
                                   << "etc";
    QTest::newRow("dot behind blanks") << "  .a"
                                       << "  a";
    QTest::newRow("dot behind what is left out") << "/.a"
                                                 << "a";
    QTest::newRow("other dots") << "v1.2 final."
                                << "v1.2 final.";
    QTest::newRow("half a pair") << QStringLiteral("a") + grin.at(0) + QStringLiteral("b") + grin.at(1) << "ab";
    QTest::newRow("whole pair") << QStringLiteral("a") + grin << QStringLiteral("a") + grin;
    QTest::newRow("scripts") << QStringLiteral("项目 é ـ") << QStringLiteral("项目 é ـ");
    QTest::newRow("limit counts what is kept")
        << QString(40, QLatin1Char('?')) + QString(64, QLatin1Char('a')) << QString(64, QLatin1Char('a'));
}

void TstFixedBitLineEditEx::characters_illegal_in_file_names_are_dropped()
{
    QFETCH(QString, text);
    QFETCH(QString, kept);
    const QVector<std::function<void(FixedBitLineEditEx &)>> ways{
        [&](FixedBitLineEditEx &edit) { edit.setEditText(text); },
        [&](FixedBitLineEditEx &edit) { edit.setText(text); },
        [&](FixedBitLineEditEx &edit) { edit.insert(text); },
        [&](FixedBitLineEditEx &edit) {
            QApplication::clipboard()->setText(text);
            edit.paste();
        },
        [&](FixedBitLineEditEx &edit) {
            QInputMethodEvent event;
            event.setCommitString(text);
            QApplication::sendEvent(&edit, &event);
        },
        [&](FixedBitLineEditEx &edit) {
            QKeyEvent key(QEvent::KeyPress, 0, Qt::NoModifier, text);
            QApplication::sendEvent(&edit, &key);
        }};
    for (int way = 0; way < ways.size(); ++way) {
        FixedBitLineEditEx edit;
        QVector<QString> seen;
        connect(&edit, &QLineEdit::textChanged, [&](const QString &changed) { seen.append(changed); });
        ways.at(way)(edit);
        // A key whose text starts with a control character is a command, not input.
        if (way == 5 && edit.text().isEmpty() && !text.at(0).isPrint())
            continue;
        QVERIFY2(edit.text() == kept, qPrintable(QStringLiteral("way %1: %2").arg(way).arg(edit.text())));
        QCOMPARE(seen, QVector<QString>{kept});
    }
}

void TstFixedBitLineEditEx::each_character_is_accepted_or_dropped_alone()
{
    const QString never = QStringLiteral("<>:\"/\\|?*");
    FixedBitLineEditEx edit;
    for (uint code = 0; code < 0x10000; ++code) {
        const QChar character(code);
        const bool refused = never.contains(character) || character.category() == QChar::Other_Control ||
                             character.isSurrogate() || character == QLatin1Char('.');
        edit.setEditText(QString(character));
        QVERIFY2(edit.text().isEmpty() == refused, qPrintable(QString::number(code, 16)));
        edit.setEditText(QLatin1Char('a') + QString(character));
        const bool refusedBehind = refused && character != QLatin1Char('.');
        QVERIFY2((edit.text().size() == 1) == refusedBehind, qPrintable(QString::number(code, 16)));
    }
}

void TstFixedBitLineEditEx::deleting_never_leaves_a_leading_dot()
{
    FixedBitLineEditEx edit;
    edit.setEditText(QStringLiteral("a..b"));
    edit.setCursorPosition(0);
    QTest::keyClick(&edit, Qt::Key_Delete);
    QCOMPARE(edit.text(), QStringLiteral("b"));
    QCOMPARE(edit.cursorPosition(), 0);
}

void TstFixedBitLineEditEx::cursor_stays_among_the_kept_characters()
{
    FixedBitLineEditEx edit;
    edit.setEditText(QStringLiteral("ab"));
    edit.setCursorPosition(1);
    QTest::keyClicks(&edit, QStringLiteral("?x/"));
    QCOMPARE(edit.text(), QStringLiteral("axb"));
    QCOMPARE(edit.cursorPosition(), 2);
    edit.insert(QStringLiteral("1:2:3"));
    QCOMPARE(edit.text(), QStringLiteral("ax123b"));
    QCOMPARE(edit.cursorPosition(), 5);
}

void TstFixedBitLineEditEx::undo_never_restores_dropped_text()
{
    FixedBitLineEditEx edit;
    QTest::keyClicks(&edit, QStringLiteral("a?b/.c"));
    edit.insert(QStringLiteral("<d>"));
    for (int step = 0; step < 10; ++step) {
        edit.undo();
        for (const QChar refused : QStringLiteral("?/<>"))
            QVERIFY(!edit.text().contains(refused));
        QVERIFY(!edit.text().startsWith(QLatin1Char('.')));
    }
    for (int step = 0; step < 10; ++step) {
        edit.redo();
        for (const QChar refused : QStringLiteral("?/<>"))
            QVERIFY(!edit.text().contains(refused));
    }
}

void TstFixedBitLineEditEx::leaving_the_field_trims_its_text_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("focus") << "focus";
    QTest::newRow("tab") << "tab";
    QTest::newRow("return") << "return";
}

void TstFixedBitLineEditEx::leaving_the_field_trims_its_text()
{
    QFETCH(QString, way);
    QWidget window;
    FixedBitLineEditEx edit(&window);
    QLineEdit other(&window);
    window.show();
    QApplication::setActiveWindow(&window);
    edit.setFocus();
    QString finished = QStringLiteral("not yet");
    connect(&edit, &QLineEdit::editingFinished, [&] { finished = edit.text(); });
    edit.setEditText(QStringLiteral(" \u3000 My show \u00a0"));
    QTest::keyClicks(&edit, QStringLiteral("  "));
    QCOMPARE(edit.text(), QStringLiteral(" \u3000 My show \u00a0  "));
    if (way == QStringLiteral("focus"))
        other.setFocus();
    else
        QTest::keyClick(&edit, way == QStringLiteral("tab") ? Qt::Key_Tab : Qt::Key_Return);
    QCOMPARE(edit.text(), QStringLiteral("My show"));
    QCOMPARE(finished, QStringLiteral("My show"));

    edit.setFocus();
    edit.setEditText(QStringLiteral("   "));
    other.setFocus();
    QCOMPARE(edit.text(), QString());
}

void TstFixedBitLineEditEx::blank_can_be_typed_between_words()
{
    FixedBitLineEditEx edit;
    QTest::keyClicks(&edit, QStringLiteral("My "));
    QCOMPARE(edit.text(), QStringLiteral("My "));
    QTest::keyClicks(&edit, QStringLiteral("show"));
    QCOMPARE(edit.text(), QStringLiteral("My show"));
}

TEST_MAIN(TstFixedBitLineEditEx)
#include "tst_fixedbitlineeditex.moc"
