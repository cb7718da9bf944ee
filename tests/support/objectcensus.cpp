// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "objectcensus.h"

#include <QThread>

#include <mutex>
#include <unordered_set>

// Called for every QObject, for tools that inspect running programs; declared in a private header of Qt.
extern quintptr Q_CORE_EXPORT qtHookData[]; // NOLINT(readability-identifier-naming)

namespace TestSupport {

namespace {

constexpr int addObjectHook = 3;
constexpr int removeObjectHook = 4;

struct Population
{
    std::mutex mutex;
    std::unordered_set<QObject *> objects;
};

// Never destroyed: the last objects are destroyed after everything else.
Population &population()
{
    static Population *const population = new Population;
    return *population;
}

void add(QObject *object)
{
    const std::lock_guard<std::mutex> locker(population().mutex);
    population().objects.insert(object);
}

void remove(QObject *object)
{
    const std::lock_guard<std::mutex> locker(population().mutex);
    population().objects.erase(object);
}

} // namespace

ObjectCensus::ObjectCensus()
{
    population();
    qtHookData[removeObjectHook] = reinterpret_cast<quintptr>(&remove);
    qtHookData[addObjectHook] = reinterpret_cast<quintptr>(&add);
}

ObjectCensus::~ObjectCensus()
{
    qtHookData[addObjectHook] = 0;
    qtHookData[removeObjectHook] = 0;
    const std::lock_guard<std::mutex> locker(population().mutex);
    population().objects.clear();
}

QVector<QObject *> ObjectCensus::living(const char *className) const
{
    // Objects of other threads may be under construction or destruction, but each is valid until remove() was called.
    const std::lock_guard<std::mutex> locker(population().mutex);
    QVector<QObject *> found;
    for (QObject *object : population().objects) {
        if (object->thread() == QThread::currentThread() && object->inherits(className))
            found.append(object);
    }
    return found;
}

} // namespace TestSupport
