// What becomes of the answers of the system and of the platform layer that no file gives on demand,
// in a program that consists of the library's objects and stands between them and both.

#include "qv/Exceptions.h"
#include "qv/Results.h"
#include "qv/io/FileInputStream.h"
#include "qv/io/FileOutputStream.h"
#include "qvcore/Encoding.h"
#include "qvcore/File.h"
#include "tests/lifecycle/Check.h"
#include "tests/support/TestFolder.h"

#include <cerrno>
#include <dlfcn.h>
#include <fcntl.h>
#include <optional>
#include <sys/resource.h>

using namespace qv;
using qv::io::FileInputStream;
using qv::io::FileOutputStream;

namespace {

int closes = 0;         ///< so far
int closesThatFail = 0; ///< of those to come
int closeError = 0;     ///< their error
std::optional<std::int32_t> readResult;
std::optional<std::int32_t> sizeResult;
std::optional<std::int32_t> flushResult;
std::optional<std::int32_t> nameLength; ///< of a name turned into narrow text

/// What this program stands in for.
template <class Function>
Function* standsInFor(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" int close(int descriptor) {
    static const auto systemClose = standsInFor<int(int)>("close");
    const int result = systemClose(descriptor);
    ++closes;
    if (closesThatFail == 0) {
        return result;
    }
    --closesThatFail;
    errno = closeError; // the descriptor is free all the same, as on the system
    return -1;
}

std::int32_t QVFileRead(std::uint64_t handle, void* buffer, std::uint32_t length,
                        std::uint32_t* count) noexcept {
    static const auto read = standsInFor<decltype(QVFileRead)>("QVFileRead");
    return readResult ? *readResult : read(handle, buffer, length, count);
}

std::int32_t QVFileGetSize(std::uint64_t handle, std::int64_t* size) noexcept {
    static const auto getSize = standsInFor<decltype(QVFileGetSize)>("QVFileGetSize");
    return sizeResult ? *sizeResult : getSize(handle, size);
}

std::int32_t QVFileFlush(std::uint64_t handle) noexcept {
    static const auto flush = standsInFor<decltype(QVFileFlush)>("QVFileFlush");
    return flushResult ? *flushResult : flush(handle);
}

std::int32_t QVUnicodeToAnsi(char* destination, const char16_t* source,
                             std::int32_t size) noexcept {
    static const auto narrow = standsInFor<decltype(QVUnicodeToAnsi)>("QVUnicodeToAnsi");
    return nameLength ? *nameLength : narrow(destination, source, size);
}

namespace {

const support::TestFolder folder;

String path() { return String(folder.file(u"file").c_str()); }

std::uint64_t opened() {
    std::uint64_t handle = QV_FILE_NONE;
    CHECK(QVFileOpen(path().getData(), QV_FILE_WRITE | QV_FILE_CREATE, 0700, &handle) == QV_S_OK);
    return handle;
}

bool isOpen(std::uint64_t handle) { return fcntl(static_cast<int>(handle), F_GETFD) != -1; }

void failCloses(int count, int error) {
    closesThatFail = count;
    closeError = error;
}

/// The result of the ResultException that `work` throws.
template <class Work>
std::int32_t thrownResult(Work work) {
    try {
        work();
    } catch (const ResultException& exception) {
        return exception.getResult();
    }
    return QV_S_OK;
}

void aCloseThatFailsLeavesTheHandle() {
    const std::uint64_t handle = opened();
    failCloses(1, ENOSPC);
    CHECK(QVFileClose(handle) == QV_E_DISKFULL);
    CHECK(isOpen(handle));
    CHECK(QVFileWrite(handle, "x", 1) == QV_S_OK);
    CHECK(QVFileClose(handle) == QV_S_OK);
    CHECK(!isOpen(handle));
}

void aCloseThatIsInterruptedHasClosed() {
    const std::uint64_t handle = opened();
    failCloses(2, EINTR);
    CHECK(QVFileClose(handle) == QV_S_OK);
    CHECK(!isOpen(handle));
    CHECK(closesThatFail == 0);
}

/// A failure would tell of a handle that is still the caller's.
void aFailureThatComesTooLateIsNone() {
    const std::uint64_t handle = opened();
    rlimit limit = {};
    CHECK(getrlimit(RLIMIT_NOFILE, &limit) == 0);
    const rlimit none = {0, limit.rlim_max};
    CHECK(setrlimit(RLIMIT_NOFILE, &none) == 0);
    failCloses(1, EIO);
    CHECK(QVFileClose(handle) == QV_S_OK);
    CHECK(!isOpen(handle));
    CHECK(closesThatFail == 0);
    CHECK(setrlimit(RLIMIT_NOFILE, &limit) == 0);
}

void aWriterThatCannotBeClosedKeepsItsHandle() {
    FileOutputStream out(path(), false);
    const std::uint64_t handle = out.getHandle();
    failCloses(1, EDQUOT);
    out.close();
    CHECK(out.is_open() == 1);
    CHECK(out.getHandle() == handle);
    CHECK(isOpen(handle));
    out.write("more", 4);
    out.close();
    CHECK(out.is_open() == 0);
    CHECK(!isOpen(handle));
}

void aReaderThatCannotBeClosedKeepsItsHandle() {
    FileInputStream in(path());
    const std::uint64_t handle = in.getHandle();
    failCloses(1, ENOSPC);
    CHECK(thrownResult([&] { in.close(); }) == QV_E_DISKFULL);
    CHECK(in.getHandle() == handle);
    CHECK(isOpen(handle));
    in.close();
    CHECK(in.getHandle() == QV_FILE_NONE);
    CHECK(!isOpen(handle));
}

/// A thread may have been given its number meanwhile.
void aHandleThatIsNoneIsNotClosed() {
    const std::uint64_t handle = opened();
    CHECK(QVFileClose(handle) == QV_S_OK);
    closes = 0;
    CHECK(QVFileClose(handle) == QV_E_INVALIDHANDLE);
    CHECK(closes == 0);
}

void anAbandonedHandleIsGoneWhateverIsLost() {
    const std::uint64_t handle = opened();
    failCloses(1, EIO);
    QVFileAbandon(handle);
    CHECK(!isOpen(handle));
    CHECK(closesThatFail == 0);
    QVFileAbandon(QV_FILE_NONE);
}

/// The handle of a stream that is dropped while `failing` closes fail.
template <class Stream, class... Arguments>
std::uint64_t dropped(int failing, Arguments... arguments) {
    Stream stream(path(), arguments...);
    const std::uint64_t handle = stream.getHandle();
    CHECK(isOpen(handle));
    failCloses(failing, EIO);
    return handle;
}

void aDroppedStreamLeavesNoHandleBehind() {
    constexpr int all = 1000;
    for (const int failing : {0, 1, all}) {
        const std::uint64_t written = dropped<FileOutputStream>(failing, false);
        failCloses(0, 0);
        CHECK(!isOpen(written));
        const std::uint64_t read = dropped<FileInputStream>(failing);
        failCloses(0, 0);
        CHECK(!isOpen(read));
    }
}

void aDroppedStreamLeavesWhatItDoesNotOwn() {
    const std::uint64_t handle = opened();
    { FileOutputStream out(handle, false); }
    { FileInputStream in(handle, false); }
    CHECK(isOpen(handle));
    CHECK(QVFileClose(handle) == QV_S_OK);
    closes = 0;
    { FileOutputStream out(handle, true); } // nor the number of what somebody else has closed
    { FileInputStream in(handle, true); }
    CHECK(closes == 0);
}

void theEndMayAlsoComeAsAResult() {
    FileInputStream in(path());
    readResult = QV_E_ENDOFFILE;
    CHECK(in.read() == -1);
    readResult = QV_E_FAIL;
    CHECK(thrownResult([&] { in.read(); }) == QV_E_FAIL);
    readResult.reset();
}

void aFileWithoutASizeIsClosedBeforeThatIsThrown() {
    FileOutputStream out(path(), FileOutputStream::KEEPCLOSED);
    sizeResult = QV_E_FAIL;
    CHECK(thrownResult([&] { static_cast<void>(out.getSize()); }) == QV_E_FAIL);
    CHECK(out.is_open() == 0);
    sizeResult.reset();
    CHECK(out.getSize() >= 0);
}

void aFileThatCannotBeFlushedIsClosedBeforeThatIsThrown() {
    FileOutputStream out(path(), FileOutputStream::KEEPCLOSED);
    flushResult = QV_E_DISKFULL;
    out.open();
    CHECK(thrownResult([&] { out.flush(); }) == QV_E_DISKFULL);
    CHECK(out.is_open() == 0);
    CHECK(thrownResult([&] { out.write("x", 1); }) == QV_E_DISKFULL);
    CHECK(out.is_open() == 0);
    flushResult.reset();
}

void aLockNeedsANameThatCanBeTold() {
    for (const std::int32_t each : {0, -1}) {
        nameLength = each;
        for (const unsigned int mode : {FileOutputStream::APPEND, FileOutputStream::LOCK}) {
            CHECK(thrownResult([=] { FileOutputStream out(path(), mode); }) < 0);
        }
        FileOutputStream out(path(), FileOutputStream::KEEPCLOSED); // has no lock
    }
    nameLength.reset();
}

} // namespace

int main() {
    aCloseThatFailsLeavesTheHandle();
    aCloseThatIsInterruptedHasClosed();
    aFailureThatComesTooLateIsNone();
    aWriterThatCannotBeClosedKeepsItsHandle();
    aReaderThatCannotBeClosedKeepsItsHandle();
    aHandleThatIsNoneIsNotClosed();
    anAbandonedHandleIsGoneWhateverIsLost();
    aDroppedStreamLeavesNoHandleBehind();
    aDroppedStreamLeavesWhatItDoesNotOwn();
    theEndMayAlsoComeAsAResult();
    aFileWithoutASizeIsClosedBeforeThatIsThrown();
    aFileThatCannotBeFlushedIsClosedBeforeThatIsThrown();
    aLockNeedsANameThatCanBeTold();
    std::puts("passed");
    return 0;
}
