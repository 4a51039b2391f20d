#pragma once

#include "qvcore/Core.h"

/// What processes of one user share by name. Any non-empty text is a legal name, since the system
/// is given its digest, and two different names never meet.

/// Opens the semaphore of that name, or makes it with `value` as its count if no process has it
/// open. The handle serves the operations of the semaphore family in qvcore/Locks.h.
///
/// A semaphore made with the count 1 is a lock, and knows its holders: what a process took by
/// waiting and did not post comes back to the others when the process ends, however it ends, goes
/// on as another program, or closes its last handle. A post by a process that holds nothing adds
/// one. With any other first count the semaphore counts for all processes together, and nothing is
/// taken back: one process may post what another waits for.
///
/// A child made by fork may use the handles that it inherited; it holds nothing of what its parent
/// holds. Such a handle counts from its first use in the child: until then the semaphore is gone
/// when all others have closed theirs. An empty or null name, or a count above 0x7FFFFFFF, is
/// 0x80070057.
QVCORE_API int32_t QVNamedSemOpen(const char* name, uint32_t value,
                                  uint64_t* handle) QVCORE_NOEXCEPT;
/// Gives the handle back. The semaphore itself is gone with its last handle in any process; the
/// handles of a process that ended do not count.
QVCORE_API int32_t QVNamedSemClose(uint64_t handle) QVCORE_NOEXCEPT;

/// Opens the shared block of that name, or makes it, zeroed, with `size` bytes. `mode` is the
/// access permission of a new block on systems that have one (0 means 0600), `flags` is 0. An
/// existing block keeps its size; asking for more than it has is 0x80070057.
QVCORE_API int32_t QVSharedMemOpen(const char* name, uint32_t flags, uint32_t mode, uint32_t size,
                                   uint64_t* handle) QVCORE_NOEXCEPT;
/// Maps the block; `access` holds 0x80000000 for reading and 0x40000000 for writing.
/// An access without either of them, or with another bit, is 0x80070057.
QVCORE_API int32_t QVSharedMemAttach(uint64_t handle, uint32_t access,
                                     void** address) QVCORE_NOEXCEPT;
/// An address that no block is mapped at is 0x80070057.
QVCORE_API int32_t QVSharedMemDetach(void* address) QVCORE_NOEXCEPT;
/// Gives the handle back. The block is gone with its last handle in any process; what is mapped
/// stays mapped. A handle that a child inherited through fork does not count as open there.
QVCORE_API int32_t QVSharedMemClose(uint64_t handle) QVCORE_NOEXCEPT;
