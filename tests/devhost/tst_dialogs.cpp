// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <simulation/journal.h>
#include <widgets/framelessdialog.h>
#include <widgets/framelessmessagebox.h>
#include <widgets/waitingdialog.h>

#include <support/screencheck.h>
#include <support/testmain.h>

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

using Corvel::Widgets::WaitingDialog;
using HX::Widgets::FramelessDialog;
using HX::Widgets::FramelessMessageBox;
namespace ScreenCheck = TestSupport::ScreenCheck;

namespace {

/// Calls `act` with the next modal dialog.
template<typename Act>
void whenADialogOpens(Act act)
{
    QTimer::singleShot(0, [act]() { act(QApplication::activeModalWidget()); });
}

/// Records what assistive technology is told during its lifetime.
class Announcements
{
public:
    struct Announcement
    {
        QAccessible::Event type;
        QObject *object;
        QString name;
    };

    Announcements()
    {
        told().clear();
        m_previous = QAccessible::installUpdateHandler([](QAccessibleEvent *event) {
            const QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(event->object());
            told().append({event->type(), event->object(), interface ? interface->text(QAccessible::Name) : QString()});
        });
        // Qt only sends updates while accessibility is active, which only the platform can report.
        setActive(true);
    }
    ~Announcements()
    {
        setActive(false);
        QAccessible::installUpdateHandler(m_previous);
    }

    /// The names of `object` at each of its announcements of that type.
    static QStringList names(QAccessible::Event type, const QObject *object)
    {
        QStringList names;
        for (const Announcement &announcement : qAsConst(told())) {
            if (announcement.type == type && announcement.object == object)
                names.append(announcement.name);
        }
        return names;
    }

private:
    static void setActive(bool active)
    {
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(active);
    }

    static QVector<Announcement> &told()
    {
        static QVector<Announcement> list;
        return list;
    }

    QAccessible::UpdateHandler m_previous;
};

QPushButton *cancelButton()
{
    return WaitingDialog::instance()->findChild<QPushButton *>(QStringLiteral("WaitingDialogCancel"));
}

/// The receiver of the next key press.
QWidget *keyTarget(QWidget *window)
{
    return window->focusWidget() ? window->focusWidget() : window;
}

/// Counts the paint events of the object it is installed on.
class PaintCounter : public QObject
{
public:
    int count = 0;
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

} // namespace

class TstDialogs : public QObject
{
    Q_OBJECT

private slots:
    void a_dialog_is_dragged_by_its_title_bar();
    void the_right_button_does_not_drag();
    void the_title_bar_shows_the_window_title();
    void escape_and_the_close_button_reject();
    void the_bottom_bar_accepts_and_rejects();
    void a_hidden_bottom_bar_has_no_default_button();
    void the_layout_goes_between_the_bars();

    void closing_a_box_answers_its_escape_button_data();
    void closing_a_box_answers_its_escape_button();
    void a_pressed_button_is_the_answer();
    void return_answers_like_escape_by_default();
    void a_box_survives_the_deletion_of_its_parent();
    void a_box_is_in_the_journal();
    void message_markup_is_shown_verbatim();
    void box_text_is_its_accessible_description();
    void keys_reach_the_buttons_of_a_box();
    void a_box_makes_room_for_another_text();
    void box_with_many_names_fits_the_screen();

