// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "testhome.h"
#include "warningguard.h"

#include <QApplication>
#include <QGuiApplication>
#include <QtTest>

// Qt Test waits five seconds for an event, and polls every 50 milliseconds. On a loaded machine with a sanitizer, one
// step of a save or an apply can take longer than five seconds; on an idle one, a step takes far less than 50
// milliseconds.
#undef QTRY_VERIFY
#undef QTRY_VERIFY2
#undef QTRY_COMPARE
#define QTRY_VERIFY(expression)                                                                                        \
    do {                                                                                                               \
        (void)QTest::qWaitFor([&] { return bool(expression); }, TestSupport::patience);                                \
        QVERIFY(expression);                                                                                           \
    } while (false)
#define QTRY_VERIFY2(expression, message)                                                                              \
    do {                                                                                                               \
        (void)QTest::qWaitFor([&] { return bool(expression); }, TestSupport::patience);                                \
        QVERIFY2(expression, message);                                                                                 \
    } while (false)
#define QTRY_COMPARE(actual, expected)                                                                                 \
    do {                                                                                                               \
        (void)QTest::qWaitFor([&] { return (actual) == (expected); }, TestSupport::patience);                          \
        QCOMPARE(actual, expected);                                                                                    \
    } while (false)

/// Lets names of host operations appear in data rows.
inline QTestData &operator<<(QTestData &data, QLatin1String text)
{
    return data << QString(text);
}

namespace TestSupport {

/// The timeout for an event that must arrive, in milliseconds.
constexpr int patience = 60000;

} // namespace TestSupport

// The main function of a test program, by the application object that the class under test requires. Gives the test a
// private home (TestHome) and fails it on every unexpected warning (WarningGuard). The test class needs a default
// constructor and an "#include "tst_x.moc"" after the macro.
//
//     TEST_MAIN_CORE(TstX)  no GUI
//     TEST_MAIN_GUI(TstX)   pictures, but no widgets
//     TEST_MAIN(TstX)       widgets
#define TEST_MAIN_WITH(Application, TestClass)                                                                         \
    int main(int argc, char *argv[])                                                                                   \
    {                                                                                                                  \
        TestSupport::TestHome home;                                                                                    \
        Application application(argc, argv);                                                                           \
        TestClass test;                                                                                                \
        QTEST_SET_MAIN_SOURCE_PATH                                                                                     \
        return TestSupport::runTest(&test, argc, argv);                                                                \
    }
#define TEST_MAIN_CORE(TestClass) TEST_MAIN_WITH(QCoreApplication, TestClass)
#define TEST_MAIN_GUI(TestClass) TEST_MAIN_WITH(QGuiApplication, TestClass)
#define TEST_MAIN(TestClass) TEST_MAIN_WITH(QApplication, TestClass)
