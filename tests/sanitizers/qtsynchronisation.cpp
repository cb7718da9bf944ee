// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// Tells ThreadSanitizer how Qt synchronises threads.
//
// Debian's Qt is not instrumented, so its atomics and futexes are invisible: data handed over through a queued signal,
// a contended QMutex or a QFuture looks like a race. Each function here wraps one of Qt's, annotates the ordering it
// guarantees, and calls it. Nothing is suppressed: accesses not ordered by one of these guarantees are still reported
// (must_race shows it).

#include <qglobal.h>
#include <qnamespace.h>

#include <dlfcn.h>

class QObject;

// Names of ThreadSanitizer's own.
extern "C" void __tsan_acquire(void *address); // NOLINT(readability-identifier-naming)
extern "C" void __tsan_release(void *address); // NOLINT(readability-identifier-naming)

// As in a private header of Qt; Qt Test uses it to print signals.
struct QSignalSpyCallbackSet
{
    void (*signalBegin)(QObject *, int, void **);
    void (*slotBegin)(QObject *, int, void **);
    void (*signalEnd)(QObject *, int);
    void (*slotEnd)(QObject *, int);
};
Q_CORE_EXPORT void qt_register_signal_spy_callbacks(QSignalSpyCallbackSet *callbacks);

namespace {

// Stands for the event queues and the thread pool: whatever precedes an emission, the start of a task or its end
// happens before the code called as a result.
char handover;

void beforeEmission(QObject *, int, void **)
{
    __tsan_release(&handover);
}

// Data that Qt reads from the sender while emitting, the last thing a thread does at its end.
void afterEmission(QObject *, int)
{
    __tsan_release(&handover);
}

bool beforeEvent(void **)
{
    __tsan_acquire(&handover);
    return false;
}

template<typename Function>
Function *next(const char *symbol)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, symbol));
}

__attribute__((constructor)) void watchEvents()
{
    static QSignalSpyCallbackSet callbacks = {beforeEmission, nullptr, afterEmission, nullptr};
    qt_register_signal_spy_callbacks(&callbacks);
    QInternal::registerCallback(QInternal::EventNotifyCallback, beforeEvent);
}

} // namespace

// Defines, under Qt's mangled name, a function that does `before`, calls Qt's own, and does `after`.
#define STAND_BEFORE(result, name, symbol, parameters, arguments, before, after)                                       \
    extern "C" Q_DECL_EXPORT result name parameters __asm__(symbol);                                                   \
    extern "C" result name parameters                                                                                  \
    {                                                                                                                  \
        static auto *const own = next<result parameters>(symbol);                                                      \
        before;                                                                                                        \
        after(own arguments);                                                                                          \
    }

#define RETURN(call) return call
#define CALL(call) call
#define CALL_THEN_ACQUIRE_SELF(call)                                                                                   \
    call;                                                                                                              \
    __tsan_acquire(self)
#define CALL_THEN_ACQUIRE_HANDOVER(call)                                                                               \
    call;                                                                                                              \
    __tsan_acquire(&handover)
#define RETURN_AFTER_ACQUIRE_SELF(call)                                                                                \
    const bool acquired = call;                                                                                        \
    if (acquired)                                                                                                      \
        __tsan_acquire(self);                                                                                          \
    return acquired
#define RETURN_AFTER_ACQUIRE_HANDOVER(call)                                                                            \
    const bool done = call;                                                                                            \
    __tsan_acquire(&handover);                                                                                         \
    return done

// Mutexes: an unlock happens before the next lock. The fast paths are inline, and so instrumented.
STAND_BEFORE(void, lock, "_ZN6QMutex4lockEv", (void *self), (self), , CALL_THEN_ACQUIRE_SELF)
STAND_BEFORE(bool, tryLock, "_ZN6QMutex7tryLockEi", (void *self, int timeout), (self, timeout), ,
             RETURN_AFTER_ACQUIRE_SELF)
