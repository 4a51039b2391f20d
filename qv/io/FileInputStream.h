#pragma once

#include "qv/Reference.h"
#include "qv/String.h"
#include "qv/io/InputStream.h"
#include "qv/util/FilePath.h"

namespace qv::io {

/// Reads a file of the system, or whatever a native handle stands for.
///
/// Failures of the system are thrown as ResultException with the platform's result.
class QV_API FileInputStream : public InputStream {
public:
    /// Opens for reading, and owns the handle.
    explicit FileInputStream(const util::FilePath& path);
    explicit FileInputStream(const String& path);
    /// Wraps a native handle; with `owns` it is closed with the stream.
    FileInputStream(std::uint64_t handle, bool owns);
    FileInputStream(const FileInputStream&) = delete;
    FileInputStream& operator=(const FileInputStream&) = delete;
    ~FileInputStream() noexcept override;

    using InputStream::read;
    /// Kept: a `length` of 0 gives -1, like the end of the file.
    std::int32_t read(signed char* destination, std::int32_t length) override;
    /// A close that fails leaves the stream its handle.
    void close() override;

    std::uint64_t getHandle() const noexcept { return handle_; }

    /// The process's standard input, read without a buffer; the handle stays open at the stream's
    /// end.
    static Reference<FileInputStream> standardInput();

private:
    std::uint64_t handle_;
    bool ownsHandle_;
};

} // namespace qv::io
