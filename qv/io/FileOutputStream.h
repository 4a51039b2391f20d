#pragma once

#include "qv/Reference.h"
#include "qv/String.h"
#include "qv/io/OutputStream.h"
#include "qv/ipc/SemaphoreR.h"
#include "qv/sync/Mutex.h"
#include "qv/util/FilePath.h"

namespace qv::io {

/// Writes a file of the system, alone or together with other threads and processes.
///
/// A stream with APPEND or LOCK has a lock that all processes share which write the same path: each
/// `write` goes to the file as one unit under it. A stream with KEEPCLOSED holds the file open only
/// for the length of one operation, and every write ends with the data on the disk. Both also order
/// the threads of this process, by a mutex that is taken first and given back last. After `close`
/// writes fail, until `open` brings the file back; TRUNC acts only once, at construction.
///
/// Failures of the system are thrown as ResultException with the platform's result; a failed write
/// gives its locks back.
///
/// Thread safety: several threads may write with APPEND, KEEPCLOSED or LOCK, and with KEEPCLOSED
/// also flush, open, close and ask for the size; otherwise one thread at a time.
class QV_API FileOutputStream : public OutputStream {
public:
    static const unsigned int ATEND = 0x1;      ///< opened positioned at its end
    static const unsigned int APPEND = 0x2;     ///< each write goes to the end, under the lock
    static const unsigned int TRUNC = 0x4;      ///< emptied, at the first open only
    static const unsigned int KEEPCLOSED = 0x8; ///< closed between operations
    static const unsigned int LOCK = 0x10;      ///< each write takes the lock

    /// Opens or makes the file.
    /// @throws InvalidPathException for an empty path.
    FileOutputStream(const util::FilePath& path, unsigned int mode);
    FileOutputStream(const String& path, unsigned int mode);
    /// With ATEND if `append`, otherwise with TRUNC.
    FileOutputStream(const util::FilePath& path, bool append);
    FileOutputStream(const String& path, bool append);
    /// Wraps a native handle; with `owns` it is closed with the stream. No path, no locks.
    FileOutputStream(std::uint64_t handle, bool owns);
    FileOutputStream(const FileOutputStream&) = delete;
    FileOutputStream& operator=(const FileOutputStream&) = delete;
    /// Closes, and gives the lock back where the calling thread holds it. Ending a stream whose
    /// lock another thread holds ends the process.
    ~FileOutputStream() noexcept override;

    using OutputStream::write;
    void write(const signed char* bytes, std::int32_t length) override;
    /// Brings what was written to the disk; a stream with KEEPCLOSED closes the file then.
    void flush() override;
    /// Never throws, since the destructor does the same. A close that fails leaves the file open.
    void close() override;

    // Slot order is contract from here on.

    /// 1 while the file is open, otherwise 0.
    virtual short is_open() const;
    /// Opens a closed file again, without emptying it.
    /// @throws InvalidPathException for a stream without a path.
    virtual void open();
    virtual std::int64_t getSize();

    // Slot order ends here.

    std::uint64_t getHandle() const noexcept { return handle_; }
    unsigned int getMode() const noexcept { return mode_; }
    /// Takes the lock for several writes on end; without a lock it does nothing.
    void wait();
    /// Gives the lock back; by a thread that does not hold it, it does nothing.
    void signal();

    /// The process's standard output, written without a buffer; the handle stays open.
    static Reference<FileOutputStream> standardOutput();

private:
    class Turn;

    static std::uint64_t openFile(const String& path, unsigned int mode);
    void init(const util::FilePath& path);
    void reopen();
    void giveBackAll() noexcept;
    bool keepsClosed() const noexcept { return (mode_ & KEEPCLOSED) != 0; }

    String path_;
    std::uint64_t handle_;
    bool ownsHandle_ = true;
    unsigned int mode_;
    Reference<ipc::SemaphoreR> semaphore_;
    Reference<sync::Mutex> mutex_;
};

} // namespace qv::io
