#include "qvcore/File.h"

#include "qvcore/NativeResult.h"
#include "qvcore/common/FileAccess.h"
#include "qvcore/common/Guarded.h"
#include "qvcore/common/NativeError.h"
#include "qvcore/windows/SystemPath.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <io.h>
#include <string>
#include <windows.h>

namespace qv::core {

namespace {

HANDLE toNative(std::uint64_t handle) noexcept {
    return reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(handle));
}

std::uint64_t fromNative(HANDLE handle) noexcept {
    return reinterpret_cast<std::uintptr_t>(handle);
}

/// Where a file begins to be read or written. It is emptied here: the system's own way of emptying
/// an existing file makes another of its name, and refuses that for a hidden one.
bool setStart(HANDLE file, std::uint32_t access) noexcept {
    const LARGE_INTEGER nowhere = {};
    return GetFileType(file) != FILE_TYPE_DISK ||
           (((access & QV_FILE_TRUNCATE) == 0 || SetEndOfFile(file)) &&
            ((access & QV_FILE_ATEND) == 0 || SetFilePointerEx(file, nowhere, nullptr, FILE_END)));
}

std::int32_t openFile(const std::wstring& path, std::uint32_t access,
                      std::uint64_t* handle) noexcept {
    constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const DWORD disposition = (access & QV_FILE_CREATE) != 0 ? OPEN_ALWAYS : OPEN_EXISTING;
    const HANDLE file = CreateFileW(path.c_str(), access & (QV_FILE_READ | QV_FILE_WRITE), shareAll,
                                    nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return lastNativeResult();
    }
    if (!setStart(file, access)) {
        const std::int32_t result = lastNativeResult();
        CloseHandle(file);
        return result;
    }
    *handle = fromNative(file);
    return QV_S_OK;
}

/// Reads once. @return the error, which a message longer than the buffer that it has filled is not.
DWORD readOnce(HANDLE file, void* buffer, DWORD length, DWORD& taken) noexcept {
    taken = 0;
    const DWORD error = ReadFile(file, buffer, length, &taken, nullptr) ? NO_ERROR : GetLastError();
    return error == ERROR_MORE_DATA ? NO_ERROR : error;
}

/// What a read says at the end of a file, of a pipe, and of an empty pipe that does not block.
bool isEnd(DWORD error) noexcept {
    return error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF || error == ERROR_NO_DATA;
}

bool isPipe(HANDLE file) noexcept { return GetFileType(file) == FILE_TYPE_PIPE; }

/// A write of nothing arrives in a pipe as a message of no bytes, which is not the end while there
/// is a writer.
bool hasWriter(HANDLE file) noexcept {
    return isPipe(file) && PeekNamedPipe(file, nullptr, 0, nullptr, nullptr, nullptr);
}

/// A place in front of the start has an error of its own here and none elsewhere.
std::int32_t seekResult(DWORD error) noexcept {
    return error == ERROR_NEGATIVE_SEEK ? QV_E_INVALIDARG : QVResultFromNative(error);
}

/// The library itself takes a pipe for a file that is always at its start.
bool isDiskFile(std::FILE* stream) noexcept {
    const auto file = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    return GetFileType(file) == FILE_TYPE_DISK;
}

/// In front of a call of the runtime library, which does not set both of its numbers each time.
void clearStreamError() noexcept {
    errno = 0;
    _doserrno = NO_ERROR;
}

/// The result of a call of the runtime library that has failed. The native error goes first: a
/// denied write is a bad descriptor to the library's own number. A full disk and a descriptor that
/// is none have no native error.
std::int32_t streamResult() noexcept {
    const unsigned long native = _doserrno;
    if (native != NO_ERROR) {
        return QVResultFromNative(native);
    }
    switch (errno) {
    case ENOSPC:
        return QV_E_DISKFULL;
    case EBADF:
        return QV_E_INVALIDHANDLE;
    case EINVAL:
        return QV_E_INVALIDARG;
    default:
        return QV_E_FAIL;
    }
}

/// The result of a call of the runtime library for that stream, which says EOF where it fails.
template <class Call>
std::int32_t streamCall(void* stream, Call call) noexcept {
    if (stream == nullptr) {
        return QV_E_INVALIDHANDLE;
    }
    clearStreamError();
    return call(static_cast<std::FILE*>(stream)) == EOF ? streamResult() : QV_S_OK;
}

} // namespace

} // namespace qv::core

