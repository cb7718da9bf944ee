// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <extensionsystem/iplugin.h>

#include <extensionsystem/objectpool.h>

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QHash>
#include <QTranslator>

#include <memory>

namespace HX {
namespace ExtensionSystem {

class IPlugin::Private
{
public:
    void withdraw(const QString &fileBase)
    {
        QTranslator *translator = translators.take(fileBase);
        if (!translator)
            return;
        if (QCoreApplication::instance())
            QCoreApplication::removeTranslator(translator);
        delete translator;
    }

    QHash<QString, QTranslator *> translators;
};

IPlugin::IPlugin()
    : d(new Private)
{}

IPlugin::~IPlugin()
{
    const QStringList fileBases = d->translators.keys();
    for (const QString &fileBase : fileBases)
        d->withdraw(fileBase);
    delete d;
}

bool IPlugin::delayedInitialize()
{
    return false;
}

IPlugin::ShutdownFlag IPlugin::aboutToShutdown()
{
    return SynchronousShutdown;
}

QObject *IPlugin::remoteCommand(const QStringList &options, const QString &workingDirectory,
                                const QStringList &arguments)
{
    Q_UNUSED(options)
    Q_UNUSED(workingDirectory)
    Q_UNUSED(arguments)
    return nullptr;
}

QList<QObject *> IPlugin::createTestObjects() const
{
    return {};
}

bool IPlugin::installTranslator(const QString &path, const QString &fileBase, const QString &language)
{
    d->withdraw(fileBase);

    // QTranslator::load falls back to shorter names ("base_zh", "base"); only the exact file counts here.
    const QString fileName = QStringLiteral("%1/%2_%3.qm").arg(path, fileBase, language);
    if (!QFile::exists(fileName))
        return false;
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(fileName))
        return false;
    QCoreApplication::installTranslator(translator.get());
    d->translators.insert(fileBase, translator.release());
    return true;
}

void IPlugin::addObject(QObject *object)
{
    ObjectPool::instance()->addObject(object);
}

void IPlugin::removeObject(QObject *object)
{
    ObjectPool::instance()->removeObject(object);
}

} // namespace ExtensionSystem
} // namespace HX
