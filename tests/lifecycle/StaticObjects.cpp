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
thread_local const User ofThread("thread");

// Made before main by a function that may be called any time.
const qv::String& lateText() {
    static const qv::String text(u"made on first use");
    return text;
}

} // namespace

int main() {
    CHECK(lateText().getLength() == 17);
    std::thread([] { CHECK(&ofThread != nullptr); }).join();
    CHECK(&ofThread != nullptr);
    useLibrary("main");
    std::puts("passed");
    return 0;
}
