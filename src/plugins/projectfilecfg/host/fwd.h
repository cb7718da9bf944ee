// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Declarations for the product's headers, which need no definitions. If a class has another namespace in the host,
// declare it there and add an alias here.

namespace Model {
class Device;
class Materail;
} // namespace Model
