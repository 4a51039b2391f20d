#include "qvcore/File.h"

#include "qvcore/common/FileAccess.h"
#include "qvcore/common/Guarded.h"
#include "qvcore/common/NativeError.h"
#include "qvcore/posix/Descriptor.h"
#include "qvcore/posix/PipeSignal.h"
#include "qvcore/posix/SystemPath.h"

#include <cstdio>
#include <fcntl.h>
#include <limits>
#include <optional>
#include <stdio_ext.h>
#include <sys/stat.h>

namespace qv::core {

namespace {

struct OpenFlag {
    std::uint32_t access;
    int flag;
};

constexpr OpenFlag openFlags[] = {
    {QV_FILE_CREATE, O_CREAT},
    {QV_FILE_TRUNCATE, O_TRUNC},
};

int toOpenFlags(std::uint32_t access) noexcept {
    const bool reads = (access & QV_FILE_READ) != 0;
    const bool writes = (access & QV_FILE_WRITE) != 0;
    int flags = O_CLOEXEC | O_NOCTTY | (reads && writes ? O_RDWR : writes ? O_WRONLY : O_RDONLY);
    for (const OpenFlag& each : openFlags) {
        if ((access & each.access) != 0) {
            flags |= each.flag;
        }
    }
    return flags;
}

bool isDirectory(int descriptor) noexcept {
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

bool isDiskFile(int descriptor) noexcept {
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISBLK(status.st_mode));
}

/// The pipe signal is raised by these alone.
bool isPipeOrSocket(int descriptor) noexcept {
    struct stat status = {};
    return fstat(descriptor, &status) == 0 &&
           (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

/// Keeps other threads from a runtime stream while it lives.
class StreamLock {
public:
    explicit StreamLock(std::FILE* file) noexcept : file_(file) { flockfile(file); }
    ~StreamLock() { funlockfile(file_); }
    StreamLock(const StreamLock&) = delete;
    StreamLock& operator=(const StreamLock&) = delete;

private:
    std::FILE* file_;
};

/// Whether a byte more may make a runtime stream bring its buffer out. Where one that is also read
/// has the end of its buffer, nobody tells.
bool mayBringOut(std::FILE* file, std::uint8_t byte) noexcept {
    return __freadable(file) != 0 || __fpending(file) + 1 >= __fbufsize(file) ||
           (byte == '\n' && __flbf(file) != 0);
}

/// Runs a call of the runtime library that may write to what is behind its stream.
template <class Call>
std::int32_t broughtOut(std::FILE* file, Call call) noexcept {
    std::optional<PipeSignalBlock> block;
    if (isPipeOrSocket(fileno(file))) {
        block.emplace();
    }
    return call() == EOF ? lastNativeResult() : QV_S_OK;
}

std::int32_t openFile(const std::string& path, std::uint32_t access, std::uint32_t permissions,
                      std::uint64_t* handle) noexcept {
    Descriptor file(
        restarted([&] { return open(path.c_str(), toOpenFlags(access), permissions); }));
    if (!file.isOpen()) {
        return lastNativeResult();
    }
    if (isDirectory(file.get())) {
        return QV_E_ACCESSDENIED;
    }
    if ((access & QV_FILE_ATEND) != 0 && lseek(file.get(), 0, SEEK_END) == -1 && errno != ESPIPE) {
        return lastNativeResult();
    }
    *handle = static_cast<std::uint64_t>(file.release());
    return QV_S_OK;
}

/// The descriptor behind a handle; a handle that can be none gives one that no file has.
int toDescriptor(std::uint64_t handle) noexcept {
    constexpr std::uint64_t most = std::numeric_limits<int>::max();
    return handle <= most ? static_cast<int>(handle) : Descriptor::none;
}

std::int32_t writeAll(int descriptor, const char* bytes, std::size_t length) noexcept {
    do {
        const ssize_t count =
            transfer(descriptor, POLLOUT, [=] { return write(descriptor, bytes, length); });
        if (count == -1) {
            return lastNativeResult();
        }
        bytes += count;
        length -= static_cast<std::size_t>(count);
    } while (length != 0);
    return QV_S_OK;
}

/// What fdatasync says about a descriptor that has nothing to sync.
bool hasNoDisk(int error) noexcept { return error == EINVAL || error == ENOTSUP || error == EROFS; }

} // namespace

} // namespace qv::core

using namespace qv;
using namespace qv::core;

std::int32_t QVFileOpen(const char16_t* path, std::uint32_t access, std::uint32_t permissions,
                        std::uint64_t* handle) noexcept {
    if (handle == nullptr) {
        return QV_E_POINTER;
    }
    if (path == nullptr || !isValidFileAccess(access)) {
        return QV_E_INVALIDARG;
    }
    return guarded([=] {
        std::string systemPath;
        const std::int32_t result = toSystemPath(path, systemPath);
        return result < 0 ? result : openFile(systemPath, access, permissions, handle);
    });
}

std::int32_t QVFileClose(std::uint64_t handle) noexcept {
    // A close frees its descriptor also where it reports what could not be written: a duplicate's
    // says the same, and leaves the caller of a failed close a handle that is still his.
    const int descriptor = toDescriptor(handle);
    const int duplicate = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (duplicate == Descriptor::none && errno == EBADF) {
        return lastNativeResult(); // another thread may be given the number by now
    }
    if (duplicate != Descriptor::none && close(duplicate) == -1 && errno != EINTR) {
        return lastNativeResult();
    }
    return close(descriptor) == -1 && errno == EBADF ? lastNativeResult() : QV_S_OK;
}

void QVFileAbandon(std::uint64_t handle) noexcept { close(toDescriptor(handle)); }

std::int32_t QVFileGetSize(std::uint64_t handle, std::int64_t* size) noexcept {
    if (size == nullptr) {
        return QV_E_POINTER;
    }
    struct stat status = {};
    if (fstat(toDescriptor(handle), &status) == -1) {
        return lastNativeResult();
    }
    *size = status.st_size;
    return QV_S_OK;
}

std::int32_t QVFileSeek64(std::uint64_t handle, std::int64_t offset, std::int32_t origin,
                          std::int64_t* position) noexcept {
    constexpr int origins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (position == nullptr) {
        return QV_E_POINTER;
    }
    if (origin < 0 || origin > 2) {
        return QV_E_INVALIDARG;
    }
    const off_t found = lseek(toDescriptor(handle), offset, origins[origin]);
    if (found == -1) {
        return lastNativeResult();
    }
    *position = found;
    return QV_S_OK;
}

std::int32_t QVFileRead(std::uint64_t handle, void* buffer, std::uint32_t length,
                        std::uint32_t* count) noexcept {
    if (count == nullptr || (buffer == nullptr && length != 0)) {
        return QV_E_POINTER;
    }
    const int descriptor = toDescriptor(handle);
    const ssize_t taken =
        transfer(descriptor, POLLIN, [=] { return read(descriptor, buffer, length); });
    if (taken == -1) {
        return lastNativeResult();
    }
    *count = static_cast<std::uint32_t>(taken);
    return QV_S_OK;
}

std::int32_t QVFileWrite(std::uint64_t handle, const void* bytes, std::uint32_t length) noexcept {
    if (bytes == nullptr && length != 0) {
        return QV_E_POINTER;
    }
    const int descriptor = toDescriptor(handle);
    std::optional<PipeSignalBlock> block;
    if (isPipeOrSocket(descriptor)) {
        block.emplace();
    }
    return writeAll(descriptor, static_cast<const char*>(bytes), length);
}

std::int32_t QVFileFlush(std::uint64_t handle) noexcept {
    const int descriptor = toDescriptor(handle);
    if (restarted([=] { return fdatasync(descriptor); }) == -1 && !hasNoDisk(errno)) {
        return lastNativeResult();
    }
    return QV_S_OK;
}

std::uint64_t QVFileGetStandard(std::int32_t which) noexcept {
    constexpr int descriptors[] = {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
    if (which < 0 || which > 2 || fcntl(descriptors[which], F_GETFD) == -1) {
        return QV_FILE_NONE;
    }
    return static_cast<std::uint64_t>(descriptors[which]);
}

std::int64_t QVStreamTell64(void* stream) noexcept {
    auto* const file = static_cast<std::FILE*>(stream);
    return file != nullptr && isDiskFile(fileno(file)) ? ftello(file) : -1;
}

std::int32_t QVStreamSeek64(void* stream, std::int64_t offset, std::int32_t origin) noexcept {
    constexpr int origins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (stream == nullptr) {
        return QV_E_INVALIDHANDLE;
    }
    if (origin < 0 || origin > 2) {
        return QV_E_INVALIDARG;
    }
    if (fseeko(static_cast<std::FILE*>(stream), offset, origins[origin]) != 0) {
        return lastNativeResult();
    }
    return QV_S_OK;
}

std::int32_t QVStreamPut(void* stream, std::uint8_t byte) noexcept {
    auto* const file = static_cast<std::FILE*>(stream);
    if (file == nullptr) {
        return QV_E_INVALIDHANDLE;
    }
    const StreamLock lock(file);
    const auto put = [=] { return putc_unlocked(byte, file); };
    if (mayBringOut(file, byte)) {
        return broughtOut(file, put);
    }
    return put() == EOF ? lastNativeResult() : QV_S_OK;
}

std::int32_t QVStreamFlush(void* stream) noexcept {
    auto* const file = static_cast<std::FILE*>(stream);
    return file == nullptr ? QV_E_INVALIDHANDLE
                           : broughtOut(file, [=] { return std::fflush(file); });
}

std::int32_t QVStreamClose(void* stream) noexcept {
    auto* const file = static_cast<std::FILE*>(stream);
    return file == nullptr ? QV_E_INVALIDHANDLE
                           : broughtOut(file, [=] { return std::fclose(file); });
}

std::int32_t QVStreamWriteDirect(void* stream, const void* bytes, std::uint32_t length) noexcept {
    if (stream == nullptr) {
        return QV_E_INVALIDHANDLE;
    }
    const int descriptor = fileno(static_cast<std::FILE*>(stream));
    if (descriptor == -1) {
        return lastNativeResult();
    }
    return QVFileWrite(static_cast<std::uint64_t>(descriptor), bytes, length);
}
