// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <functional>

namespace Corvelpro {

/// Calls `work` for each number from 0 to `count` - 1, on this thread and one for each other core, in any order.
/// Returns when all is done. `passing`, if given, is called on this thread after each number that it has worked on, and
/// at the end.
void onEachCore(int count, const std::function<void(int number)> &work, const std::function<void()> &passing = nullptr);

} // namespace Corvelpro