    void waiting_dialog_is_painted_without_blocking();
    void the_waiting_dialog_blocks_the_other_windows();
    void escape_presses_cancel_and_closes_nothing();
    void escape_without_cancel_does_nothing();
    void a_held_escape_does_not_cancel();
    void tab_reaches_cancel_and_space_presses_it();
    void a_key_does_not_press_cancel();
    void cancel_is_acknowledged_before_it_is_obeyed();
    void progress_does_not_replace_the_stopping_text();
    void the_next_operation_can_be_cancelled_again();
    void unconnected_cancel_is_disabled();
    void each_waiting_text_is_announced();
    void clicked_cancel_button_emits_the_signal();
    void long_text_makes_the_waiting_dialog_taller();
    void waiting_dialog_survives_its_parents_deletion();
};

void TstDialogs::a_dialog_is_dragged_by_its_title_bar()
{
    FramelessDialog dialog;
    dialog.resize(400, 300);
    dialog.move(50, 60);
    dialog.show();
    auto *titleBar = dialog.findChild<QWidget *>(QStringLiteral("TitleBar"));
    QVERIFY(titleBar);
    const QPoint before = dialog.pos();
    QTest::mousePress(titleBar, Qt::LeftButton, Qt::NoModifier, QPoint(100, 20));
    QMouseEvent drag(QEvent::MouseMove, QPoint(130, 60), titleBar->mapToGlobal(QPoint(130, 60)), Qt::LeftButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(titleBar, &drag);
    QCOMPARE(dialog.pos(), before + QPoint(30, 40));
    QTest::mouseRelease(titleBar, Qt::LeftButton, Qt::NoModifier, QPoint(100, 20));
    QMouseEvent hover(QEvent::MouseMove, QPoint(5, 5), titleBar->mapToGlobal(QPoint(5, 5)), Qt::NoButton, Qt::NoButton,
                      Qt::NoModifier);
    QApplication::sendEvent(titleBar, &hover);
    QCOMPARE(dialog.pos(), before + QPoint(30, 40));
}

void TstDialogs::the_right_button_does_not_drag()
{
    FramelessDialog dialog;
    dialog.move(50, 60);
    dialog.show();
    auto *titleBar = dialog.findChild<QWidget *>(QStringLiteral("TitleBar"));
    const QPoint before = dialog.pos();
    QTest::mousePress(titleBar, Qt::RightButton, Qt::NoModifier, QPoint(10, 10));
    QMouseEvent drag(QEvent::MouseMove, QPoint(40, 40), titleBar->mapToGlobal(QPoint(40, 40)), Qt::RightButton,
                     Qt::RightButton, Qt::NoModifier);
    QApplication::sendEvent(titleBar, &drag);
    QCOMPARE(dialog.pos(), before);
}

void TstDialogs::the_title_bar_shows_the_window_title()
{
    FramelessDialog dialog;
    dialog.setWindowTitle(QStringLiteral("A <b>title</b>"));
    QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("TitleBarText"))->text(), QStringLiteral("A <b>title</b>"));
    QVERIFY(dialog.windowFlags().testFlag(Qt::FramelessWindowHint));
}

void TstDialogs::escape_and_the_close_button_reject()
{
    FramelessDialog dialog;
    whenADialogOpens([](QWidget *box) { QTest::keyClick(box, Qt::Key_Escape); });
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
    whenADialogOpens([](QWidget *box) {
        QTest::mouseClick(box->findChild<QToolButton *>(QStringLiteral("TitleBarCloseButton")), Qt::LeftButton);
    });
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
}

