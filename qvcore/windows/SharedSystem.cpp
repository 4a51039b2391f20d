#include "qvcore/common/SharedSystem.h"

#include "qvcore/common/NativeError.h"

#include <windows.h>

namespace qv::core {

namespace {

HANDLE toNative(std::uintptr_t handle) noexcept { return reinterpret_cast<HANDLE>(handle); }

std::uintptr_t fromNative(HANDLE handle) noexcept {
    return reinterpret_cast<std::uintptr_t>(handle);
}

void closeNative(std::uintptr_t handle) noexcept {
    if (handle != 0) {
        CloseHandle(toNative(handle));
    }
}

/// The name of one of the objects that belong to a block.
std::wstring systemName(const std::string& name, const wchar_t* part) {
    return L"Local\\qv-" + std::wstring(name.begin(), name.end()) + part;
}

/// A mutex whose holder died is free again: what it guards is repaired by whoever uses it.
std::int32_t lockMutex(std::uintptr_t mutex) noexcept {
    const DWORD result = WaitForSingleObject(toNative(mutex), INFINITE);
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED ? QV_S_OK : lastNativeResult();
}

std::uint32_t startOf(HANDLE process) noexcept {
    FILETIME start = {};
    FILETIME ignored = {};
    return GetProcessTimes(process, &start, &ignored, &ignored, &ignored) ? start.dwLowDateTime : 0;
}

bool hasEnded(HANDLE process) noexcept { return WaitForSingleObject(process, 0) == WAIT_OBJECT_0; }

std::int32_t mapView(std::uintptr_t file, bool isWritable, void** address) noexcept {
    const DWORD access = isWritable ? FILE_MAP_READ | FILE_MAP_WRITE : FILE_MAP_READ;
    void* view = MapViewOfFile(toNative(file), access, 0, 0, 0);
    if (view == nullptr) {
        return lastNativeResult();
    }
    *address = view;
    return QV_S_OK;
}

std::size_t sizeOfView(const void* view) noexcept {
    MEMORY_BASIC_INFORMATION information = {};
    return VirtualQuery(view, &information, sizeof information) == 0 ? 0 : information.RegionSize;
}

} // namespace

ProcessIdentity currentProcess() noexcept {
    static const ProcessIdentity self = {GetCurrentProcessId(), startOf(GetCurrentProcess())};
    return self;
}

bool isRunning(const ProcessIdentity& process) noexcept {
    const HANDLE opened =
        OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process.id);
    if (opened == nullptr) {
        // Only this error says that there is no such process. After any other it may well run, and
        // what it holds is not to be given away.
        return GetLastError() != ERROR_INVALID_PARAMETER;
    }
    const bool result = process.mayBe({process.id, startOf(opened)}) && !hasEnded(opened);
    CloseHandle(opened);
    return result;
}

NamedBlock::~NamedBlock() { close(); }

std::int32_t NamedBlock::openLocked(const std::string& name, std::size_t size, std::uint32_t) {
    name_ = name;
    const std::wstring lockName = systemName(name, L"-lock");
    const std::wstring blockName = systemName(name, L"-block");
    parts_.lock = fromNative(CreateMutexW(nullptr, FALSE, lockName.c_str()));
    std::int32_t result = parts_.lock == 0 ? lastNativeResult() : lockMutex(parts_.lock);
    if (result < 0) {
        close();
        return result;
    }
    const std::uint64_t wide = size;
    SetLastError(NO_ERROR);
    parts_.file = fromNative(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE,
                                                static_cast<DWORD>(wide >> 32),
                                                static_cast<DWORD>(wide), blockName.c_str()));
    isNew_ = GetLastError() != ERROR_ALREADY_EXISTS;
    result = parts_.file == 0 ? lastNativeResult() : mapView(parts_.file, true, &parts_.address);
    if (result < 0) {
        unlock();
        close();
        return result;
    }
    parts_.size = isNew_ ? size : sizeOfView(parts_.address);
    return QV_S_OK;
}

void NamedBlock::close() noexcept {
    if (parts_.address != nullptr) {
        unmap(parts_.address, parts_.size);
    }
    closeNative(parts_.file);
    closeNative(parts_.lock);
    parts_ = {};
}

std::int32_t NamedBlock::lock() noexcept { return lockMutex(parts_.lock); }

void NamedBlock::unlock() noexcept { ReleaseMutex(toNative(parts_.lock)); }

bool NamedBlock::isLockKept() noexcept { return true; } // there is no fork

std::int32_t NamedBlock::map(bool isWritable, void** address) const noexcept {
    return mapView(parts_.file, isWritable, address);
}

void NamedBlock::unmap(void* address, std::size_t) noexcept { UnmapViewOfFile(address); }

void NamedBlock::discard() noexcept {}

void NamedBlock::discardUnused(bool (*)(const void*, std::size_t)) {}

SharedGuard::~SharedGuard() {
    closeNative(mutex_);
    closeNative(event_);
}

std::int32_t SharedGuard::open(Storage& storage, const std::string& name, bool) {
    storage_ = &storage;
    mutex_ = fromNative(CreateMutexW(nullptr, FALSE, systemName(name, L"-guard").c_str()));
    if (mutex_ == 0) {
        return lastNativeResult();
    }
    event_ = fromNative(CreateEventW(nullptr, FALSE, FALSE, systemName(name, L"-event").c_str()));
    return event_ == 0 ? lastNativeResult() : QV_S_OK;
}

std::int32_t SharedGuard::lock() noexcept { return lockMutex(mutex_); }

void SharedGuard::unlock() noexcept { ReleaseMutex(toNative(mutex_)); }

// The event keeps an announcement until a waiter takes it, so no mark is needed.
std::uint32_t SharedGuard::mark() const noexcept { return 0; }

void SharedGuard::wait(std::uint32_t, std::uint32_t timeout) noexcept {
    WaitForSingleObject(toNative(event_), timeout);
}

void SharedGuard::announce() noexcept { SetEvent(toNative(event_)); }

} // namespace qv::core
