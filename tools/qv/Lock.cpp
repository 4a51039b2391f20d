// The command that takes a lock which processes share.

#include "Commands.h"
#include "Output.h"
#include "qv/ipc/SemaphoreR.h"
#include "qv/sync/ScopedLock.h"

#include <chrono>
#include <thread>

namespace tool {

void runLock(const Arguments& arguments) {
    const qv::String name = arguments.requiredText(u"name");
    const int hold = arguments.count(u"hold").value_or(0);
    qv::ipc::SemaphoreR semaphore(name.getBytes(), 1);
    const qv::sync::ScopedLock lock(semaphore);
    Output output;
    output.line(u"held");
    output.finish();
    std::this_thread::sleep_for(std::chrono::milliseconds(hold));
}

} // namespace tool