void TstDialogs::the_bottom_bar_accepts_and_rejects()
{
    FramelessDialog dialog;
    whenADialogOpens([](QWidget *box) {
        QTest::mouseClick(box->findChild<QPushButton *>(QStringLiteral("FramelessDialogOk")), Qt::LeftButton);
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    whenADialogOpens([](QWidget *box) {
        QTest::mouseClick(box->findChild<QPushButton *>(QStringLiteral("FramelessDialogCancel")), Qt::LeftButton);
    });
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
}

void TstDialogs::a_hidden_bottom_bar_has_no_default_button()
{
    FramelessDialog dialog;
    dialog.setBottomBarVisible(false);
    auto *apply = new QPushButton(QStringLiteral("Apply"));
    auto *layout = new QVBoxLayout;
    layout->addWidget(apply);
    dialog.setLayout(layout);
    QSignalSpy pressed(apply, &QPushButton::clicked);
    dialog.show();
    QVERIFY(!dialog.findChild<QPushButton *>(QStringLiteral("FramelessDialogOk"))->isVisible());
    QTest::keyClick(&dialog, Qt::Key_Return);
    QCOMPARE(pressed.count(), 1);
    QVERIFY(dialog.isVisible());
}

void TstDialogs::the_layout_goes_between_the_bars()
{
    FramelessDialog dialog;
    dialog.setFixedSize(400, 300);
    auto *content = new QLabel(QStringLiteral("content"));
    auto *layout = new QVBoxLayout;
    layout->addWidget(content);
    dialog.setLayout(layout);
    dialog.show();
    auto *titleBar = dialog.findChild<QWidget *>(QStringLiteral("TitleBar"));
    auto *bottomBar = dialog.findChild<QWidget *>(QStringLiteral("FramelessDialogBottomBar"));
    const int top = content->mapTo(&dialog, QPoint(0, 0)).y();
    QVERIFY(top >= titleBar->mapTo(&dialog, QPoint(0, titleBar->height())).y());
    QVERIFY(top + content->height() <= bottomBar->mapTo(&dialog, QPoint(0, 0)).y());
}

void TstDialogs::closing_a_box_answers_its_escape_button_data()
{
    QTest::addColumn<int>("buttons");
    QTest::addColumn<int>("answer");
    using B = QMessageBox;
    QTest::newRow("OK") << int(B::Ok) << int(B::Ok);
    QTest::newRow("Yes, No") << int(B::Yes | B::No) << int(B::No);
    QTest::newRow("OK, Cancel") << int(B::Ok | B::Cancel) << int(B::Cancel);
    QTest::newRow("Yes, No, Cancel") << int(B::Yes | B::No | B::Cancel) << int(B::Cancel);
    QTest::newRow("Yes, OK") << int(B::Yes | B::Ok) << int(B::NoButton);
}

void TstDialogs::closing_a_box_answers_its_escape_button()
{
    QFETCH(int, buttons);
    QFETCH(int, answer);
    const QMessageBox::StandardButtons offered(buttons);
    const QString title = QStringLiteral("Remind");
    whenADialogOpens([](QWidget *box) { QTest::keyClick(box, Qt::Key_Escape); });
    QCOMPARE(int(FramelessMessageBox::question(nullptr, title, title, offered)), answer);
    whenADialogOpens([](QWidget *box) { box->close(); });
    QCOMPARE(int(FramelessMessageBox::warning(nullptr, title, title, offered)), answer);
}

void TstDialogs::a_pressed_button_is_the_answer()
{
    const QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    for (const QMessageBox::StandardButton wanted : {QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel}) {
        whenADialogOpens([wanted](QWidget *box) {
            QTest::mouseClick(qobject_cast<FramelessMessageBox *>(box)->button(wanted), Qt::LeftButton);
        });
        QCOMPARE(FramelessMessageBox::question(nullptr, QStringLiteral("t"), QStringLiteral("x"), buttons), wanted);
    }
}

void TstDialogs::return_answers_like_escape_by_default()
{
    const QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No;
    const QString text = QStringLiteral("x");
    whenADialogOpens([](QWidget *box) { QTest::keyClick(box, Qt::Key_Return); });
    QCOMPARE(FramelessMessageBox::question(nullptr, text, text, buttons), QMessageBox::No);
    whenADialogOpens([](QWidget *box) { QTest::keyClick(box, Qt::Key_Return); });
    QCOMPARE(FramelessMessageBox::question(nullptr, text, text, buttons, QMessageBox::Yes), QMessageBox::Yes);
}

void TstDialogs::a_box_survives_the_deletion_of_its_parent()
{
    auto *parent = new QWidget;
    whenADialogOpens([parent](QWidget *) { delete parent; });
    QCOMPARE(FramelessMessageBox::question(parent, QStringLiteral("t"), QStringLiteral("x"),
                                           QMessageBox::Yes | QMessageBox::No),
             QMessageBox::No);
}

void TstDialogs::a_box_is_in_the_journal()
{
    Simulation::Journal::instance()->clear();
    whenADialogOpens([](QWidget *box) { box->close(); });
    FramelessMessageBox::warning(nullptr, QStringLiteral("Remind"), QStringLiteral("No disk"));
    const auto entries = Simulation::Journal::instance()->entries(Simulation::Operations::warningBox);
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries.first().arguments.value(QStringLiteral("title")).toString(), QStringLiteral("Remind"));
    QCOMPARE(entries.first().arguments.value(QStringLiteral("text")).toString(), QStringLiteral("No disk"));
    QCOMPARE(entries.first().arguments.value(QStringLiteral("buttons")).toInt(), int(QMessageBox::Ok));
}

void TstDialogs::message_markup_is_shown_verbatim()
{
    const QString text = QStringLiteral("<b>name</b>");
    QString shown;
    whenADialogOpens([&shown](QWidget *box) {
        const auto *label = box->findChild<QLabel *>(QStringLiteral("FramelessMessageBoxText"));
        shown = label->textFormat() == Qt::PlainText ? label->text() : QString();
        box->close();
    });
    FramelessMessageBox::information(nullptr, QStringLiteral("t"), text);
    QCOMPARE(shown, text);
}

void TstDialogs::box_text_is_its_accessible_description()
{
    // Long enough to require a break, without blanks to break at.
    const QString text = QStringLiteral("Not written: /media/") + QString(60, QLatin1Char('x'));
    const Announcements announcements;
    QString title;
    QString description;
    QStringList labels;
    QStringList alerts;
    whenADialogOpens([&](QWidget *box) {
        const QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(box);
        title = interface->text(QAccessible::Name);
        description = interface->text(QAccessible::Description);
        for (QLabel *label : box->findChildren<QLabel *>())
            labels.append(QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name));
        alerts = announcements.names(QAccessible::Alert, box);
        box->close();
    });
    FramelessMessageBox::warning(nullptr, QStringLiteral("Remind"), text);
    QCOMPARE(title, QStringLiteral("Remind"));
    QCOMPARE(description, text);
    QVERIFY2(labels.contains(text), qPrintable(labels.join(QLatin1Char('|'))));
    QVERIFY2(labels.contains(QStringLiteral("Warning")), qPrintable(labels.join(QLatin1Char('|'))));
    QVERIFY(!labels.contains(QString()));
    QCOMPARE(alerts, QStringList(QStringLiteral("Remind")));
}

