// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "translatedtexts.h"
#include <support/panelfixture.h>
#include <support/paneltexts.h>

#include <QAccessible>
#include <QHeaderView>
#include <QScopeGuard>
#include <QScrollBar>

#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

using namespace PanelTesting;
using namespace TestSupport;

namespace {

QAccessibleInterface *interfaceOf(QObject *object)
{
    return QAccessible::queryAccessibleInterface(object);
}

QString nameOf(const QAccessibleInterface *interface)
{
    return interface->text(QAccessible::Name);
}

QList<QAccessibleInterface *> childrenOf(const QAccessibleInterface *parent)
{
    QList<QAccessibleInterface *> children;
    for (int index = 0; index < parent->childCount(); ++index)
        children.append(parent->child(index));
    return children;
}

QStringList namesOf(const QList<QAccessibleInterface *> &interfaces)
{
    QStringList names;
    for (const QAccessibleInterface *interface : interfaces)
        names.append(nameOf(interface));
    return names;
}

/// The first child of `parent` with that role and name; null if there is none.
QAccessibleInterface *childOf(const QAccessibleInterface *parent, QAccessible::Role role, const QString &name)
{
    for (QAccessibleInterface *child : childrenOf(parent)) {
        if (child->role() == role && nameOf(child) == name)
            return child;
    }
    return nullptr;
}

} // namespace

/// The project table as a screen reader walks it: down to the buttons of a row, up again, and from cell to cell.
class TstTableAccessibility : public QObject, protected PanelOnSite<TestSite>
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void buttons_are_children_of_their_cell();
    void pressing_a_button_returns_before_its_dialog_opens();
    void parent_of_a_button_is_its_cell();
    void each_child_has_its_index();
    void cells_have_their_headers();
    void cells_are_plain_text();
    void child_at_a_point_is_found();
    void rows_out_of_sight_are_off_screen();
    void nothing_in_the_table_can_be_selected();
    void tree_follows_added_and_removed_rows();
    void tree_follows_the_language();
    void a_removed_row_is_no_longer_valid();
    void panel_built_for_a_screen_reader_is_equal();
    void nothing_outlives_the_panel();

private:
    QAccessibleInterface *table() const { return interfaceOf(m_panel->table()); }
    QAccessibleInterface *cell(int tableRow, int column) const
    {
        return table()->tableInterface()->cellAt(tableRow, column);
    }
    void listThree()
    {
        int age = 0;
        for (const QString &name : {QStringLiteral("New"), QStringLiteral("Middle"), QStringLiteral("Old")})
            QVERIFY(writePackage(projectFile(name), name + QStringLiteral(" comment"), age += 10));
        m_panel->rescan();
    }
    /// Compares all that can be reached from the table with what it shows, both ways.
    void compareTree();
};

void TstTableAccessibility::compareTree()
{
    QTableWidget *shown = m_panel->table();
    QCOMPARE(table()->role(), QAccessible::Table);
    QCOMPARE(table()->tableInterface()->rowCount(), shown->rowCount());
    QCOMPARE(table()->tableInterface()->columnCount(), 3);
    for (int tableRow = 0; tableRow < shown->rowCount(); ++tableRow) {
        const QString project = shown->item(tableRow, 0)->text();
        QCOMPARE(nameOf(cell(tableRow, 0)), project);
        QCOMPARE(nameOf(cell(tableRow, 1)), shown->item(tableRow, 1)->text());
        QStringList buttons;
        for (const QToolButton *button : m_panel->rowButtons(tableRow))
            buttons.append(button->text() + QStringLiteral(", ") + project);
        QCOMPARE(namesOf(childrenOf(cell(tableRow, 2))), buttons);
        for (int column = 0; column < 3; ++column) {
            QAccessibleInterface *const one = cell(tableRow, column);
            QVERIFY(one->isValid());
            QCOMPARE(one->role(), QAccessible::Cell);
            QCOMPARE(one->parent(), table());
            QCOMPARE(table()->child(table()->indexOfChild(one)), one);
            QCOMPARE(one->tableCellInterface()->rowIndex(), tableRow);
            QCOMPARE(one->tableCellInterface()->columnIndex(), column);
        }
        for (QToolButton *button : m_panel->rowButtons(tableRow))
            QCOMPARE(interfaceOf(button)->parent(), cell(tableRow, 2));
    }
}

