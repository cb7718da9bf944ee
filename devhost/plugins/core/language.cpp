// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/language.h>

#include <core/hostsettings.h>
#include <core/icore.h>
#include <core/icorvelplugin.h>
#include <core/imode.h>
#include <core/modemanager.h>
#include <extensionsystem/objectpool.h>

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

namespace Core {

namespace {

/// The source language, which needs no file.
const QLatin1String sourceLanguage("en");

/// Replaces the translations of `translator` by those of `fileName`.
bool replaceTexts(std::unique_ptr<QTranslator> &translator, const QString &fileName)
{
    translator.reset();
    auto texts = std::make_unique<QTranslator>();
    if (!QFile::exists(fileName) || !texts->load(fileName))
        return false;
    translator = std::move(texts);
    QCoreApplication::installTranslator(translator.get());
    return true;
}

} // namespace

QVector<Language> languages()
{
    return {{QStringLiteral("en"), QStringLiteral("English")}, {QStringLiteral("zh_CN"), QStringLiteral("简体中文")}};
}

void installHostTexts()
{
    static std::unique_ptr<QTranslator> qtTexts;
    static std::unique_ptr<QTranslator> hostTexts;
    const QString language = ICore::overrideLanguage();
    replaceTexts(
        qtTexts,
        QStringLiteral("%1/qtbase_%2.qm").arg(QLibraryInfo::location(QLibraryInfo::TranslationsPath), language));
    const QString file = QStringLiteral("%1/devhost_%2.qm").arg(ICore::trPath(), language);
    if (!replaceTexts(hostTexts, file) && language != sourceLanguage)
        qWarning() << "There are no texts of the host in" << language << "since it cannot read" << file;
}

void switchLanguage(const QString &code)
{
    HostSettings settings = hostSettings();
    if (settings.language == code)
        return;
    settings.language = code;
    applySettings(settings);

    installHostTexts();
    const auto plugins = HX::ExtensionSystem::ObjectPool::instance()->objectsOfType<ICorvelPlugin>();
    for (ICorvelPlugin *plugin : plugins) {
        if (!plugin->installTranslator(code) && code != sourceLanguage)
            qWarning() << plugin->objectName() << "has no texts in" << code;
    }
    const QVector<IMode *> modes = ModeManager::modes();
    for (IMode *mode : modes)
        mode->retranslateUi();
    emit ModeManager::instance()->modesChanged();
    emit ICore::instance()->languageChanged(code);
}

} // namespace Core