void TstDialogs::a_box_makes_room_for_another_text()
{
    whenADialogOpens([](QWidget *widget) {
        auto *box = qobject_cast<FramelessMessageBox *>(widget);
        QTimer::singleShot(0, box, &QDialog::reject);
        const int height = box->height();
        const QString longer = QStringLiteral("a text of many words ").repeated(20);
        QVERIFY(box->setProperty("text", longer));
        QCOMPARE(box->text(), longer);
        QCOMPARE(box->accessibleDescription(), longer);
        QVERIFY(box->height() > height);
        QCOMPARE(ScreenCheck::clipped(box), QStringList());
        box->setText(QStringLiteral("short"));
        QCOMPARE(box->height(), height);
    });
    FramelessMessageBox::warning(nullptr, QStringLiteral("Remind"), QStringLiteral("short"));
}

void TstDialogs::box_with_many_names_fits_the_screen()
{
    QStringList names;
    for (int number = 1; number <= 1000; ++number)
        names.append(QStringLiteral("Project%1").arg(number));
    whenADialogOpens([](QWidget *box) {
        QTimer::singleShot(0, qobject_cast<QDialog *>(box), &QDialog::reject);
        const QRect screen = box->screen()->availableGeometry();
        QVERIFY2(screen.contains(box->frameGeometry()), qPrintable(QString::number(box->height())));
        QCOMPARE(ScreenCheck::clipped(box), QStringList());
        // Tab reaches the text, and the arrow keys scroll it to its end.
        auto *area = box->findChild<QScrollArea *>();
        QTest::keyClick(keyTarget(box), Qt::Key_Tab);
        QVERIFY(area->hasFocus() || area->isAncestorOf(box->focusWidget()));
        QTest::keyClick(keyTarget(box), Qt::Key_End);
        for (int key = 0; key < 10000 && area->verticalScrollBar()->value() < area->verticalScrollBar()->maximum();
             ++key)
            QTest::keyClick(keyTarget(box), Qt::Key_Down);
        QCOMPARE(area->verticalScrollBar()->value(), area->verticalScrollBar()->maximum());
    });
    FramelessMessageBox::warning(nullptr, QStringLiteral("Warning"), names.join(QStringLiteral(", ")));
}

