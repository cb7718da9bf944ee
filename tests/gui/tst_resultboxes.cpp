// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <messageboxes.h>

#include <support/answerbook.h>
#include <support/testmain.h>

using namespace TestSupport;
using HX::Widgets::FramelessMessageBox;
using ProjectFileCfg::Internal::MessageBoxes;

/// The box of each result code, including those that no job returns.
class TstResultBoxes : public QObject
{
    Q_OBJECT

private slots:
    void each_code_of_a_save_has_its_box_data();
    void each_code_of_a_save_has_its_box();
    void each_code_of_an_apply_has_its_box_data();
    void each_code_of_an_apply_has_its_box();

private:
    /// Rows for the codes from -1 to 17; those that are not in `texts` show nothing.
    static void rows(const QMap<int, QString> &texts);
    static void verify(FramelessMessageBox::Kind kind, void (*show)(QWidget *panel, int code));
};

void TstResultBoxes::rows(const QMap<int, QString> &texts)
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    for (int code = -1; code <= 17; ++code)
        QTest::addRow("%d", code) << code << texts.value(code);
}

void TstResultBoxes::verify(FramelessMessageBox::Kind kind, void (*show)(QWidget *panel, int code))
{
    QFETCH(int, code);
    QFETCH(QString, text);
    QWidget panel;
    panel.show();
    AnswerBook book;
    if (!text.isEmpty())
        book.expectBox(kind, QStringLiteral("Remind"), text, QMessageBox::Ok);
    show(&panel, code);
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(book.seen().size(), text.isEmpty() ? 0 : 1);
    if (!text.isEmpty())
        QCOMPARE(book.seen().first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
}

void TstResultBoxes::each_code_of_a_save_has_its_box_data()
{
    rows({{1, QStringLiteral("Failed to export bkg")},
          {2, QStringLiteral("Failed to export logo")},
          {3, QStringLiteral("Offline device resource file is incomplete")},
          {4, QStringLiteral("User cancels current operation")},
          {5, QStringLiteral("Failed to encrypt file")},
          {6, QStringLiteral("Failed to save json file")},
          {7, QStringLiteral("Failed to get device information")}});
}

void TstResultBoxes::each_code_of_a_save_has_its_box()
{
    verify(FramelessMessageBox::Information, &MessageBoxes::showBackupResult);
}

void TstResultBoxes::each_code_of_an_apply_has_its_box_data()
{
    rows({{1, QStringLiteral("User cancels current operation")},
          {2, QStringLiteral("Incorrect file content")},
          {3, QStringLiteral("Input or output card mismatch")},
          {4, QStringLiteral("Hardware version mismatch")},
          {5, QStringLiteral("Failed to get device information")},
          {6, QStringLiteral("Failed to decompress file")},
          {7, QStringLiteral("Project file import failed")},
          {8, QStringLiteral("Incorrect JSON file")},
          {10, QStringLiteral("Device type mismatch")},
          {11, QStringLiteral("Incorrect file content")},
          {12, QStringLiteral("Protocol version mismatch")},
          {14, QStringLiteral("apply gallery failed")},
          {15, QStringLiteral("Incorrect gallery file.")}});
}

void TstResultBoxes::each_code_of_an_apply_has_its_box()
{
    verify(FramelessMessageBox::Warning, &MessageBoxes::showLoadResult);
}

TEST_MAIN(TstResultBoxes)
#include "tst_resultboxes.moc"
