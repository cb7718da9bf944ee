#include <support/panelfixture.h>

#include <QAbstractItemView>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>
#include <QWindow>

using namespace PanelTesting;
using namespace TestSupport;

namespace {

/// One notch of the wheel, towards the operator, where the pointer is over the middle of the widget.
void turnWheelOver(const QWidget *widget)
{
    QWidget *window = widget->window();
    const QPoint inWindow = widget->mapTo(window, widget->rect().center());
    QWheelEvent notch(inWindow, window->mapToGlobal(inWindow), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    // Only what comes from the system is passed on from widget to widget.
    QSpontaneKeyEvent::setSpontaneous(&notch);
    qApp->notify(window->windowHandle(), &notch);
}

} // namespace

/// The wheel and the keys, as they reach the panel's window.
class TstPanelKeyboard : public QObject, protected PanelOnSite<TestSite>
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { tearDown(); }

    void wheel_over_closed_selector_keeps_the_device();
    void wheel_over_closed_selector_scrolls_its_surroundings();
    void wheel_scrolls_the_open_list();
};

void TstPanelKeyboard::init()
{
    setUp();
    QVERIFY(QTest::qWaitForWindowActive(m_panel->widget.get()));
}

void TstPanelKeyboard::wheel_over_closed_selector_keeps_the_device()
{
    for (const QString &ip : {m_site->mainHall, m_site->sideStage}) {
        selectDevice(ip);
        m_panel->deviceCombo()->setFocus();
        turnWheelOver(m_panel->deviceCombo());
        QCOMPARE(m_panel->selectedAddress(), ip);
    }
    // The selector itself still works.
    QTest::keyClick(m_panel->deviceCombo(), Qt::Key_Up);
    QCOMPARE(m_panel->selectedAddress(), m_site->mainHall);
}

void TstPanelKeyboard::wheel_over_closed_selector_scrolls_its_surroundings()
{
    QScrollArea area;
    area.setWidget(m_panel->widget.get());
    m_panel->widget->show();
    area.resize(600, 300);
    area.show();
    turnWheelOver(m_panel->deviceCombo());
    const int scrolled = area.verticalScrollBar()->value();
    area.takeWidget();
    QVERIFY(scrolled > 0);
}

void TstPanelKeyboard::wheel_scrolls_the_open_list()
{
    QComboBox *selector = m_panel->deviceCombo();
    // A list that does not show all its entries at once.
    selector->setStyleSheet(QStringLiteral("QComboBox { combobox-popup: 0; }"));
    selector->setMaxVisibleItems(2);
    selector->showPopup();
    QVERIFY(QTest::qWaitForWindowExposed(selector->view()->window()));
    const QString device = m_panel->selectedAddress();
    const int before = selector->view()->verticalScrollBar()->value();
    turnWheelOver(selector->view()->viewport());
    QVERIFY(selector->view()->verticalScrollBar()->value() > before);
    QCOMPARE(m_panel->selectedAddress(), device);
    selector->hidePopup();
}

TEST_MAIN(TstPanelKeyboard)
#include "tst_panelkeyboard.moc"