void TstTableAccessibility::buttons_are_children_of_their_cell()
{
    list(QStringLiteral("Evening show"));
    QAccessibleInterface *const operations =
        childOf(table(), QAccessible::Cell, QStringLiteral("Operations, Evening show"));
    QVERIFY(operations);
    QCOMPARE(operations->childCount(), 4);
    const QStringList buttons{QStringLiteral("Edit"), QStringLiteral("Apply"), QStringLiteral("Save as"),
                              QStringLiteral("Delete")};
    for (int index = 0; index < buttons.count(); ++index) {
        QAccessibleInterface *const button = operations->child(index);
        QCOMPARE(button->role(), QAccessible::PushButton);
        QCOMPARE(nameOf(button), buttons.at(index) + QStringLiteral(", Evening show"));
        QCOMPARE(operations->indexOfChild(button), index);
    }
    QVERIFY(!operations->child(-1));
    QVERIFY(!operations->child(4));
    QCOMPARE(operations->indexOfChild(table()), -1);
    QCOMPARE(operations->indexOfChild(nullptr), -1);
    // What has no widget of its own has no children.
    QCOMPARE(cell(0, 0)->childCount(), 0);
    QVERIFY(!cell(0, 0)->child(0));
}

void TstTableAccessibility::pressing_a_button_returns_before_its_dialog_opens()
{
    list(QStringLiteral("Evening show"));
    QAccessibleActionInterface *const deleting = cell(0, 2)->child(3)->actionInterface();
    QCOMPARE(deleting->actionNames(),
             QStringList({QAccessibleActionInterface::pressAction(), QAccessibleActionInterface::setFocusAction()}));
    m_book->expectQuestion(QString(), PanelTexts::deleteQuestion, QMessageBox::Yes);
    // A reader waits for the answer to its call: not until the question is answered, please.
    deleting->doAction(QAccessibleActionInterface::pressAction());
    QVERIFY(!m_book->isSatisfied());
    waitForAnswers();
    settle();
    QVERIFY(m_panel->names().isEmpty());
    list(QStringLiteral("Matinee"));
    cell(0, 2)->child(1)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    QCOMPARE(m_panel->widget->focusWidget(), m_panel->rowButtons(0).at(1));
    m_panel->rowButtons(0).at(1)->setEnabled(false);
    QVERIFY(cell(0, 2)->child(1)->actionInterface()->actionNames().isEmpty());
}

void TstTableAccessibility::parent_of_a_button_is_its_cell()
{
    list(QStringLiteral("Evening show"));
    QStringList way;
    for (QAccessibleInterface *step = interfaceOf(m_panel->rowButtons(0).at(1)); step != table(); step = step->parent())
        way.append(nameOf(step));
    QCOMPARE(way, QStringList({QStringLiteral("Apply, Evening show"), QStringLiteral("Operations, Evening show")}));
    QCOMPARE(table()->parent(), interfaceOf(m_panel->widget.get()));
}

void TstTableAccessibility::each_child_has_its_index()
{
    listThree();
    const QList<QAccessibleInterface *> children = childrenOf(table());
    // With the two headers, as Qt counts the cells of a table in what it announces itself.
    QCOMPARE(children.count(), (1 + 3) * (1 + 3));
    for (int index = 0; index < children.count(); ++index) {
        QVERIFY(children.at(index));
        QVERIFY(children.at(index)->isValid());
        QCOMPARE(children.at(index)->parent(), table());
        QCOMPARE(table()->indexOfChild(children.at(index)), index);
    }
    QCOMPARE(QSet<QAccessibleInterface *>(children.begin(), children.end()).count(), children.count());
    QVERIFY(!table()->child(-1));
    QVERIFY(!table()->child(children.count()));
    QCOMPARE(table()->indexOfChild(children.last()->child(0)), -1);
    const Panel other;
    settle();
    QCOMPARE(table()->indexOfChild(interfaceOf(other.table())->tableInterface()->cellAt(0, 0)), -1);
    QVERIFY(!cell(3, 0));
    QVERIFY(!cell(0, 3));
    QVERIFY(!cell(-1, 0));
    QVERIFY(!cell(0, -1));
}

