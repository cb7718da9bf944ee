// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/applyfixture.h>
#include <support/gate.h>
#include <support/heldfile.h>
#include <support/paneltexts.h>
#include <support/pseudolanguage.h>
#include <support/screencheck.h>

#include <translatedbox.h>
#include <udiskselectwidget.h>

#include <unit/packagetesting.h>

#include <QLineEdit>
#include <QRadioButton>

using namespace PackageTesting;
using namespace PanelTesting;
using namespace PanelTexts;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
using HX::Widgets::FramelessMessageBox;
using Simulation::Fault;
using Simulation::Faults;

namespace {

QStringList sorted(QStringList texts)
{
    texts.sort();
    return texts;
}

/// Switches to the pseudo-language and back while the window is open. Returns what did not follow.
QStringList stragglers(QWidget *window, const QStringList &ofTheUser = {})
{
    const QStringList before = sorted(ScreenCheck::texts(window));
    QStringList wrong;
    {
        const PseudoLanguage pseudo;
        QCoreApplication::processEvents();
        // Layouts make room for their new texts afterwards.
        QCoreApplication::processEvents();
        wrong = ScreenCheck::untranslated(window, ofTheUser) + ScreenCheck::clipped(window);
    }
    QCoreApplication::processEvents();
    const QStringList after = sorted(ScreenCheck::texts(window));
    if (after != before)
        wrong += QStringList{QStringLiteral("was: ")} + before + QStringList{QStringLiteral("is: ")} + after;
    return wrong;
}

const QString messageBox = QStringLiteral("HX::Widgets::FramelessMessageBox");

} // namespace

#define VERIFY_FOLLOWS(...)                                                                                            \
    do {                                                                                                               \
        const QStringList wrong = stragglers(__VA_ARGS__);                                                             \
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QLatin1Char('\n'))));                                          \
    } while (false)

/// What is open while the language is switched speaks the new one.
class TstLanguageSwitch : public QObject, protected Applying
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void property_dialog_follows_and_keeps_what_was_typed_data();
    void property_dialog_follows_and_keeps_what_was_typed();
    void the_refusal_of_a_taken_name_follows();
    void questions_follow_data();
    void questions_follow();
    void a_missing_device_follows();
    void a_file_that_is_gone_follows();
    void a_taken_target_follows();
    void results_of_an_import_follow();
    void results_of_copying_out_follow();
    void results_of_jobs_follow();
    void a_switch_during_the_work_reaches_its_result();
    void file_dialogs_follow_and_keep_what_was_typed();
    void choosers_follow();
    void the_list_of_disks_follows();
    void the_waiting_dialog_follows_during_a_save();
    void the_waiting_dialog_follows_during_an_apply();
    void the_waiting_dialog_follows_during_copies();
    void later_progress_is_in_the_new_language_data();
    void later_progress_is_in_the_new_language();
    void late_language_switch_shows_no_waiting_dialog();
    void boxes_above_each_other_keep_their_own_texts();
    void panel_may_be_deleted_behind_a_translated_box();

private:
    /// Expects a box, switches the language while it is open, and closes it.
    void expectFollowingBox(const QStringList &ofTheUser = {})
    {
        m_book->expectDialog(messageBox, [=](QDialog *dialog) {
            const QStringList wrong = stragglers(dialog, ofTheUser);
            dialog->reject();
            QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QLatin1Char('\n'))));
        });
    }
    static WaitingDialog *waiting() { return WaitingDialog::instance(); }
};

void TstLanguageSwitch::property_dialog_follows_and_keeps_what_was_typed_data()
{
    QTest::addColumn<bool>("isEdit");
    QTest::newRow("save") << false;
    QTest::newRow("edit") << true;
}

void TstLanguageSwitch::property_dialog_follows_and_keeps_what_was_typed()
{
    QFETCH(bool, isEdit);
    list(QStringLiteral("Evening show"));
    m_book->expectDialog(propertyDialog, [](QDialog *dialog) {
        enterProperties(dialog, QStringLiteral("typed"), QStringLiteral("half a comm"));
        auto *name = dialog->findChild<QLineEdit *>();
        name->setFocus();
        name->setSelection(1, 3);
        VERIFY_FOLLOWS(dialog);
        QCOMPARE(propertiesIn(dialog).name, QStringLiteral("typed"));
        QCOMPARE(propertiesIn(dialog).comment, QStringLiteral("half a comm"));
        QCOMPARE(name->selectedText(), QStringLiteral("ype"));
        QCOMPARE(dialog->size(), QSize(748, 280));
        dialog->reject();
    });
    if (isEdit)
        clickRow(QStringLiteral("Evening show"), QStringLiteral("Edit"));
    else
        click(m_panel->saveProject());
    VERIFY_BOOK();
}

