// A role for tests/tools/masked-console.sh, which types at its console.

#include "qv/Exceptions.h"
#include "qv/io/MaskedConsoleInputStream.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"

#include <thread>
#include <windows.h>

namespace {

void awaitRaw(bool raw) {
    for (DWORD mode = 0;;) {
        GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode);
        if (((mode & (ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT | ENABLE_PROCESSED_INPUT)) == 0) ==
            raw) {
            return;
        }
        Sleep(1);
    }
}

std::string readMasked() {
    qv::io::MaskedConsoleInputStream in;
    signed char bytes[100];
    try {
        const std::int32_t count = in.read(bytes, sizeof bytes);
        return std::to_string(count) + ":" +
               std::string(reinterpret_cast<const char*>(bytes),
                           static_cast<std::size_t>(count > 0 ? count - 1 : 0));
    } catch (const qv::UserAbortException&) {
        return "aborted";
    }
}

/// Tells two lines, each read by one call, and when the console is ready for each.
const support::ChildRole reader("masked-console-reader", [](const std::vector<std::string>&) {
    for (int line = 0; line < 2; ++line) {
        std::thread watcher([] {
            awaitRaw(true);
            support::tell("raw");
        });
        const std::string answer = readMasked();
        watcher.join();
        awaitRaw(false);
        support::tell(answer);
    }
    return 0;
});

} // namespace
