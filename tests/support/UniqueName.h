#pragma once

#include "qvcore/Thread.h"

#include <atomic>
#include <chrono>
#include <string>

namespace support {

/// A name that no other test and no other run uses, for what processes share.
inline std::string uniqueName() {
    static std::atomic<int> number = 0;
    const auto now = std::chrono::system_clock::now().time_since_epoch().count();
    return "qvcl-test-" + std::to_string(QVThreadGetID()) + "-" + std::to_string(now) + "-" +
           std::to_string(++number);
}

} // namespace support
