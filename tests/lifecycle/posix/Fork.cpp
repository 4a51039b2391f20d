// After a fork the child uses the library, whatever the other threads of its parent were doing.

#include "qv/GlobalLock.h"
#include "qv/sync/LockObject.h"
#include "tests/lifecycle/UseLibrary.h"

#include <atomic>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

int main() {
    std::atomic<bool> ended{false};
    std::thread busy([&] {
        // The address sanitizer's allocator does not survive a fork beside a thread that allocates.
        const bool quiet = std::getenv("QVCL_FORK_BESIDE_A_QUIET_THREAD") != nullptr;
        while (!ended && !quiet) {
            g_pGlobalLock->wait();
            g_pGlobalLock->signal();
            useLibrary("busy");
        }
    });
    for (int i = 0; i < 30; ++i) {
        const pid_t child = fork();
        CHECK(child >= 0);
        if (child == 0) {
            alarm(20); // a child that hangs is ended, and fails
            g_pGlobalLock->wait();
            g_pGlobalLock->signal();
            useLibrary("child");
            _exit(0);
        }
        int status = 1;
        CHECK(waitpid(child, &status, 0) == child);
        CHECK(status == 0);
    }
    ended = true;
    busy.join();
    std::puts("passed");
    return 0;
}
