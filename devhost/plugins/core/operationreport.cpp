// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/operationreport.h>

#include <model/device.h>
#include <model/objectbrige.h>
#include <simulation/journal.h>
#include <simulation/operations.h>

#include <QDateTime>
#include <QDir>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

#include <algorithm>

namespace Operations = Simulation::Operations;

namespace Core {

OperationReport::OperationReport(QObject *parent)
    : QObject(parent)
{
    // Synchronous: the first project file may be complete before the event loop runs. Progress comes from other
    // threads.
    connect(
        ICore::instance(), &ICore::operatorTypeChanged, this,
        [this](ICore::OperatorDeviceType type) {
            if (QThread::currentThread() != thread())
                return;
            if (type == ICore::OperatorNone)
                end();
            else
                begin(type);
        },
        Qt::DirectConnection);
    connect(
        Simulation::Journal::instance(), &Simulation::Journal::succeeded, this,
        [this](const QString &operation) {
            if (operation == Simulation::Operations::copyModelToDevice)
                m_sentToDevice = true;
            else if (operation == Simulation::Operations::serailize)
                m_storedOffline = true;
        },
        Qt::DirectConnection);
    connect(
        Simulation::Journal::instance(), &Simulation::Journal::recorded, this,
        [this](const Simulation::JournalEntry &entry) {
            if (entry.onMainThread)
                observe(entry);
        },
        Qt::DirectConnection);
}

void OperationReport::observe(const Simulation::JournalEntry &entry)
{
    const QString text = entry.arguments.value(QStringLiteral("text")).toString();
    if (entry.operation == Operations::showWaitingDialog) {
        m_waiting = text;
        emit changed();
    } else if (entry.operation == Operations::hideWaitingDialog && !m_waiting.isEmpty()) {
        m_waiting.clear();
        awaitMessage();
    } else if (m_ending &&
               (entry.operation == Operations::informationBox || entry.operation == Operations::warningBox)) {
        // A question would start something else.
        m_outcome = Message;
        m_detail = text;
    }
}

OperationReport::Listing OperationReport::projectFiles()
{
    const QDir directory(QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation).constFirst() +
                         QStringLiteral("/Velmora/Tarvo/ProjectFiles"));
    Listing listing;
    const QFileInfoList files = directory.entryInfoList({QStringLiteral("*.corvelpro")}, QDir::Files);
    for (const QFileInfo &file : files)
        listing.insert(file.completeBaseName(), qMakePair(file.size(), file.lastModified().toMSecsSinceEpoch()));
    return listing;
}

void OperationReport::begin(ICore::OperatorDeviceType type)
{
    m_running = type;
    m_ending = false;
    m_outcome = None;
    const std::shared_ptr<Model::Device> device = Model::object_brige::instance()->activeDevice();
    m_device = device ? device->getName() : QString();
    m_online = device && device->getDeviceOnlineFlag();
    m_sentToDevice = false;
    m_storedOffline = false;
    if (type == ICore::OperatorBackup)
        m_before = projectFiles();
    emit changed();
}

void OperationReport::end()
{
    if (m_running == ICore::OperatorNone)
        return;
    m_detail = m_device;
    if (m_running == ICore::OperatorLoad) {
        m_outcome = (m_online ? m_sentToDevice : m_storedOffline) ? Applied : NotApplied;
    } else {
        QStringList written;
        const Listing now = projectFiles();
        for (auto file = now.cbegin(); file != now.cend(); ++file) {
            if (m_before.value(file.key()) != file.value())
                written.append(file.key());
        }
        std::sort(written.begin(), written.end());
        // With several new files, the one written by another program cannot be told apart.
        m_outcome = written.isEmpty() ? NotSaved : (written.size() == 1 ? Saved : SeveralWritten);
        if (!written.isEmpty())
            m_detail = written.join(QStringLiteral(", "));
    }
    m_running = ICore::OperatorNone;
    awaitMessage();
}

void OperationReport::awaitMessage()
{
    m_ending = true;
    QTimer::singleShot(0, this, &OperationReport::settle);
}

void OperationReport::settle()
{
    m_ending = false;
    emit changed();
}

void OperationReport::forgetMessage()
{
    if (m_outcome == Message)
        m_outcome = None;
}

QString OperationReport::text() const
{
    if (!m_waiting.isEmpty())
        return m_waiting;
    switch (m_outcome) {
    case None:
        break;
    case Saved:
        return tr("Saved \"%1\"").arg(m_detail);
    case SeveralWritten:
        return tr("Project files written: %1").arg(m_detail);
    case NotSaved:
        return tr("Ended without a new project file of \"%1\"").arg(m_detail);
    case Applied:
        return tr("Applied to \"%1\"").arg(m_detail);
    case NotApplied:
        return tr("Ended without writing the configuration of \"%1\"").arg(m_detail);
    case Message:
        return tr("Ended with the message: %1").arg(m_detail);
    }
    return QString();
}

} // namespace Core
