// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Names for the product's headers, which need no definitions. Where a class has another namespace in the host, it is
// declared there, and here stands an alias.

namespace Model {
class Device;
class Materail;
} // namespace Model
