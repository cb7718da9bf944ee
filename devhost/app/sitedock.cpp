// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "sitedock.h"

#include <simulation/faults.h>

#include <QComboBox>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

constexpr int addressRole = Qt::UserRole;
constexpr int refreshIntervalMs = 500;
/// Long enough to see and to cancel.
constexpr int lateAnswerMs = 5000;
const QSize thumbSize(144, 81);

QPixmap thumbOf(const QImage &image)
{
    // Scales large pictures in two steps, the fast one first, to keep the window responsive.
    QImage small = image;
    if (small.width() > 4 * thumbSize.width())
        small = small.scaled(4 * thumbSize, Qt::KeepAspectRatio, Qt::FastTransformation);
    small = small.scaled(thumbSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPixmap thumb(thumbSize);
    thumb.fill(Qt::transparent);
    QPainter(&thumb).drawImage((thumbSize.width() - small.width()) / 2, (thumbSize.height() - small.height()) / 2,
                               small);
    return thumb;
}

/// The style sheet's minimum width for buttons lets a layout cut longer texts.
void setWholeText(QPushButton *button, const QString &text)
{
    if (button->text() == text)
        return;
    button->setText(text);
    button->ensurePolished();
    button->setMinimumWidth(button->sizeHint().width());
}

} // namespace

SiteDock::SiteDock(Simulation::Session &session, QWidget *parent)
    : QWidget(parent)
    , m_session(session)
    , m_devices(new QTreeWidget(this))
    , m_plugButton(new QPushButton(this))
    , m_faultTitle(new QLabel(this))
    , m_operation(new QComboBox(this))
    , m_kind(new QComboBox(this))
    , m_callLabel(new QLabel(this))
    , m_call(new QSpinBox(this))
    , m_armButton(new QPushButton(this))
    , m_clearButton(new QPushButton(this))
    , m_faultState(new QLabel(this))
    , m_pictureTitle(new QLabel(this))
    , m_pictures(new QListWidget(this))
{
    m_devices->setObjectName(QStringLiteral("siteDevices"));
    m_devices->setColumnCount(3);
    m_devices->setRootIsDecorated(false);
    m_devices->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (const QString &ip : m_session.addresses()) {
        auto *item = new QTreeWidgetItem(m_devices);
        item->setData(0, addressRole, ip);
        item->setText(1, ip);
    }
    m_devices->setCurrentItem(m_devices->topLevelItem(0));
    m_plugButton->setObjectName(QStringLiteral("sitePlug"));

    m_operation->setObjectName(QStringLiteral("siteOperation"));
    m_operation->addItems(Simulation::Operations::all());
    m_operation->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_operation->setMinimumContentsLength(16);
    m_kind->setObjectName(QStringLiteral("siteFault"));
    for (const Simulation::Fault::Kind kind : {Simulation::Fault::Kind::Fail, Simulation::Fault::Kind::Late,
                                               Simulation::Fault::Kind::Disconnect, Simulation::Fault::Kind::Cancel})
        m_kind->addItem(QString(), int(kind));
    m_call->setObjectName(QStringLiteral("siteCall"));
    m_call->setRange(1, 999);
    m_faultTitle->setBuddy(m_operation);
    m_callLabel->setBuddy(m_call);
    m_armButton->setObjectName(QStringLiteral("siteArm"));
    m_clearButton->setObjectName(QStringLiteral("siteClear"));

    m_pictures->setObjectName(QStringLiteral("sitePictures"));
    m_pictures->setViewMode(QListView::IconMode);
    m_pictures->setResizeMode(QListView::Adjust);
    m_pictures->setMovement(QListView::Static);
    m_pictures->setIconSize(thumbSize);
    m_pictures->setSpacing(4);
    m_pictures->setWordWrap(true);

    auto *faultRow = new QHBoxLayout;
    faultRow->addWidget(m_kind, 1);
    faultRow->addWidget(m_callLabel);
    faultRow->addWidget(m_call);
    auto *faultButtons = new QHBoxLayout;
    faultButtons->addWidget(m_faultState, 1);
    faultButtons->addWidget(m_armButton);
    faultButtons->addWidget(m_clearButton);
    // Three columns: the dock lies below the central area, wide and low.
    auto *deviceColumn = new QVBoxLayout;
    deviceColumn->addWidget(m_devices, 1);
    deviceColumn->addWidget(m_plugButton);
    auto *faultColumn = new QVBoxLayout;
    faultColumn->addWidget(m_faultTitle);
    faultColumn->addWidget(m_operation);
    faultColumn->addLayout(faultRow);
    faultColumn->addLayout(faultButtons);
    faultColumn->addStretch();
    auto *pictureColumn = new QVBoxLayout;
    pictureColumn->addWidget(m_pictureTitle);
    pictureColumn->addWidget(m_pictures, 1);
    auto *content = new QWidget;
    content->setObjectName(QStringLiteral("siteContent"));
    auto *layout = new QHBoxLayout(content);
    layout->setSpacing(16);
    layout->addLayout(deviceColumn, 4);
    layout->addLayout(faultColumn, 3);
    layout->addLayout(pictureColumn, 3);
    // Small screens are too low for the dock.
    auto *scrollArea = new QScrollArea;
    scrollArea->setFrameShape(QFrame::NoFrame);
    scrollArea->setFocusPolicy(Qt::NoFocus);
    scrollArea->setWidgetResizable(true);
    scrollArea->setWidget(content);
    auto *outerLayout = new QVBoxLayout(this);
    outerLayout->setContentsMargins(0, 0, 0, 0);
    outerLayout->addWidget(scrollArea);

    m_refreshTimer.setInterval(refreshIntervalMs);
    connect(&m_refreshTimer, &QTimer::timeout, this, &SiteDock::refresh);
    connect(m_devices, &QTreeWidget::currentItemChanged, this, &SiteDock::refresh);
    connect(m_plugButton, &QPushButton::clicked, this, &SiteDock::togglePlug);
    connect(m_armButton, &QPushButton::clicked, this, &SiteDock::armFault);
    connect(m_clearButton, &QPushButton::clicked, this, &SiteDock::clearFaults);
    retranslate();
}

