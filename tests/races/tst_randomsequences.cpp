// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "stage.h"

#include <support/testmain.h>

#include <QRandomGenerator>

using namespace PanelTesting;
using namespace Races;
using namespace TestSupport;

/// Operators, devices and other programs in random order, reproducible from seeds.
///
/// RANDOM_SEED is the first seed and RANDOM_SEQUENCES the number of sequences: a failure prints them for a replay. A
/// seed determines the plan, not which of two threads comes first.
class TstRandomSequences : public QObject
{
    Q_OBJECT

private slots:
    void random_sequences_keep_the_invariants();
};

namespace {

constexpr int stepCount = 6;
/// More points than the longest operation has, so that some disturbances come too late.
constexpr int furthestPoint = 50;

class Sequence
{
public:
    explicit Sequence(quint32 seed)
        : m_random(seed)
    {}

    /// The first violation and the steps that led to it; empty if there is none.
    QString run()
    {
        for (const char *name : {"show", "gala"})
            m_stage.addPackage(QString::fromLatin1(name), someDevice());
        m_stage.openPanel();
        m_stage.comesToRest();
        m_stage.brokenTruths({QStringLiteral("show"), QStringLiteral("gala")});

        for (int number = 1; number <= stepCount; ++number) {
            const QStringList broken = step();
            if (!broken.isEmpty())
                return m_story.join(QLatin1Char('\n')) + QStringLiteral("\n  ") + broken.join(QStringLiteral("\n  "));
        }
        const QStringList broken = m_stage.brokenTruthsAfterClosing({});
        return broken.isEmpty() ? QString()
                                : m_story.join(QLatin1Char('\n')) + QStringLiteral("\nand the panel was closed\n  ") +
                                      broken.join(QStringLiteral("\n  "));
    }

private:
    bool chance(int percent) { return int(m_random.bounded(100)) < percent; }
    template<typename List>
    typename List::value_type oneOf(const List &list)
    {
        return list.at(int(m_random.bounded(quint32(list.size()))));
    }

    Simulation::HardwareState someDevice()
    {
        const QString ip = QStringLiteral("10.0.0.%1").arg(80 + m_random.bounded(20));
        const int model = chance(85) ? mainModel : otherModel;
        return chance(50) ? richDevice(ip, model) : plainDevice(ip, model);
    }

    QString freshName() { return QStringLiteral("%1 %2").arg(oneOf(m_words), QString::number(++m_names)); }
    QString somePackage()
    {
        const QStringList names = packageNames();
        return names.isEmpty() ? QStringLiteral("none") : oneOf(names);
    }

    /// The names that the panel may propose for a save at this moment.
    static QSet<QString> proposals()
    {
        QSet<QString> names;
        for (const QString &word : {QStringLiteral("Project"), QString::fromUtf8("项目")}) {
            for (int number = 1; number < 50; ++number)
                names.insert(word + QString::number(number));
        }
        const QStringList taken = packageNames();
        return names - QSet<QString>(taken.begin(), taken.end());
    }

