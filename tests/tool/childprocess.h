// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <cstdio>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace ToolTesting {

/// Runs `work` in a copy of this process, which may be killed. Returns its result, or minus the signal that ended it.
inline int inChild(const std::function<int()> &work)
{
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0)
        _exit(work());
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child)
        return -1000;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace ToolTesting
