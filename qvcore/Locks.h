#pragma once

#include "qvcore/Core.h"

/// Locks and waits inside one process. A handle is made by its Create and ended by its Destroy,
/// which must not run while another thread uses the object. `name` is a label for diagnostics and
/// may be null: two locks of one name are two locks. `flags` is 0. Timeouts are milliseconds on a
/// monotonic clock, 0xFFFFFFFF waits for ever; an expired wait returns 0x800705B4. A try operation
/// that finds the object taken returns 0x800705B4 too and has no side effect. A null output is
/// 0x80004003.
///
/// Thread safety: internally locked.

/// Recursive mutex. A release by a thread that does not hold it changes nothing and returns
/// 0x80070120 (not owner). Destroying a held mutex is refused with 0x800700AA (busy).
QVCORE_API int32_t QVMutexCreate(const char* name, uint32_t flags,
                                 uint64_t* handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVMutexAcquire(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVMutexTryAcquire(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVMutexRelease(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVMutexDestroy(uint64_t handle) QVCORE_NOEXCEPT;

/// Reader-writer lock. Readers pass together; a waiting writer holds back new readers, so that it
/// is not starved, but never a thread that reads already. It is not recursive otherwise: a thread
/// that would wait for itself is refused with 0x8007046B (deadlock). A release of a side that the
/// thread does not hold returns 0x80070120; destroying a held lock is refused with 0x800700AA.
QVCORE_API int32_t QVRWLockCreate(const char* name, uint32_t flags,
                                  uint64_t* handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVRWLockAcquireWrite(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVRWLockTryAcquireWrite(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVRWLockReleaseWrite(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVRWLockAcquireRead(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVRWLockTryAcquireRead(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVRWLockReleaseRead(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVRWLockDestroy(uint64_t handle) QVCORE_NOEXCEPT;

/// Auto-reset event, not signalled at first. One wait uses up one signal; signals do not add up.
QVCORE_API int32_t QVEventCreate(const char* name, uint32_t flags,
                                 uint64_t* handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVEventWait(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVEventTimedWait(uint64_t handle, uint32_t timeout) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVEventSignal(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVEventDestroy(uint64_t handle) QVCORE_NOEXCEPT;

/// Gate, closed at first. Open it lets every waiter pass and stays open until it is closed.
QVCORE_API int32_t QVGateCreate(const char* name, uint32_t flags, uint64_t* handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVGateWait(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVGateTryWait(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVGateTimedWait(uint64_t handle, uint32_t timeout) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVGateOpen(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVGateClose(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVGateDestroy(uint64_t handle) QVCORE_NOEXCEPT;

/// Counting semaphore. The Wait, TryWait, Post and GetValue operations serve the handles of
/// `QVNamedSemOpen` (qvcore/Ipc.h) as well. A post beyond 0x7FFFFFFF returns 0x8007012A.
QVCORE_API int32_t QVSemaphoreCreate(uint32_t initial, const char* name, uint32_t flags,
                                     uint64_t* handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVSemaphoreWait(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVSemaphoreTryWait(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVSemaphorePost(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVSemaphoreGetValue(uint64_t handle, int32_t* value) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVSemaphoreDestroy(uint64_t handle) QVCORE_NOEXCEPT;

/// Condition variable with a recursive mutex of its own. Wait gives the mutex up for the time of
/// the wait, whole, and has it back on return, also on a timeout. A wait or a release by a thread
/// that does not hold the mutex returns 0x80070120. Wakings are never spurious.
/// A signal wakes the thread that has waited longest. Destroying a condition that is held or waited
/// for is refused with 0x800700AA.
QVCORE_API int32_t QVConditionCreate(const char* name, uint32_t flags,
                                     uint64_t* handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVConditionAcquire(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVConditionRelease(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVConditionSignal(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVConditionBroadcast(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVConditionWait(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVConditionTimedWait(uint64_t handle, uint32_t timeout) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVConditionDestroy(uint64_t handle) QVCORE_NOEXCEPT;
