// Holding back SIGPIPE in one thread.
// SPDX-License-Identifier: MIT
#include <hearth/platform/pipe_signal_p.h>

#include <ctime>

namespace ht::detail {

namespace {

sigset_t PipeSignal() noexcept
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    return set;
}

/// True while this thread has a block.
thread_local bool isBlocked = false;

bool IsPending() noexcept
{
    sigset_t pending;
    return sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
}

}

PipeSignalBlock::PipeSignalBlock() noexcept
    : FIsInner(isBlocked)
{
    if (FIsInner)
        return;
    isBlocked = true;
    FWasPending = IsPending();
    const sigset_t pipe = PipeSignal();
    pthread_sigmask(SIG_BLOCK, &pipe, &FOld);
}

PipeSignalBlock::~PipeSignalBlock()
{
    if (FIsInner)
        return;
    isBlocked = false;
    const timespec now{};
    const sigset_t pipe = PipeSignal();
    if (!FWasPending && IsPending())
        sigtimedwait(&pipe, nullptr, &now);
    pthread_sigmask(SIG_SETMASK, &FOld, nullptr);
}

}
