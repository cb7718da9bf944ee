// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projecttable.h"

#include "accessibletable.h"
#include "cellwidgetrow.h"
#include "packagelayout.h"
#include "plaintooltip.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLocale>
#include <QSet>
#include <QTableWidget>
#include <QToolButton>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr int fileColumn = 0;
constexpr int commentColumn = 1;
constexpr int operationsColumn = 2;
constexpr int columnCount = 3;
constexpr int fixedColumnWidth = 340; // pixels
constexpr int rowHeight = 48;         // pixels
constexpr int cellPadding = 24;       // pixels, more than styles need on both sides together

QString readableSize(qint64 bytes)
{
    constexpr double mebibyte = 1024.0 * 1024.0;
    return bytes < mebibyte ? QStringLiteral("%1 KiB").arg(QLocale().toString((bytes + 1023) / 1024))
                            : QStringLiteral("%1 MiB").arg(QLocale().toString(bytes / mebibyte, 'f', 1));
}

/// Its tool tip shows the whole text, and the current path, size and time of the file.
class FileItem : public QTableWidgetItem
{
public:
    using QTableWidgetItem::QTableWidgetItem;

    void setFilePath(const QString &path) { m_strFilePath = path; }

    QVariant data(int role) const override
    {
        return role == Qt::ToolTipRole ? asToolTip(facts()) : QTableWidgetItem::data(role);
    }

private:
    QString facts() const
    {
        QStringList lines{text(), QDir::toNativeSeparators(m_strFilePath)};
        lines.removeAll(QString());
        const QFileInfo file(m_strFilePath);
        if (file.exists())
            lines.append(QStringLiteral("%1, %2").arg(readableSize(file.size()),
                                                      QLocale().toString(file.lastModified(), QLocale::ShortFormat)));
        return lines.join(QLatin1Char('\n'));
    }

    QString m_strFilePath;
};

void scrollToButtons(QTableWidget *table, const QWidget *buttons)
{
    const int row = cellWidgetRow(table, buttons, operationsColumn);
    table->scrollTo(table->model()->index(row, operationsColumn));
}

/// Moves the focus for Up, Down, Home and End.
void leaveRow(const QTableWidget *table, const ProjectRowWidget *buttons, int key)
{
    const int row = cellWidgetRow(table, buttons, operationsColumn);
    const int last = table->rowCount() - 1;
    const int target = key == Qt::Key_Up ? row - 1 : key == Qt::Key_Down ? row + 1 : key == Qt::Key_Home ? 0 : last;
    QWidget *there = table->cellWidget(qBound(0, target, last), operationsColumn);
    static_cast<ProjectRowWidget *>(there)->focusButton(buttons->focusedButton());
}

/// Keeps the column wide enough for its header and for the comment that a save proposes; a narrower table scrolls
/// horizontally.
void keepCommentReadable(QTableWidget *table)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    const int shortComment = table->fontMetrics().width(QStringLiteral("00000000_000000")) + cellPadding;
    QT_WARNING_POP
    QHeaderView *header = table->horizontalHeader();
    const int least = qMax(shortComment, header->sectionSizeHint(commentColumn));
    header->setMinimumSectionSize(least);
    // Without room to stretch the section, a header does not resize it.
    if (header->width() < table->columnWidth(fileColumn) + least + table->columnWidth(operationsColumn))
        table->setColumnWidth(commentColumn, least);
}

} // namespace

ProjectTable::ProjectTable(QTableWidget *table, const ConnectRow &connectRow)
    : m_pTable(table)
    , m_connectRow(connectRow)
    , m_projectIcon(QStringLiteral(":resource/images/icon_project_normal.png"))
{
    m_pTable->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    m_pTable->verticalHeader()->setVisible(false);
    m_pTable->setFrameShape(QFrame::NoFrame);
    m_pTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pTable->setSelectionMode(QAbstractItemView::NoSelection);
    m_pTable->verticalHeader()->setDefaultSectionSize(rowHeight);
    m_pTable->setFocusPolicy(Qt::NoFocus);
    // Otherwise Tab would move between cells and never leave the table.
    m_pTable->setTabKeyNavigation(false);
    m_pTable->setColumnCount(columnCount);
    m_pTable->horizontalHeader()->setSectionResizeMode(fileColumn, QHeaderView::Fixed);
    m_pTable->horizontalHeader()->setSectionResizeMode(commentColumn, QHeaderView::Stretch);
    m_pTable->horizontalHeader()->setSectionResizeMode(operationsColumn, QHeaderView::Fixed);
    m_pTable->setColumnWidth(fileColumn, fixedColumnWidth);
    m_pTable->setColumnWidth(operationsColumn, fixedColumnWidth);
    m_pTable->horizontalHeader()->setContentsMargins(15, 0, 15, 0);
    m_pTable->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    QObject::connect(m_pTable->horizontalHeader(), &QHeaderView::geometriesChanged, m_pTable,
                     [table = m_pTable] { keepCommentReadable(table); });
    AccessibleTable::describe(m_pTable, operationsColumn);
}

void ProjectTable::retranslate()
{
    m_pTable->setHorizontalHeaderLabels({tr("Project file"), tr("Comment"), tr("Operations")});
    m_pTable->setAccessibleName(tr("Project file"));
    keepCommentReadable(m_pTable);
}

