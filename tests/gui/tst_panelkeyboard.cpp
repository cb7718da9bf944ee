// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/panelfixture.h>
#include <support/paneltexts.h>

#include <QAbstractItemView>
#include <QScopeGuard>
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

void pressTab(Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(QApplication::focusWidget()->window()->windowHandle(), modifiers ? Qt::Key_Backtab : Qt::Key_Tab,
                    modifiers);
}

/// What the focus goes through from the selector back to the selector: texts of buttons, with the project for those of
/// a row.
QStringList tabStops(const Panel &panel, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QStringList stops;
    panel.deviceCombo()->setFocus();
    do {
        pressTab(modifiers);
        const auto *button = qobject_cast<QAbstractButton *>(QApplication::focusWidget());
        if (!button)
            break;
        const QString project = panel.projectOf(button);
        stops.append(project.isEmpty() ? button->text() : project + QLatin1Char(' ') + button->text());
    } while (stops.size() < 100);
    if (QApplication::focusWidget() != panel.deviceCombo())
        stops.append(QStringLiteral("not back at the selector"));
    return stops;
}

/// The stops of a panel that lists those projects.
QStringList stopsWith(const QStringList &projects)
{
    QStringList stops{QStringLiteral("Save Project"), QStringLiteral("ALL Save as"), QStringLiteral("All Delete")};
    for (const QString &project : projects) {
        for (const char *button : {"Edit", "Apply", "Save as", "Delete"})
            stops.append(project + QLatin1Char(' ') + QLatin1String(button));
    }
    return stops + QStringList{QStringLiteral("Import Project"), QStringLiteral("Apply Others")};
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
    void tab_visits_everything_in_visual_order();
    void backtab_visits_the_same_in_reverse();
    void tab_skips_disabled_commands();
    void tab_order_follows_added_and_removed_rows();
    void focused_row_scrolls_into_view();
    void focus_moves_from_deleted_row_to_the_next();
    void focus_of_removed_first_row_stays_in_table();
    void focus_stays_with_its_project();
    void space_presses_the_focused_button();
    void arrows_go_from_row_to_row();

private:
    static QStringList three() { return {QStringLiteral("New"), QStringLiteral("Middle"), QStringLiteral("Old")}; }
    /// Lists the three, in that order.
    void listThree()
    {
        int age = 0;
        for (const QString &name : three())
            QVERIFY(writePackage(projectFile(name), QStringLiteral("comment"), age += 10));
        m_panel->rescan();
        QCOMPARE(m_panel->names(), three());
    }
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
    const auto takeOut = qScopeGuard([&area] { area.takeWidget(); });
    m_panel->widget->show();
    area.resize(600, 300);
    area.show();
    turnWheelOver(m_panel->deviceCombo());
    QVERIFY(area.verticalScrollBar()->value() > 0);
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

void TstPanelKeyboard::tab_visits_everything_in_visual_order()
{
    listThree();
    QCOMPARE(tabStops(*m_panel), stopsWith(three()));
}

void TstPanelKeyboard::backtab_visits_the_same_in_reverse()
{
    listThree();
    QStringList reversed = stopsWith(three());
    std::reverse(reversed.begin(), reversed.end());
    QCOMPARE(tabStops(*m_panel, Qt::ShiftModifier), reversed);
}

void TstPanelKeyboard::tab_skips_disabled_commands()
{
    QCOMPARE(tabStops(*m_panel), QStringList({QStringLiteral("Save Project"), QStringLiteral("Import Project"),
                                              QStringLiteral("Apply Others")}));
}

void TstPanelKeyboard::tab_order_follows_added_and_removed_rows()
{
    listThree();
    QVERIFY(writePackage(projectFile(QStringLiteral("Between")), QString(), 15));
    m_panel->rescan();
    QCOMPARE(tabStops(*m_panel), stopsWith({QStringLiteral("New"), QStringLiteral("Between"), QStringLiteral("Middle"),
                                            QStringLiteral("Old")}));
    QVERIFY(QFile::remove(projectFile(QStringLiteral("New"))));
    QVERIFY(makeOld(projectFile(QStringLiteral("Old")), 1));
    m_panel->rescan();
    QCOMPARE(tabStops(*m_panel),
             stopsWith({QStringLiteral("Old"), QStringLiteral("Between"), QStringLiteral("Middle")}));
    // Rows are kept where the panel leaves one window for another.
    QWidget host;
    QVBoxLayout layout(&host);
    QPushButton other(&host);
    layout.addWidget(m_panel->widget.get());
    const auto takeOut = qScopeGuard([this] { m_panel->widget->setParent(nullptr); });
    host.show();
    QVERIFY(QTest::qWaitForWindowActive(&host));
    QVERIFY(writePackage(projectFile(QStringLiteral("New")), QString()));
    m_panel->rescan();
    m_panel->deviceCombo()->setFocus();
    for (int stop = 0; stop < 4; ++stop)
        pressTab();
    QCOMPARE(QApplication::focusWidget(), m_panel->rowButtons(0).first());
}

void TstPanelKeyboard::focused_row_scrolls_into_view()
{
    constexpr int count = 40;
    for (int number = 0; number < count; ++number)
        QVERIFY(writePackage(projectFile(QStringLiteral("Show %1").arg(number)), QString(), number));
    m_panel->rescan();
    m_panel->applyOthers()->setFocus();
    pressTab(Qt::ShiftModifier);
    for (int tableRow = count - 1; tableRow >= 0; --tableRow) {
        for (int button = 3; button >= 0; --button) {
            pressTab(Qt::ShiftModifier);
            QCOMPARE(QApplication::focusWidget(), m_panel->rowButtons(tableRow).at(button));
            const QRect onTable(QApplication::focusWidget()->mapTo(m_panel->table()->viewport(), QPoint(0, 0)),
                                QApplication::focusWidget()->size());
            QVERIFY(m_panel->table()->viewport()->rect().contains(onTable));
        }
    }
}

void TstPanelKeyboard::focus_moves_from_deleted_row_to_the_next()
{
    listThree();
    m_panel->rowButtons(1).at(3)->setFocus(Qt::TabFocusReason);
    m_book->expectQuestion(QString(), PanelTexts::deleteQuestion, QMessageBox::Yes);
    QTest::keyClick(m_panel->widget->windowHandle(), Qt::Key_Space);
    VERIFY_BOOK();
    settle();
    QCOMPARE(m_panel->names(), QStringList({QStringLiteral("New"), QStringLiteral("Old")}));
    m_panel->widget->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_panel->widget.get()));
    QCOMPARE(QApplication::focusWidget(), m_panel->rowButtons(1).first());
    QCOMPARE(tabStops(*m_panel), stopsWith({QStringLiteral("New"), QStringLiteral("Old")}));
}

