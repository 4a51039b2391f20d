// A string made before the library's static constructors have run: the empty text that all empty
// strings share is not there yet. In a program that consists of the library's objects, which alone
// can be so early.

#include "qv/String.h"
#include "tests/lifecycle/Check.h"

#include <cstdio>

namespace {

/// Uses a string while it is made and while it ends.
class EarlyUser {
public:
    EarlyUser() {
        CHECK(empty_.isEmpty());
        CHECK(empty_.getData()[0] == 0);
        changed_.append(u"early");
        CHECK(changed_ == u"early");
    }
    ~EarlyUser() {
        CHECK(empty_.isEmpty());
        CHECK(changed_ == u"early");
    }

    const qv::String& empty() const { return empty_; }

private:
    qv::String empty_;
    qv::String changed_;
};

[[gnu::init_priority(101)]] const EarlyUser user;

} // namespace

int main() {
    const qv::String empty;
    CHECK(empty.getData() == qv::String().getData());
    CHECK(empty == user.empty());
    CHECK(user.empty().getReadLock() != nullptr);
    user.empty().releaseReadLock();
    qv::String changed(user.empty());
    changed.append(u"later");
    CHECK(changed == u"later");
    CHECK(user.empty().isEmpty());
    std::puts("passed");
    return 0;
}
