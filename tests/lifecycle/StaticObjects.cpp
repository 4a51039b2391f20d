// The library is up before the first static constructor of a program, and stays until behind its
// last static destructor; thread-local objects may use it when their thread ends.

#include "tests/lifecycle/UseLibrary.h"

#include <thread>

namespace {

class User {
public:
    explicit User(const char* who) : who_(who) { useLibrary(who_); }
    ~User() { useLibrary(who_); }

private:
    const char* who_;
    qv::String kept_{u"kept to the end"};
};

const User first("static-first");
const User second("static-second");

const std::thread::id mainThread = std::this_thread::get_id();

/// What a thread-local object does at its thread's end. It holds nothing: one compiler's emulation
/// of thread-local storage gives the memory back before it runs the destructor.
class ThreadUser {
public:
    void touch() {}
    ~ThreadUser() {
        CHECK(qv::String(u"strings always work").substring(0, 7) == u"strings");
        if (std::this_thread::get_id() != mainThread || libraryIsUp()) {
            useLibrary("thread");
        }
    }
};

thread_local ThreadUser ofThread;

// Made before main by a function that may be called any time.
const qv::String& lateText() {
    static const qv::String text(u"made on first use");
    return text;
}

} // namespace

int main() {
    CHECK(lateText().getLength() == 17);
    std::thread([] { ofThread.touch(); }).join();
    ofThread.touch();
    useLibrary("main");
    std::puts("passed");
    return 0;
}