void SiteDock::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

void SiteDock::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    refresh();
    m_refreshTimer.start();
}

void SiteDock::hideEvent(QHideEvent *event)
{
    m_refreshTimer.stop();
    QWidget::hideEvent(event);
}

void SiteDock::retranslate()
{
    setWindowTitle(tr("Simulated site"));
    m_devices->setAccessibleName(tr("Devices of the site"));
    m_kind->setAccessibleName(tr("Kind of fault"));
    m_devices->setHeaderLabels({tr("Device"), tr("Address"), tr("State")});
    m_faultTitle->setText(tr("Next fault"));
    m_kind->setItemText(0, tr("Fails"));
    m_kind->setItemText(1, tr("Answers %1 s late").arg(lateAnswerMs / 1000));
    m_kind->setItemText(2, tr("Drops the connection"));
    m_kind->setItemText(3, tr("Is cancelled"));
    m_callLabel->setText(tr("at call"));
    setWholeText(m_armButton, tr("Arm"));
    setWholeText(m_clearButton, tr("Clear"));
    m_pictureTitle->setText(tr("Pictures in the hardware"));
    m_pictures->setAccessibleName(m_pictureTitle->text());
    refresh();
}

void SiteDock::refresh()
{
    refreshDevices();
    refreshPictures();
    refreshFaults();
}

void SiteDock::refreshDevices()
{
    for (int i = 0; i < m_devices->topLevelItemCount(); ++i) {
        QTreeWidgetItem *item = m_devices->topLevelItem(i);
        const auto hardware = m_session.hardware(item->data(0, addressRole).toString());
        if (!hardware)
            continue;
        item->setText(0, hardware->state().identity.name);
        item->setText(2, hardware->isReachable() ? tr("plugged in") : tr("unplugged"));
    }
    const auto hardware = m_session.hardware(selectedAddress());
    m_plugButton->setEnabled(hardware != nullptr);
    setWholeText(m_plugButton, hardware && hardware->isReachable() ? tr("Unplug") : tr("Plug in"));
}

void SiteDock::refreshPictures()
{
    const auto hardware = m_session.hardware(selectedAddress());
    const Simulation::HardwareState state = hardware ? hardware->state() : Simulation::HardwareState();
    QStringList wanted;
    for (const auto &gallery : {state.backgrounds, state.logos}) {
        for (const Simulation::PictureState &picture : gallery)
            wanted.append(QString::number(picture.pixels.cacheKey()) + picture.name);
    }
    if (wanted == m_shown)
        return;
    m_shown = wanted;
    m_pictures->clear();
    QHash<qint64, QPixmap> thumbs;
    for (const auto &gallery : {state.backgrounds, state.logos}) {
        for (const Simulation::PictureState &picture : gallery) {
            const qint64 key = picture.pixels.cacheKey();
            const QPixmap thumb = m_thumbs.contains(key) ? m_thumbs.value(key) : thumbOf(picture.pixels);
            thumbs.insert(key, thumb);
            new QListWidgetItem(QIcon(thumb), picture.name, m_pictures);
        }
    }
    m_thumbs = thumbs;
}

void SiteDock::refreshFaults()
{
    const int armed = Simulation::Faults::instance()->armedCount();
    m_faultState->setText(armed == 0 ? tr("No fault is armed") : tr("Faults armed: %1").arg(armed));
    m_clearButton->setEnabled(armed > 0);
}

QString SiteDock::selectedAddress() const
{
    const QTreeWidgetItem *item = m_devices->currentItem();
    return item ? item->data(0, addressRole).toString() : QString();
}

void SiteDock::togglePlug()
{
    const QString ip = selectedAddress();
    const auto hardware = m_session.hardware(ip);
    if (!hardware)
        return;
    if (hardware->isReachable())
        m_session.unplug(ip);
    else
        m_session.plug(ip);
    refresh();
}

void SiteDock::armFault()
{
    Simulation::Fault fault;
    fault.kind = static_cast<Simulation::Fault::Kind>(m_kind->currentData().toInt());
    fault.call = m_call->value();
    fault.delayMs = lateAnswerMs;
    Simulation::Faults::instance()->arm(m_operation->currentText(), fault);
    refreshFaults();
}

void SiteDock::clearFaults()
{
    Simulation::Faults::instance()->clear();
    refreshFaults();
}
