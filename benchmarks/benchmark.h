// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include <unistd.h>

/// What the benchmarks share: pairs of two ways measured in turn, and the rows that benchmarks/run makes its
/// table and chart of.
namespace Benchmark {

constexpr qint64 KiB = 1024;
constexpr qint64 MiB = 1024 * KiB;

/// Ends the program with exit code 2; 1 stands for a missed limit.
[[noreturn]] inline void fail(const QString &why)
{
    std::fprintf(stderr, "benchmark: %s\n", qPrintable(why));
    std::exit(2);
}

inline void require(bool condition, const QString &why)
{
    if (!condition)
        fail(why);
}

/// The times of one way, in milliseconds.
struct Times
{
    QVector<double> milliseconds;

    double median() const
    {
        QVector<double> sorted = milliseconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted.at(sorted.size() / 2);
    }
    double least() const { return *std::min_element(milliseconds.begin(), milliseconds.end()); }
    double most() const { return *std::max_element(milliseconds.begin(), milliseconds.end()); }

    QJsonObject toJson() const
    {
        return {{"median", median()}, {"least", least()}, {"most", most()}, {"runs", milliseconds.size()}};
    }
};

inline double millisecondsOf(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

struct Pair
{
    Times plain;
    Times ours;
};

/// As above, but begun only after all data is on the disk: neither way pays for what the other left to be written.
inline double settledMillisecondsOf(const std::function<void()> &work)
{
    ::sync();
    return millisecondsOf(work);
}

/// Measures both ways in turn. `check` compares the results after each pair and ends the program if they differ, so
/// only equal results are timed; it also removes what the next pair creates again.
inline Pair inTurn(int pairs, const std::function<void()> &plain, const std::function<void()> &ours,
                   const std::function<void()> &check = {})
{
    Pair times;
    for (int pair = 0; pair < pairs; ++pair) {
        times.plain.milliseconds.append(settledMillisecondsOf(plain));
        times.ours.milliseconds.append(settledMillisecondsOf(ours));
        if (check)
            check();
    }
    return times;
}

/// The program's command line and its rows:
///
///     <program> [--quick] [--rows FILE] [--prefix TEXT] [NAME ...]      all that are not long where none is named
///
/// The rows go to standard output as text and to FILE as one JSON object a line. TEXT begins the name of each.
class Report
{
public:
    explicit Report(QStringList arguments)
    {
        arguments.removeFirst();
        m_isQuick = arguments.removeAll(QStringLiteral("--quick")) > 0;
        const QString rows = takeOption(arguments, QStringLiteral("--rows"));
        m_file.setFileName(rows);
        require(rows.isEmpty() || m_file.open(QIODevice::WriteOnly | QIODevice::Append), "cannot write " + rows);
        m_prefix = takeOption(arguments, QStringLiteral("--prefix"));
        m_wanted = arguments;
    }

    bool isQuick() const { return m_isQuick; }
    int pairs() const { return m_isQuick ? 3 : 5; }
    bool isWanted(const QString &name) const { return m_wanted.isEmpty() || m_wanted.contains(name); }
    bool wantsAll() const { return m_wanted.isEmpty(); }
    /// False when a limit was missed.
    bool allMet() const { return m_allMet; }

    /// Ours must be at least `limit` times as fast as the plain way.
    void faster(const QString &what, const QString &plainWay, const Pair &times, double limit)
    {
        compare(what, plainWay, times, times.plain.median() / times.ours.median(), ">=", limit);
    }
    /// Ours may take at most `limit` times as long as the other way.
    void within(const QString &what, const QString &otherWay, const Pair &times, double limit)
    {
        compare(what, otherWay, times, times.ours.median() / times.plain.median(), "<=", limit);
    }
    /// As above, without a limit: for information.
    void related(const QString &what, const QString &otherWay, const Pair &times)
    {
        compare(what, otherWay, times, times.ours.median() / times.plain.median(), "", 0);
    }
    /// A figure that must not exceed `limit`.
    void atMost(const QString &what, double value, const QString &unit, double limit)
    {
        judge(what, value, unit, "<=", limit);
    }
    /// A figure that must reach `limit`.
    void atLeast(const QString &what, double value, const QString &unit, double limit)
    {
        judge(what, value, unit, ">=", limit);
    }
    /// A figure for information.
    void told(const QString &what, double value, const QString &unit)
    {
        const QJsonObject row = judged(what, value, "", 0);
        figure(row, unit);
        std::printf("%-58s %10.2f %s\n", nameOf(row).constData(), value, qPrintable(unit));
        std::fflush(stdout);
    }
    /// How the cost grows: points of size, milliseconds, and MiB above the start.
    void growth(const QString &work, const QString &unit, const QVector<QVector<double>> &points)
    {
        QJsonArray array;
        for (const QVector<double> &point : points) {
            QJsonArray values;
            std::printf("%-40s", qPrintable(work));
            for (double value : point) {
                values.append(value);
                std::printf(" %12.2f", value);
            }
            std::printf("   (%s, ms, MiB)\n", qPrintable(unit));
            array.append(values);
        }
        write({{"growth", work}, {"unit", unit}, {"points", array}});
        std::fflush(stdout);
    }

private:
    static QString takeOption(QStringList &arguments, const QString &name)
    {
        const int at = arguments.indexOf(name);
        if (at < 0)
            return QString();
        require(at + 1 < arguments.size(), name + " needs a value");
        arguments.removeAt(at);
        return arguments.takeAt(at);
    }
    static QByteArray nameOf(const QJsonObject &row) { return row.value("what").toString().toLocal8Bit(); }

    QJsonObject judged(const QString &what, double value, const char *sign, double limit)
    {
        const bool isMet = *sign == '\0' || (*sign == '>' ? value >= limit : value <= limit);
        m_allMet = m_allMet && isMet;
        // A row that belongs to the one above is indented.
        QJsonObject row{
            {"what", what.startsWith(QLatin1Char(' ')) ? what : m_prefix + what}, {"value", value}, {"met", isMet}};
        if (*sign) {
            row.insert("sign", sign);
            row.insert("limit", limit);
        }
        return row;
    }
    void judge(const QString &what, double value, const QString &unit, const char *sign, double limit)
    {
        const QJsonObject row = judged(what, value, sign, limit);
        figure(row, unit);
        std::printf("%-58s %10.2f %-4s %s %g: %s\n", nameOf(row).constData(), value, qPrintable(unit), sign, limit,
                    row.value("met").toBool() ? "reached" : "MISSED");
        std::fflush(stdout);
    }
    void figure(QJsonObject row, const QString &unit)
    {
        row.insert("unit", unit);
        write(row);
    }
    void compare(const QString &what, const QString &plainWay, const Pair &times, double ratio, const char *sign,
                 double limit)
    {
        QJsonObject row = judged(what, ratio, sign, limit);
        row.insert("plainWay", plainWay);
        row.insert("plain", times.plain.toJson());
        row.insert("ours", times.ours.toJson());
        write(row);
        std::printf("%-58s %9.1f (%.1f-%.1f) %9.1f (%.1f-%.1f)  x%.2f %s", nameOf(row).constData(),
                    times.plain.median(), times.plain.least(), times.plain.most(), times.ours.median(),
                    times.ours.least(), times.ours.most(), ratio, sign);
        if (*sign)
            std::printf(" %g: %s", limit, row.value("met").toBool() ? "reached" : "MISSED");
        std::printf("\n");
        std::fflush(stdout);
    }
    void write(const QJsonObject &row)
    {
        if (m_file.isOpen()) {
            m_file.write(QJsonDocument(row).toJson(QJsonDocument::Compact) + '\n');
            m_file.flush();
        }
    }

    bool m_isQuick = false;
    bool m_allMet = true;
    QString m_prefix;
    QStringList m_wanted;
    QFile m_file;
};

} // namespace Benchmark
