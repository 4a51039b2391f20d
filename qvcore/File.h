#pragma once

#include "qvcore/Core.h"

/// Files of the system. Offsets have 64 bits, handles are closed in child processes, partial
/// transfers and interrupted calls are hidden. Both `\` and `/` separate the parts of a path; a
/// path that the system cannot spell is refused with 0x8007007B. It is given to the system as it
/// is: Windows takes a name without the dots and blanks at its end.
///
/// Thread safety: a handle may be used by several threads as far as the system allows it.

/// No file.
#define QV_FILE_NONE UINT64_MAX

/// Access bits of QVFileOpen; they add up.
#define QV_FILE_READ 0x80000000u
#define QV_FILE_WRITE 0x40000000u
#define QV_FILE_ATEND 0x8u      /* positioned at its end */
#define QV_FILE_CREATE 0x100u   /* made if it is not there */
#define QV_FILE_TRUNCATE 0x200u /* emptied */

/// Opens a file. `permissions` are those of a new file on systems that have them, cut by the user's
/// mask. A directory is refused with 0x80070005. Other processes may read, write, rename and remove
/// the file meanwhile.
QVCORE_API int32_t QVFileOpen(const char16_t* path, uint32_t access, uint32_t permissions,
                              uint64_t* handle) QVCORE_NOEXCEPT;
/// A close that fails, since not all that was written could be kept, leaves the handle open.
QVCORE_API int32_t QVFileClose(uint64_t handle) QVCORE_NOEXCEPT;
/// Gives the handle up, whatever is lost by that: for callers that have nobody to tell.
QVCORE_API void QVFileAbandon(uint64_t handle) QVCORE_NOEXCEPT;
QVCORE_API int32_t QVFileGetSize(uint64_t handle, int64_t* size) QVCORE_NOEXCEPT;
/// `origin` is 0 for the start, 1 for the current position, 2 for the end.
QVCORE_API int32_t QVFileSeek64(uint64_t handle, int64_t offset, int32_t origin,
                                int64_t* position) QVCORE_NOEXCEPT;
/// Reads at most `length` bytes, and at least one unless the file is at its end: `*count` is 0
/// then. A pipe whose writers are gone is at its end.
QVCORE_API int32_t QVFileRead(uint64_t handle, void* buffer, uint32_t length,
                              uint32_t* count) QVCORE_NOEXCEPT;
/// Writes all `length` bytes. A pipe without readers is 0x8007006D, and no signal is raised.
QVCORE_API int32_t QVFileWrite(uint64_t handle, const void* bytes, uint32_t length) QVCORE_NOEXCEPT;
/// Brings what was written to the disk. No error on what has none (a pipe, a terminal).
QVCORE_API int32_t QVFileFlush(uint64_t handle) QVCORE_NOEXCEPT;

/// The handle of standard input (0), output (1) or error (2); not owned. QV_FILE_NONE if the
/// process has none.
QVCORE_API uint64_t QVFileGetStandard(int32_t which) QVCORE_NOEXCEPT;
/// The position of a runtime stream (a `FILE*`); -1 where it has none, as all but files on a disk.
QVCORE_API int64_t QVStreamTell64(void* stream) QVCORE_NOEXCEPT;
/// Moves the position of a runtime stream; `origin` as for QVFileSeek64.
QVCORE_API int32_t QVStreamSeek64(void* stream, int64_t offset, int32_t origin) QVCORE_NOEXCEPT;
/// Writes a byte to a runtime stream, through its buffer. This and the following fail as the
/// runtime library does, also where it is interrupted, and raise no signal where they bring bytes
/// to a pipe that nobody reads.
QVCORE_API int32_t QVStreamPut(void* stream, uint8_t byte) QVCORE_NOEXCEPT;
/// Brings the buffer of a runtime stream out.
QVCORE_API int32_t QVStreamFlush(void* stream) QVCORE_NOEXCEPT;
/// Closes a runtime stream, also where it fails.
QVCORE_API int32_t QVStreamClose(void* stream) QVCORE_NOEXCEPT;
/// Writes all bytes to the descriptor behind a runtime stream, past the stream's buffer.
QVCORE_API int32_t QVStreamWriteDirect(void* stream, const void* bytes,
                                       uint32_t length) QVCORE_NOEXCEPT;