    QStringList step()
    {
        if (chance(70))
            m_stage.repairSite();
        if (!m_stage.hasPanel()) {
            m_stage.openPanel();
            if (!m_stage.comesToRest())
                return {QStringLiteral("the new panel never came to rest")};
        }
        if (chance(30))
            m_stage.select(oneOf(m_ips));

        const auto operation = Operation(m_random.bounded(operationCount));
        const QString row = operation == Scan ? freshName() : oneOf(m_stage.panel().names() << somePackage());
        Answers answers;
        answers.acceptsDialogs = chance(90);
        answers.question = chance(90) ? QMessageBox::Yes : QMessageBox::No;
        answers.name = chance(20) ? somePackage() : freshName();
        answers.comment = oneOf(m_words);
        QSet<QString> touched;
        const auto touchIfFree = [&touched](const QString &name) {
            if (!QFile::exists(projectFile(name)))
                touched.insert(name);
        };
        switch (operation) {
        case Save:
            if (chance(30))
                answers.name = QString();
            touchIfFree(answers.name);
            touched += proposals();
            break;
        case ApplyWithBackup:
            touched = proposals();
            break;
        case Apply:
        case SaveAs:
            answers.paths = QStringList{m_stage.elsewhere(freshName() + QStringLiteral(".corvelpro"))};
            break;
        case ApplyOthers:
            answers.question = oneOf(QVector<QMessageBox::StandardButton>{QMessageBox::Yes, QMessageBox::No});
            answers.paths = QStringList{m_stage.packageElsewhere(QStringLiteral("theirs.corvelpro"), someDevice())};
            touched = proposals();
            break;
        case Import:
            for (int number = 1 + int(m_random.bounded(2)); number > 0; --number) {
                const QString name = chance(20) ? somePackage() : freshName();
                touchIfFree(name);
                answers.paths.append(m_stage.packageElsewhere(name + QStringLiteral(".corvelpro"), someDevice()));
            }
            break;
        case SaveAllAs:
            answers.paths = QStringList{m_stage.elsewhere(QString())};
            break;
        case Edit:
            touched = {row};
            touchIfFree(answers.name);
            break;
        case Delete:
        case Scan:
            touched = {row};
            break;
        case DeleteAll: {
            const QStringList all = packageNames();
            touched = QSet<QString>(all.begin(), all.end());
            break;
        }
        }

        m_stage.points().start();
        QStringList plan;
        for (int number = int(m_random.bounded(3)); number > 0; --number) {
            const auto disturbance = Disturbance(m_random.bounded(disturbanceCount));
            const int point = 1 + int(m_random.bounded(chance(60) ? furthestPoint / 5 : furthestPoint));
            const QString ip = oneOf(m_ips);
            const QString package = chance(60) ? row : somePackage();
            plan.append(QStringLiteral("at point %1 %2 (%3, %4)")
                            .arg(QString::number(point), nameOf(disturbance), ip, package));
            m_stage.points().at(point, Stage::isOfTheEventLoop(disturbance),
                                [=] { m_stage.disturb(disturbance, ip, package); });
        }
        const bool isPressed = m_stage.press(operation, answers, row);
        m_story.append(QStringLiteral("%1 (%2; %3)%4 %5")
                           .arg(nameOf(operation), row, answers.name,
                                isPressed ? QString() : QStringLiteral(", which cannot be pressed"),
                                plan.join(QStringLiteral(", "))));
        if (!m_stage.comesToRest())
            return {QStringLiteral("it never came to rest")};
        m_stage.points().forget();
        return m_stage.brokenTruths(touched);
    }

    const QVector<QString> m_ips{richIp, plainIp, offlineIp, foreignIp};
    const QVector<QString> m_words{QStringLiteral("Opening"), QString::fromUtf8("晚会"), QString::fromUtf8("🎬 show"),
                                   QStringLiteral("50%3off"), QString::fromUtf8("e\xcc\x81te\xcc\x81")};
    QRandomGenerator m_random;
    Stage m_stage;
    QStringList m_story;
    int m_names = 0;
};

quint32 numberFrom(const char *variable, quint32 otherwise)
{
    return qEnvironmentVariableIsSet(variable) ? qgetenv(variable).toUInt() : otherwise;
}

} // namespace

void TstRandomSequences::random_sequences_keep_the_invariants()
{
    const quint32 first = numberFrom("RANDOM_SEED", 1);
    const quint32 count = numberFrom("RANDOM_SEQUENCES", 20);
    qInfo("RANDOM_SEED=%u RANDOM_SEQUENCES=%u", first, count);
    for (quint32 seed = first; seed != first + count; ++seed) {
        const QString wrong = Sequence(seed).run();
        if (wrong.isEmpty() && !QTest::currentTestFailed())
            continue;
        QFAIL(qPrintable(QStringLiteral("RANDOM_SEED=%1 RANDOM_SEQUENCES=1\n%2").arg(QString::number(seed), wrong)));
    }
}

TEST_MAIN(TstRandomSequences)
#include "tst_randomsequences.moc"
