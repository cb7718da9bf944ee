// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/deviceswidget.h>

#include <model/devicelist.h>
#include <model/objectbrige.h>

#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace Core {

namespace {

/// The model does not announce every change; the page polls it while visible.
constexpr int refreshIntervalInMs = 1000;

} // namespace

DevicesWidget::DevicesWidget(QWidget *parent)
    : ICenterWidget("Devices.Central", parent)
    , m_title(new QLabel(this))
    , m_table(new QTableWidget(this))
{
    m_title->setObjectName(QStringLiteral("PageTitle"));
    m_table->setColumnCount(9);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionMode(QAbstractItemView::NoSelection);
    // Accessible by keyboard: keys scroll, read and leave it.
    m_table->setTabKeyNavigation(false);
    m_table->setFrameShape(QFrame::NoFrame);
    m_table->setShowGrid(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(48);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->horizontalHeader()->setHighlightSections(false);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 16);
    layout->setSpacing(16);
    layout->addWidget(m_title);
    layout->addWidget(m_table, 1);
    DevicesWidget::retranslateUi();

    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this]() {
        if (isVisible())
            refresh();
    });
    timer->start(refreshIntervalInMs);
    connect(Model::object_brige::instance(), &Model::object_brige::signal_deviceChanged, this, &DevicesWidget::refresh);
}

void DevicesWidget::retranslateUi()
{
    m_title->setText(tr("Devices"));
    m_table->setAccessibleName(m_title->text());
    m_table->setHorizontalHeaderLabels({tr("Type"), tr("Name"), tr("Address"), tr("State"), tr("Serial number"),
                                        tr("Cards"), tr("Screens"), tr("Pictures"), tr("Presets")});
    refresh();
}

void DevicesWidget::showEvent(QShowEvent *event)
{
    refresh();
    ICenterWidget::showEvent(event);
}

void DevicesWidget::refresh()
{
    const Model::DeviceList *list = Model::DeviceList::instance();
    const auto devices = list ? list->getDevices() : std::vector<std::shared_ptr<Model::Device>>();
    const std::shared_ptr<Model::Device> active = Model::object_brige::instance()->activeDevice();
    m_table->setRowCount(int(devices.size()));
    int row = 0;
    for (const std::shared_ptr<Model::Device> &device : devices) {
        const QString state = device->getDeviceOnlineFlag() ? tr("Online") : tr("Offline");
        const QStringList texts = {device->getTypeString(),
                                   device->getName(),
                                   device->getIPAddress(),
                                   device == active ? tr("%1, active").arg(state) : state,
                                   device->getSN(),
                                   QString::number(device->getSlots().size()),
                                   QString::number(device->getScreens().size()),
                                   QString::number(device->getBKGs().size() + device->getLogos().size()),
                                   QString::number(device->getPresets().size())};
        for (int column = 0; column < texts.size(); ++column) {
            QTableWidgetItem *item = m_table->item(row, column);
            if (!item) {
                item = new QTableWidgetItem;
                m_table->setItem(row, column, item);
            }
            if (item->text() != texts.at(column))
                item->setText(texts.at(column));
        }
        ++row;
    }
}

} // namespace Core
