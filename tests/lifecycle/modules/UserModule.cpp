// A module that uses the library from its own static constructors and destructors.

#include "qv/ClassManager.h"
#include "tests/lifecycle/UseLibrary.h"

#ifdef _WIN32
#    define MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#    define MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

struct User {
    User() { useLibrary("module-start"); }
    ~User() { useLibrary("module-end"); }
};

const User user;

} // namespace

MODULE_EXPORT void useFromModule() { useLibrary("module"); }

/// What the library says of itself: 0 if it works, 1 if it is down and says so, 2 for anything
/// else.
MODULE_EXPORT int probeLibrary() {
    const qv::String text(u"strings always work");
    if (!(text.substring(0, 7) == u"strings")) {
        return 2;
    }
    try {
        return qv::Class::forName(u"CQVString") != nullptr ? 0 : 2;
    } catch (const qv::IllegalStateException&) {
        return 1;
    }
}