void ProjectTable::show(const QList<EngineerPacketInfo> &projects)
{
    QSet<QString> pending;
    for (const EngineerPacketInfo &info : projects)
        pending.insert(info.strFilePath);

    const Focus before = focus();
    const ProjectRowWidget::Texts texts{tr("Edit"), tr("Apply"), tr("Save as"), tr("Delete")};
    int row = 0;
    for (const EngineerPacketInfo &info : projects) {
        while (row < m_pTable->rowCount() && rowWidget(row) && !pending.contains(rowWidget(row)->filePath()))
            m_pTable->removeRow(row);
        // All further rows are new. Adds them together, since the view visits all rows for each insertion.
        if (row == m_pTable->rowCount())
            m_pTable->setRowCount(projects.size());
        else if (rowWidget(row) && rowWidget(row)->filePath() != info.strFilePath)
            m_pTable->insertRow(row);
        if (!rowWidget(row))
            makeRow(row);
        fillRow(row, info, texts);
        pending.remove(info.strFilePath);
        ++row;
    }
    m_pTable->setRowCount(row);
    fitOperations(texts);
    keepCommentReadable(m_pTable);
    orderTabs();
    if (before.nRow >= 0)
        restore(before);
}

/// The column is wide enough for the untranslated texts. Widens it by what longer translations need.
void ProjectTable::fitOperations(const ProjectRowWidget::Texts &texts)
{
    if (m_pTable->rowCount() == 0)
        return;
    rowWidget(0)->editButton()->ensurePolished();
    const QFontMetrics metrics = rowWidget(0)->editButton()->fontMetrics();
    const QPair<const char *, QString> buttons[] = {
        {"Edit", texts.strEdit}, {"Apply", texts.strApply}, {"Save as", texts.strSaveAs}, {"Delete", texts.strRemove}};
    int width = fixedColumnWidth;
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    for (const auto &button : buttons)
        width += qMax(0, metrics.width(button.second) - metrics.width(QLatin1String(button.first)));
    QT_WARNING_POP
    m_pTable->setColumnWidth(operationsColumn, width);
}

/// New widgets are at the end of the focus chain. Moves the rows' buttons to the table's position in it.
void ProjectTable::orderTabs()
{
    QWidget *before = m_pTable->previousInFocusChain();
    while (before != m_pTable && (before->focusPolicy() == Qt::NoFocus || m_pTable->isAncestorOf(before)))
        before = before->previousInFocusChain();
    // From the last row up: in the other direction, each move would pass the containers of all rows above, which take
    // no focus.
    for (int row = m_pTable->rowCount() - 1; row >= 0; --row)
        rowWidget(row)->followInTabOrder(before);
}

ProjectTable::Focus ProjectTable::focus() const
{
    if (!m_pTable->isAncestorOf(m_pTable->window()->focusWidget()))
        return {};
    for (int row = 0; row < m_pTable->rowCount(); ++row) {
        const int button = rowWidget(row)->focusedButton();
        if (button >= 0)
            return {row, button, rowWidget(row)->filePath()};
    }
    return {};
}

void ProjectTable::restore(const Focus &focus) const
{
    const int sameProject = rowOf(focus.strFilePath);
    const int inItsPlace = qMin(focus.nRow, m_pTable->rowCount() - 1);
    if (sameProject >= 0 && rowWidget(sameProject)->focusedButton() != focus.nButton)
        rowWidget(sameProject)->focusButton(focus.nButton);
    else if (sameProject < 0 && inItsPlace >= 0)
        rowWidget(inItsPlace)->focusButton(0);
}

int ProjectTable::rowOf(const QString &path) const
{
    for (int row = 0; row < m_pTable->rowCount(); ++row) {
        if (rowWidget(row)->filePath() == path)
            return row;
    }
    return -1;
}

void ProjectTable::clear()
{
    m_pTable->clearContents();
    m_pTable->setRowCount(0);
}

void ProjectTable::makeRow(int row)
{
    m_pTable->setItem(row, fileColumn, new FileItem(m_projectIcon, QString()));
    m_pTable->setItem(row, commentColumn, new FileItem);
    auto *widget = new ProjectRowWidget(m_rowIcons, m_pTable->viewport());
    AccessibleTable::describeButtons(widget, m_pTable, operationsColumn);
    m_connectRow(*widget);
    QObject::connect(widget, &ProjectRowWidget::signal_buttonFocused, m_pTable,
                     [table = m_pTable, widget] { scrollToButtons(table, widget); });
    QObject::connect(widget, &ProjectRowWidget::signal_rowLeft, m_pTable,
                     [table = m_pTable, widget](int key) { leaveRow(table, widget, key); });
    m_pTable->setCellWidget(row, operationsColumn, widget);
}

void ProjectTable::fillRow(int row, const EngineerPacketInfo &info, const ProjectRowWidget::Texts &texts)
{
    QString name = QFileInfo(info.strFilePath).fileName();
    name.remove(PackageLayout::packageExtension);
    m_pTable->item(row, fileColumn)->setText(name);
    m_pTable->item(row, commentColumn)->setText(info.strComment);
    for (const int column : {fileColumn, commentColumn})
        static_cast<FileItem *>(m_pTable->item(row, column))->setFilePath(info.strFilePath);
    rowWidget(row)->setFilePath(info.strFilePath);
    rowWidget(row)->setTexts(texts);
    rowWidget(row)->setProjectName(name);
}

ProjectRowWidget *ProjectTable::rowWidget(int row) const
{
    return static_cast<ProjectRowWidget *>(m_pTable->cellWidget(row, operationsColumn));
}

} // namespace Internal
} // namespace ProjectFileCfg
