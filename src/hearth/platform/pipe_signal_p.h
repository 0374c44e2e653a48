// Keeps writing to a connection that the other side closed from ending the program.
// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>

namespace ht::detail {

/// While it lives, SIGPIPE of this thread is held back; one that came is forgotten at the end. The handlers
/// of the program stay as they are. One inside of another does nothing.
class PipeSignalBlock {
public:
    PipeSignalBlock() noexcept;
    PipeSignalBlock(const PipeSignalBlock&) = delete;
    PipeSignalBlock& operator=(const PipeSignalBlock&) = delete;
    ~PipeSignalBlock();

private:
    sigset_t FOld;
    bool FIsInner;
    bool FWasPending = false;
};

}
