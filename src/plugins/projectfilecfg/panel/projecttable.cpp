#include "projecttable.h"

#include "packagelayout.h"

#include <QFileInfo>
#include <QHeaderView>
#include <QSet>
#include <QTableWidget>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr int fileColumn = 0;
constexpr int commentColumn = 1;
constexpr int operationsColumn = 2;
constexpr int columnCount = 3;
constexpr int fixedColumnWidth = 340; // pixels
constexpr int rowHeight = 48;         // pixels

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
    m_pTable->setColumnCount(columnCount);
    m_pTable->horizontalHeader()->setSectionResizeMode(fileColumn, QHeaderView::Fixed);
    m_pTable->horizontalHeader()->setSectionResizeMode(commentColumn, QHeaderView::Stretch);
    m_pTable->horizontalHeader()->setSectionResizeMode(operationsColumn, QHeaderView::Fixed);
    m_pTable->setColumnWidth(fileColumn, fixedColumnWidth);
    m_pTable->setColumnWidth(operationsColumn, fixedColumnWidth);
    m_pTable->horizontalHeader()->setContentsMargins(15, 0, 15, 0);
}

void ProjectTable::retranslate()
{
    m_pTable->setHorizontalHeaderLabels({tr("Project file"), tr("Comment"), tr("Operations")});
}

void ProjectTable::show(const QList<EngineerPacketInfo> &projects)
{
    QSet<QString> pending;
    for (const EngineerPacketInfo &info : projects)
        pending.insert(info.strFilePath);

    const ProjectRowWidget::Texts texts{tr("Edit"), tr("Apply"), tr("Save as"), tr("Delete")};
    int row = 0;
    for (const EngineerPacketInfo &info : projects) {
        while (row < m_pTable->rowCount() && rowWidget(row) && !pending.contains(rowWidget(row)->filePath()))
            m_pTable->removeRow(row);
        // All further rows are new. Adds them at once, since the view visits all rows for each insertion.
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
}

void ProjectTable::clear()
{
    m_pTable->clearContents();
    m_pTable->setRowCount(0);
}

void ProjectTable::makeRow(int row)
{
    m_pTable->setItem(row, fileColumn, new QTableWidgetItem(m_projectIcon, QString()));
    m_pTable->setItem(row, commentColumn, new QTableWidgetItem);
    auto *widget = new ProjectRowWidget(m_rowIcons, m_pTable->viewport());
    m_connectRow(*widget);
    m_pTable->setCellWidget(row, operationsColumn, widget);
}

void ProjectTable::fillRow(int row, const EngineerPacketInfo &info, const ProjectRowWidget::Texts &texts)
{
    QString name = QFileInfo(info.strFilePath).fileName();
    name.remove(PackageLayout::packageExtension);
    m_pTable->item(row, fileColumn)->setText(name);
    m_pTable->item(row, commentColumn)->setText(info.strComment);
    rowWidget(row)->setFilePath(info.strFilePath);
    rowWidget(row)->setTexts(texts);
}

ProjectRowWidget *ProjectTable::rowWidget(int row) const
{
    return static_cast<ProjectRowWidget *>(m_pTable->cellWidget(row, operationsColumn));
}

} // namespace Internal
} // namespace ProjectFileCfg
