#pragma once

#include "operationresultcodes.h"
#include "projectlist.h"
#include "projectrowwidget.h"

#include <widgets/icenterwidget.h>

#include <QFuture>
#include <QIcon>

#include <memory>

class QComboBox;
class QFileSystemWatcher;
class QLabel;
class QPushButton;
class QTableWidget;
class QTimer;
class QToolButton;
template<typename T>
class QFutureWatcher;

namespace Model {
class Device;
}

namespace ProjectFileCfg {
namespace Internal {

class EncodedPictures;
class EngineerDocBackup;
class EngineerDocLoad;

/// The panel of the "Project File" mode: a device selector, the table of project files and every operation on them.
///
/// User-interface thread. Saving and applying run in jobs with a thread of their own; scanning, copying out and
/// importing run in the global thread pool. The panel never waits for any of them and may be deleted while they run: it
/// then cancels the job, which is deleted when its thread has finished, and pool work uses only data that it owns or
/// shares.
class EngineerDocOperWidget : public Corvel::Widgets::ICenterWidget
{
    Q_OBJECT

public:
    /// Which job runs; the numbers are the host's.
    enum OperatorType { OperatorLoad = 0, OperatorBackup = 1, OperatorNone = 2 };

    explicit EngineerDocOperWidget(QWidget *parent);
    ~EngineerDocOperWidget() override;

    void retranslateUi() override;

    /// Bytes as whole MiB, rounded towards zero. A volume that cannot be read has -1 bytes free, which is 0 MiB.
    static unsigned long long wholeMebibytes(qint64 bytes);
    /// Free space, in MiB, of the volume that holds `path`.
    static unsigned long long getDiskAvailableSize(const QString &path);

protected:
    /// Refills the device selector each time the panel becomes visible.
    void showEvent(QShowEvent *event) override;

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
    void connectFileWatcher(bool bConnect);

    void onScanFinished(int nextScan);
    void updateProjectTable();
    void updateButtonState();
    void fillTableRow(int row);
    void setTableRow(int row, const EngineerPacketInfo &info, const ProjectRowWidget::Texts &texts);
    ProjectRowWidget *rowWidget(int row) const;

    void initDevice();
    QString elidedDeviceInfo(const Model::Device &device) const;
    unsigned long long availableForProjects() const;
    unsigned long long estimateProjectSize() const;
    bool syncDeviceData();
    bool syncActiveDeviceData();
    bool syncDevice(const std::shared_ptr<Model::Device> &device);
    bool restoreFactory();
    std::shared_ptr<Model::Device> activateSelectedDevice();

    QString generateProjectName() const;
    bool startBackup(const QString &name, const QString &comment);
    bool startLoad(const QString &path);
    void askBackupBeforeApply(const QString &path);
    void showBackupResult(int code);
    void showLoadResult(int code);

    void editProject(QToolButton *button);
    QStringList selectProjectFiles(bool bMulti);
    void startSaveas(const QStringList &files, const QString &destination, bool bDestIsDir);
    static QString saveAsConcurrent(const QStringList &files, const QString &destination, bool bDestIsDir);
    void onSaveasFinished();
    static QString importProjectFiles(const QStringList &files, const QString &dirPath);
    void onImportFinished();
    void showCopyResult(const QString &failure, const QString &success);

    QLabel *m_pDeviceLabel = nullptr;
    QComboBox *m_pDeviceCombo = nullptr;
    QPushButton *m_pSaveProjectBtn = nullptr;
    QPushButton *m_pImportProjectBtn = nullptr;
    QPushButton *m_pApplyOthersBtn = nullptr;
    QPushButton *m_pAllSaveasBtn = nullptr;
    QPushButton *m_pAllDeleteBtn = nullptr;
    QTableWidget *m_pProjectTable = nullptr;
    /// Shared with running scans. m_listProjectInfo and m_mutex refer to its members.
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
    /// Runs while another program is still writing a file into the directory.
    QTimer *m_pScanTimer = nullptr;
    /// Kept from save to save.
    const std::shared_ptr<EncodedPictures> m_pEncodedPictures;
    const QIcon m_projectIcon;
    const ProjectRowWidget::Icons m_rowIcons;
};

} // namespace Internal
} // namespace ProjectFileCfg
