// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <host/dialogs.h>

#include <QMap>
#include <QString>
#include <QVector>

class QAbstractButton;
class QButtonGroup;
class QLabel;
class QListWidget;
class QPushButton;

/// The dialog to choose a mounted USB flash disk as the destination of a copy. The host dialog's OK accepts.
class UDiskSelectWidget : public HX::Widgets::FramelessDialog
{
    Q_OBJECT

public:
    /// A mounted volume.
    struct Volume
    {
        /// The device node ("/dev/sdb1"), or a tag that names the volume ("LABEL=STICK").
        QString strDevice;
        QString strMountPath;
        /// The volume's own label; ignored if the device is a tag.
        QString strLabel;
    };

    /// Offers the USB flash disks that are mounted now; later ones do not appear while the dialog is open.
    explicit UDiskSelectWidget(QWidget *parent);
    /// The same, but with the given mounted volumes.
    UDiskSelectWidget(QWidget *parent, const QVector<Volume> &volumes);
    ~UDiskSelectWidget() override;

    /// The mount path of the chosen disk; empty if none was chosen or the dialog was rejected.
    QString selectPath() const;
    int diskCount() const;

    /// Clears the choice, then closes.
    void reject() override;

protected:
    void changeEvent(QEvent *event) override;

private slots:
    void slot_cancelSelectUDisk();
    void slot_DiskSelectChanged(QAbstractButton *button);

private:
    void initUI();
    void retranslateUi();
    void scanDisks(const QVector<Volume> &volumes);
    void fillList();

    QLabel *m_pTitleLabel = nullptr;
    QListWidget *m_pDiskList = nullptr;
    // Unused: the host's dialog has its own bar and buttons.
    QWidget *m_pButtonBar = nullptr;
    QPushButton *m_pOkBtn = nullptr;
    QPushButton *m_pCancelBtn = nullptr;
    QString m_strSelectPath;
    /// Mount path to label.
    QMap<QString, QString> m_mapDisk;
    QButtonGroup *m_pButtonGroup = nullptr;
};
