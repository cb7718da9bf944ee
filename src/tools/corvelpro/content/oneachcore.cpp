// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "oneachcore.h"

#include <QThread>

#include <atomic>
#include <future>
#include <vector>

namespace Corvelpro {

void onEachCore(int count, const std::function<void(int number)> &work, const std::function<void()> &passing)
{
    std::atomic<int> next{0};
    const auto workOn = [&](bool isThisThread) {
        for (int number = next++; number < count; number = next++) {
            work(number);
            if (isThisThread && passing)
                passing();
        }
    };
    std::vector<std::future<void>> others;
    for (int thread = 1; thread < QThread::idealThreadCount() && thread < count; ++thread)
        others.push_back(std::async(workOn, false));
    workOn(true);
    for (std::future<void> &other : others)
        other.get();
    if (passing)
        passing();
}

} // namespace Corvelpro