void TstTableAccessibility::cells_have_their_headers()
{
    listThree();
    const QStringList headers{QStringLiteral("Project file"), QStringLiteral("Comment"), QStringLiteral("Operations")};
    for (int column = 0; column < 3; ++column) {
        const QList<QAccessibleInterface *> header = cell(2, column)->tableCellInterface()->columnHeaderCells();
        QCOMPARE(namesOf(header), QStringList(headers.at(column)));
        QCOMPARE(header.first()->role(), QAccessible::ColumnHeader);
        QVERIFY(!header.first()->state().invisible);
        QCOMPARE(table()->tableInterface()->columnDescription(column), headers.at(column));
        QCOMPARE(cell(2, column)->tableCellInterface()->table(), table());
    }
    QVERIFY(cell(2, 0)->tableCellInterface()->rowHeaderCells().isEmpty());
    QVERIFY(cell(2, 2)->tableCellInterface()->rowHeaderCells().isEmpty());
    // The header of the rows is hidden.
    QAccessibleInterface *const rowHeader = table()->child(2 * 4);
    QCOMPARE(rowHeader->role(), QAccessible::RowHeader);
    QCOMPARE(nameOf(rowHeader), QStringLiteral("2"));
    QCOMPARE(table()->tableInterface()->rowDescription(1), QStringLiteral("2"));
    QVERIFY(rowHeader->state().invisible);
    QAccessibleInterface *const corner = table()->child(0);
    QCOMPARE(corner->role(), QAccessible::Pane);
    QVERIFY(corner->state().invisible);
    // Headers are no cells.
    QVERIFY(!rowHeader->tableCellInterface() && !corner->tableCellInterface() &&
            !table()->child(1)->tableCellInterface());
    m_panel->table()->horizontalHeader()->hide();
    QVERIFY(table()->child(1)->state().invisible);
    m_panel->table()->verticalHeader()->show();
    QVERIFY(!rowHeader->state().invisible);
}

void TstTableAccessibility::cells_are_plain_text()
{
    listThree();
    for (int column = 0; column < 3; ++column) {
        QCOMPARE(cell(0, column)->tableCellInterface()->columnExtent(), 1);
        QCOMPARE(cell(0, column)->tableCellInterface()->rowExtent(), 1);
        QVERIFY(!cell(0, column)->tableCellInterface()->isSelected());
        QVERIFY(cell(0, column)->text(QAccessible::Value).isEmpty());
    }
    QVERIFY(cell(0, 0)->state().readOnly);
    cell(0, 0)->setText(QAccessible::Name, QStringLiteral("Other"));
    QCOMPARE(nameOf(cell(0, 0)), QStringLiteral("New"));
    QVERIFY(!cell(0, 2)->textInterface() && !table()->textInterface());
    QVERIFY(!cell(0, 0)->object());
    QVERIFY(!cell(0, 0)->childAt(0, 0));
    QCOMPARE(cell(0, 0)->indexOfChild(cell(0, 1)), -1);
    QVERIFY(!table()->tableInterface()->caption() && !table()->tableInterface()->summary());
    m_panel->widget->hide();
    QVERIFY(cell(0, 0)->state().invisible);
}

void TstTableAccessibility::child_at_a_point_is_found()
{
    listThree();
    for (int column = 0; column < 3; ++column) {
        for (QAccessibleInterface *one :
             {cell(0, column), cell(1, column), cell(1, column)->tableCellInterface()->columnHeaderCells().first()}) {
            const QPoint middle = one->rect().center();
            QCOMPARE(table()->childAt(middle.x(), middle.y()), one);
        }
    }
    QTableWidget *shown = m_panel->table();
    const QRect shownAt = shown->visualItemRect(shown->item(1, 0));
    const QRect name(shown->viewport()->mapToGlobal(shownAt.topLeft()), shownAt.size());
    QVERIFY(cell(1, 0)->rect().contains(name));
    QVERIFY(!cell(0, 0)->rect().intersects(name) && !cell(1, 1)->rect().intersects(name));
    QToolButton *apply = m_panel->rowButtons(1).at(1);
    const QPoint onApply = apply->mapToGlobal(apply->rect().center());
    QCOMPARE(table()->childAt(onApply.x(), onApply.y())->childAt(onApply.x(), onApply.y()), interfaceOf(apply));
    const QPoint below = shown->viewport()->mapToGlobal(shown->viewport()->rect().bottomLeft());
    QVERIFY(!table()->childAt(below.x(), below.y()));
    QVERIFY(!table()->childAt(below.x(), below.y() + 1000));
}

void TstTableAccessibility::rows_out_of_sight_are_off_screen()
{
    for (int number = 0; number < 40; ++number)
        QVERIFY(writePackage(projectFile(QStringLiteral("Show %1").arg(number)), QString(), number));
    m_panel->rescan();
    for (int column = 0; column < 3; ++column) {
        QVERIFY(!cell(0, column)->state().offscreen);
        QVERIFY(cell(39, column)->state().offscreen);
    }
    m_panel->table()->scrollToBottom();
    for (int column = 0; column < 3; ++column) {
        QVERIFY(cell(0, column)->state().offscreen);
        QVERIFY(!cell(39, column)->state().offscreen);
        QAccessibleInterface *const above = table()->child(1 + column);
        QVERIFY(!above->state().offscreen);
        const QPoint middle = above->rect().center();
        QCOMPARE(table()->childAt(middle.x(), middle.y()), above);
    }
    // Row by row: the last one that has gone is just behind the header.
    m_panel->table()->verticalScrollBar()->setValue(5);
    QCOMPARE(m_panel->table()->rowAt(0), 5);
    for (int column = 0; column < 3; ++column) {
        QVERIFY(cell(4, column)->state().offscreen);
        QVERIFY(!cell(5, column)->state().offscreen);
    }
}