void TstLanguageSwitch::the_refusal_of_a_taken_name_follows()
{
    list(QStringLiteral("taken"));
    m_book->expectDialog(propertyDialog, [this](QDialog *dialog) {
        expectFollowingBox();
        answerProperties(dialog, QStringLiteral("taken"), QString());
        dialog->reject();
    });
    click(m_panel->saveProject());
    VERIFY_BOOK();
}

void TstLanguageSwitch::questions_follow_data()
{
    QTest::addColumn<QString>("button");
    for (const char *button : {"Delete", "Apply", "All Delete"})
        QTest::newRow(button) << QString::fromLatin1(button);
}

void TstLanguageSwitch::questions_follow()
{
    QFETCH(QString, button);
    list(QStringLiteral("show"));
    expectFollowingBox();
    if (button == QStringLiteral("All Delete"))
        click(m_panel->allDelete());
    else
        clickRow(QStringLiteral("show"), button);
    VERIFY_BOOK();
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("show")});
}

void TstLanguageSwitch::a_missing_device_follows()
{
    m_panel->deviceCombo()->setItemData(1, QStringList({QString(), QString(), QString()}), Panel::markRole);
    const ExpectMessage logged(QtCriticalMsg, QStringLiteral("device mark list count error."), 1);
    m_panel->deviceCombo()->setCurrentIndex(1);
    expectFollowingBox();
    click(m_panel->saveProject());
    VERIFY_BOOK();
}

void TstLanguageSwitch::a_file_that_is_gone_follows()
{
    list(QStringLiteral("show"));
    QVERIFY(QFile::remove(projectFile(QStringLiteral("show"))));
    expectFollowingBox();
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    VERIFY_BOOK();
}

void TstLanguageSwitch::a_taken_target_follows()
{
    list(QStringLiteral("show"));
    m_book->expectFileDialog(saveTitle, {elsewhere(TestSupport::PackageBuilder(), QStringLiteral("50%1.corvelpro"))});
    expectFollowingBox({QStringLiteral("50%1")});
    const ExpectMessage logged(QtWarningMsg, QRegularExpression(QStringLiteral("already exist")), 1);
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    VERIFY_BOOK();
}

void TstLanguageSwitch::results_of_an_import_follow()
{
    const QString good = elsewhere(QStringLiteral("good.corvelpro"));
    const QString bad = elsewhere(QStringLiteral("50%1.corvelpro"));
    QVERIFY(writePackage(good, QString()) && writeFile(bad, "no package"));
    const auto import = [&](const QString &file) {
        m_book->expectFileDialog(chooserTitle, {file});
        expectFollowingBox({file, QStringLiteral("good")});
        click(m_panel->importProject());
        waitForAnswers();
    };
    import(good);
    // Is there already.
    import(good);
    import(bad);
}

void TstLanguageSwitch::results_of_copying_out_follow()
{
    list(QStringLiteral("show"));
    for (int round = 0; round < 2; ++round) {
        m_book->expectFileDialog(saveTitle, {m_elsewhere->path()});
        expectFollowingBox({QStringLiteral("show")});
        click(m_panel->allSaveAs());
        waitForAnswers();
    }
}

void TstLanguageSwitch::results_of_jobs_follow()
{
    // A save.
    Faults::instance()->arm(queryMaterailData, Fault::fail());
    expectProperties(QStringLiteral("Evening show"), QString());
    expectFollowingBox();
    QVERIFY(click(m_panel->saveProject()));
    waitForAnswers();
    settle();
    // An apply.
    list(packageOf(richDevice(sourceIp, mainModel + 1)));
    expectQuestion(QMessageBox::No);
    expectFollowingBox();
    clickApply();
    waitForAnswers();
}

void TstLanguageSwitch::a_switch_during_the_work_reaches_its_result()
{
    const QString bad = elsewhere(QStringLiteral("bad.corvelpro"));
    QVERIFY(writeFile(bad, "no package"));
    std::optional<PseudoLanguage> pseudo;
    m_book->expectFileDialog(chooserTitle, {bad});
    m_book->expectDialog(messageBox, [&](QDialog *dialog) {
        QCOMPARE(ScreenCheck::untranslated(dialog, {bad}), QStringList());
        pseudo.reset();
        QCoreApplication::processEvents();
        QCOMPARE(qobject_cast<FramelessMessageBox *>(dialog)->text(),
                 QStringLiteral("The file[%1] context is invalid.").arg(bad));
        dialog->reject();
    });
    HeldFile held(bad);
    click(m_panel->importProject());
    QVERIFY(held.waitForReader());
    // The work composes its message in the language of that moment.
    held.release();
    QThreadPool::globalInstance()->waitForDone();
    pseudo.emplace();
    waitForAnswers();
}

