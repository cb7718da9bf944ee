// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "warningguard.h"

#include "threadcensus.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <QThread>
#include <QtTest>

#include <algorithm>
#include <cstdio>

namespace TestSupport {

namespace {

struct Expected
{
    int id;
    QtMsgType type;
    QRegularExpression pattern;
    int seen;
};

struct GuardState
{
    QMutex mutex;
    QVector<WarningGuard::Message> messages;
    QVector<Expected> expected;
    QStringList unexpected;
    QtMessageHandler previousHandler = nullptr;
    int lastId = 0;
};

GuardState &guard()
{
    static GuardState state;
    return state;
}

const char *levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return "debug message";
    case QtInfoMsg:
        return "information";
    case QtWarningMsg:
        return "warning";
    case QtCriticalMsg:
        return "critical message";
    case QtFatalMsg:
        break;
    }
    return "fatal message";
}

// Qt's offscreen platform logs this about windows it cannot move; irrelevant to any test.
bool isPlatformNoise(const QString &text)
{
    static const QRegularExpression noise(QStringLiteral("^This plugin does not support [A-Za-z ]+(\\(\\))?$"));
    return noise.match(text).hasMatch();
}

void failRunningTest(const QString &reason)
{
    if (QTest::currentTestFunction() && !QTest::currentTestFailed())
        QTest::qFail(qPrintable(reason), "", 0);
}

// Reports messages of worker threads too: only the main thread can fail a test function.
void reportUnexpected()
{
    QStringList reasons;
    {
        QMutexLocker locker(&guard().mutex);
        reasons.swap(guard().unexpected);
    }
    if (reasons.isEmpty())
        return;
    if (!QTest::currentTestFunction()) {
        // After the last test function only the exit code can report it.
        QMutexLocker locker(&guard().mutex);
        guard().unexpected = reasons;
        return;
    }
    failRunningTest(reasons.join(QLatin1Char('\n')));
}

void readAlong(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    bool isUnexpected = false;
    QtMessageHandler previous = nullptr;
    {
        GuardState &state = guard();
        QMutexLocker locker(&state.mutex);
        previous = state.previousHandler;
        WarningGuard::Message message;
        message.type = type;
        message.text = text;
        message.file = QFileInfo(QString::fromUtf8(context.file)).fileName();
        message.line = context.line;
        message.function = QString::fromUtf8(context.function);
        state.messages.append(message);

        bool isExpected = isPlatformNoise(text);
        for (Expected &expected : state.expected) {
            if (expected.type == type && expected.pattern.match(text).hasMatch()) {
                ++expected.seen;
                isExpected = true;
            }
        }
        isUnexpected = !isExpected && (type == QtWarningMsg || type == QtCriticalMsg);
        if (isUnexpected) {
            state.unexpected.append(
                QStringLiteral("Unexpected %1: \"%2\" (%3:%4)")
                    .arg(QLatin1String(levelName(type)), text, message.file, QString::number(message.line)));
        }
    }
    if (previous)
        previous(type, context, text);
    if (!isUnexpected || !QCoreApplication::instance())
        return;
    if (QThread::currentThread() == QCoreApplication::instance()->thread())
        reportUnexpected();
    else
        QMetaObject::invokeMethod(QCoreApplication::instance(), &reportUnexpected, Qt::QueuedConnection);
}

int expectMessage(QtMsgType type, const QRegularExpression &pattern)
{
    QMutexLocker locker(&guard().mutex);
    guard().expected.append({++guard().lastId, type, pattern, 0});
    return guard().lastId;
}

} // namespace

QVector<WarningGuard::Message> WarningGuard::messages()
{
    QMutexLocker locker(&guard().mutex);
    return guard().messages;
}

QStringList WarningGuard::texts(QtMsgType type)
{
    QStringList result;
    for (const Message &message : messages()) {
        if (message.type == type)
            result.append(message.text);
    }
    return result;
}

int WarningGuard::count(QtMsgType type, const QString &text)
{
    return texts(type).count(text);
}

void WarningGuard::clear()
{
    QMutexLocker locker(&guard().mutex);
    guard().messages.clear();
}

ExpectMessage::ExpectMessage(QtMsgType type, const QRegularExpression &pattern, int times)
    : m_id(expectMessage(type, pattern))
    , m_times(times)
    , m_description(QStringLiteral("%1 like \"%2\"").arg(QLatin1String(levelName(type)), pattern.pattern()))
{}

ExpectMessage::ExpectMessage(QtMsgType type, const QString &text, int times)
    : m_id(expectMessage(type,
                         QRegularExpression(QRegularExpression::anchoredPattern(QRegularExpression::escape(text)))))
    , m_times(times)
    , m_description(QStringLiteral("%1 \"%2\"").arg(QLatin1String(levelName(type)), text))
{}

ExpectMessage::~ExpectMessage()
{
    const int seen = count();
    {
        QMutexLocker locker(&guard().mutex);
        QVector<Expected> &expected = guard().expected;
        expected.erase(
            std::remove_if(expected.begin(), expected.end(), [this](const Expected &one) { return one.id == m_id; }),
            expected.end());
    }
    if (m_times == AtLeastOne ? seen > 0 : (m_times == AnyNumber || seen == m_times))
        return;
    failRunningTest(
        QStringLiteral("Expected %1 %2, came %3 times")
            .arg(m_times == AtLeastOne ? QStringLiteral("at least one") : QStringLiteral("%1 times").arg(m_times),
                 m_description, QString::number(seen)));
}

int ExpectMessage::count() const
{
    QMutexLocker locker(&guard().mutex);
    for (const Expected &expected : qAsConst(guard().expected)) {
        if (expected.id == m_id)
            return expected.seen;
    }
    return 0;
}

int runTest(QObject *test, int argc, char *argv[])
{
    // Qt Test installs its own handler in qInit; the guard's comes first and forwards everything.
    QTest::qInit(test, argc, argv);
    guard().previousHandler = qInstallMessageHandler(&readAlong);
    int result = QTest::qRun();
    QCoreApplication::sendPostedEvents();
    qInstallMessageHandler(guard().previousHandler);
    QTest::qCleanup();

    QMutexLocker locker(&guard().mutex);
    for (const QString &reason : qAsConst(guard().unexpected)) {
        std::fprintf(stderr, "FAIL!  : after the last test function: %s\n", qPrintable(reason));
        result = qMax(result, 1);
    }
    // One is Qt Test's, which watches the time.
    if (qEnvironmentVariableIsSet("EXPECT_NO_THREADS") && startedThreads() > 1) {
        std::fprintf(stderr,
                     "FAIL!  : after the last test function: threads were started; see TESTS_WITHOUT_THREADS\n");
        result = qMax(result, 1);
    }
    return result;
}

} // namespace TestSupport
