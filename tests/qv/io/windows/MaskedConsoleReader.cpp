// Roles for tests/tools/masked-console.sh, which types at their console.

#include "qv/Exceptions.h"
#include "qv/String.h"
#include "qv/io/MaskedConsoleInputStream.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"

#include <cstdlib>
#include <process.h>
#include <thread>
#include <windows.h>

namespace {

bool isRaw() {
    DWORD mode = 0;
    GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode);
    return (mode & (ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT | ENABLE_PROCESSED_INPUT)) == 0;
}

void awaitRaw(bool raw) {
    while (isRaw() != raw) {
        Sleep(1);
    }
}

/// A masked line of the default encoding, without its end, with its count in front.
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

/// A masked line, read while the console is told to be ready for it.
std::string readWatched() {
    std::thread watcher([] {
        awaitRaw(true);
        support::tell("raw");
    });
    const std::string answer = readMasked();
    watcher.join();
    awaitRaw(false);
    return answer;
}

/// Text of the default encoding, with each byte outside of ASCII in hexadecimal.
std::string printable(const std::string& text) {
    constexpr const char* digits = "0123456789ABCDEF";
    std::string shown;
    for (const char each : text) {
        const auto byte = static_cast<unsigned char>(each);
        shown +=
            byte < 0x80 ? std::string{each} : std::string{digits[byte >> 4], digits[byte & 15]};
    }
    return shown;
}

/// Tells four lines, each read by one call, and when the console is ready for each. In front of
/// the first it tells the bytes that the default encoding has for the characters of the second.
const support::ChildRole reader("masked-console-reader", [](const std::vector<std::string>&) {
    support::tell(printable(qv::String(u"\u00E9a\u20AC").getBytes()));
    for (int line = 0; line < 4; ++line) {
        support::tell(printable(readWatched()));
    }
    return 0;
});

/// Tells two lines, each read by a thread of its own, and how they have left the console.
const support::ChildRole pair("masked-console-pair", [](const std::vector<std::string>&) {
    std::string lines[2];
    std::thread first([&] { lines[0] = readMasked(); });
    awaitRaw(true);
    std::thread second([&] { lines[1] = readMasked(); });
    Sleep(50); // the second thread comes to a console that is raw already
    support::tell("raw");
    first.join();
    second.join();
    support::tell(lines[0] + ":" + lines[1] + (isRaw() ? ":raw" : ":restored"));
    return 0;
});

/// Ends the process while another thread waits for a key.
const support::ChildRole leaver("masked-console-leaver", [](const std::vector<std::string>&) {
    std::thread(readMasked).detach();
    awaitRaw(true);
    std::exit(7);
    return 0;
});

/// Tells how a process that was ended so has left the console that it shared.
const support::ChildRole heir("masked-console-heir", [](const std::vector<std::string>&) {
    const std::intptr_t code = _spawnl(_P_WAIT, support::programPath().c_str(), "leaver", "--child",
                                       "masked-console-leaver", nullptr);
    support::tell(std::to_string(code) + (isRaw() ? ":raw" : ":restored"));
    return 0;
});

} // namespace
