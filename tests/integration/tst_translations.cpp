// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/testmain.h>

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>

namespace {

struct Text
{
    QString context;
    QString source;
    QString translation;
    /// The marks "unfinished" and "vanished" of Qt's tool.
    QString type;

    QString key() const { return context + QStringLiteral(": ") + source; }
};

QVector<Text> readTexts(const QString &path)
{
    QVector<Text> texts;
    QString context;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return texts;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("source")) {
            texts.append({context, xml.readElementText(), QString(), QString()});
        } else if (xml.name() == QLatin1String("translation")) {
            texts.last().type = xml.attributes().value(QLatin1String("type")).toString();
            texts.last().translation = xml.readElementText();
        }
    }
    return xml.hasError() ? QVector<Text>() : texts;
}

QStringList keysOf(const QVector<Text> &texts)
{
    QStringList keys;
    for (const Text &text : texts)
        keys.append(text.key());
    return keys;
}

/// Sorted, with repetitions: "%2 of %1" and "%1 of %2" take the same.
QStringList placeholders(const QString &text)
{
    QStringList found;
    QRegularExpressionMatchIterator matches = QRegularExpression(QStringLiteral("%(?:L?\\d+|n)")).globalMatch(text);
    while (matches.hasNext())
        found.append(matches.next().captured());
    found.sort();
    return found;
}

} // namespace

/// The texts in the sources against the translations in the repository.
class TstTranslations : public QObject
{
    Q_OBJECT

private slots:
    void translations_match_the_source_texts_exactly_data();
    void translations_match_the_source_texts_exactly();
    void translation_has_the_placeholders_of_its_source_data() { fileRows(); }
    void translation_has_the_placeholders_of_its_source();
    void english_texts_are_those_of_the_sources();

private:
    static void fileRows();
};

namespace {

const QString product = QStringLiteral(SOURCE_DIRECTORY "/src/plugins/projectfilecfg");
const QString host = QStringLiteral(SOURCE_DIRECTORY "/devhost");
const QString productEnglish = product + QStringLiteral("/translations/projectfilecfg_en.ts");
const QString productChinese = product + QStringLiteral("/translations/projectfilecfg_zh_CN.ts");
const QString hostChinese = host + QStringLiteral("/app/translations/devhost_zh_CN.ts");

} // namespace

void TstTranslations::translations_match_the_source_texts_exactly_data()
{
    QTest::addColumn<QString>("sources");
    QTest::addColumn<QString>("translations");
    QTest::newRow("product, Chinese") << product << productChinese;
    QTest::newRow("product, English") << product << productEnglish;
    QTest::newRow("host, Chinese") << host << hostChinese;
}

void TstTranslations::translations_match_the_source_texts_exactly()
{
    QFETCH(QString, sources);
    QFETCH(QString, translations);
    const QVector<Text> kept = readTexts(translations);
    QVERIFY2(!kept.isEmpty(), "there is nothing to compare with");

    // Qt's own tool updates a copy; whatever it adds or marks there is wrong in the repository's file.
    const QTemporaryDir aside;
    const QString copy = aside.filePath(QFileInfo(translations).fileName());
    QVERIFY(QFile::copy(translations, copy));
    QProcess lupdate;
    lupdate.start(QStringLiteral(LUPDATE),
                  {QStringLiteral("-locations"), QStringLiteral("none"), sources, QStringLiteral("-ts"), copy});
    QVERIFY2(lupdate.waitForFinished(120000), qPrintable(lupdate.errorString()));
    QCOMPARE(lupdate.exitCode(), 0);
    // A class without Q_OBJECT is only a warning there, but its translations would never be found.
    QCOMPARE(QString::fromLocal8Bit(lupdate.readAllStandardError()), QString());

    QStringList wrong;
    const QVector<Text> updated = readTexts(copy);
    for (const Text &text : updated) {
        if (!text.type.isEmpty() || text.translation.isEmpty())
            wrong.append(text.key() + QStringLiteral(" – ") + (text.type.isEmpty() ? "empty" : text.type));
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QLatin1Char('\n'))));
    QCOMPARE(keysOf(updated), keysOf(kept));
}

void TstTranslations::fileRows()
{
    QTest::addColumn<QString>("translations");
    QTest::newRow("product") << productChinese;
    QTest::newRow("host") << hostChinese;
}

void TstTranslations::translation_has_the_placeholders_of_its_source()
{
    QFETCH(QString, translations);
    const QVector<Text> texts = readTexts(translations);
    QVERIFY(!texts.isEmpty());
    for (const Text &text : texts)
        QVERIFY2(placeholders(text.translation) == placeholders(text.source), qPrintable(text.key()));
}

void TstTranslations::english_texts_are_those_of_the_sources()
{
    const QVector<Text> texts = readTexts(productEnglish);
    QVERIFY(!texts.isEmpty());
    for (const Text &text : texts)
        QCOMPARE(text.translation, text.source);
}

TEST_MAIN_CORE(TstTranslations)
#include "tst_translations.moc"
