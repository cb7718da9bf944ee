// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "accessibletable.h"

#include "cellwidgetrow.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QHeaderView>
#include <QTableWidget>
#include <QVector>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// The row, or column, of a header.
constexpr int header = -1;

QList<QAbstractButton *> buttonsIn(const QWidget *cellWidget)
{
    return cellWidget->findChildren<QAbstractButton *>(QString(), Qt::FindDirectChildrenOnly);
}

/// Common to cells with and without buttons.
class Cell : public QAccessibleTableCellInterface
{
public:
    explicit Cell(QTableWidget *table)
        : m_pTable(table)
    {}

    bool isSelected() const override { return false; }
    QList<QAccessibleInterface *> columnHeaderCells() const override { return {table()->child(1 + columnIndex())}; }
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return QAccessible::queryAccessibleInterface(m_pTable); }

protected:
    QTableWidget *const m_pTable;
};

/// A cell without a widget, or a header. The header of a column has no row, that of a row no column.
class TextCell : public QAccessibleInterface, public Cell
{
public:
    /// `buttons` is the cell widget in the same row; null for the headers of columns.
    TextCell(QTableWidget *table, const QWidget *buttons, int buttonColumn, int column)
        : Cell(table)
        , m_pButtons(buttons)
        , m_nButtonColumn(buttonColumn)
        , m_nColumn(column)
    {}

    bool isValid() const override { return !m_pButtons || rowIndex() >= 0; }
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessibleInterface *parent() const override { return table(); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    QString text(QAccessible::Text type) const override
    {
        return type == QAccessible::Name ? data(Qt::DisplayRole).toString() : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override
    {
        const QRect place = placeInTable();
        return {m_pTable->mapToGlobal(place.topLeft()), place.size()};
    }
    QAccessible::Role role() const override
    {
        if (!m_pButtons)
            return m_nColumn == header ? QAccessible::Pane : QAccessible::ColumnHeader;
        return m_nColumn == header ? QAccessible::RowHeader : QAccessible::Cell;
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invisible = !m_pTable->isVisible() || (m_nColumn == header && m_pTable->verticalHeader()->isHidden()) ||
                          (!m_pButtons && m_pTable->horizontalHeader()->isHidden());
        const QRect visible = m_pButtons ? m_pTable->viewport()->geometry() : m_pTable->rect();
        state.offscreen = !visible.intersects(placeInTable());
        state.readOnly = true;
        return state;
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        const bool isHeader = !m_pButtons || m_nColumn == header;
        return type == QAccessible::TableCellInterface && !isHeader ? static_cast<QAccessibleTableCellInterface *>(this)
                                                                    : nullptr;
    }

    int columnIndex() const override { return m_nColumn; }
    int rowIndex() const override { return m_pButtons ? cellWidgetRow(m_pTable, m_pButtons, m_nButtonColumn) : header; }

private:
    QVariant data(int role) const
    {
        const QAbstractItemModel *model = m_pTable->model();
        if (!m_pButtons)
            return model->headerData(m_nColumn, Qt::Horizontal, role);
        return m_nColumn == header ? model->headerData(rowIndex(), Qt::Vertical, role)
                                   : model->index(rowIndex(), m_nColumn).data(role);
    }
    QRect placeInTable() const
    {
        const QHeaderView *above = m_pTable->horizontalHeader();
        const QHeaderView *beside = m_pTable->verticalHeader();
        const int row = rowIndex();
        const QRect cells = m_pTable->viewport()->geometry();
        const int left = m_nColumn == header ? beside->x() : cells.x() + above->sectionViewportPosition(m_nColumn);
        const int top = m_pButtons ? cells.y() + beside->sectionViewportPosition(row) : above->y();
        const int width = m_nColumn == header ? beside->width() : above->sectionSize(m_nColumn);
        const int height = m_pButtons ? beside->sectionSize(row) : above->height();
        return {left, top, width, height};
    }

    const QWidget *const m_pButtons;
    const int m_nButtonColumn;
    const int m_nColumn;
};

/// Owns the text cells of one row, and creates each one on demand.
class TextCells
{
public:
    TextCells() = default;
    ~TextCells()
    {
        for (const QAccessible::Id id : m_listIds)
            QAccessible::deleteAccessibleInterface(id);
    }
    Q_DISABLE_COPY(TextCells)

    QAccessibleInterface *at(QTableWidget *table, const QWidget *buttons, int buttonColumn, int column)
    {
        m_listIds.resize(1 + table->columnCount());
        QAccessible::Id &id = m_listIds[1 + column];
        if (id == 0)
            id = QAccessible::registerAccessibleInterface(new TextCell(table, buttons, buttonColumn, column));
        return QAccessible::accessibleInterface(id);
    }

private:
    /// 0 if not created yet. The header comes first.
    QVector<QAccessible::Id> m_listIds;
};

/// One of the buttons. With Qt's interface for tool buttons, a press returns only when the dialog that it has opened is
/// closed, and a screen reader waits for that.
class RowButton : public QAccessibleWidget
{
public:
    explicit RowButton(QAbstractButton *button)
        : QAccessibleWidget(button, QAccessible::PushButton)
    {}

    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (widget()->isEnabled())
            names.prepend(pressAction());
        return names;
    }
    void doAction(const QString &name) override
    {
        if (name == pressAction())
            static_cast<QAbstractButton *>(widget())->animateClick();
        else
            QAccessibleWidget::doAction(name);
    }
};

/// The cell with the buttons. The other cells of its row live as long as it does.
class ButtonCell : public QAccessibleWidget, public Cell
{
public:
    ButtonCell(QWidget *buttons, QTableWidget *table, int column)
        : QAccessibleWidget(buttons, QAccessible::Cell)
        , Cell(table)
        , m_nColumn(column)
    {}

