// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <extensionsystem/extensionsystem_global.h>

#include <QList>
#include <QObject>
#include <QStringList>

namespace HX {
namespace ExtensionSystem {

/// Stands for the base class of every plugin of the host application.
///
/// The plugin manager creates the object, then calls `initialize` in dependency order, `extensionsInitialized` in
/// reverse order, `delayedInitialize` later from the event loop and `aboutToShutdown` in reverse order. All of it
/// happens on the user-interface thread. The virtual functions are in the order of the host's vtable.
class HOST_EXTENSIONSYSTEM_EXPORT IPlugin : public QObject
{
    Q_OBJECT

public:
    enum ShutdownFlag { SynchronousShutdown = 0, AsynchronousShutdown = 1 };

    IPlugin();
    ~IPlugin() override;

    /// Returns false, with the reason in `errorString`, when the plugin cannot be used.
    virtual bool initialize(const QStringList &arguments, QString *errorString) = 0;
    virtual void extensionsInitialized() = 0;
    /// Returns true if it took long; the manager then returns to the event loop before the next plugin.
    virtual bool delayedInitialize();
    virtual ShutdownFlag aboutToShutdown();
    virtual QObject *remoteCommand(const QStringList &options, const QString &workingDirectory,
                                   const QStringList &arguments);
    virtual QList<QObject *> createTestObjects() const;

protected:
    /// Loads `path`/`fileBase`_`language`.qm and installs it in place of the previous translation for `fileBase`. If
    /// the file cannot be loaded, returns false; the previous translation is removed nevertheless.
    virtual bool installTranslator(const QString &path, const QString &fileBase, const QString &language);

public:
    /// Adds an object to the framework's object pool; the pool does not own it.
    void addObject(QObject *object);
    /// Removes an object from the pool; unknown objects are ignored.
    void removeObject(QObject *object);

private:
    class Private;
    Private *const d;
};

} // namespace ExtensionSystem
} // namespace HX
