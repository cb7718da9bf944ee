// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/devicebar.h>

#include <core/devicecard.h>
#include <model/devicelist.h>
#include <model/objectbrige.h>
#include <utils/textsize.h>

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QTimer>

namespace Core {

namespace {

/// The model only announces new devices; names and lost connections are polled.
constexpr int refreshIntervalInMs = 500;

QVector<DeviceSummary> currentSummaries()
{
    QVector<DeviceSummary> summaries;
    const Model::DeviceList *list = Model::DeviceList::instance();
    if (!list)
        return summaries;
    const std::shared_ptr<Model::Device> active = Model::object_brige::instance()->activeDevice();
    const std::vector<std::shared_ptr<Model::Device>> devices = list->getDevices();
    for (const std::shared_ptr<Model::Device> &device : devices) {
        DeviceSummary summary;
        summary.ip = device->getIPAddress();
        summary.type = device->getTypeString();
        summary.name = device->getName();
        summary.online = device->getDeviceOnlineFlag();
        summary.active = device == active;
        summaries.append(summary);
    }
    return summaries;
}

} // namespace

DeviceBar::DeviceBar(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("DeviceBar"));
    setAttribute(Qt::WA_StyledBackground);
    setFixedHeight(Corvel::Utils::inTextSize(76));

    auto *cards = new QWidget;
    cards->setObjectName(QStringLiteral("DeviceBarCards"));
    m_cardLayout = new QHBoxLayout(cards);
    m_cardLayout->setContentsMargins(0, 0, 0, 0);
    m_cardLayout->setSpacing(10);
    m_emptyLabel = new QLabel(cards);
    m_emptyLabel->setObjectName(QStringLiteral("QuietText"));
    m_cardLayout->addWidget(m_emptyLabel);
    m_cardLayout->addStretch();

    auto *scrollArea = new QScrollArea(this);
    scrollArea->setObjectName(QStringLiteral("DeviceBarScrollArea"));
    scrollArea->setFrameShape(QFrame::NoFrame);
    // Tab reaches the cards, not the widgets inside; the bar scrolls to the focused one.
    scrollArea->setFocusPolicy(Qt::NoFocus);
    scrollArea->setWidgetResizable(true);
    scrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea->setWidget(cards);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(16, 4, 16, 4);
    layout->addWidget(scrollArea);
    retranslateUi();

    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &DeviceBar::refresh);
    timer->start(refreshIntervalInMs);
    connect(Model::object_brige::instance(), &Model::object_brige::signal_deviceChanged, this, &DeviceBar::refresh);
    refresh();
}

void DeviceBar::refresh()
{
    const QVector<DeviceSummary> summaries = currentSummaries();
    while (m_cards.size() > summaries.size())
        delete m_cards.takeLast();
    while (m_cards.size() < summaries.size()) {
        auto *card = new DeviceCard(m_emptyLabel->parentWidget());
        connect(card, &DeviceCard::clicked, this, [this, card]() { makeActive(card->summary().ip); });
        m_cardLayout->insertWidget(m_cards.size(), card);
        m_cards.append(card);
    }
    for (int i = 0; i < summaries.size(); ++i)
        m_cards.at(i)->setSummary(summaries.at(i));
    m_emptyLabel->setVisible(summaries.isEmpty());
}

void DeviceBar::makeActive(const QString &ip)
{
    const Model::DeviceList *list = Model::DeviceList::instance();
    const std::shared_ptr<Model::Device> device = list ? list->getDeviceByIPAddr(ip) : nullptr;
    if (device)
        Model::object_brige::instance()->setActiveDevice(device);
}

void DeviceBar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    QWidget::changeEvent(event);
}

void DeviceBar::retranslateUi()
{
    m_emptyLabel->setText(tr("No devices. Plug one in to begin."));
    for (DeviceCard *card : qAsConst(m_cards))
        card->retranslateUi();
}

} // namespace Core