    QAccessibleInterface *textCell(int column) const { return m_textCells.at(m_pTable, widget(), m_nColumn, column); }

    bool isValid() const override { return QAccessibleWidget::isValid() && rowIndex() >= 0; }
    QAccessibleInterface *parent() const override { return table(); }
    int childCount() const override { return buttons().count(); }
    QAccessibleInterface *child(int index) const override
    {
        return QAccessible::queryAccessibleInterface(buttons().value(index));
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return child ? buttons().indexOf(qobject_cast<QAbstractButton *>(child->object())) : -1;
    }
    QString text(QAccessible::Text type) const override
    {
        if (type != QAccessible::Name)
            return QAccessibleWidget::text(type);
        const QAbstractItemModel *model = m_pTable->model();
        return QStringLiteral("%1, %2").arg(model->headerData(m_nColumn, Qt::Horizontal).toString(),
                                            model->index(rowIndex(), 0).data().toString());
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.offscreen = widget()->visibleRegion().isEmpty();
        return state;
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableCellInterface ? static_cast<QAccessibleTableCellInterface *>(this)
                                                       : QAccessibleWidget::interface_cast(type);
    }

    int columnIndex() const override { return m_nColumn; }
    int rowIndex() const override { return cellWidgetRow(m_pTable, widget(), m_nColumn); }

private:
    QList<QAbstractButton *> buttons() const { return buttonsIn(widget()); }

    const int m_nColumn;
    mutable TextCells m_textCells;
};

/// Its children are its cells, row by row, headers first.
class Table : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    Table(QTableWidget *table, int buttonColumn)
        : QAccessibleWidget(table, QAccessible::Table)
        , m_pTable(table)
        , m_nButtonColumn(buttonColumn)
    {}

    int childCount() const override { return (1 + rowCount()) * (1 + columnCount()); }
    QAccessibleInterface *child(int index) const override
    {
        const int width = 1 + columnCount();
        return index < 0 ? nullptr : at(index / width - 1, index % width - 1);
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        const auto *cell = dynamic_cast<const Cell *>(child);
        if (!cell || !child->isValid() || child->parent() != this)
            return -1;
        return (1 + cell->rowIndex()) * (1 + columnCount()) + 1 + cell->columnIndex();
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        const QPoint point = m_pTable->mapFromGlobal(QPoint(x, y));
        const QHeaderView *above = m_pTable->horizontalHeader();
        const QHeaderView *beside = m_pTable->verticalHeader();
        const QPoint inCells = point - m_pTable->viewport()->pos();
        const bool isInHeader = above->isVisible() && above->geometry().contains(point);
        const int row = isInHeader ? header : beside->logicalIndexAt(inCells.y());
        const int column = above->logicalIndexAt(inCells.x());
        const bool isInTable = isInHeader || (row >= 0 && m_pTable->viewport()->geometry().contains(point));
        return isInTable && column >= 0 ? at(row, column) : nullptr;
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    QAccessibleInterface *cellAt(int row, int column) const override
    {
        return row < 0 || column < 0 ? nullptr : at(row, column);
    }
    int rowCount() const override { return m_pTable->rowCount(); }
    int columnCount() const override { return m_pTable->columnCount(); }
    QString columnDescription(int column) const override
    {
        return m_pTable->model()->headerData(column, Qt::Horizontal).toString();
    }
    QString rowDescription(int row) const override
    {
        return m_pTable->model()->headerData(row, Qt::Vertical).toString();
    }

    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    int selectedCellCount() const override { return 0; }
    QList<QAccessibleInterface *> selectedCells() const override { return {}; }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return 0; }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override { return {}; }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int) const override { return false; }
    bool selectRow(int) override { return false; }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent *) override {}

private:
    /// The cell or header at that row and column; null if there is none.
    QAccessibleInterface *at(int row, int column) const
    {
        if (row >= rowCount() || column >= columnCount())
            return nullptr;
        if (row == header)
            return m_headers.at(m_pTable, nullptr, m_nButtonColumn, column);
        QAccessibleInterface *buttons =
            QAccessible::queryAccessibleInterface(m_pTable->cellWidget(row, m_nButtonColumn));
        const auto *cell = dynamic_cast<ButtonCell *>(buttons);
        return cell && column != m_nButtonColumn ? cell->textCell(column) : buttons;
    }

    QTableWidget *const m_pTable;
    const int m_nButtonColumn;
    mutable TextCells m_headers;
};

void replaceInterface(QObject *object, QAccessibleInterface *interface)
{
    QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(QAccessible::queryAccessibleInterface(object)));
    QAccessible::registerAccessibleInterface(interface);
}

} // namespace

void AccessibleTable::describe(QTableWidget *table, int buttonColumn)
{
    replaceInterface(table, new Table(table, buttonColumn));
}

void AccessibleTable::describeButtons(QWidget *buttons, QTableWidget *table, int buttonColumn)
{
    replaceInterface(buttons, new ButtonCell(buttons, table, buttonColumn));
    for (QAbstractButton *button : buttonsIn(buttons))
        replaceInterface(button, new RowButton(button));
}

} // namespace Internal
} // namespace ProjectFileCfg
