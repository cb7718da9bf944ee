// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>
#include <QStringList>
#include <QVariantList>

namespace TestSupport {

/// Compares two sequences. Returns an empty string if they are equal, else the first difference in its context, for a
/// failure message.
QString sequenceDifference(const QStringList &actual, const QStringList &expected);

/// The operations in the journal of the simulated site must be exactly these, in this order:
///
///     VERIFY_JOURNAL({Operations::updateDeviceInfo, Operations::copyModelToDevice});
QString journalDifference(const QStringList &expected);
/// These operations must occur in this order; others may occur between them.
QString journalOrderDifference(const QStringList &expected);

/// The operations of the user-interface thread, in order.
QStringList mainThreadOperations();
/// That argument of each call of the operation, in order.
QVariantList journalArguments(const QString &operation, const char *argument);

} // namespace TestSupport

#define VERIFY_JOURNAL(...)                                                                                            \
    do {                                                                                                               \
        const QString difference = TestSupport::journalDifference(__VA_ARGS__);                                        \
        QVERIFY2(difference.isEmpty(), qPrintable(difference));                                                        \
    } while (false)
#define VERIFY_JOURNAL_ORDER(...)                                                                                      \
    do {                                                                                                               \
        const QString difference = TestSupport::journalOrderDifference(__VA_ARGS__);                                   \
        QVERIFY2(difference.isEmpty(), qPrintable(difference));                                                        \
    } while (false)
