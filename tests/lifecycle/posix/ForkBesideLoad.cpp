// One thread loads and unloads the library while another forks: neither waits for the other for
// ever.

#include "tests/lifecycle/Check.h"
#include "tests/support/SharedModule.h"

#include <atomic>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

int main(int, char** argv) {
    alarm(60); // a process that hangs is ended, and fails
    std::atomic<bool> hasLoaded{false};
    std::atomic<bool> ended{false};
    std::thread loader([&] {
        while (!ended) {
            const support::SharedModule library(argv[1]);
            CHECK(library.isOpen());
            hasLoaded = true;
        }
    });
    while (!hasLoaded) {
        std::this_thread::yield();
    }
    for (int i = 0; i < 1000; ++i) {
        const pid_t child = fork();
        CHECK(child >= 0);
        if (child == 0) {
            _exit(0);
        }
        int status = 1;
        CHECK(waitpid(child, &status, 0) == child);
        CHECK(status == 0);
    }
    ended = true;
    loader.join();
    std::puts("passed");
    return 0;
}
