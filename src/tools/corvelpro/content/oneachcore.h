// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <functional>

namespace Corvelpro {

/// Calls `work` for each number from 0 to `count` - 1, on this thread and one for each other core, in any order.
/// Returns when all is done. `passing`, if given, is called now and then, on this thread.
void onEachCore(int count, const std::function<void(int number)> &work, const std::function<void()> &passing = nullptr);

} // namespace Corvelpro
