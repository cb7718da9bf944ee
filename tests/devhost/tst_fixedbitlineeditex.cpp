#include <widgets/fixedbitlineeditex.h>

#include <support/testmain.h>

#include <QClipboard>
#include <QSignalSpy>

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
    void a_text_beyond_the_limit_is_cut_at_whole_characters_data();
    void a_text_beyond_the_limit_is_cut_at_whole_characters();
    void typing_into_the_middle_of_a_full_field_drops_what_is_typed();
    void pasting_keeps_what_fits();
    void nobody_sees_a_text_beyond_the_limit();
    void a_smaller_limit_cuts_at_once();
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

void TstFixedBitLineEditEx::a_text_beyond_the_limit_is_cut_at_whole_characters_data()
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

void TstFixedBitLineEditEx::a_text_beyond_the_limit_is_cut_at_whole_characters()
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

void TstFixedBitLineEditEx::typing_into_the_middle_of_a_full_field_drops_what_is_typed()
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

void TstFixedBitLineEditEx::nobody_sees_a_text_beyond_the_limit()
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

TEST_MAIN(TstFixedBitLineEditEx)
#include "tst_fixedbitlineeditex.moc"
