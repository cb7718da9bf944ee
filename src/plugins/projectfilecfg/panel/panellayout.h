// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>

class QComboBox;
class QLabel;
class QPushButton;
class QTableWidget;
class QWidget;

namespace ProjectFileCfg {
namespace Internal {

/// The layout and the sizes of the panel's widgets, and the texts of the label and the command buttons.
class PanelLayout
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// The widgets to lay out, all there; the panel owns them.
    struct Widgets
    {
        QLabel *pDeviceLabel;
        QComboBox *pDeviceCombo;
        QPushButton *pSaveProjectBtn;
        QPushButton *pImportProjectBtn;
        QPushButton *pApplyOthersBtn;
        QPushButton *pAllSaveasBtn;
        QPushButton *pAllDeleteBtn;
        QTableWidget *pProjectTable;
    };

    /// Lays the widgets out in the panel, which becomes their parent and must outlive this object.
    PanelLayout(QWidget *panel, const Widgets &widgets);

    /// Sets the texts, and the widths that depend on them. All command buttons have the same width.
    void retranslate();

private:
    void arrange();

    QWidget *const m_pPanel;
    const Widgets m_widgets;
};

} // namespace Internal
} // namespace ProjectFileCfg