using namespace qv;
using namespace qv::core;

std::int32_t QVFileOpen(const char16_t* path, std::uint32_t access, std::uint32_t,
                        std::uint64_t* handle) noexcept {
    if (handle == nullptr) {
        return QV_E_POINTER;
    }
    if (path == nullptr || !isValidFileAccess(access)) {
        return QV_E_INVALIDARG;
    }
    if (*path == 0) {
        return QV_E_FILENOTFOUND;
    }
    return guarded([=] {
        std::wstring systemPath;
        const std::int32_t result = toSystemPath(path, systemPath);
        return result < 0 ? result : openFile(systemPath, access, handle);
    });
}

std::int32_t QVFileClose(std::uint64_t handle) noexcept {
    if (handle == QV_FILE_NONE) {
        return QV_E_INVALIDHANDLE;
    }
    return CloseHandle(toNative(handle)) ? QV_S_OK : lastNativeResult();
}

void QVFileAbandon(std::uint64_t handle) noexcept {
    if (handle != QV_FILE_NONE) {
        CloseHandle(toNative(handle));
    }
}

std::int32_t QVFileGetSize(std::uint64_t handle, std::int64_t* size) noexcept {
    if (size == nullptr) {
        return QV_E_POINTER;
    }
    LARGE_INTEGER found = {};
    if (!GetFileSizeEx(toNative(handle), &found)) {
        return lastNativeResult();
    }
    *size = found.QuadPart;
    return QV_S_OK;
}

std::int32_t QVFileSeek64(std::uint64_t handle, std::int64_t offset, std::int32_t origin,
                          std::int64_t* position) noexcept {
    constexpr DWORD origins[] = {FILE_BEGIN, FILE_CURRENT, FILE_END};
    if (position == nullptr) {
        return QV_E_POINTER;
    }
    if (origin < 0 || origin > 2) {
        return QV_E_INVALIDARG;
    }
    LARGE_INTEGER distance = {};
    LARGE_INTEGER found = {};
    distance.QuadPart = offset;
    if (!SetFilePointerEx(toNative(handle), distance, &found, origins[origin])) {
        return seekResult(GetLastError());
    }
    *position = found.QuadPart;
    return QV_S_OK;
}

std::int32_t QVFileRead(std::uint64_t handle, void* buffer, std::uint32_t length,
                        std::uint32_t* count) noexcept {
    if (count == nullptr || (buffer == nullptr && length != 0)) {
        return QV_E_POINTER;
    }
    const HANDLE file = toNative(handle);
    if (length == 0 && isPipe(file)) {
        *count = 0; // the system would wait for a byte
        return QV_S_OK;
    }
    DWORD taken = 0;
    DWORD error = readOnce(file, buffer, length, taken);
    while (taken == 0 && (error == NO_ERROR || error == ERROR_NO_DATA) && hasWriter(file)) {
        if (error == ERROR_NO_DATA) {
            Sleep(1); // an empty pipe that does not block: its writer has to come first
        }
        error = readOnce(file, buffer, length, taken);
    }
    if (error != NO_ERROR && !isEnd(error)) {
        return QVResultFromNative(error);
    }
    *count = taken;
    return QV_S_OK;
}

