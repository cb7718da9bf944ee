// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "host.h"

#include <QApplication>
#include <QDir>
#include <QFileSystemWatcher>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPluginLoader>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

namespace Acme {

Application::OperatorDeviceType Application::s_running = Idle;
QString Application::s_folder;
QString Application::s_translations;
QVector<Key> Pages::s_shown;

QList<QObject *> &PluginBase::pool()
{
    static QList<QObject *> objects;
    return objects;
}

bool PluginBase::installTranslator(const QString &path, const QString &fileBase, const QString &language)
{
    return m_translator.load(fileBase + '_' + language, path) && QCoreApplication::installTranslator(&m_translator);
}

SubModes *SubModes::instance()
{
    static SubModes modes;
    return &modes;
}

Busy *Busy::instance(QWidget *, int)
{
    static Busy *busy = new Busy;
    return busy;
}

Units *Units::instance()
{
    static Units units;
    return &units;
}

std::shared_ptr<Unit> Units::getDeviceByIPAddr(const QString &ip) const
{
    return ip == m_unit->getIPAddress() ? m_unit : nullptr;
}

bool Disk::serailize()
{
    const Unit &unit = *Units::instance()->activeDevice();
    QFile file(path + '/' + unit.getIPAddress() + '/' + unit.getIPAddress() + ".json");
    return file.open(QFile::WriteOnly) && file.write(QJsonDocument(unit.toJson()).toJson()) > 0;
}

} // namespace Acme