void TstDialogs::keys_reach_the_buttons_of_a_box()
{
    const QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    whenADialogOpens([](QWidget *box) {
        const QAbstractButton *yes = qobject_cast<FramelessMessageBox *>(box)->button(QMessageBox::Yes);
        for (int tabs = 0; tabs < 3 && box->focusWidget() != yes; ++tabs)
            QTest::keyClick(keyTarget(box), Qt::Key_Tab);
        QTest::keyClick(keyTarget(box), Qt::Key_Space);
        box->close();
    });
    QCOMPARE(FramelessMessageBox::question(nullptr, QStringLiteral("t"), QStringLiteral("x"), buttons),
             QMessageBox::Yes);
}

void TstDialogs::waiting_dialog_is_painted_without_blocking()
{
    PaintCounter counter;
    WaitingDialog *dialog = WaitingDialog::instance();
    auto *label = dialog->findChild<QLabel *>(QStringLiteral("WaitingDialogText"));
    label->installEventFilter(&counter);

    dialog->showWaitingDialog(QStringLiteral("Please wait"), WaitingDialog::LevelNormal);
    QVERIFY(dialog->isVisible());
    QCOMPARE(dialog->text(), QStringLiteral("Please wait"));
    QVERIFY(counter.count > 0);
    const int paintedBefore = counter.count;
    dialog->showWaitingDialog(QStringLiteral("Almost done"), WaitingDialog::LevelNormal);
    QVERIFY(counter.count > paintedBefore);
    dialog->hideWaitingDialog();
    QVERIFY(!dialog->isVisible());
}

void TstDialogs::the_waiting_dialog_blocks_the_other_windows()
{
    QPushButton other;
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other, TestSupport::patience));
    WaitingDialog *dialog = WaitingDialog::instance();
    dialog->showWaitingDialog(QStringLiteral("x"), 0);
    QCOMPARE(QApplication::activeModalWidget(), dialog);
    QSignalSpy clicked(&other, &QPushButton::clicked);
    QTest::mouseClick(other.windowHandle(), Qt::LeftButton, Qt::NoModifier, other.rect().center());
    QCOMPARE(clicked.count(), 0);
    dialog->hideWaitingDialog();
    QTest::mouseClick(other.windowHandle(), Qt::LeftButton, Qt::NoModifier, other.rect().center());
    QCOMPARE(clicked.count(), 1);
}

void TstDialogs::escape_presses_cancel_and_closes_nothing()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    QSignalSpy cancelled(dialog, &WaitingDialog::signal_canelLoad);
    dialog->setCanelVisible(true);
    dialog->showWaitingDialog(QStringLiteral("x"), 0);
    QTest::keyClick(keyTarget(dialog), Qt::Key_Escape);
    QCOMPARE(cancelled.count(), 1);
    QVERIFY(dialog->isVisible());
    QTest::keyClick(keyTarget(dialog), Qt::Key_Escape);
    QCOMPARE(cancelled.count(), 1);
    QVERIFY(!dialog->close());
    QVERIFY(dialog->isVisible());
    dialog->hideWaitingDialog();
}

void TstDialogs::escape_without_cancel_does_nothing()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    QSignalSpy cancelled(dialog, &WaitingDialog::signal_canelLoad);
    dialog->setCanelVisible(false);
    dialog->showWaitingDialog(QStringLiteral("x"), 0);
    QTest::keyClick(keyTarget(dialog), Qt::Key_Escape);
    QVERIFY(dialog->isVisible());
    QCOMPARE(cancelled.count(), 0);
    QCOMPARE(dialog->text(), QStringLiteral("x"));
    dialog->hideWaitingDialog();
}

void TstDialogs::a_held_escape_does_not_cancel()
{
    // Pressed in a box and still held after the box was replaced by the waiting dialog.
    WaitingDialog *dialog = WaitingDialog::instance();
    QSignalSpy cancelled(dialog, &WaitingDialog::signal_canelLoad);
    dialog->setCanelVisible(true);
    dialog->showWaitingDialog(QStringLiteral("x"), 0);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(keyTarget(dialog), &repeated);
    QCOMPARE(cancelled.count(), 0);
    dialog->hideWaitingDialog();
}

