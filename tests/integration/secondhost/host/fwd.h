// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

namespace Acme {
struct Unit;
struct Still;
} // namespace Acme

namespace Model {
using Device = Acme::Unit;
using Materail = Acme::Still;
} // namespace Model
