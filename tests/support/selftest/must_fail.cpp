// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/answerbook.h>
#include <support/testmain.h>

#include <QPushButton>

#include <thread>

using namespace TestSupport;

/// Every function here must fail; tst_support runs them individually.
class MustFail : public QObject
{
    Q_OBJECT

private slots:
    void unexpected_warning() { qWarning("nobody expected this"); }

    void unexpected_warning_of_a_worker()
    {
        std::thread worker([]() { qWarning("nobody expected this either"); });
        worker.join();
        QCoreApplication::processEvents();
    }

    void unexpected_warning_of_a_worker_at_the_very_end()
    {
        std::thread worker([]() { qWarning("too late for the function that caused it"); });
        worker.join();
    }

    void expected_message_that_never_comes() { ExpectMessage expected(QtWarningMsg, QStringLiteral("this one")); }

    void message_that_comes_too_often()
    {
        ExpectMessage expected(QtWarningMsg, QStringLiteral("once"), 1);
        qWarning("once");
        qWarning("once");
    }

    void expected_box_that_never_comes()
    {
        AnswerBook book;
        book.expectInformation(QStringLiteral("Remind"), QStringLiteral("Done"));
    }

    void unexpected_box()
    {
        AnswerBook book;
        HX::Widgets::FramelessMessageBox::warning(nullptr, QStringLiteral("Remind"), QStringLiteral("Failed"));
    }

    void other_text_in_the_box()
    {
        AnswerBook book;
        book.expectWarning(QStringLiteral("Remind"), QStringLiteral("This failed"));
        HX::Widgets::FramelessMessageBox::warning(nullptr, QStringLiteral("Remind"), QStringLiteral("That failed"));
        book.clear();
        book.expectWarning(QStringLiteral("Remind"), QStringLiteral("This failed"));
        HX::Widgets::FramelessMessageBox::information(nullptr, QStringLiteral("Remind"), QStringLiteral("This failed"));
    }

    void dialog_left_open()
    {
        AnswerBook book;
        book.expectDialog(QStringLiteral("QDialog"), [](QDialog *) {});
        QDialog dialog;
        dialog.exec();
    }

    void thread_where_none_is_expected()
    {
        std::thread worker([]() {});
        worker.join();
    }

    void disabled_button()
    {
        QPushButton button(QStringLiteral("Save"));
        button.setEnabled(false);
        button.show();
        click(&button);
    }
};

TEST_MAIN(MustFail)

#include "must_fail.moc"