STAND_BEFORE(void, unlock, "_ZN6QMutex6unlockEv", (void *self), (self), __tsan_release(self), CALL)
STAND_BEFORE(void, lockInternal, "_ZN11QBasicMutex12lockInternalEv", (void *self), (self), , CALL_THEN_ACQUIRE_SELF)
STAND_BEFORE(bool, lockInternalTimed, "_ZN11QBasicMutex12lockInternalEi", (void *self, int timeout), (self, timeout), ,
             RETURN_AFTER_ACQUIRE_SELF)
STAND_BEFORE(void, unlockInternal, "_ZN11QBasicMutex14unlockInternalEv", (void *self), (self), __tsan_release(self),
             CALL)

// Semaphores: a release happens before the matching acquire.
STAND_BEFORE(void, acquire, "_ZN10QSemaphore7acquireEi", (void *self, int number), (self, number), ,
             CALL_THEN_ACQUIRE_SELF)
STAND_BEFORE(bool, tryAcquire, "_ZN10QSemaphore10tryAcquireEi", (void *self, int number), (self, number), ,
             RETURN_AFTER_ACQUIRE_SELF)
STAND_BEFORE(bool, tryAcquireTimed, "_ZN10QSemaphore10tryAcquireEii", (void *self, int number, int timeout),
             (self, number, timeout), , RETURN_AFTER_ACQUIRE_SELF)
STAND_BEFORE(void, release, "_ZN10QSemaphore7releaseEi", (void *self, int number), (self, number), __tsan_release(self),
             CALL)

// Posted calls: everything before the post happens before the call.
STAND_BEFORE(bool, invokeMethod,
             "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv",
             (void *object, void *slot, int type, void *result), (object, slot, type, result),
             __tsan_release(&handover), RETURN)

// Threads: the end of a thread, which emits finished(), happens before wait() returns.
STAND_BEFORE(bool, wait, "_ZN7QThread4waitEm", (void *self, unsigned long time), (self, time), ,
             RETURN_AFTER_ACQUIRE_HANDOVER)
STAND_BEFORE(bool, waitDeadline, "_ZN7QThread4waitE14QDeadlineTimer", (void *self, qint64 time, quint64 type),
             (self, time, type), , RETURN_AFTER_ACQUIRE_HANDOVER)

// Thread pool: the start happens before the task, which first checks whether it was cancelled.
STAND_BEFORE(void, startTask, "_ZN11QThreadPool5startEP9QRunnablei", (void *self, void *task, int priority),
             (self, task, priority), __tsan_release(&handover), CALL)
STAND_BEFORE(bool, isCanceled, "_ZNK20QFutureInterfaceBase10isCanceledEv", (void *self), (self), ,
             RETURN_AFTER_ACQUIRE_HANDOVER)
STAND_BEFORE(bool, waitForDone, "_ZN11QThreadPool11waitForDoneEi", (void *self, int timeout), (self, timeout), ,
             RETURN_AFTER_ACQUIRE_HANDOVER)

// Futures: results and the end of a task happen before waiting for them returns, or before the event that reports them.
STAND_BEFORE(void, reportResults, "_ZN20QFutureInterfaceBase18reportResultsReadyEii", (void *self, int begin, int end),
             (self, begin, end), __tsan_release(&handover), CALL)
STAND_BEFORE(void, reportFinished, "_ZN20QFutureInterfaceBase14reportFinishedEv", (void *self), (self),
             __tsan_release(&handover), CALL)
STAND_BEFORE(void, waitForResult, "_ZN20QFutureInterfaceBase13waitForResultEi", (void *self, int index), (self, index),
             , CALL_THEN_ACQUIRE_HANDOVER)
STAND_BEFORE(void, waitForFinished, "_ZN20QFutureInterfaceBase15waitForFinishedEv", (void *self), (self), ,
             CALL_THEN_ACQUIRE_HANDOVER)
