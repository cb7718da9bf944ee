// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/icore.h>

#include <core/hostsettings.h>
#include <simulation/operation.h>

#include <QMetaEnum>

namespace Core {

ICore *ICore::instance()
{
    static ICore core;
    return &core;
}

QString ICore::overrideLanguage()
{
    return hostSettings().language;
}

QString ICore::trPath()
{
    return hostSettings().trPath;
}

QString ICore::deviceConfigFilePath()
{
    return hostSettings().deviceConfigFilePath;
}

QString ICore::ExtractJsonPath()
{
    return hostSettings().extractJsonPath;
}

void ICore::setOperatorType(OperatorDeviceType type, const QString &text)
{
    const QString typeName = QString::fromLatin1(QMetaEnum::fromType<OperatorDeviceType>().valueToKey(type));
    Simulation::beginOperation(Simulation::Operations::setOperatorType,
                               {{QStringLiteral("type"), typeName}, {QStringLiteral("text"), text}});
    emit instance()->operatorTypeChanged(type, text);
}

} // namespace Core
