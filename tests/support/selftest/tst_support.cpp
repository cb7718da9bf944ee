// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/answerbook.h>
#include <support/journalmatchers.h>
#include <support/packagebuilder.h>
#include <support/pseudolanguage.h>
#include <support/screencheck.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>
#include <support/threadcensus.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTableWidget>
#include <QThread>
#include <QVBoxLayout>

#include <thread>

using namespace TestSupport;
using HX::Widgets::FramelessMessageBox;

class TstSupport : public QObject
{
    Q_OBJECT

private slots:
    void init() { WarningGuard::clear(); }

    void documents_lie_in_the_private_home();
    void misuse_fails_the_test_function_data();
    void misuse_fails_the_test_function();
    void expected_warnings_of_any_thread_pass();
    void messages_are_recorded_with_their_level();
    void boxes_are_answered_in_order();
    void escape_answers_the_harmless_button();
    void dialog_may_open_a_box_while_answered();
    void a_folder_is_chosen_in_the_file_dialog();
    void several_files_are_chosen_in_the_file_dialog();
    void escape_leaves_the_file_dialog_without_a_choice();
    void signals_of_a_worker_are_recorded_in_order();
    void archives_are_readable_by_an_independent_unpacker();
    void first_difference_of_two_sequences_is_reported();
    void pseudo_language_is_longer_and_keeps_values();
    void untranslated_texts_are_found_everywhere();
    void clipped_texts_are_found();
};

void TstSupport::documents_lie_in_the_private_home()
{
    const QString documents = QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation).value(0);
    QCOMPARE(documents, QDir::homePath() + QStringLiteral("/Documents"));
    QVERIFY(documents.contains(QStringLiteral("projectfilecfg-test-")));
    QVERIFY(QFileInfo(documents).isDir());
}

void TstSupport::misuse_fails_the_test_function_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<QString>("reason");
    const auto add = [](const char *function, const char *reason) {
        QTest::newRow(function) << QString::fromLatin1(function) << QString::fromLatin1(reason);
    };
    add("unexpected_warning", "nobody expected this");
    add("unexpected_warning_of_a_worker", "nobody expected this either");
    add("unexpected_warning_of_a_worker_at_the_very_end", "too late for the function");
    add("expected_message_that_never_comes", "Expected at least one warning \"this one\", came 0 times");
    add("message_that_comes_too_often", "Expected 1 times warning \"once\", came 2 times");
    add("expected_box_that_never_comes", "Never came: information box \"Remind\": \"Done\"");
    add("unexpected_box", "Nobody expected: warning box \"Remind\": \"Failed\"");
    add("other_text_in_the_box", "Came: information box \"Remind\": \"This failed\", but");
    add("dialog_left_open", "Still open after its answer: QDialog");
    if (canWatchThreads)
        add("thread_where_none_is_expected", "threads were started");
    add("disabled_button", "The button \"Save\" cannot be clicked: disabled");
}

void TstSupport::misuse_fails_the_test_function()
{
    QFETCH(QString, function);
    QFETCH(QString, reason);
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    if (function == QStringLiteral("thread_where_none_is_expected")) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("EXPECT_NO_THREADS"), QStringLiteral("1"));
        environment.insert(QStringLiteral("QTEST_FUNCTION_TIMEOUT"), QStringLiteral("1800000"));
        program.setProcessEnvironment(environment);
    }
    program.start(QStringLiteral(MUST_FAIL_PROGRAM), {function});
    QVERIFY(program.waitForFinished(-1));
    const QString output = QString::fromUtf8(program.readAll());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QVERIFY2(program.exitCode() != 0, qPrintable(output));
    QVERIFY2(output.contains(QStringLiteral("FAIL!")), qPrintable(output));
    QVERIFY2(output.contains(reason), qPrintable(output));
}

void TstSupport::expected_warnings_of_any_thread_pass()
{
    ExpectMessage here(QtWarningMsg, QStringLiteral("from here"), 1);
    ExpectMessage there(QtCriticalMsg, QRegularExpression(QStringLiteral("^from thread \\d$")), 2);
    qWarning("from here");
    std::thread worker([]() {
        qCritical("from thread 1");
        qCritical("from thread 2");
    });
    worker.join();
    QCOMPARE(there.count(), 2);
}

void TstSupport::messages_are_recorded_with_their_level()
{
    qDebug("File is not exist");
    QCOMPARE(WarningGuard::texts(QtDebugMsg), QStringList(QStringLiteral("File is not exist")));
    QCOMPARE(WarningGuard::texts(QtWarningMsg), QStringList());
    const WarningGuard::Message message = WarningGuard::messages().value(0);
    QCOMPARE(message.file, QStringLiteral("tst_support.cpp"));
    QVERIFY(message.line > 0);
    QVERIFY(message.function.contains(QLatin1String("messages_are_recorded_with_their_level")));
}

