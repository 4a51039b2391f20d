// After a fork the child uses the library, whatever the other threads of its parent were doing.

#include "qv/GlobalLock.h"
#include "qv/sync/LockObject.h"
#include "tests/lifecycle/UseLibrary.h"

#include <atomic>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// The sanitizers' allocators do not survive a fork beside a thread that allocates: the child waits
// for a lock of theirs for ever. There the other thread only takes locks.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool MAY_ALLOCATE = false;
#else
constexpr bool MAY_ALLOCATE = true;
#endif

int main() {
    std::atomic<bool> ended{false};
    std::thread busy([&] {
        while (!ended) {
            g_pGlobalLock->wait();
            g_pGlobalLock->signal();
            if (MAY_ALLOCATE) {
                useLibrary("busy");
            }
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