void TstLanguageSwitch::file_dialogs_follow_and_keep_what_was_typed()
{
    list(QStringLiteral("show"));
    m_book->expectDialog(QStringLiteral("QFileDialog"), [](QDialog *dialog) {
        auto *chooser = qobject_cast<QFileDialog *>(dialog);
        auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        name->setText(QStringLiteral("show 1.5"));
        const PseudoLanguage pseudo;
        QCoreApplication::processEvents();
        QCOMPARE(dialog->windowTitle(), PseudoLanguage::of(saveTitle));
        QCOMPARE(chooser->nameFilters(), QStringList{PseudoLanguage::of(QStringLiteral("file")) + "(*.corvelpro)"});
        QCOMPARE(name->text(), QStringLiteral("show 1.5"));
        dialog->reject();
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
    VERIFY_BOOK();
    m_book->expectDialog(QStringLiteral("QFileDialog"), [](QDialog *dialog) {
        const PseudoLanguage pseudo;
        QCoreApplication::processEvents();
        QCOMPARE(dialog->windowTitle(), PseudoLanguage::of(saveTitle));
        dialog->reject();
    });
    click(m_panel->allSaveAs());
    VERIFY_BOOK();
}

void TstLanguageSwitch::choosers_follow()
{
    for (QPushButton *button : {m_panel->importProject(), m_panel->applyOthers()}) {
        m_book->expectDialog(QStringLiteral("QFileDialog"), [](QDialog *dialog) {
            const PseudoLanguage pseudo;
            QCoreApplication::processEvents();
            QCOMPARE(dialog->windowTitle(), PseudoLanguage::of(chooserTitle));
            QCOMPARE(qobject_cast<QFileDialog *>(dialog)->nameFilters(),
                     QStringList{PseudoLanguage::of(QStringLiteral("file")) + "(*.corvelpro)"});
            dialog->reject();
        });
        click(button);
        VERIFY_BOOK();
    }
}

void TstLanguageSwitch::the_list_of_disks_follows()
{
    UDiskSelectWidget dialog(nullptr,
                             {{QStringLiteral("/dev/sdb1"), QStringLiteral("/mnt/sdb1"), QStringLiteral("STICK")}});
    dialog.show();
    auto *stick = dialog.findChild<QRadioButton *>();
    QVERIFY(stick);
    stick->click();
    VERIFY_FOLLOWS(&dialog, {QStringLiteral("STICK[/mnt/sdb1]")});
    QVERIFY(stick->isChecked());
    QCOMPARE(dialog.selectPath(), QStringLiteral("/mnt/sdb1"));
}

void TstLanguageSwitch::the_waiting_dialog_follows_during_a_save()
{
    Gate beforeProgress;
    Gate inProgress;
    Faults::instance()->arm(serailize, beforeProgress.fault());
    Faults::instance()->arm(queryMaterailData, inProgress.fault());
    QVERIFY(pressSave(QStringLiteral("Evening show")));
    QVERIFY(beforeProgress.waitForThread());
    QVERIFY(waiting()->isVisible());
    VERIFY_FOLLOWS(waiting());
    QVERIFY(waiting()->isCanelVisible());

    beforeProgress.open();
    QVERIFY(inProgress.waitForThread());
    QTRY_VERIFY(waiting()->text().contains(QStringLiteral("Opening")));
    {
        const PseudoLanguage pseudo;
        QCoreApplication::processEvents();
        QCOMPARE(ScreenCheck::untranslated(waiting(), {QStringLiteral("Opening")}), QStringList());
    }
    inProgress.open();
    QTRY_VERIFY(hasJobEnded());
    settle();
    QCOMPARE(m_panel->names(), QStringList{QStringLiteral("Evening show")});
}

void TstLanguageSwitch::the_waiting_dialog_follows_during_an_apply()
{
    // Offers Cancel, which a load leaves as it is.
    QVERIFY(pressSave(QStringLiteral("Evening show")));
    QTRY_VERIFY(hasJobEnded());
    settle();
    Gate gate;
    Faults::instance()->arm(createMaterailFromImage, gate.fault());
    apply(QMessageBox::No, QStringLiteral("Evening show"));
    QVERIFY(gate.waitForThread());
    QVERIFY(waiting()->isVisible());
    VERIFY_FOLLOWS(waiting());
    Gate inProgress;
    Faults::instance()->arm(copyModelToDevice, inProgress.fault());
    gate.open();
    QVERIFY(inProgress.waitForThread());
    QTRY_COMPARE(waiting()->text(), QStringLiteral("Send Config to Device"));
    {
        const PseudoLanguage pseudo;
        QCoreApplication::processEvents();
        QCOMPARE(ScreenCheck::untranslated(waiting()), QStringList());
    }
    inProgress.open();
    waitForEndOfLoad();
}

void TstLanguageSwitch::the_waiting_dialog_follows_during_copies()
{
    const QString file = elsewhere(QStringLiteral("show.corvelpro"));
    QVERIFY(writePackage(file, QString()));
    {
        HeldFile held(file);
        m_book->expectFileDialog(chooserTitle, {file});
        click(m_panel->importProject());
        QVERIFY(held.waitForReader());
        VERIFY_FOLLOWS(waiting());
        m_book->expectInformation(remind, importSucceeded);
    }
    waitForAnswers();
    settle();
    {
        HeldFile held(projectFile(QStringLiteral("show")));
        m_book->expectFileDialog(saveTitle, {elsewhere(QStringLiteral("copy.corvelpro"))});
        clickRow(QStringLiteral("show"), QStringLiteral("Save as"));
        QVERIFY(held.waitForReader());
        VERIFY_FOLLOWS(waiting());
        m_book->expectInformation(remind, saveSucceeded);
    }
    waitForAnswers();
}

void TstLanguageSwitch::later_progress_is_in_the_new_language_data()
{
    QTest::addColumn<QString>("operation");
    QTest::newRow("save") << QString(queryMaterailData);
    QTest::newRow("apply") << QString(createMaterailFromImage);
}

void TstLanguageSwitch::later_progress_is_in_the_new_language()
{
    QFETCH(QString, operation);
    const bool isSave = operation == queryMaterailData;
    list(packageOf(richDevice(sourceIp)));
    Gate first;
    Faults::instance()->arm(operation, first.fault(1));
    if (isSave)
        QVERIFY(pressSave(QStringLiteral("Evening show")));
    else
        apply();
    QVERIFY(first.waitForThread());
    Simulation::Journal::instance()->clear();
    const PseudoLanguage pseudo;
    QCoreApplication::processEvents();
    first.open();
    QTRY_VERIFY(hasJobEnded());
    QStringList texts = waitingTexts();
    texts += QVariant(journalArguments(setOperatorType, "text")).toStringList();
    texts = texts.filter(QStringLiteral("Keynote"));
    QVERIFY(!texts.isEmpty());
    for (const QString &text : qAsConst(texts))
        QVERIFY2(!PseudoLanguage::untranslatedIn(QString(text).remove(QStringLiteral("Keynote")))
                      .contains(QRegularExpression(QStringLiteral("\\w"))),
                 qPrintable(text));
}

void TstLanguageSwitch::late_language_switch_shows_no_waiting_dialog()
{
    QVERIFY(pressSave(QStringLiteral("Evening show")));
    QTRY_VERIFY(hasJobEnded());
    settle();
    Simulation::Journal::instance()->clear();
    const PseudoLanguage pseudo;
    settle();
    QVERIFY(!waiting()->isVisible());
    QVERIFY(waitingTexts().isEmpty());
}

void TstLanguageSwitch::boxes_above_each_other_keep_their_own_texts()
{
    namespace TranslatedBox = ProjectFileCfg::Internal::TranslatedBox;
    QString language = QStringLiteral("first");
    const auto text = [&language](const char *name) {
        return [&language, name] { return language + QLatin1Char(' ') + QLatin1String(name); };
    };
    const auto textsOf = [](QDialog *dialog) {
        return QStringList{dialog->windowTitle(), qobject_cast<FramelessMessageBox *>(dialog)->text()};
    };
    QWidget window;
    m_book->expectDialog(messageBox, [&](QDialog *below) {
        m_book->expectDialog(messageBox, [&](QDialog *above) {
            language = QStringLiteral("other");
            QEvent change(QEvent::LanguageChange);
            QCoreApplication::sendEvent(&window, &change);
            QCOMPARE(textsOf(below), QStringList({QStringLiteral("other title"), QStringLiteral("other text")}));
            QCOMPARE(textsOf(above), QStringList({QStringLiteral("other alarm"), QStringLiteral("other cause")}));
            above->reject();
        });
        TranslatedBox::warning(&window, text("alarm"), text("cause"));
        below->reject();
    });
    TranslatedBox::information(&window, text("title"), text("text"));
    VERIFY_BOOK();
}

void TstLanguageSwitch::panel_may_be_deleted_behind_a_translated_box()
{
    list(QStringLiteral("show"));
    m_book->expectDialog(messageBox, [this](QDialog *) {
        const PseudoLanguage pseudo;
        QCoreApplication::processEvents();
        m_panel.reset();
    });
    clickRow(QStringLiteral("show"), QStringLiteral("Delete"));
    VERIFY_BOOK();
    QVERIFY(QFile::exists(projectFile(QStringLiteral("show"))));
    m_panel.emplace();
}

TEST_MAIN(TstLanguageSwitch)
#include "tst_languageswitch.moc"
