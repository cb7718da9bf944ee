// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <extensionsystem/objectpool.h>

#include <QDebug>

namespace HX {
namespace ExtensionSystem {

ObjectPool *ObjectPool::instance()
{
    static ObjectPool pool;
    return &pool;
}

void ObjectPool::addObject(QObject *object)
{
    if (!object) {
        qWarning("The object pool was given a null object");
        return;
    }
    if (m_objects.contains(object)) {
        qWarning() << "The object pool holds" << object << "already";
        return;
    }
    m_objects.append(object);
    connect(object, &QObject::destroyed, this, &ObjectPool::forgetDestroyed);
    emit objectAdded(object);
}

void ObjectPool::removeObject(QObject *object)
{
    if (!m_objects.contains(object))
        return;
    emit aboutToRemoveObject(object);
    disconnect(object, &QObject::destroyed, this, &ObjectPool::forgetDestroyed);
    m_objects.removeOne(object);
}

void ObjectPool::forgetDestroyed(QObject *object)
{
    if (m_objects.removeOne(object))
        qWarning() << "The object" << static_cast<const void *>(object)
                   << "was deleted without leaving the object pool";
}

} // namespace ExtensionSystem
} // namespace HX