void TstDialogs::tab_reaches_cancel_and_space_presses_it()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    QSignalSpy cancelled(dialog, &WaitingDialog::signal_canelLoad);
    dialog->setCanelVisible(true);
    dialog->showWaitingDialog(QStringLiteral("x"), 0);
    QVERIFY(!cancelButton()->hasFocus());
    QTest::keyClick(keyTarget(dialog), Qt::Key_Tab);
    QCOMPARE(dialog->focusWidget(), cancelButton());
    QTest::keyClick(keyTarget(dialog), Qt::Key_Space);
    QCOMPARE(cancelled.count(), 1);
    dialog->hideWaitingDialog();
}

void TstDialogs::a_key_does_not_press_cancel()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    QSignalSpy cancelled(dialog, &WaitingDialog::signal_canelLoad);
    dialog->setCanelVisible(true);
    dialog->showWaitingDialog(QStringLiteral("x"), 0);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        QWidget *focus = dialog->focusWidget();
        QTest::keyClick(focus ? focus : dialog, key);
    }
    QCOMPARE(cancelled.count(), 0);
    dialog->hideWaitingDialog();
}

void TstDialogs::cancel_is_acknowledged_before_it_is_obeyed()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    auto *label = dialog->findChild<QLabel *>(QStringLiteral("WaitingDialogText"));
    PaintCounter paints;
    label->installEventFilter(&paints);
    dialog->setCanelVisible(true);
    dialog->showWaitingDialog(QStringLiteral("Saving"), 0);
    bool enabled = true;
    QString text;
    int paintsBefore = paints.count;
    int paintsThen = 0;
    // A connected slot may block in a call to the device.
    QObject context;
    connect(dialog, &WaitingDialog::signal_canelLoad, &context, [&]() {
        enabled = cancelButton()->isEnabled();
        text = dialog->text();
        paintsThen = paints.count;
    });
    QTRY_VERIFY(cancelButton()->isEnabled());
    QTest::mouseClick(cancelButton(), Qt::LeftButton);
    QVERIFY(!enabled);
    QCOMPARE(text, QStringLiteral("Stopping, please wait..."));
    QVERIFY(paintsThen > paintsBefore);
    dialog->hideWaitingDialog();
}

void TstDialogs::progress_does_not_replace_the_stopping_text()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    QSignalSpy cancelled(dialog, &WaitingDialog::signal_canelLoad);
    dialog->setCanelVisible(true);
    dialog->showWaitingDialog(QStringLiteral("Picture 1"), 0);
    QTest::keyClick(keyTarget(dialog), Qt::Key_Escape);
    const QString stopping = dialog->text();
    QVERIFY(stopping != QStringLiteral("Picture 1"));
    // A text already queued when Cancel was pressed.
    dialog->showWaitingDialog(QStringLiteral("Picture 2"), 0);
    dialog->setCanelVisible(true);
    dialog->setButtonText(QStringLiteral("Cancel"));
    QCOMPARE(dialog->text(), stopping);
    QVERIFY(!cancelButton()->isEnabled());
    QTest::mouseClick(cancelButton(), Qt::LeftButton);
    QCOMPARE(cancelled.count(), 1);
    dialog->hideWaitingDialog();
}

void TstDialogs::the_next_operation_can_be_cancelled_again()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    QSignalSpy cancelled(dialog, &WaitingDialog::signal_canelLoad);
    for (int operation = 1; operation <= 2; ++operation) {
        dialog->setCanelVisible(true);
        dialog->showWaitingDialog(QStringLiteral("Saving"), 0);
        QCOMPARE(dialog->text(), QStringLiteral("Saving"));
        QVERIFY(cancelButton()->isEnabled());
        QTest::keyClick(keyTarget(dialog), Qt::Key_Escape);
        QCOMPARE(cancelled.count(), operation);
        QVERIFY(!cancelButton()->isEnabled());
        dialog->hideWaitingDialog();
    }
}

