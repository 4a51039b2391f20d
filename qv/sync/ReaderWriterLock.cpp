#include "qv/sync/ReaderWriterLock.h"

#include "qv/ErrorRule.h"
#include "qvcore/Locks.h"

namespace qv::sync {

ReaderWriterLock::ReaderWriterLock(const char* name, std::uint32_t flags) {
    throwIfFailed(QVRWLockCreate(name, flags, &handle_));
}

ReaderWriterLock::~ReaderWriterLock() noexcept(false) { throwIfFailed(QVRWLockDestroy(handle_)); }

void ReaderWriterLock::wait() { throwIfFailed(QVRWLockAcquireWrite(handle_)); }

bool ReaderWriterLock::tryWait() { return QVRWLockTryAcquireWrite(handle_) >= 0; }

void ReaderWriterLock::signal() { throwIfFailed(QVRWLockReleaseWrite(handle_)); }

void ReaderWriterLock::waitShared() { throwIfFailed(QVRWLockAcquireRead(handle_)); }

bool ReaderWriterLock::tryWaitShared() { return QVRWLockTryAcquireRead(handle_) >= 0; }

void ReaderWriterLock::signalShared() { throwIfFailed(QVRWLockReleaseRead(handle_)); }

} // namespace qv::sync