void TstSupport::boxes_are_answered_in_order()
{
    AnswerBook book;
    book.expectQuestion(QStringLiteral("Remind"), QStringLiteral("Go on?"), QMessageBox::Yes);
    book.expectWarning(QStringLiteral("Warning"), QStringLiteral("That failed"));
    QCOMPARE(FramelessMessageBox::question(nullptr, QStringLiteral("Remind"), QStringLiteral("Go on?")),
             QMessageBox::Yes);
    FramelessMessageBox::warning(nullptr, QStringLiteral("Warning"), QStringLiteral("That failed"));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(book.seen().size(), 2);
    QCOMPARE(book.seen().at(0).buttons, QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(book.seen().at(1).kind, FramelessMessageBox::Warning);
}

void TstSupport::escape_answers_the_harmless_button()
{
    AnswerBook book;
    book.expectQuestion(QStringLiteral("Remind"), QString(), QMessageBox::NoButton);
    QCOMPARE(FramelessMessageBox::question(nullptr, QStringLiteral("Remind"), QStringLiteral("Go on?"),
                                           QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel),
             QMessageBox::Cancel);
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstSupport::dialog_may_open_a_box_while_answered()
{
    QDialog dialog;
    QPushButton ok(QStringLiteral("&OK"));
    QVBoxLayout layout(&dialog);
    layout.addWidget(&ok);
    connect(&ok, &QPushButton::clicked, &dialog, [&dialog]() {
        FramelessMessageBox::warning(&dialog, QStringLiteral("Remind"), QStringLiteral("No name"));
        dialog.accept();
    });

    AnswerBook book;
    book.expectDialog(QStringLiteral("QDialog"), [](QDialog *shown) { click(shown, QStringLiteral("OK")); });
    book.expectWarning(QStringLiteral("Remind"), QStringLiteral("No name"));
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstSupport::a_folder_is_chosen_in_the_file_dialog()
{
    QTemporaryDir folder;
    AnswerBook book;
    book.expectFileDialog(QStringLiteral("Select"), {folder.path()});
    QCOMPARE(QFileDialog::getExistingDirectory(nullptr, QStringLiteral("Select"), QDir::homePath()), folder.path());
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(book.seen().at(0).directory, QDir::homePath());
    QVERIFY(book.seen().at(0).onlyDirectories);
}

void TstSupport::several_files_are_chosen_in_the_file_dialog()
{
    QTemporaryDir folder;
    QStringList paths;
    for (const QString &name : {QStringLiteral("a b.corvelpro"), QStringLiteral("c.corvelpro")}) {
        paths.append(folder.filePath(name));
        QVERIFY(PackageBuilder().write(paths.last()));
    }
    AnswerBook book;
    book.expectFileDialog(QString(), paths);
    QCOMPARE(QFileDialog::getOpenFileNames(nullptr, QStringLiteral("Open"), QDir::homePath(),
                                           QStringLiteral("Projects (*.corvelpro)")),
             paths);
    book.expectFileDialog(QString(), {paths.first()});
    QCOMPARE(QFileDialog::getOpenFileName(nullptr, QStringLiteral("Open"), QDir::homePath()), paths.first());
    const QString target = folder.filePath(QStringLiteral("new.corvelpro"));
    book.expectFileDialog(QString(), {target});
    QCOMPARE(QFileDialog::getSaveFileName(nullptr, QStringLiteral("Save"), QDir::homePath()), target);
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(book.seen().at(0).nameFilters, QStringList(QStringLiteral("Projects (*.corvelpro)")));
    QCOMPARE(book.seen().at(2).acceptMode, QFileDialog::AcceptSave);
}

void TstSupport::escape_leaves_the_file_dialog_without_a_choice()
{
    AnswerBook book;
    book.expectFileDialog(QStringLiteral("Select"), {});
    QCOMPARE(QFileDialog::getExistingDirectory(nullptr, QStringLiteral("Select"), QDir::homePath()), QString());
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstSupport::signals_of_a_worker_are_recorded_in_order()
{
    QThread worker;
    QObject source;
    SignalRecorder<> finished(&worker, &QThread::finished);
    SignalRecorder<QString> names(&source, &QObject::objectNameChanged);
    connect(
        &worker, &QThread::started, &source,
        [&source, &worker]() {
            source.setObjectName(QStringLiteral("one"));
            source.setObjectName(QStringLiteral("two"));
            worker.quit();
        },
        Qt::DirectConnection);
    worker.start();
    QTRY_COMPARE(finished.count(), 1);
    worker.wait();
    QCOMPARE(names.values(), QVector<QString>({QStringLiteral("one"), QStringLiteral("two")}));
}

void TstSupport::archives_are_readable_by_an_independent_unpacker()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("p.corvelpro"));
    PackageBuilder builder;
    builder.folder("BKG")
        .file("BKG/BKG_1.png", QByteArray(5000, 'x'))
        .file("10.0.0.1.json", "{}", PackageBuilder::Stored);
    builder.record(QStringLiteral("P"), QStringLiteral("äöü"));
    QVERIFY(builder.write(path));
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"), {QStringLiteral("-t"), path});
    QVERIFY(unzip.waitForFinished(-1));
    const QString output = QString::fromUtf8(unzip.readAll());
    QVERIFY2(unzip.exitCode() == 0, qPrintable(output));
    QVERIFY2(output.contains(QStringLiteral("No errors detected")), qPrintable(output));
    // The digest of "PK", 3, 4, and the version needed, 20: all bytes before the first zero byte.
    QCOMPARE(
        PackageBuilder::checksum(builder.build(), 0),
        QCryptographicHash::hash(QCryptographicHash::hash(QByteArray("PK\3\4\24"), QCryptographicHash::Md5).toHex(),
                                 QCryptographicHash::Md5)
            .toHex());
}

void TstSupport::first_difference_of_two_sequences_is_reported()
{
    const QStringList expected{QStringLiteral("a"), QStringLiteral("b")};
    QCOMPARE(sequenceDifference(expected, expected), QString());
    QVERIFY(sequenceDifference({QStringLiteral("a")}, expected).startsWith(QLatin1String("First difference at 1.")));
    QVERIFY(sequenceDifference({QStringLiteral("a"), QStringLiteral("c")}, expected).contains(QLatin1String("-> 1 c")));
}

void TstSupport::pseudo_language_is_longer_and_keeps_values()
{
    const QString source = QStringLiteral("Save %1 as <b>%2</b>");
    const QString text = PseudoLanguage::of(source);
    QVERIFY(PseudoLanguage::of(QStringLiteral("Save as")).length() >= 7 * 3 / 2);
    for (const char *kept : {"%1", "%2", "<b>", "</b>"})
        QCOMPARE(text.count(QLatin1String(kept)), 1);
    QVERIFY(PseudoLanguage::of(QString()).isEmpty());
    const PseudoLanguage language;
    QCOMPARE(QCoreApplication::translate("TstSupport", "Save"), PseudoLanguage::of(QStringLiteral("Save")));
    QCOMPARE(PseudoLanguage::untranslatedIn(text.arg(PseudoLanguage::of(QStringLiteral("a"))) + QStringLiteral(" x")),
             QStringLiteral(" x"));
}

void TstSupport::untranslated_texts_are_found_everywhere()
{
    const QString good = PseudoLanguage::of(QStringLiteral("good"));
    QWidget window;
    window.setWindowTitle(good);
    auto *label = new QLabel(good + QStringLiteral(" 12/34"), &window);
    auto *button = new QPushButton(good, &window);
    auto *combo = new QComboBox(&window);
    combo->addItem(good);
    auto *table = new QTableWidget(1, 1, &window);
    table->setHorizontalHeaderLabels({good});
    table->setItem(0, 0, new QTableWidgetItem(QStringLiteral("Evening show")));
    auto *hidden = new QLabel(QStringLiteral("bad"), &window);
    window.show();
    hidden->hide();
    const QStringList names{QStringLiteral("Evening show")};
    QCOMPARE(ScreenCheck::untranslated(&window, names), QStringList());
    QCOMPARE(ScreenCheck::untranslated(&window).count(), 1);
    const std::function<void(const QString &)> changes[] = {
        [&](const QString &text) { window.setWindowTitle(text); },
        [&](const QString &text) { label->setText(text); },
        [&](const QString &text) { button->setText(text); },
        [&](const QString &text) { button->setToolTip(text); },
        [&](const QString &text) { button->setAccessibleName(text); },
        [&](const QString &text) { combo->setItemText(0, text); },
        [&](const QString &text) { table->setHorizontalHeaderLabels({text}); },
        [&](const QString &text) { table->item(0, 0)->setText(text); },
    };
    for (const auto &change : changes) {
        change(good + QStringLiteral(" bad"));
        QCOMPARE(ScreenCheck::untranslated(&window, names).count(), 1);
        change(good);
    }
    hidden->show();
    QCOMPARE(ScreenCheck::untranslated(&window, names).count(), 1);
}

void TstSupport::clipped_texts_are_found()
{
    QWidget window;
    auto *label = new QLabel(QStringLiteral("a label"), &window);
    auto *button = new QPushButton(QStringLiteral("a button"), &window);
    auto *box = new QCheckBox(QStringLiteral("a box"), &window);
    auto *wrapping = new QLabel(QStringLiteral("many words in several lines"), &window);
    wrapping->setWordWrap(true);
    const QList<QWidget *> widgets{label, button, box, wrapping};
    window.resize(400, 400);
    for (QWidget *widget : widgets) {
        widget->move(0, widgets.indexOf(widget) * 90);
        widget->resize(300, 80);
    }
    window.show();
    QCOMPARE(ScreenCheck::clipped(&window), QStringList());
    for (QWidget *widget : widgets) {
        widget->resize(24, 80);
        QCOMPARE(ScreenCheck::clipped(&window).count(), 1);
        widget->resize(300, 80);
        const QPoint place = widget->pos();
        widget->move(200, place.y());
        QCOMPARE(ScreenCheck::clipped(&window).count(), 1);
        widget->move(place);
    }
    // An elided text that the tool tip has whole.
    label->resize(10, 80);
    label->setToolTip(label->text());
    QCOMPARE(ScreenCheck::clipped(&window), QStringList());
}

TEST_MAIN(TstSupport)

#include "tst_support.moc"