std::int32_t QVFileWrite(std::uint64_t handle, const void* bytes, std::uint32_t length) noexcept {
    if (bytes == nullptr && length != 0) {
        return QV_E_POINTER;
    }
    const HANDLE file = toNative(handle);
    if (length == 0 && isPipe(file)) {
        return QV_S_OK;
    }
    // A pipe that does not block takes nothing of a piece for which it lacks the room: then smaller
    // ones are tried, and in front of the smallest its reader has to come first.
    const auto* rest = static_cast<const char*>(bytes);
    DWORD piece = length;
    do {
        DWORD written = 0;
        if (!WriteFile(file, rest, piece, &written, nullptr)) {
            return lastNativeResult();
        }
        rest += written;
        length -= written;
        if (written != 0) {
            piece = length;
        } else if (piece > 1) {
            piece /= 2;
        } else if (length != 0) {
            Sleep(1);
        }
    } while (length != 0);
    return QV_S_OK;
}

std::int32_t QVFileFlush(std::uint64_t handle) noexcept {
    const HANDLE file = toNative(handle);
    SetLastError(NO_ERROR);
    const DWORD type = GetFileType(file);
    if (type == FILE_TYPE_UNKNOWN && GetLastError() != NO_ERROR) {
        return lastNativeResult();
    }
    // A file opened for reading has nothing to bring to the disk, and the system refuses to try.
    if (type == FILE_TYPE_DISK && !FlushFileBuffers(file) &&
        GetLastError() != ERROR_ACCESS_DENIED) {
        return lastNativeResult();
    }
    return QV_S_OK;
}

std::uint64_t QVFileGetStandard(std::int32_t which) noexcept {
    constexpr DWORD names[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    if (which < 0 || which > 2) {
        return QV_FILE_NONE;
    }
    const HANDLE handle = GetStdHandle(names[which]);
    return handle == nullptr ? QV_FILE_NONE : fromNative(handle);
}

std::int64_t QVStreamTell64(void* stream) noexcept {
    auto* const file = static_cast<std::FILE*>(stream);
    return file != nullptr && isDiskFile(file) ? _ftelli64(file) : -1;
}

std::int32_t QVStreamSeek64(void* stream, std::int64_t offset, std::int32_t origin) noexcept {
    constexpr int origins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (stream == nullptr) {
        return QV_E_INVALIDHANDLE;
    }
    if (origin < 0 || origin > 2) {
        return QV_E_INVALIDARG;
    }
    clearStreamError();
    if (_fseeki64(static_cast<std::FILE*>(stream), offset, origins[origin]) != 0) {
        return _doserrno != NO_ERROR ? seekResult(_doserrno) : streamResult();
    }
    return QV_S_OK;
}

std::int32_t QVStreamPut(void* stream, std::uint8_t character) noexcept {
    return streamCall(stream, [character](std::FILE* file) { return std::fputc(character, file); });
}

std::int32_t QVStreamFlush(void* stream) noexcept {
    return streamCall(stream, [](std::FILE* file) { return std::fflush(file); });
}

std::int32_t QVStreamClose(void* stream) noexcept {
    return streamCall(stream, [](std::FILE* file) { return std::fclose(file); });
}

std::int32_t QVStreamWriteDirect(void* stream, const void* bytes, std::uint32_t length) noexcept {
    // The descriptor turns line feeds into line ends where the stream itself does.
    constexpr std::uint32_t most = 0x40000000;
    if (stream == nullptr) {
        return QV_E_INVALIDHANDLE;
    }
    if (bytes == nullptr && length != 0) {
        return QV_E_POINTER;
    }
    const int descriptor = _fileno(static_cast<std::FILE*>(stream));
    const auto* rest = static_cast<const char*>(bytes);
    while (length != 0) {
        clearStreamError();
        const int written = _write(descriptor, rest, std::min(length, most));
        if (written <= 0) {
            return written == 0 ? QV_E_DISKFULL : streamResult();
        }
        rest += written;
        length -= static_cast<std::uint32_t>(written);
    }
    return QV_S_OK;
}
