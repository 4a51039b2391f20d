#pragma once

#include <csignal>

namespace qv::core {

/// Keeps the signal of a broken pipe away while it lives: it is blocked for the calling thread, and
/// one that a write raised meanwhile is taken back. The process's own handling of it is not
/// touched.
class PipeSignalBlock {
public:
    PipeSignalBlock() noexcept;
    ~PipeSignalBlock();
    PipeSignalBlock(const PipeSignalBlock&) = delete;
    PipeSignalBlock& operator=(const PipeSignalBlock&) = delete;

private:
    sigset_t previous_;
    /// It waited to be delivered before, on behalf of somebody else.
    bool wasPending_;
};

} // namespace qv::core