void TstPanelKeyboard::focus_of_removed_first_row_stays_in_table()
{
    listThree();
    m_panel->rowButtons(0).at(2)->setFocus(Qt::TabFocusReason);
    QVERIFY(QFile::remove(projectFile(QStringLiteral("New"))));
    m_panel->rescan();
    QCOMPARE(m_panel->names().first(), QStringLiteral("Middle"));
    QCOMPARE(QApplication::focusWidget(), m_panel->rowButtons(0).first());
    // A last row, and only one is left.
    m_panel->rowButtons(1).at(2)->setFocus(Qt::TabFocusReason);
    QVERIFY(QFile::remove(projectFile(QStringLiteral("Old"))));
    m_panel->rescan();
    QCOMPARE(QApplication::focusWidget(), m_panel->rowButtons(0).first());
    // A focus outside is none of the table's business.
    m_panel->saveProject()->setFocus(Qt::TabFocusReason);
    QVERIFY(QFile::remove(projectFile(QStringLiteral("Middle"))));
    m_panel->rescan();
    QCOMPARE(QApplication::focusWidget(), m_panel->saveProject());
}

void TstPanelKeyboard::focus_stays_with_its_project()
{
    listThree();
    for (const int row : {0, 2}) {
        QWidget *button = m_panel->rowButtons(row).at(2);
        button->setFocus(Qt::TabFocusReason);
        m_panel->rescan();
        QCOMPARE(QApplication::focusWidget(), button);
    }
    // Each time the last project becomes the first one.
    const QStringList oldest{QStringLiteral("Old"), QStringLiteral("Middle")};
    for (int button = 0; button < oldest.size(); ++button) {
        m_panel->rowButtons(2).at(button)->setFocus(Qt::TabFocusReason);
        QVERIFY(makeOld(projectFile(oldest.at(button)), 1 - button));
        m_panel->rescan();
        QCOMPARE(m_panel->names().first(), oldest.at(button));
        QCOMPARE(QApplication::focusWidget(), m_panel->rowButtons(0).at(button));
    }
    // All of them gone, as another program may do.
    QVERIFY(clearProjectFilesDirectory());
    m_panel->rescan();
    QVERIFY(m_panel->names().isEmpty());
    QVERIFY(!tabStops(*m_panel).isEmpty());
}

void TstPanelKeyboard::space_presses_the_focused_button()
{
    listThree();
    m_panel->deviceCombo()->setFocus();
    for (int stop = 0; stop < 4 + 4; ++stop)
        pressTab();
    expectProperties(QStringLiteral("Renamed"), QStringLiteral("by keys"));
    QTest::keyClick(m_panel->widget->windowHandle(), Qt::Key_Space);
    VERIFY_BOOK();
    settle();
    QCOMPARE(m_panel->names(), QStringList({QStringLiteral("New"), QStringLiteral("Renamed"), QStringLiteral("Old")}));
}

void TstPanelKeyboard::arrows_go_from_row_to_row()
{
    listThree();
    const auto press = [this](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(m_panel->widget->windowHandle(), key, modifiers);
        const auto *button = qobject_cast<QAbstractButton *>(QApplication::focusWidget());
        return button ? m_panel->projectOf(button) + QLatin1Char(' ') + button->text() : QString();
    };
    m_panel->rowButtons(0).at(1)->setFocus(Qt::TabFocusReason);
    QCOMPARE(press(Qt::Key_Down), QStringLiteral("Middle Apply"));
    QCOMPARE(press(Qt::Key_Down), QStringLiteral("Old Apply"));
    QCOMPARE(press(Qt::Key_Down), QStringLiteral("Old Apply"));
    QCOMPARE(press(Qt::Key_Up), QStringLiteral("Middle Apply"));
    QCOMPARE(press(Qt::Key_Right), QStringLiteral("Middle Save as"));
    QCOMPARE(press(Qt::Key_Home), QStringLiteral("New Save as"));
    QCOMPARE(press(Qt::Key_Up), QStringLiteral("New Save as"));
    QCOMPARE(press(Qt::Key_Left), QStringLiteral("New Apply"));
    QCOMPARE(press(Qt::Key_End), QStringLiteral("Old Apply"));
    QCOMPARE(press(Qt::Key_Home, Qt::ControlModifier), QStringLiteral("Old Apply"));
    QCOMPARE(press(Qt::Key_Up, Qt::KeypadModifier), QStringLiteral("Middle Apply"));
}

TEST_MAIN(TstPanelKeyboard)
#include "tst_panelkeyboard.moc"
