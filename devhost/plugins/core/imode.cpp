// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/imode.h>

namespace Core {

IMode::IMode(QObject *parent)
    : QObject(parent)
{}

IMode::~IMode() = default;

bool IMode::hasNavigationBar() const
{
    return true;
}

bool IMode::hasDeviceToolBar() const
{
    return true;
}

bool IMode::isVisible() const
{
    return m_visible;
}

void IMode::updateInputVideo() {}

} // namespace Core
