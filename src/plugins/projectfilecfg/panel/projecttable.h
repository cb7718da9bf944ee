// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "projectrowwidget.h"
#include "zippackagehandle.h"

#include <QCoreApplication>
#include <QIcon>
#include <QList>

#include <functional>

class QTableWidget;

namespace ProjectFileCfg {
namespace Internal {

/// The contents of the project table: one row per package, with file name, comment and buttons.
class ProjectTable
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    using ConnectRow = std::function<void(const ProjectRowWidget &row)>;

    /// Sets up `table`, which must outlive this object. Calls `connectRow` once for the buttons of each new row.
    ProjectTable(QTableWidget *table, const ConnectRow &connectRow);

    /// Sets the texts of the header and the table's accessible name. Those of the rows are set by the next show().
    void retranslate();
    /// Shows the packages in this order. Changes only rows that differ, since creating a row takes far longer than
    /// comparing it. The focus stays on its package; if that is no longer listed, the first button of the row in its
    /// place gets the focus.
    void show(const QList<EngineerPacketInfo> &projects);
    void clear();

private:
    /// The position of the focus in the table.
    struct Focus
    {
        int nRow = -1;
        int nButton = -1;
        QString strFilePath;
    };

    void makeRow(int row);
    void fillRow(int row, const EngineerPacketInfo &info, const ProjectRowWidget::Texts &texts);
    void fitOperations(const ProjectRowWidget::Texts &texts);
    void orderTabs();
    Focus focus() const;
    void restore(const Focus &focus) const;
    int rowOf(const QString &path) const;
    ProjectRowWidget *rowWidget(int row) const;

    QTableWidget *const m_pTable;
    const ConnectRow m_connectRow;
    const QIcon m_projectIcon;
    const ProjectRowWidget::Icons m_rowIcons;
};

} // namespace Internal
} // namespace ProjectFileCfg
