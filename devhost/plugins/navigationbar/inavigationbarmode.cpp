// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <navigationbar/inavigationbarmode.h>

namespace NavigationBar {

INavigationBarMode::INavigationBarMode(QObject *parent)
    : Core::IMode(parent)
{}

INavigationBarMode::~INavigationBarMode() = default;

} // namespace NavigationBar
