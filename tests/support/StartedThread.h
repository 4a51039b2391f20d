#pragma once

#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace support {

/// A thread that is expected to block in `work`. It has started when this returns, and has had time
/// to come out again if nothing holds it.
template <class Work>
std::thread startedThread(Work work) {
    const auto started = std::make_shared<std::promise<void>>();
    std::thread thread([started, work = std::move(work)] {
        started->set_value();
        work();
    });
    started->get_future().wait();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return thread;
}

} // namespace support
