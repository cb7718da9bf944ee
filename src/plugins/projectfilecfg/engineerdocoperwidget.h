// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"
#include "projectlist.h"
#include "translatedtext.h"

#include <host/modes.h>

#include <QFuture>

#include <memory>

class QComboBox;
class QFileSystemWatcher;
class QLabel;
class QPushButton;
class QTableWidget;
template<typename T>
class QFutureWatcher;

namespace ProjectFileCfg {
namespace Internal {

class DeviceSelector;
class EncodedPictures;
class EngineerDocBackup;
class EngineerDocLoad;
class PanelLayout;
class ProjectRowWidget;
class ProjectScans;
class ProjectTable;

/// The panel of the "Project File" mode: a device selector, the table of project files and every operation on them.
///
/// User-interface thread. Saves and applies are jobs with their own threads; scans, copies and imports run in the
/// global thread pool. The panel never waits for any of them and may be deleted while they run: it then cancels the
/// job, which is deleted when its thread has finished; work in the pool uses only data that it owns or shares.
class EngineerDocOperWidget : public Corvel::Widgets::ICenterWidget
{
    Q_OBJECT

public:
    /// Which job runs; the numbers are the host's.
    enum OperatorType { OperatorLoad = 0, OperatorBackup = 1, OperatorNone = 2 };

    explicit EngineerDocOperWidget(QWidget *parent);
    ~EngineerDocOperWidget() override;

    void retranslateUi() override;

protected:
    /// Refills the device selector each time the panel becomes visible.
    void showEvent(QShowEvent *) override { initDevice(); }

private slots:
    void slot_backupFinished();
    void slot_loadFinished();
    void slot_saveProject();
    void slot_importProject();
    void slot_deleteAllProject();
    void slot_saveasProject();
    void slot_applyPoject();
    void slot_applyOtherProject();
    void slot_changeDevice(const QString &text);
    void slot_singleFileSaveas();
    void slot_editProjectInfo();
    void slot_deleteProject();
    void slot_operatorChanged(const QString &strOperType);
    void slot_backupOperatorChanged(const QString &strOperInfo);
    void slot_cancelOperator();
    void slot_projectFilesChanged();

private:
    void initUI();
    void initConnects(bool bConnect);
    void connectSelector(bool bConnect);
    void connectFileWatcher(bool bConnect);
    void connectRow(const ProjectRowWidget &row);

    void updateProjectTable();
    void updateButtonState();

    void initDevice();
    /// Call after a dialog or a save, with the device for which the operator has decided. Selects it again if another
    /// one was selected meanwhile: the panel selects the active device whenever it is shown, even if its window is
    /// restored behind a box. False, after logging it, if the device no longer exists.
    bool selectAgain(const QString &address);
    bool startBackup(const QString &name, const QString &comment);
    void askBackupBeforeApply(const QString &path);
    bool startLoad(const QString &path);

    void startSaveas(const QStringList &files, const QString &destination, bool bDestIsDir);
    void onSaveasFinished(const TranslatedText &failure);
    void startImport(const QStringList &files);
    void onImportFinished(const TranslatedText &failure);

    QLabel *m_pDeviceLabel = nullptr;
    QComboBox *m_pDeviceCombo = nullptr;
    QPushButton *m_pSaveProjectBtn = nullptr;
    QPushButton *m_pImportProjectBtn = nullptr;
    QPushButton *m_pApplyOthersBtn = nullptr;
    QPushButton *m_pAllSaveasBtn = nullptr;
    QPushButton *m_pAllDeleteBtn = nullptr;
    QTableWidget *m_pProjectTable = nullptr;
    /// Shared with running scans. m_listProjectInfo and m_mutex refer to its members; only ProjectList's own operations
    /// use them.
    const std::shared_ptr<ProjectList> m_pProjects;
    QList<EngineerPacketInfo> &m_listProjectInfo;
    QFileSystemWatcher *m_pFileWatcher = nullptr;
    QString m_strApplyAfterBackup;
    QString m_strDeviceIP;
    EngineerDocBackup *m_pDocBackup = nullptr;
    EngineerDocLoad *m_pDocLoad = nullptr;
    QFutureWatcher<QString> *m_pSaveasWatcher = nullptr;
    QFuture<QString> m_saveasFuture;
    QFutureWatcher<QString> *m_pImportWatcher = nullptr;
    QFuture<QString> m_importFuture;
    int m_nOperatorType = OperatorNone;
    QString m_strDefaultPath;
    QString m_strDocumentsPath;
    QMutex &m_mutex;
    /// Outlives the jobs, so that a later save reuses the pictures of an earlier one.
    const std::shared_ptr<EncodedPictures> m_pEncodedPictures;
    std::unique_ptr<ProjectScans> m_pScans;
    std::unique_ptr<PanelLayout> m_pPanelLayout;
    std::unique_ptr<DeviceSelector> m_pDeviceSelector;
    std::unique_ptr<ProjectTable> m_pTableRows;
};

} // namespace Internal
} // namespace ProjectFileCfg
