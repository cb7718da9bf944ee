// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "program.h"
#include "tour.h"

#include <core/logrelay.h>
#include <core/mainwindow.h>
#include <widgets/framelessmessagebox.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDebug>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <memory>

namespace {

/// The tour deletes project files, so it gets a private home: never the user's Documents.
void makePrivateHome(const QString &directory)
{
    const QString home = QDir(directory).absoluteFilePath(QStringLiteral("home"));
    QDir(home).removeRecursively();
    QDir().mkpath(home + QStringLiteral("/Documents"));
    for (const char *variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        qputenv(variable, QFile::encodeName(home));
}

/// An empty size if the text is not "<width>x<height>".
QSize sizeFrom(const QString &text)
{
    const QStringList sides = text.split(QLatin1Char('x'));
    return sides.size() == 2 ? QSize(sides.first().toInt(), sides.last().toInt()) : QSize();
}

/// Options that only print need no display.
std::unique_ptr<QCoreApplication> makeApplication(int &argc, char *argv[])
{
    const QStringList printing{QStringLiteral("-h"), QStringLiteral("--help"), QStringLiteral("--help-all"),
                               QStringLiteral("-v"), QStringLiteral("--version")};
    const bool onlyPrints = std::any_of(argv + 1, argv + argc, [&printing](const char *argument) {
        return printing.contains(QString::fromLocal8Bit(argument));
    });
    if (onlyPrints)
        return std::make_unique<QCoreApplication>(argc, argv);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // Native file dialogs use the desktop's language instead of the one chosen here.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    return std::make_unique<QApplication>(argc, argv);
}

} // namespace

int main(int argc, char *argv[])
{
    const std::unique_ptr<QCoreApplication> application = makeApplication(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("devhost"));
    QCoreApplication::setApplicationVersion(QStringLiteral(DEVHOST_VERSION));

    Program::Options options = Program::defaultOptions();
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Tarvo – development host: runs plugins against a simulated site of devices."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption site(QStringLiteral("site"), QStringLiteral("The site to start from."),
                                  QStringLiteral("file"), options.siteFile);
    const QCommandLineOption language(QStringLiteral("language"), QStringLiteral("en or zh_CN."),
                                      QStringLiteral("code"), options.language);
    const QCommandLineOption plugins(QStringLiteral("plugins"), QStringLiteral("Where the plugins are."),
                                     QStringLiteral("directory"), options.pluginDirectory);
    const QCommandLineOption work(QStringLiteral("work"),
                                  QStringLiteral("Where the devices' configurations and extracted packages lie."),
                                  QStringLiteral("directory"), options.workDirectory);
    const QCommandLineOption open(QStringLiteral("open"), QStringLiteral("The page of the settings to open first."),
                                  QStringLiteral("id"), options.firstSubMode);
    const QCommandLineOption pace(QStringLiteral("pace"),
                                  QStringLiteral("How many times as long as the site says its devices take."),
                                  QStringLiteral("factor"), QString::number(options.durationFactor));
    const QCommandLineOption size(QStringLiteral("size"),
                                  QStringLiteral("The window's size; by default it fits the screen."),
                                  QStringLiteral("WIDTHxHEIGHT"));
    const QCommandLineOption textSize(QStringLiteral("text-size"),
                                      QStringLiteral("Height of the text, 11 to 20; by default the desktop's."),
                                      QStringLiteral("pixels"));
    const QCommandLineOption tour(QStringLiteral("tour"),
                                  QStringLiteral("Works the project file panel by itself, checks each outcome, "
                                                 "leaves pictures there, and ends. Uses no documents of yours."),
                                  QStringLiteral("directory"));
    parser.addOptions({site, language, plugins, work, open, pace, size, textSize, tour});
    parser.addPositionalArgument(QStringLiteral("files"), QStringLiteral("Project files to import."),
                                 QStringLiteral("[files...]"));
    parser.process(*application);
    const QString tourDirectory = parser.isSet(tour) ? QDir::current().absoluteFilePath(parser.value(tour)) : QString();
    if (!tourDirectory.isEmpty()) {
        makePrivateHome(tourDirectory);
        options = Program::defaultOptions();
        options.language = QStringLiteral("en");
        // Generating pictures needs no screen.
        options.windowSize = QSize(1440, 900);
    }
    if (parser.isSet(size))
        options.windowSize = sizeFrom(parser.value(size));
    options.textSize = parser.value(textSize).toInt();
    options.siteFile = parser.value(site);
    options.pluginDirectory = parser.value(plugins);
    options.firstSubMode = parser.value(open);
    options.durationFactor = parser.value(pace).toDouble();
    if (tourDirectory.isEmpty()) {
        options.language = parser.value(language);
        options.workDirectory = parser.value(work);
    }

    const QStringList files = parser.positionalArguments();
    for (const QString &file : files)
        options.files.append(QDir::current().absoluteFilePath(file));

    Core::LogRelay::install();
    Program program(options);
    if (!program.start()) {
        qCritical().noquote() << program.error();
        // Nobody would close it in a tour.
        if (tourDirectory.isEmpty())
            HX::Widgets::FramelessMessageBox::warning(nullptr, QStringLiteral("Tarvo"), program.error());
        return 1;
    }
    return tourDirectory.isEmpty() ? QApplication::exec()
                                   : Tour(program.session(), Core::MainWindow::instance(), tourDirectory).run();
}
