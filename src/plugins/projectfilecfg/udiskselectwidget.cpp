// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "udiskselectwidget.h"

#include <QButtonGroup>
#include <QDir>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QRadioButton>
#include <QStorageInfo>
#include <QVBoxLayout>

namespace {

const QLatin1String mountRoot("/mnt/");
const QLatin1String mountPrefix("/mnt/sd");
const QLatin1String devicePrefix("/dev/sd");
const QLatin1String labelTag("LABEL=");

QVector<UDiskSelectWidget::Volume> mountedVolumes()
{
    QVector<UDiskSelectWidget::Volume> volumes;
    const QList<QStorageInfo> mounted = QStorageInfo::mountedVolumes();
    for (const QStorageInfo &storage : mounted)
        volumes.append({QString::fromUtf8(storage.device()), storage.rootPath(), storage.displayName()});
    return volumes;
}

} // namespace

UDiskSelectWidget::UDiskSelectWidget(QWidget *parent)
    : UDiskSelectWidget(parent, mountedVolumes())
{}

UDiskSelectWidget::UDiskSelectWidget(QWidget *parent, const QVector<Volume> &volumes)
    : HX::Widgets::FramelessDialog(parent)
{
    initUI();
    connect(m_pButtonGroup, QOverload<QAbstractButton *>::of(&QButtonGroup::buttonClicked), this,
            &UDiskSelectWidget::slot_DiskSelectChanged);
    scanDisks(volumes);
    fillList();
}

UDiskSelectWidget::~UDiskSelectWidget()
{
    delete m_pButtonGroup;
}

QString UDiskSelectWidget::selectPath() const
{
    return m_strSelectPath;
}

int UDiskSelectWidget::diskCount() const
{
    return m_mapDisk.count();
}

void UDiskSelectWidget::initUI()
{
    setProperty("UDiskDialog", true);
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint);
    setContentsMargins(0, 0, 0, 0);
    setFixedSize(748, 395);

    m_pTitleLabel = new QLabel;
    m_pTitleLabel->setProperty("StaticLable", true);
    m_pTitleLabel->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    QHBoxLayout *titleRow = new QHBoxLayout;
    titleRow->addSpacing(32);
    titleRow->addWidget(m_pTitleLabel);
    titleRow->addStretch();

    m_pDiskList = new QListWidget;
    m_pDiskList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QHBoxLayout *listRow = new QHBoxLayout;
    listRow->addSpacing(32);
    listRow->addWidget(m_pDiskList);
    listRow->addSpacing(32);

    QVBoxLayout *mainLayout = new QVBoxLayout;
    mainLayout->setSpacing(8);
    mainLayout->addSpacing(8);
    mainLayout->addLayout(titleRow);
    mainLayout->addLayout(listRow);
    mainLayout->addSpacing(8);

    m_pDiskList->setProperty("UDiskSelectWidget", true);
    m_pButtonGroup = new QButtonGroup;
    setLayout(mainLayout);
    retranslateUi();
}

void UDiskSelectWidget::retranslateUi()
{
    m_pTitleLabel->setText(tr("Please select the destination U disk"));
    m_pDiskList->setAccessibleName(m_pTitleLabel->text());
}

void UDiskSelectWidget::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    HX::Widgets::FramelessDialog::changeEvent(event);
}

void UDiskSelectWidget::scanDisks(const QVector<Volume> &volumes)
{
    m_mapDisk.clear();
    if (!QDir(mountRoot).exists())
        return;
    for (const Volume &volume : volumes) {
        if (!volume.strMountPath.startsWith(mountPrefix))
            continue;
        if (volume.strDevice.startsWith(labelTag))
            m_mapDisk.insert(volume.strMountPath, volume.strDevice.mid(labelTag.size()));
        else if (volume.strDevice.startsWith(devicePrefix))
            m_mapDisk.insert(volume.strMountPath, volume.strLabel);
    }
}

void UDiskSelectWidget::fillList()
{
    m_pDiskList->clear();
    const QList<QAbstractButton *> buttons = m_pButtonGroup->buttons();
    for (QAbstractButton *button : buttons)
        m_pButtonGroup->removeButton(button);

    for (auto disk = m_mapDisk.constBegin(); disk != m_mapDisk.constEnd(); ++disk) {
        auto *item = new QListWidgetItem(m_pDiskList);
        item->setSizeHint(QSize(680, 39));
        auto *button = new QRadioButton;
        m_pButtonGroup->addButton(button);
        button->setText(QStringLiteral("%1[%2]").arg(disk.value(), disk.key()));
        button->setProperty("Path", disk.key());
        m_pDiskList->setItemWidget(item, button);
    }
    m_pDiskList->show();
}

void UDiskSelectWidget::slot_cancelSelectUDisk()
{
    m_strSelectPath.clear();
}

void UDiskSelectWidget::slot_DiskSelectChanged(QAbstractButton *button)
{
    if (auto *disk = qobject_cast<QRadioButton *>(button)) {
        disk->setChecked(true);
        m_strSelectPath = disk->property("Path").toString();
    }
}

void UDiskSelectWidget::reject()
{
    slot_cancelSelectUDisk();
    QDialog::reject();
}
