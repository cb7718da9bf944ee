// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <extensionsystem/extensionsystem_global.h>

#include <QList>
#include <QObject>

namespace HX {
namespace ExtensionSystem {

/// The objects through which plugins find each other. Owns none of them; user-interface thread only.
class HOST_EXTENSIONSYSTEM_EXPORT ObjectPool : public QObject
{
    Q_OBJECT

public:
    static ObjectPool *instance();

    /// Adds `object`; refuses null and duplicates with a warning.
    void addObject(QObject *object);
    /// Removes `object`; unknown objects are ignored.
    void removeObject(QObject *object);

    /// In the order in which they were added.
    QList<QObject *> objects() const { return m_objects; }

    /// The objects of type T, in the same order.
    template<typename T>
    QList<T *> objectsOfType() const
    {
        QList<T *> result;
        for (QObject *object : m_objects) {
            if (T *typed = qobject_cast<T *>(object))
                result.append(typed);
        }
        return result;
    }

signals:
    void objectAdded(QObject *object);
    /// Emitted while the object is still in the pool and alive. An object deleted without being removed leaves the pool
    /// with a warning and without this signal.
    void aboutToRemoveObject(QObject *object);

private:
    ObjectPool() = default;
    void forgetDestroyed(QObject *object);

    QList<QObject *> m_objects;
};

} // namespace ExtensionSystem
} // namespace HX