void TstTableAccessibility::nothing_in_the_table_can_be_selected()
{
    listThree();
    QAccessibleTableInterface *const cells = table()->tableInterface();
    QVERIFY(!cells->selectRow(0) && !cells->selectColumn(0) && !cells->unselectRow(0) && !cells->unselectColumn(0));
    QVERIFY(!cells->isRowSelected(0) && !cells->isColumnSelected(0));
    QCOMPARE(cells->selectedCellCount() + cells->selectedRowCount() + cells->selectedColumnCount(), 0);
    QVERIFY(cells->selectedCells().isEmpty() && cells->selectedRows().isEmpty() && cells->selectedColumns().isEmpty());
    QVERIFY(!cell(0, 0)->tableCellInterface()->isSelected());
}

void TstTableAccessibility::tree_follows_added_and_removed_rows()
{
    listThree();
    compareTree();
    QAccessibleInterface *const middle = cell(1, 0);
    QAccessibleInterface *const middleButtons = cell(1, 2);
    QVERIFY(writePackage(projectFile(QStringLiteral("Between")), QString(), 15));
    m_panel->rescan();
    compareTree();
    // A reader that is at a cell stays with its project.
    QCOMPARE(cell(2, 0), middle);
    QCOMPARE(cell(2, 2), middleButtons);
    QVERIFY(QFile::remove(projectFile(QStringLiteral("New"))));
    QVERIFY(makeOld(projectFile(QStringLiteral("Old")), 1));
    m_panel->rescan();
    QCOMPARE(m_panel->names(),
             QStringList({QStringLiteral("Old"), QStringLiteral("Between"), QStringLiteral("Middle")}));
    compareTree();
    QVERIFY(clearProjectFilesDirectory());
    m_panel->rescan();
    compareTree();
    QCOMPARE(table()->childCount(), 4);
    listThree();
    compareTree();
}

void TstTableAccessibility::tree_follows_the_language()
{
    listThree();
    compareTree();
    const TranslatedTexts chinese(QStringLiteral("zh_CN"));
    settle();
    compareTree();
    QCOMPARE(nameOf(cell(0, 2)), QStringLiteral("操作, New"));
    QCOMPARE(nameOf(cell(0, 1)->tableCellInterface()->columnHeaderCells().first()), QStringLiteral("备注"));
}

void TstTableAccessibility::a_removed_row_is_no_longer_valid()
{
    listThree();
    QList<QAccessible::Id> ids;
    for (int column = 0; column < 3; ++column)
        ids.append(QAccessible::uniqueId(cell(1, column)));
    m_panel->table()->removeRow(1);
    // The row's widget is deleted later, from within a dialog not before that closes.
    for (const QAccessible::Id id : ids) {
        QAccessibleInterface *const removed = QAccessible::accessibleInterface(id);
        QVERIFY(removed && !removed->isValid());
        QCOMPARE(table()->indexOfChild(removed), -1);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    for (const QAccessible::Id id : ids)
        QVERIFY(!QAccessible::accessibleInterface(id));
    compareTree();
}

void TstTableAccessibility::panel_built_for_a_screen_reader_is_equal()
{
    // While a screen reader runs, Qt makes interfaces already in the widgets' constructors.
    QPlatformAccessibility *const accessibility = QGuiApplicationPrivate::platformIntegration()->accessibility();
    accessibility->setActive(true);
    const auto deactivate = qScopeGuard([accessibility] { accessibility->setActive(false); });
    m_panel.reset();
    m_panel.emplace();
    (*m_panel)->resize(1200, 700);
    (*m_panel)->show();
    settle();
    listThree();
    compareTree();
    // Clicking a cell makes it the current one, of which Qt tells by its number among the table's children.
    QTest::mouseClick(m_panel->table()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      m_panel->table()->visualItemRect(m_panel->table()->item(2, 1)).center());
    QVERIFY(QFile::remove(projectFile(QStringLiteral("Middle"))));
    m_panel->rescan();
    compareTree();
}

void TstTableAccessibility::nothing_outlives_the_panel()
{
    listThree();
    QList<QAccessible::Id> ids{QAccessible::uniqueId(table())};
    for (QAccessibleInterface *child : childrenOf(table()))
        ids.append(QAccessible::uniqueId(child));
    m_panel.reset();
    for (const QAccessible::Id id : qAsConst(ids))
        QVERIFY(!QAccessible::accessibleInterface(id));
}

TEST_MAIN(TstTableAccessibility)
#include "tst_tableaccessibility.moc"
