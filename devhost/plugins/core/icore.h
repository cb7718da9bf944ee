// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/core_global.h>

#include <QObject>
#include <QString>

namespace Core {

/// Stands for the host's core: language, paths and the operation that is running on a device.
class HOST_CORE_EXPORT ICore : public QObject
{
    Q_OBJECT

public:
    enum OperatorDeviceType { OperatorLoad = 0, OperatorBackup = 1, OperatorNone = 2 };
    Q_ENUM(OperatorDeviceType)

    static ICore *instance();

    /// The language of the user interface, for example "en" or "zh_CN".
    static QString overrideLanguage();
    /// The directory of the translation files, without a trailing separator.
    static QString trPath();
    /// The directory below which each device has its configuration directory, named after its IP
    /// address; without a trailing separator. Any thread.
    static QString deviceConfigFilePath();
    /// The directory into which packages are extracted; without a trailing separator. Any thread.
    static QString ExtractJsonPath();
    /// Announces the running device operation; a text that is not empty is shown as its progress. Any thread.
    static void setOperatorType(OperatorDeviceType type, const QString &text);

signals:
    /// Emitted from the thread that called setOperatorType.
    void operatorTypeChanged(Core::ICore::OperatorDeviceType type, const QString &text);
    /// The texts of all plugins are in the new language; mode managers refresh theirs.
    void languageChanged(const QString &language);

private:
    ICore() = default;
};

} // namespace Core
