// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/look.h>
#include <widgets/waitingdialog.h>

#include <support/testmain.h>

#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QScreen>
#include <QThread>

#include <xcb/xcb.h>

#include <atomic>
#include <cstdlib>
#include <memory>

using Corvel::Widgets::WaitingDialog;

namespace {

/// Maps windows like a window manager: with a delay and from another process.
class SlowWindowManager : public QThread
{
public:
    SlowWindowManager()
    {
        m_connection = xcb_connect(nullptr, nullptr);
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection, screen->root, XCB_CW_EVENT_MASK, &mask);
        // The reply proves that the server has processed the request before it.
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
        start();
    }

    ~SlowWindowManager() override
    {
        m_stopped = true;
        wait();
        xcb_disconnect(m_connection);
    }

protected:
    void run() override
    {
        while (!m_stopped) {
            const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event(xcb_poll_for_event(m_connection),
                                                                                   &std::free);
            if (!event)
                msleep(1);
            else if (event->response_type == XCB_MAP_REQUEST)
                map(reinterpret_cast<xcb_map_request_event_t *>(event.get())->window);
            else if (event->response_type == XCB_CONFIGURE_REQUEST)
                configure(*reinterpret_cast<xcb_configure_request_event_t *>(event.get()));
        }
    }

private:
    void map(xcb_window_t window)
    {
        const int timeTakenMs = 60;
        msleep(timeTakenMs);
        xcb_map_window(m_connection, window);
        xcb_flush(m_connection);
    }

    void configure(const xcb_configure_request_event_t &request)
    {
        const uint32_t values[] = {uint32_t(request.x), uint32_t(request.y), request.width, request.height};
        xcb_configure_window(
            m_connection, request.window,
            XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
        xcb_flush(m_connection);
    }

    xcb_connection_t *m_connection;
    std::atomic<bool> m_stopped{false};
};

/// The screen's contents at the widget's place, read back from the X server.
QImage onScreen(const QWidget *widget)
{
    const QRect place(widget->mapToGlobal(QPoint(0, 0)), widget->size());
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, place.x(), place.y(), place.width(), place.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

QImage painted(QWidget *widget)
{
    return widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

} // namespace

/// Tests that need a real X server; run in a virtual one.
class TstOnScreen : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void each_text_is_visible_on_return_data();
    void each_text_is_visible_on_return();
    void hiding_at_once_causes_no_x_error();
    void the_text_is_as_large_as_the_desktops();
};

void TstOnScreen::cleanup()
{
    WaitingDialog::instance()->hideWaitingDialog();
}

void TstOnScreen::each_text_is_visible_on_return_data()
{
    QTest::addColumn<bool>("managed");
    QTest::newRow("without a window manager") << false;
    QTest::newRow("with a slow window manager") << true;
}

void TstOnScreen::each_text_is_visible_on_return()
{
    QFETCH(bool, managed);
    const std::unique_ptr<SlowWindowManager> manager(managed ? new SlowWindowManager : nullptr);
    WaitingDialog *dialog = WaitingDialog::instance();
    const auto *label = dialog->findChild<QLabel *>(QStringLiteral("WaitingDialogText"));
    // The event loop does not run between these: callers block right after each call.
    for (const QString &text :
         {QStringLiteral("Saving"), QStringLiteral("Synchronising"), QStringLiteral("Resetting")}) {
        dialog->hideWaitingDialog();
        dialog->showWaitingDialog(text, 0);
        QCOMPARE(onScreen(label), painted(const_cast<QLabel *>(label)));
    }
    dialog->showWaitingDialog(QStringLiteral("The same dialog, another text"), 0);
    QCOMPARE(onScreen(label), painted(const_cast<QLabel *>(label)));
}

void TstOnScreen::hiding_at_once_causes_no_x_error()
{
    // The warning guard fails this test on any warning, such as an X error.
    WaitingDialog *dialog = WaitingDialog::instance();
    QWidget window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window, TestSupport::patience));
    dialog->showWaitingDialog(QStringLiteral("Synchronising"), 0);
    dialog->hideWaitingDialog();
    // The server sends that event before any event about another window.
    QWidget other;
    other.show();
    QVERIFY(QTest::qWaitForWindowExposed(&other, TestSupport::patience));
}

void TstOnScreen::the_text_is_as_large_as_the_desktops()
{
    // The virtual X server runs at 130 dpi.
    const int desktops = QFontInfo(QFontDatabase::systemFont(QFontDatabase::GeneralFont)).pixelSize();
    const int normal = 13;
    QVERIFY(desktops > normal);
    Core::applyLook();
    QCOMPARE(QApplication::font().pixelSize(), desktops);
}

TEST_MAIN(TstOnScreen)
#include "tst_onscreen.moc"