void TstDialogs::unconnected_cancel_is_disabled()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    dialog->setCanelVisible(true);
    dialog->showWaitingDialog(QStringLiteral("Copying"), 0);
    QVERIFY(!cancelButton()->isEnabled());
    QTest::keyClick(keyTarget(dialog), Qt::Key_Escape);
    QCOMPARE(dialog->text(), QStringLiteral("Copying"));
    {
        QObject operation;
        connect(dialog, &WaitingDialog::signal_canelLoad, &operation, []() {});
        QTRY_VERIFY(cancelButton()->isEnabled());
        dialog->disconnect(&operation);
        QTRY_VERIFY(!cancelButton()->isEnabled());
        connect(dialog, &WaitingDialog::signal_canelLoad, &operation, []() {});
        QTRY_VERIFY(cancelButton()->isEnabled());
        // Its destructor disconnects it.
    }
    // A deleted receiver sends no disconnect notification.
    QTest::keyClick(keyTarget(dialog), Qt::Key_Escape);
    QCOMPARE(dialog->text(), QStringLiteral("Copying"));
    dialog->hideWaitingDialog();
}

void TstDialogs::each_waiting_text_is_announced()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    QSignalSpy cancelled(dialog, &WaitingDialog::signal_canelLoad);
    dialog->setCanelVisible(true);
    const Announcements announcements;
    dialog->showWaitingDialog(QStringLiteral("Synchronising"), 0);
    dialog->showWaitingDialog(QStringLiteral("Resetting"), 0);
    dialog->showWaitingDialog(QStringLiteral("Resetting"), 0);
    QTest::keyClick(keyTarget(dialog), Qt::Key_Escape);
    QCOMPARE(announcements.names(QAccessible::Alert, dialog),
             QStringList({QStringLiteral("Synchronising"), QStringLiteral("Resetting"), dialog->text()}));
    QVERIFY(announcements.names(QAccessible::NameChanged, dialog).contains(QStringLiteral("Resetting")));
    dialog->hideWaitingDialog();
}

void TstDialogs::clicked_cancel_button_emits_the_signal()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    auto *button = dialog->findChild<QPushButton *>(QStringLiteral("WaitingDialogCancel"));
    QSignalSpy cancelled(dialog, &WaitingDialog::signal_canelLoad);
    dialog->setCanelVisible(true);
    dialog->setButtonText(QStringLiteral("Stop"));
    dialog->showWaitingDialog(QStringLiteral("x"), 0);
    QVERIFY(button->isVisible());
    QCOMPARE(button->text(), QStringLiteral("Stop"));
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(cancelled.count(), 1);
    QVERIFY(dialog->isVisible());
    dialog->hideWaitingDialog();

    dialog->setCanelVisible(false);
    dialog->showWaitingDialog(QStringLiteral("x"), 0);
    QVERIFY(!dialog->isCanelVisible());
    QVERIFY(!button->isVisible());
    dialog->hideWaitingDialog();
}

void TstDialogs::long_text_makes_the_waiting_dialog_taller()
{
    WaitingDialog *dialog = WaitingDialog::instance();
    auto *label = dialog->findChild<QLabel *>(QStringLiteral("WaitingDialogText"));
    dialog->showWaitingDialog(QStringLiteral("short"), 0);
    const QSize shortSize = dialog->size();
    dialog->showWaitingDialog(QStringLiteral("a text of many words ").repeated(20), 0);
    QCOMPARE(dialog->width(), shortSize.width());
    QVERIFY(dialog->height() > shortSize.height());
    QVERIFY(label->height() >= label->heightForWidth(label->width()));
    // Also by one line, and without the event loop in between.
    for (int words = 1; words < 30; ++words) {
        dialog->showWaitingDialog(QStringLiteral("word ").repeated(words), 0);
        QVERIFY2(label->height() >= label->heightForWidth(label->width()), qPrintable(QString::number(words)));
    }
    dialog->hideWaitingDialog();
}

void TstDialogs::waiting_dialog_survives_its_parents_deletion()
{
    const QPointer<WaitingDialog> orphan = WaitingDialog::instance();
    QCOMPARE(WaitingDialog::instance(nullptr, 0), orphan.data());
    auto *parent = new QWidget;
    orphan->setParent(parent, orphan->windowFlags());
    delete parent;
    QVERIFY(!orphan);
    WaitingDialog *next = WaitingDialog::instance();
    next->showWaitingDialog(QStringLiteral("x"), 0);
    QVERIFY(next->isVisible());
    next->hideWaitingDialog();
}

TEST_MAIN(TstDialogs)
#include "tst_dialogs.moc"
